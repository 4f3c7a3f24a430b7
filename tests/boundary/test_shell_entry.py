"""The start of the extension, step by step, over siblings made of nothing and the scripted peer."""

import ctypes
import sys

import pytest
from family import CAPSULES, SIBLINGS
from peer import ASSEMBLY, EXCHANGE, EXCHANGE_METHODS, OBJECT, OBJECT_METHODS, Script
from shell_identifiers import IDENTIFIERS
from shell_starts import SETTERS, linked, numbered, texts

behaviour = pytest.mark.behaviour


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


@behaviour("shell-entry.init-services.after-setters")
def test_the_services_may_call_back_at_once(in_process):
    def program(setters):
        from family import Family

        script = Script()
        for method in setters:
            script.method(EXCHANGE, method, ASSEMBLY).takes(1)
        answers = []

        def call_back(frame):
            given = {
                entry["method"]: entry["arguments"][0]
                for entry in script.journal
                if entry["call"] == "delegate" and entry["method"] in setters
            }
            build = ctypes.PYFUNCTYPE(ctypes.py_object, ctypes.c_char_p, ctypes.c_int32)
            text = "a text".encode("utf-16-le")
            answers.append(build(given["SetPyStrBuilderCallback"])(text, 6))
            answers.append(build(given["SetPyBytesBuilderCallback"])(b"abc", 3).decode())
            # The second table makes values; its third function makes an int.
            tables = ctypes.cast(
                given["SetPyStaticCallbacks"], ctypes.POINTER(ctypes.POINTER(ctypes.c_void_p))
            )
            write_long = ctypes.PYFUNCTYPE(ctypes.py_object, ctypes.c_int32)(tables[1][2])
            answers.append(write_long(-5))

        script.method(EXCHANGE, "InitServices", ASSEMBLY).calls(call_back)
        version = str(Family().complete().psd().VERSION)
        return answers, version, script.delegates().count("InitServices")

    answers, version, count = in_process(program, SETTERS).value
    assert (answers, version, count) == (["a text", "abc", -5], "24.11.0.0", 1)


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
