"""Second imports, what outlives the module, and the ends that a process comes to."""

import ctypes
import os
import sys

import pytest
from family import CAPSULES, SIBLINGS
from peer import ASSEMBLY, EXCHANGE, EXCHANGE_METHODS, OBJECT, Script, report
from shell_identifiers import IDENTIFIERS
from shell_starts import SETTERS, numbered

behaviour = pytest.mark.behaviour


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
