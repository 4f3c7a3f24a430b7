"""How the start of the extension fails: the code, the reason under it, what is left behind."""

import ctypes
import sys

import pytest
from family import CAPSULES, SIBLINGS
from peer import EXCHANGE, EXCHANGE_METHODS, OBJECT, OBJECT_METHODS, Script
from shell_identifiers import IDENTIFIERS
from shell_starts import SETTERS, absent, distinct, linked, missing_method, numbered, texts

behaviour = pytest.mark.behaviour


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
        ("PyModule_Create2", "kelmor.psd._wrpgen._interop", 0),
        -1005,
        "Module initialization internal error (-1003) <kelmor.psd._wrpgen._interop>",
        marks=behaviour("shell-entry.code.1005"),
        id="interop",
    ),
    pytest.param(
        ("PyModule_Create2", "kelmor.psd._wrpgen._generic", 0),
        -1005,
        "Module initialization internal error (-1003) <kelmor.psd._wrpgen._generic>",
        marks=behaviour("shell-entry.code.1005"),
        id="generic",
    ),
    pytest.param(
        ("PyType_Ready", "kelmor.psd._wrpgen._interop._ColBaseWrapper", -1),
        -1005,
        "Type initialization internal error (-1015) <kelmor.psd._wrpgen._interop._ColBaseWrapper>",
        marks=behaviour("collections-streams.setup.failure-codes"),
        id="ready-wrapper",
    ),
    pytest.param(
        ("PyModule_AddObject", "_StreamWrapper", -1),
        -1005,
        "Type initialization internal error (-1014) <kelmor.psd._wrpgen._interop,_StreamWrapper>",
        marks=behaviour("collections-streams.setup.failure-codes"),
        id="add-wrapper",
    ),
    pytest.param(
        ("PyType_Ready", "kelmor.psd._wrpgen._interop._ShlBufferView", -1),
        -1005,
        "Type initialization internal error (-1015) <kelmor.psd._wrpgen._interop._ShlBufferView>",
        id="ready-buffer-view",
    ),
    pytest.param(
        ("PyModule_AddObject", "_ShlBufferView", -1),
        -1005,
        "Type initialization internal error (-1014) <kelmor.psd._wrpgen._interop,_ShlBufferView>",
        id="add-buffer-view",
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
    pytest.param(("PyUnicode_FromString", "24.11.0.0", 0), -1001, None, id="view-of-version"),
    pytest.param(("PyUnicode_FromString", "22.6.0.0", 0), -1019, None, id="view-of-threshold"),
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
