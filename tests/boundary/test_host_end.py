"""The end of the runtime: who ends it, when, and what a forked child is told."""

import ctypes
import os

import pytest
from host_programs import (
    INITIALIZE,
    LOAD,
    QUERY,
    SHUTDOWN,
    TRACE,
    attach,
    start_with,
)
from peer import Script, report

behaviour = pytest.mark.behaviour


@behaviour("host-start.shutdown.result-only-traced")
@pytest.mark.parametrize("result", [0, 1, -2146233309])
def test_the_answer_to_the_shutdown_changes_nothing(in_process, result):
    def program(result):
        import native

        script = Script()
        script.answer("shutdown", result)
        native.start_host()
        return native.function("host_try_shutdown_default_app_domain")()

    assert in_process(program, result).value == 0
    assert in_process(start_with, {"shutdown": result}).calls[-1] == SHUTDOWN


@behaviour("host-start.shutdown.twice")
def test_the_runtime_is_shut_down_once(in_process):
    def program():
        import native

        Script()
        native.start_host()
        shutdown = native.function("host_try_shutdown_default_app_domain")
        return [shutdown(), shutdown(), native.function("host_domain_initialized")()]

    outcome = in_process(program)
    assert outcome.value == [0, -1, 0]
    assert outcome.calls.count(SHUTDOWN) == 1


@behaviour("host-start.shutdown.not-first-load")
def test_an_attached_module_does_not_shut_down(in_process, installation):
    def program(runtime):
        import native

        script = Script()
        ctypes.CDLL(f"{runtime}/libkelmor.embed.coreclrwrap.so", mode=ctypes.RTLD_GLOBAL)
        script.answer("is_domain_initialized", 1)
        native.start_host()
        ready = native.function("host_domain_initialized")
        before = ready()
        return [before, native.function("host_try_shutdown_default_app_domain")(), ready()]

    runtime = str(installation.runtimes / "netcore10.0")
    outcome = in_process(program, runtime, environment=TRACE)
    assert outcome.value == [1, -1, 0]
    assert outcome.calls == [QUERY]
    assert outcome.stdout.endswith(".NET Core host ready.\r\n")
    # Nor does it when its own destructor finds the domain still there.
    assert in_process(attach, runtime, 1).calls == [QUERY]


@behaviour("host-start.shutdown.after-hosts")
def test_the_shutdown_is_the_last_that_the_peer_sees(in_process):
    def program():
        import native

        Script()
        native.start_services()
        native.function("exchange_free_instance", None, ctypes.c_void_p)(1)

    outcome = in_process(program)
    assert outcome.calls[-2:] == ["delegate", SHUTDOWN]
    assert outcome.calls.count(SHUTDOWN) == 1


@behaviour("host-start.shutdown.registration")
def test_the_end_of_the_extension_ends_the_runtime(in_process):
    def program():
        import kelmor_probe
        import native

        script = Script()
        native.start_host()
        # Two references: the interpreter's and the one that finds it.
        library = ctypes.CDLL(kelmor_probe.__file__)
        ctypes.pythonapi.Py_IncRef(ctypes.py_object(kelmor_probe))
        close = ctypes.CDLL(None).dlclose
        close.argtypes = [ctypes.c_void_p]
        close(library._handle)
        close(library._handle)
        gone = not any("kelmor_probe" in line for line in open("/proc/self/maps"))
        calls = script.calls
        report([gone, calls])
        os._exit(0)

    gone, calls = in_process(program).value
    assert gone
    assert calls == [LOAD, INITIALIZE, SHUTDOWN]


@behaviour("host-platform.trace.no-stderr")
def test_the_diary_reaches_standard_output_alone(in_process):
    def program():
        import native

        Script()
        native.start_services()

    outcome = in_process(program, environment=TRACE)
    assert outcome.stdout.startswith("CLR host tracing enabled\r\n")
    assert outcome.stderr == ""


def test_a_forked_child_is_told(in_process):
    def program():
        import native

        Script()
        in_child = native.function("host_in_forked_child")
        before = os.fork()
        if before == 0:
            os._exit(in_child())  # no runtime yet: a child may start one of its own
        native.start_host()
        after = os.fork()
        if after == 0:
            os._exit(in_child())
        codes = [os.WEXITSTATUS(os.waitpid(child, 0)[1]) for child in (before, after)]
        return codes + [in_child()]

    assert in_process(program).value == [0, 1, 0]
