"""The start of the extension, step by step, over siblings made of nothing and the scripted peer."""

import ctypes
import inspect
import os
import sys
import textwrap

import pytest
from family import CAPSULES, SIBLINGS
from peer import (
    ASSEMBLY,
    EXCHANGE,
    EXCHANGE_METHODS,
    OBJECT,
    OBJECT_METHODS,
    Script,
    report,
)
from shell_identifiers import IDENTIFIERS

behaviour = pytest.mark.behaviour
SETTERS = [
    "SetExceptionCallback",
    "SetCatchAndClearErrorCallback",
    "SetU16StrBuilderCallback",
    "SetPyStrBuilderCallback",
    "SetPyUnraisableStrBuilderCallback",
    "SetPyObjApiCallbacks",
    "SetPyStaticCallbacks",
    "SetPyGenericCallbacks",
    "SetPyBytesBuilderCallback",
]
NOT_FOUND = "The module not found or errors occurred while initializing it."


def numbered(code):
    return f"One or more errors occurred while loading the module 'kelmor.psd' ({code})"


def absent(name):
    return f"Unable to import module dependencies. Cannot import the {name} module. " + NOT_FOUND


def missing_method(service, method, code):
    return (
        f"While initializing the host for the '{service} (Assembly={ASSEMBLY})' type, an error "
        f"occurred - Method '{method}' not found (error={code})"
    )


def with_helpers(program, *helpers):
    """The text of a program that calls functions of this file."""
    sources = [textwrap.dedent(inspect.getsource(function)) for function in [*helpers, program]]
    return "\n".join([*sources, f"report({program.__name__}())"])


def texts(shown):
    return [entry[:2] for entry in shown]


def linked(shown):
    """Whether the cause of each is its context too."""
    return [entry[2] for entry in shown]


# A good start.


@behaviour(
    "shell-entry.module.attributes",
    "shell-entry.version.value",
    "shell-entry.threshold.value",
    "shell-entry.version.type",
    "shell-entry.version.order-and-text",
    "shell-entry.result.root",
    "shell-entry.reference.version",
    "shell-entry.threshold.not-checked-here",
)
def test_an_import_gives_the_root_module(in_process):
    def program():
        from family import Family

        # Siblings of the very reference version, which demand nothing.
        psd = Family().complete(found=(24, 5, 3, 0), threshold=(0, 0, 0, 0)).psd()
        versions = [psd.VERSION, psd._BACKWARD_COMPATIBILITY_THRESHOLD]
        return {
            "name": psd.__name__,
            "doc": psd.__doc__,
            "published": sys.modules["kelmor.psd"] is psd,
            "numbers": [[v.major, v.minor, v.patch, v.sub, v.view, str(v)] for v in versions],
            "types": [type(v) is psd._ModuleVersionType for v in versions],
            "greater": versions[0] > versions[1],
        }

    assert in_process(program).value == {
        "name": "kelmor.psd",
        "doc": None,
        "published": True,
        "numbers": [
            [24, 11, 0, 0, "24.11.0.0", "24.11.0.0"],
            [22, 6, 0, 0, "22.6.0.0", "22.6.0.0"],
        ],
        "types": [True, True],
        "greater": True,
    }


@behaviour("shell-entry.reference.version")
@pytest.mark.parametrize("name", SIBLINGS)
def test_a_sibling_below_the_reference_version_is_refused(in_process, name):
    def program(name):
        from family import Family

        family = Family().complete()
        module = sys.modules[name]
        import shell_probe

        module.VERSION = shell_probe.version(24, 5, 2, 9)
        return family.failure()

    outcome = in_process(program, name)
    code = -1008 if name == "kelmor.shellbase" else -1009
    assert texts(outcome.value) == [
        ["ImportError", numbered(code)],
        [
            "ImportError",
            f"Unable to import module dependencies. Cannot import the {name} module. The {name} "
            "module found has a version ('24.5.2.9') that is lower than the referenced version of "
            "that module ('24.5.3.0').",
        ],
    ]
    assert linked(outcome.value)[0]
    assert outcome.journal == []


@behaviour(
    "shell-entry.start.arguments",
    "shell-entry.callbacks.order",
    "shell-entry.init-services.after-setters",
    "shell-entry.order.no-managed-call-in-tree",
    "shell-tree.tree.no-managed-call",
    "shell-entry.start.returns",
)
def test_the_peer_sees_the_start_in_its_order(in_process, installation):
    def program():
        from family import Family

        script = Script()
        for method in EXCHANGE_METHODS:
            script.method(EXCHANGE, method, ASSEMBLY).takes(1)
        Family().complete().psd()
        return [
            script.calls,
            [[e["assembly"], e["type"], e["method"]] for e in script.journal if "assembly" in e],
            script.delegates(),
            [e["path"] for e in script.journal if e["call"] == "coreclr_wrap_load"],
        ]

    outcome = in_process(program)
    calls, requests, delegates, loads = outcome.value
    wanted = [[ASSEMBLY, EXCHANGE, method] for method in EXCHANGE_METHODS]
    assert requests == wanted + [[ASSEMBLY, OBJECT, method] for method in OBJECT_METHODS]
    assert delegates == SETTERS + ["InitServices"]
    ask = "coreclr_wrap_create_delegate"
    assert calls == (
        ["coreclr_wrap_load", "coreclr_wrap_initialize"]
        + [ask] * 15
        + ["delegate"] * 10
        + [ask] * 11
    )
    assert loads == [str(installation.runtimes / "netcore10.0" / "libcoreclr.so")]
    initialized = outcome.entry("coreclr_wrap_initialize")
    assert "/debug" not in str(initialized)


@behaviour("shell-entry.start.arguments")
def test_the_variables_of_the_family_are_read(in_process, installation):
    def program():
        from family import Family

        script = Script()
        Family().complete().psd()
        return script.calls[0]

    variables = dict(installation.environment())
    other = {name.replace("_kelmor", "_psd"): value for name, value in variables.items()}
    cleared = {name: None for name in variables}
    outcome = in_process(program, environment={**cleared, **other}, code=None)
    assert outcome.code == -6
    assert "DynamicLibrary::load" in outcome.stderr
    assert in_process(program).value == "coreclr_wrap_load"


@behaviour("shell-entry.order.whole", "shell-identifiers.intern.before-any-call")
def test_every_step_comes_in_its_place(in_process):
    def program():
        from family import Family, interposed

        script = Script()
        family = Family().complete()
        between = interposed(script)
        between.watch(None)
        family.psd()
        wanted = {
            "PyUnicode_InternFromString",
            "PyImport_ImportModule",
            "PyCapsule_Import",
            "PyModule_Create2",
            "PyModule_AddObject",
        }
        steps = []
        first_other = None
        for entry in script.journal:
            if entry["call"] == "python":
                if entry["function"] == "PyUnicode_InternFromString":
                    steps.append(["intern", entry["text"]])
                    continue
                first_other = first_other or len(steps)
                if entry["function"] in wanted:
                    steps.append([entry["function"], entry["text"]])
            elif entry["call"] == "delegate":
                steps.append(["call", entry["method"]])
            else:
                steps.append([entry["call"], entry.get("method")])
        return steps, first_other

    steps, first_other = in_process(program).value
    assert first_other == 54
    assert steps[:54] == [["intern", text] for text in IDENTIFIERS.values()]
    expected = [["PyImport_ImportModule", "kelmor.gfxtypes"]]
    expected += [["PyCapsule_Import", name] for name in CAPSULES[:19]]
    expected += [["PyImport_ImportModule", "kelmor.typemodel"]]
    expected += [["PyCapsule_Import", name] for name in CAPSULES[19:]]
    expected += [["PyImport_ImportModule", "kelmor.shellbase"]]
    expected += [["PyCapsule_Import", "kelmor.shellbase._C_APIF"]]
    expected += [["coreclr_wrap_load", None], ["coreclr_wrap_initialize", None]]
    expected += [["coreclr_wrap_create_delegate", method] for method in EXCHANGE_METHODS]
    expected += [["call", method] for method in [*SETTERS, "InitServices"]]
    expected += [["coreclr_wrap_create_delegate", method] for method in OBJECT_METHODS]
    expected += [["PyModule_Create2", "kelmor.psd"]]
    start = 54 + len(expected)
    assert steps[54:start] == expected
    tree = steps[start:]
    wrappers = tree.index(["PyModule_AddObject", "_wrpgen"])
    assert tree[wrappers - 1] == ["PyModule_Create2", "kelmor.psd._wrpgen"]
    assert tree[-3:] == [
        ["PyModule_AddObject", "_ModuleVersionType"],
        ["PyModule_AddObject", "VERSION"],
        ["PyModule_AddObject", "_BACKWARD_COMPATIBILITY_THRESHOLD"],
    ]
    assert {step[0] for step in tree} <= {
        "PyModule_Create2",
        "PyModule_AddObject",
        "PyImport_ImportModule",  # the base classes of enumerations
    }


@behaviour("shell-entry.order.attributes-last", "shell-tree.root.wrpgen-last")
def test_the_attributes_of_the_entry_come_last(in_process):
    def program():
        from family import Family

        psd = Family().complete().psd()
        return [name for name in vars(psd) if name not in ("__file__", "__loader__", "__spec__")]

    names = in_process(program).value
    assert names[-4:] == [
        "_wrpgen",
        "_ModuleVersionType",
        "VERSION",
        "_BACKWARD_COMPATIBILITY_THRESHOLD",
    ]


@behaviour("shell-entry.order.siblings")
def test_the_siblings_are_imported_in_their_order(in_process):
    def program():
        import importlib.abc
        import importlib.machinery

        from family import SIBLINGS, Family

        family = Family().complete()
        ready = {name: sys.modules.pop(name) for name in SIBLINGS}
        order = []

        class Finder(importlib.abc.MetaPathFinder, importlib.abc.Loader):
            def find_spec(self, name, path, target=None):
                order.append(name)
                if name in ready:
                    return importlib.machinery.ModuleSpec(name, self)
                return None

            def create_module(self, spec):
                return ready[spec.name]

            def exec_module(self, module):
                pass

        sys.meta_path.insert(0, Finder())
        family.psd()
        return [name for name in order if name.startswith("kelmor")]

    assert in_process(program).value == ["kelmor.psd", *SIBLINGS]


@behaviour("shell-entry.cast-result.pointer")
def test_the_factory_is_the_first_word_of_its_capsule(in_process):
    def program():
        from family import FACTORY, Family, extension_path

        family = Family().complete()
        psd = family.psd()
        library = ctypes.PyDLL(psd.__file__)
        taken = ctypes.c_void_p.in_dll(library, "PyShCastOpResult_New").value
        return taken, family.words(FACTORY)[0], psd.__file__ == str(extension_path())

    taken, given, is_alone = in_process(program).value
    assert taken == given
    assert is_alone


@behaviour("shell-entry.callbacks.unchecked")
@pytest.mark.parametrize("method", SETTERS)
def test_an_exception_of_a_setter_stops_nothing(in_process, method):
    def program(method):
        from family import Family

        script = Script()
        script.method(EXCHANGE, method, ASSEMBLY).raises(ValueError, "from a setter")
        # The error stays pending until the interpreter sees it at the end of the import.
        try:
            Family().complete().psd()
        except BaseException as error:
            shown = [type(error).__name__, str(error)]
        else:
            shown = None
        return script.delegates(), shown

    delegates, shown = in_process(program, method).value
    assert delegates == [*SETTERS, "InitServices"]


@behaviour("shell-entry.release.shellbase")
@pytest.mark.parametrize("has_capsule", [True, False])
def test_the_reference_to_shellbase_is_released(in_process, has_capsule):
    def program(has_capsule):
        from family import FACTORY, Family

        family = Family().complete(without=() if has_capsule else (FACTORY,))
        module = sys.modules["kelmor.shellbase"]
        before = sys.getrefcount(module)
        try:
            family.psd()
        except ImportError:
            pass
        return sys.getrefcount(module) - before

    assert in_process(program, has_capsule).value == 0


# Failures, by their codes.


@behaviour(
    "shell-entry.absent.sibling-text",
    "shell-entry.order.siblings-before-runtime",
    "shell-entry.error.text",
    "shell-entry.error.chain",
    "shell-entry.failed.not-published",
    "shell-entry.order.identifiers-first",
    "shell-identifiers.intern.first-step",
)
@pytest.mark.parametrize(
    ("name", "code"),
    [
        pytest.param("kelmor.gfxtypes", -1009, marks=behaviour("shell-entry.code.1009-module")),
        pytest.param("kelmor.typemodel", -1009, marks=behaviour("shell-entry.code.1009-module")),
        pytest.param("kelmor.shellbase", -1008, marks=behaviour("shell-entry.code.1008-module")),
    ],
)
def test_an_absent_sibling_ends_the_import_before_any_runtime(in_process, name, code):
    def program(name):
        from family import Family, extension_path
        from shell_identifiers import IDENTIFIERS

        script = Script()
        shown = Family().complete(without=[name]).failure()
        library = ctypes.PyDLL(str(extension_path()))
        interned = {
            variable: ctypes.py_object.in_dll(library, variable).value for variable in IDENTIFIERS
        }
        with open("/proc/self/maps") as maps:
            loaded = "coreclrwrap" in maps.read()
        return shown, interned, script.calls, loaded, "kelmor.psd" in sys.modules

    shown, interned, calls, loaded, published = in_process(program, name).value
    assert texts(shown) == [
        ["ImportError", numbered(code)],
        ["ImportError", absent(name)],
        ["ModuleNotFoundError", f"import of {name} halted; None in sys.modules"],
    ]
    assert linked(shown)[:2] == [True, True]
    assert interned == IDENTIFIERS
    assert (calls, loaded, published) == ([], False, False)


@behaviour("shell-entry.error.chain")
def test_the_reason_keeps_its_traceback(in_process):
    def program():
        import importlib.abc
        import importlib.machinery
        import traceback

        from family import Family

        family = Family().complete(without=["kelmor.gfxtypes"])
        del sys.modules["kelmor.gfxtypes"]
        if hasattr(family.package, "gfxtypes"):
            del family.package.gfxtypes

        class Finder(importlib.abc.MetaPathFinder, importlib.abc.Loader):
            def find_spec(self, name, path, target=None):
                if name == "kelmor.gfxtypes":
                    return importlib.machinery.ModuleSpec(name, self)

            def create_module(self, spec):
                return None

            def exec_module(self, module):
                raise_in_a_sibling()

        def raise_in_a_sibling():
            raise KeyError("inside of the sibling")

        sys.meta_path.insert(0, Finder())
        try:
            family.psd()
        except ImportError as error:
            reason = error.__cause__.__cause__
            frames = [frame.name for frame in traceback.extract_tb(reason.__traceback__)]
            return type(reason).__name__, frames[-1], reason is error.__cause__.__context__

    assert in_process(program).value == ["KeyError", "raise_in_a_sibling", True]


@behaviour("shell-entry.code.1009-module", "shell-entry.code.1008-module")
@pytest.mark.parametrize("name", SIBLINGS)
def test_a_sibling_that_demands_more_is_refused(in_process, name):
    def program(name):
        import shell_probe
        from family import Family

        family = Family().complete(found=(24, 11, 0, 0))
        sys.modules[name]._BACKWARD_COMPATIBILITY_THRESHOLD = shell_probe.version(24, 6, 0, 0)
        return family.failure()

    shown = in_process(program, name).value
    assert shown[0][1] == numbered(-1008 if name == "kelmor.shellbase" else -1009)
    assert shown[1][:2] == [
        "ImportError",
        f"Unable to import module dependencies. Cannot import the {name} module. The installed "
        "version of the module ('24.11.0.0') is not compatible with the referenced vesion of the "
        "module ('24.5.3.0'). The installed version of the module is not compatible with the "
        "module versions < '24.6.0.0'. Update dendend module 'kelmor.psd' to a latest version.",
    ]
    assert len(shown) == 2


@behaviour("shell-entry.code.1009-capsule", "shell-entry.order.siblings-before-runtime")
@pytest.mark.parametrize("name", [CAPSULES[0], CAPSULES[18], CAPSULES[19], CAPSULES[21]])
def test_a_missing_capsule_is_named(in_process, name):
    def program(name):
        from family import Family

        script = Script()
        return Family().complete(without=[name]).failure(), script.calls

    shown, calls = in_process(program, name).value
    assert texts(shown)[:2] == [
        ["ImportError", numbered(-1009)],
        ["ImportError", f"can't import capsule '{name}'"],
    ]
    assert shown[2][0] == "AttributeError" and linked(shown)[:2] == [True, True]
    assert calls == []


@behaviour("shell-entry.code.1008-capsule")
def test_a_missing_factory_is_named(in_process):
    def program():
        from family import FACTORY, Family

        script = Script()
        return Family().complete(without=[FACTORY]).failure(), script.calls

    shown, calls = in_process(program).value
    assert texts(shown)[:2] == [
        ["ImportError", numbered(-1008)],
        ["ImportError", "can't import capsule 'kelmor.shellbase._C_APIF'"],
    ]
    assert shown[2][0] == "AttributeError" and len(shown) == 3
    assert linked(shown)[:2] == [True, True]
    assert calls == []


def distinct(names):
    return list(dict.fromkeys(names))


@behaviour(
    "shell-entry.code.1007-exchange",
    "shell-entry.start.exchange-failure",
    "shell-entry.start.returns",
    "shell-entry.failed.pointers-stay",
    "shell-entry.stage.runtime-stays",
    "shell-entry.order.stops-at-first",
)
@pytest.mark.parametrize("method", distinct(EXCHANGE_METHODS))
def test_a_missing_exchange_method_is_named(in_process, method):
    def program(method):
        from family import FACTORY, Family, extension_path
        from shell_identifiers import IDENTIFIERS

        script = Script()
        script.refuse(EXCHANGE, method, 0x7B)
        family = Family().complete()
        shown = family.failure()
        library = ctypes.PyDLL(str(extension_path()))
        kept = ctypes.c_void_p.in_dll(library, "PyShCastOpResult_New").value
        interned = [ctypes.py_object.in_dll(library, name).value for name in IDENTIFIERS]
        with open("/proc/self/maps") as maps:
            loaded = "coreclrwrap" in maps.read()
        return (
            shown,
            script.requests,
            script.delegates(),
            [kept == family.words(FACTORY)[0], interned == list(IDENTIFIERS.values()), loaded],
        )

    outcome = in_process(program, method)
    shown, requests, delegates, kept = outcome.value
    assert texts(shown) == [
        ["ImportError", numbered(-1007)],
        ["TypeError", missing_method(EXCHANGE, method, 123)],
    ]
    assert linked(shown)[0]
    asked = EXCHANGE_METHODS[: EXCHANGE_METHODS.index(method) + 1]
    assert requests == [[EXCHANGE, name] for name in asked]
    assert delegates == []
    assert kept == [True, True, True]
    assert outcome.calls.count("coreclr_wrap_shutdown") == 1
    assert outcome.calls[-1] == "coreclr_wrap_shutdown"


@behaviour("shell-entry.code.1007-object", "shell-entry.start.object-failure")
@pytest.mark.parametrize("method", OBJECT_METHODS)
def test_a_missing_object_method_is_named(in_process, method):
    def program(method):
        from family import Family

        script = Script()
        script.refuse(OBJECT, method, -5)
        return Family().complete().failure(), script.requests, script.delegates()

    outcome = in_process(program, method)
    shown, requests, delegates = outcome.value
    assert texts(shown) == [
        ["ImportError", numbered(-1007)],
        ["TypeError", missing_method(OBJECT, method, -5)],
    ]
    assert linked(shown)[0]
    asked = OBJECT_METHODS[: OBJECT_METHODS.index(method) + 1]
    assert requests[15:] == [[OBJECT, name] for name in asked]
    assert delegates == [*SETTERS, "InitServices"]
    assert outcome.calls[-1] == "coreclr_wrap_shutdown"


@behaviour("shell-entry.code.1006", "shell-tree.leaf.enum-create-failure")
def test_an_enumeration_that_cannot_be_made_ends_the_tree(in_process):
    def program():
        import enum
        import types

        from family import Family

        class Base:
            def __new__(cls, *arguments):
                if arguments[0] == "XmpArrayType":
                    raise KeyError("no such enumeration")
                return enum.IntEnum(*arguments)

        fake = types.ModuleType("enum")
        fake.__dict__.update(vars(enum), IntEnum=Base)
        family = Family().complete()
        sys.modules["enum"] = fake
        return family.failure()

    shown = in_process(program).value
    assert texts(shown) == [
        ["ImportError", numbered(-1006)],
        [
            "ImportError",
            "Type initialization internal error (-1013) <kelmor.psd.xmp.XmpArrayType>",
        ],
        ["KeyError", "'no such enumeration'"],
    ]
    assert linked(shown)[:2] == [True, True]


FAILURES = [
    pytest.param(
        ("PyModule_Create2", "kelmor.psd", 0),
        -1006,
        "Module initialization internal error (-1003) <kelmor.psd>",
        id="root",
    ),
    pytest.param(
        ("PyModule_Create2", "kelmor.psd._wrpgen", 0),
        -1005,
        "Module initialization internal error (-1003) <kelmor.psd._wrpgen>",
        marks=behaviour("shell-entry.code.1005", "shell-tree.wrpgen.create-failure"),
        id="wrpgen",
    ),
    pytest.param(
        ("PyModule_AddObject", "_wrpgen", -1),
        -1005,
        "Module initialization internal error (-1002) <kelmor.psd,_wrpgen>",
        marks=behaviour("shell-entry.code.1005", "shell-tree.wrpgen.add-failures"),
        id="add-wrpgen",
    ),
    pytest.param(
        ("PyModule_AddObject", "_interop", -1),
        -1005,
        "Module initialization internal error (-1002) <kelmor.psd._wrpgen,_interop>",
        marks=behaviour("shell-tree.wrpgen.add-failures"),
        id="add-interop",
    ),
    pytest.param(
        ("PyModule_AddObject", "_generic", -1),
        -1005,
        "Module initialization internal error (-1002) <kelmor.psd._wrpgen,_generic>",
        marks=behaviour("shell-tree.wrpgen.add-failures"),
        id="add-generic",
    ),
    pytest.param(
        ("PyType_Ready", "kelmor.psd._ModuleVersionType", -1),
        -1004,
        "Type initialization internal error (-1015) <kelmor.psd._ModuleVersionType>",
        marks=behaviour("shell-entry.code.1004"),
        id="ready-version-type",
    ),
    pytest.param(
        ("PyModule_AddObject", "_ModuleVersionType", -1),
        -1004,
        "Type initialization internal error (-1014) <kelmor.psd,_ModuleVersionType>",
        marks=behaviour("shell-entry.code.1004"),
        id="add-version-type",
    ),
    pytest.param(
        ("PyModule_AddObject", "VERSION", -1),
        -1001,
        None,
        marks=behaviour("shell-entry.code.1001"),
        id="add-version",
    ),
    pytest.param(
        ("PyModule_AddObject", "_BACKWARD_COMPATIBILITY_THRESHOLD", -1),
        -1019,
        None,
        marks=behaviour("shell-entry.code.1019"),
        id="add-threshold",
    ),
]


def fail_once(function, text, result):
    """Imports with one failing call, then again without; what is left over in between."""
    import gc
    import types

    from family import Family, interposed

    script = Script()
    family = Family().complete()
    between = interposed(script)
    between.fail(function, text, result)
    shown = family.failure()
    gc.collect()
    leftover = [
        module.__name__
        for module in gc.get_objects()
        if isinstance(module, types.ModuleType) and module.__name__.startswith("kelmor.psd")
    ]
    versions = [item for item in gc.get_referrers(int) if "_ModuleVersionType" in str(type(item))]
    requests = len(script.requests)
    between.relent()
    psd = family.psd()
    return {
        "shown": shown,
        "leftover": leftover,
        "versions": len(versions),
        "again": [str(psd.VERSION), psd.__package__],
        "starts": [script.calls.count("coreclr_wrap_" + n) for n in ("load", "initialize")],
        "asks": script.calls.count("coreclr_wrap_is_domain_initialized"),
        "requests": len(script.requests) - requests,
        "delegates": script.delegates(),
    }


@behaviour(
    "shell-entry.stage.runtime-stays",
    "shell-entry.release.attributes",
    "shell-entry.second.no-second-runtime",
    "shell-entry.failed.types-stay-ready",
    "shell-tree.failure.releases-own-module",
    "shell-tree.failure.types-stay-ready",
)
@pytest.mark.parametrize(("call", "code", "reason"), FAILURES)
def test_a_failing_step_is_numbered_and_can_be_tried_again(in_process, call, code, reason):
    outcome = in_process(fail_once, *call)
    seen = outcome.value
    expected = [["ImportError", numbered(code)]]
    if reason:
        expected.append(["ImportError", reason])
    expected.append(["RuntimeError", "refused by the test"])
    assert texts(seen["shown"]) == expected
    assert all(linked(seen["shown"])[:-1])
    assert seen["leftover"] == []
    assert seen["versions"] == 0
    assert seen["again"] == ["24.11.0.0", "kelmor.psd"]
    # One runtime, but all services bound and introduced anew.
    assert (seen["starts"], seen["asks"]) == ([1, 1], 0)
    assert seen["requests"] == 15
    assert seen["delegates"] == [*SETTERS, "InitServices"] * 2
    assert outcome.calls.count("coreclr_wrap_shutdown") == 1


@behaviour("shell-entry.release.attributes")
@pytest.mark.parametrize("name", ["VERSION", "_BACKWARD_COMPATIBILITY_THRESHOLD"])
def test_an_attribute_that_cannot_be_added_is_released_once(in_process, name):
    def program(name):
        from family import Family, interposed

        family = Family().complete()
        between = interposed(Script())
        between.keep()
        between.fail("PyModule_AddObject", name)
        family.failure()
        return between.kept_counts()

    # Of the references to the root one is the test's, the other that of the root's own function;
    # to the attribute only the test's is left.
    assert in_process(program, name).value == [2, 1]


# Second imports.


@behaviour("shell-entry.second.runs-all-steps", "shell-identifiers.intern.second-run")
def test_a_second_import_runs_all_steps_again(in_process):
    def program():
        from family import Family, extension_path, interposed
        from shell_identifiers import IDENTIFIERS

        script = Script()
        family = Family().complete()
        between = interposed(script)
        between.watch("PyUnicode_InternFromString", "PyImport_ImportModule", "PyCapsule_Import")
        script.refuse(OBJECT, "Dispose")
        family.failure()
        script.clear_journal()
        again = family.failure()
        library = ctypes.PyDLL(str(extension_path()))
        texts = [ctypes.py_object.in_dll(library, name).value for name in IDENTIFIERS]
        return (
            between.calls(),
            script.requests,
            script.delegates(),
            [c for c in script.calls if c not in ("python", "delegate")],
            again,
            texts == list(IDENTIFIERS.values()),
        )

    calls, requests, delegates, others, again, same_texts = in_process(program).value
    assert calls[:54] == [["PyUnicode_InternFromString", text] for text in IDENTIFIERS.values()]
    siblings = [text for function, text in calls[54:] if function == "PyImport_ImportModule"]
    assert siblings[:3] == SIBLINGS
    capsules = [text for function, text in calls[54:] if function == "PyCapsule_Import"]
    assert capsules == [*CAPSULES, "kelmor.shellbase._C_APIF"]
    # The object service is bound once for the life of the process, well or not.
    assert requests == [[EXCHANGE, method] for method in EXCHANGE_METHODS]
    assert delegates == [*SETTERS, "InitServices"]
    assert set(others) == {"coreclr_wrap_create_delegate"}
    assert again[1][1].startswith("While initializing the host for")
    assert same_texts


@behaviour("shell-identifiers.intern.second-run-leak")
def test_a_second_import_keeps_the_texts_of_the_first(in_process):
    if sys.version_info >= (3, 12):
        pytest.skip("interned texts are immortal on this interpreter: nothing counts them")

    def program():
        from family import Family, extension_path
        from shell_identifiers import IDENTIFIERS

        family = Family().complete(without=["kelmor.gfxtypes"])
        family.failure()
        library = ctypes.PyDLL(str(extension_path()))
        # The interpreter counts texts such as "close" up and down for itself; these are ours.
        names = [
            "PyWrpIdMarkattr_KelmorClrHost",
            "PyWrpIdTraceBack_FormatExceptionWarning",
            "PyWrpIdCastMeth_AsUniEnum",
            "PyWrpIdOwn_BackwardCompatibilityThreshold",
        ]
        addresses = [ctypes.c_void_p.in_dll(library, name).value for name in names]
        assert set(names) < set(IDENTIFIERS)

        def counts():
            return [ctypes.c_ssize_t.from_address(address).value for address in addresses]

        before = counts()
        family.failure()
        return [after - count for after, count in zip(counts(), before)]

    assert in_process(program).value == [1, 1, 1, 1]


@behaviour("shell-entry.second.after-sibling-failure")
@pytest.mark.parametrize("name", SIBLINGS)
def test_an_import_succeeds_once_the_sibling_is_there(in_process, name):
    def program(name):
        from family import CAPSULES, FACTORY, Family

        script = Script()
        family = Family().complete(without=[name])
        first = family.failure()[0][1]
        started = len(script.calls)
        family.sibling(name)
        for capsule in [*CAPSULES, FACTORY]:
            if capsule.startswith(name + "."):
                family.capsule(capsule)
        return first, started, str(family.psd().VERSION), script.calls[:2]

    code = -1008 if name == "kelmor.shellbase" else -1009
    assert in_process(program, name).value == [
        numbered(code),
        0,
        "24.11.0.0",
        ["coreclr_wrap_load", "coreclr_wrap_initialize"],
    ]


@behaviour("shell-entry.second.fixed-peer", "shell-entry.second.no-second-runtime")
@pytest.mark.parametrize("method", ["GetTypeName", "BoxStcTarget"])
def test_an_import_succeeds_once_the_method_is_there(in_process, method):
    def program(method):
        from family import Family

        script = Script()
        script.refuse(EXCHANGE, method)
        family = Family().complete()
        first = family.failure()[0][1]
        script.allow(EXCHANGE, method)
        script.clear_journal()
        version = str(family.psd().VERSION)
        return first, version, len(script.requests), script.delegates(), script.calls

    first, version, requests, delegates, calls = in_process(program, method).value
    assert (first, version) == (numbered(-1007), "24.11.0.0")
    assert requests == 26
    assert delegates == [*SETTERS, "InitServices"]
    assert set(calls) == {"coreclr_wrap_create_delegate", "delegate"}


# Ends.


@behaviour("shell-entry.module.no-free-hook")
def test_the_end_of_the_module_object_ends_nothing(in_process):
    def program():
        import gc

        from family import Family

        script = Script()
        family = Family().complete()
        psd = family.psd()
        before = len(script.calls)
        del sys.modules["kelmor.psd"]
        del family.package.psd
        del psd
        gc.collect()
        return script.calls[before:]

    outcome = in_process(program)
    assert outcome.value == []
    assert outcome.calls.count("coreclr_wrap_shutdown") == 1
    assert outcome.calls[-1] == "coreclr_wrap_shutdown"


@behaviour("shell-entry.shutdown.no-hook")
def test_no_exit_hook_is_registered(in_process):
    def program():
        import atexit

        from family import Family

        family = Family().complete()
        before = atexit._ncallbacks()
        family.psd()
        return atexit._ncallbacks() - before

    assert in_process(program).value == 0


@behaviour("shell-identifiers.intern.never-released")
def test_the_identifiers_outlive_the_module(in_process):
    def program():
        import gc

        from family import Family, extension_path
        from shell_identifiers import IDENTIFIERS

        family = Family().complete()
        family.psd()
        del sys.modules["kelmor.psd"], family.package.psd
        gc.collect()
        library = ctypes.PyDLL(str(extension_path()))
        return {name: ctypes.py_object.in_dll(library, name).value for name in IDENTIFIERS}

    assert in_process(program).value == IDENTIFIERS


@behaviour("shell-entry.abort.host-failures")
@pytest.mark.parametrize(
    ("setup", "answer", "text"),
    [
        pytest.param("no-library", None, "DynamicLibrary::load", id="library"),
        pytest.param("no-entry", None, "No such symbol: coreclr_wrap_create_delegate", id="symbol"),
        pytest.param("fine", ("load", 0), "init coreclr wap", id="load"),
        pytest.param(
            "fine",
            ("initialize", -2147024894),
            "coreclr_initialize failed (0x80070002) [<APP_DOMAIN_NAME>='KelmorCLRHostDomain'",
            id="initialize",
        ),
        pytest.param("huge-number", None, "stoi", id="folder-number"),
    ],
)
def test_a_host_that_cannot_start_ends_the_process(
    in_process, empty_installation, setup, answer, text
):
    if setup == "no-entry":
        empty_installation.add_runtime(without=["coreclr_wrap_create_delegate"])
    elif setup == "fine":
        empty_installation.add_runtime()
    elif setup == "huge-number":
        empty_installation.add_runtime("netcore99999999999.0")

    def program(answer):
        from family import Family

        script = Script()
        if answer:
            script.answer(*answer)
        family = Family().complete()
        try:
            family.psd()
        except BaseException as error:
            report(repr(error))
            return "caught"

    outcome = in_process(program, answer, code=None)
    assert outcome.code == -6
    assert outcome.value is None
    assert text in outcome.stderr


@behaviour("shell-entry.locks.caller-thread")
def test_everything_happens_on_the_importing_thread(in_process):
    def program():
        import threading

        from family import Family

        script = Script()
        seen = []
        for method in EXCHANGE_METHODS:
            script.method(EXCHANGE, method, ASSEMBLY).calls(
                lambda frame: seen.append(threading.get_native_id())
            )

        def tasks():
            return len(os.listdir("/proc/self/task"))

        family = Family().complete()
        result = {}

        def run():
            before = tasks()
            family.psd()
            result["more"] = tasks() - before
            result["own"] = threading.get_native_id()

        thread = threading.Thread(target=run)
        thread.start()
        thread.join()
        return len(seen), set(seen) == {result["own"]}, result["more"]

    assert in_process(program).value == [10, True, 0]
