"""The start of the runtime: which calls in which order, and which end when it fails."""

import ctypes
import os
import pathlib
import sys

import pytest
from host_programs import (
    ABORTED,
    EXECUTABLE,
    INITIALIZE,
    LOAD,
    MISSING,
    QUERY,
    SHUTDOWN,
    TRACE,
    attach,
    diary,
    diary_up_to,
    ended_by,
    folders_of,
    lines,
    start,
    start_from,
    start_with,
)
from peer import ENTRIES, WRAP, Script, wrap_library

behaviour = pytest.mark.behaviour


@pytest.fixture
def places(installation):
    """The runtime folder and the assembly folders."""
    names = ["psd", "gfxtypes"]
    return installation.runtimes / "netcore10.0", [installation.assemblies / n for n in names]


# The calls of the wrap library.


@behaviour("host-start.instance.first-load-order", "host-start.shutdown.at-exit")
def test_a_first_load_loads_and_starts_the_runtime_and_ends_it_at_exit(in_process):
    def program():
        import native

        script = Script()
        native.start_services()
        return script.calls

    outcome = in_process(program)
    assert outcome.value[:2] == [LOAD, INITIALIZE]
    assert set(outcome.value[2:]) == {"coreclr_wrap_create_delegate"}
    assert outcome.calls == outcome.value + [SHUTDOWN]


@behaviour("host-start.instance.attach-order")
def test_an_attaching_module_only_asks_for_the_domain(in_process, installation):
    outcome = in_process(attach, str(installation.runtimes / "netcore10.0"))
    assert outcome.calls == [QUERY]


@behaviour("host-start.instance.attach-without-domain", "host-start.delegate.no-throw")
def test_an_attaching_module_may_find_no_domain(in_process, installation):
    def program(runtime, code):
        import native

        script = Script()
        ctypes.CDLL(f"{runtime}/libkelmor.embed.coreclrwrap.so", mode=ctypes.RTLD_GLOBAL)
        script.refuse(code=code)
        native.start_host()
        slot = ctypes.c_void_p(1)
        text = ctypes.c_char_p
        create = native.function("host_try_create_delegate", ctypes.c_int, text, text, text, text)
        answer = create(b"A", b"T", b"M", ctypes.cast(ctypes.byref(slot), text))
        return native.function("host_domain_initialized")(), answer, slot.value

    outcome = in_process(program, str(installation.runtimes / "netcore10.0"), MISSING)
    assert outcome.value == [0, MISSING, 1]
    assert outcome.calls == [QUERY, "coreclr_wrap_create_delegate"]


@behaviour("host-start.wrap.domain-query-sense")
@pytest.mark.parametrize(("answer", "ready"), [(0, 0), (1, 1), (-1, 1), (256, 1)])
def test_any_number_but_zero_means_that_there_is_a_domain(in_process, installation, answer, ready):
    assert in_process(attach, str(installation.runtimes / "netcore10.0"), answer).value == ready


@behaviour("host-start.wrap.load-sense")
@pytest.mark.parametrize("answer", [1, -1, 256])
def test_a_load_succeeds_with_any_number_but_zero(in_process, answer):
    assert in_process(start_with, {"load": answer}).calls == [LOAD, INITIALIZE, SHUTDOWN]


@behaviour("host-start.coreclr.load-refused", "host-start.wrap.load-sense")
def test_a_refused_load_ends_the_process(in_process, places):
    outcome = in_process(start_with, {"load": 0}, code=None, environment=TRACE)
    assert ended_by(outcome, "std::runtime_error", "init coreclr wap")
    assert outcome.stdout == diary_up_to("Loading2", *places)
    assert outcome.calls == [LOAD]


@behaviour("host-start.coreclr.load-path", "host-start.coreclr.never-opened")
def test_the_runtime_is_loaded_by_its_path_and_only_by_the_wrap_library(in_process, installation):
    def program():
        import native

        Script()
        native.start_services()
        return pathlib.Path("/proc/self/maps").read_text()

    outcome = in_process(program)
    expected = str(installation.runtimes / "netcore10.0" / "libcoreclr.so")
    assert outcome.entry(LOAD)["path"] == expected
    assert not os.path.exists(expected)
    assert "libcoreclr" not in outcome.value


@behaviour("host-start.wrap.initialize-sense", "host-start.domain.failure")
@pytest.mark.parametrize(
    ("code", "shown"), [(1, "1"), (-1, "ffffffff"), (-2147024809, "80070057"), (256, "100")]
)
def test_a_refused_start_ends_the_process_with_all_that_was_given(in_process, places, code, shown):
    outcome = in_process(start_with, {"initialize": code}, code=None, environment=TRACE)
    folders = ":".join(folders_of(outcome))
    text = (
        f"coreclr_initialize failed (0x{shown}) [<APP_DOMAIN_NAME>='KelmorCLRHostDomain',"
        f"<HOST_EXE_PATH>='{EXECUTABLE}',<TRUSTED_PLATFORM_ASSEMBLIES>='',"
        f"<APP_PATHS>='{folders}',<APP_NI_PATHS>='{folders}',"
        f"<NATIVE_DLL_SEARCH_DIRECTORIES>='{folders}',"
        "<AppDomainCompatSwitch>='UseLatestBehaviorWhenTFMNotSpecified']"
    )
    assert ended_by(outcome, "CoreClrInitException", text)
    # The diary up to here is not lost, although nobody flushes when a process aborts.
    assert outcome.stdout == diary_up_to("HOST_EXE_PATH", *places)
    assert outcome.calls == [LOAD, INITIALIZE]


@behaviour("host-start.domain.arguments", "host-start.domain.properties", "host-start.exe.path")
def test_the_runtime_is_started_with_the_domain_and_five_properties(in_process, installation):
    outcome = in_process(start)
    entry = outcome.entry(INITIALIZE)
    folders = ":".join(
        [
            str(installation.assemblies / "psd"),
            str(installation.assemblies / "gfxtypes"),
            str(installation.runtimes / "netcore10.0"),
        ]
    )
    assert entry["exe_path"] == EXECUTABLE
    assert entry["domain_name"] == "KelmorCLRHostDomain"
    assert entry["property_count"] == 5
    assert list(zip(entry["keys"], entry["values"])) == [
        ("TRUSTED_PLATFORM_ASSEMBLIES", ""),
        ("APP_PATHS", folders),
        ("APP_NI_PATHS", folders),
        ("NATIVE_DLL_SEARCH_DIRECTORIES", folders),
        ("AppDomainCompatSwitch", "UseLatestBehaviorWhenTFMNotSpecified"),
    ]


@behaviour("host-start.domain-name.exported", "host-start.domain-name.read-late")
def test_the_name_of_the_domain_is_read_at_its_creation(in_process):
    def program():
        import kelmor_probe
        import native

        Script()
        name = ctypes.c_char_p.in_dll(ctypes.CDLL(kelmor_probe.__file__), "KelmorDomainName")
        before, name.value = name.value.decode(), b"Another"
        native.start_host()
        return before

    outcome = in_process(program)
    assert outcome.value == "KelmorCLRHostDomain"
    assert outcome.entry(INITIALIZE)["domain_name"] == "Another"


@behaviour("host-start.domain.created-once")
def test_a_domain_is_created_once(in_process):
    def program():
        import native

        Script()
        native.start_host()
        sys.stdout.flush()
        print("again", flush=True)
        return native.function("host_create_default_app_domain")()

    outcome = in_process(program, environment=TRACE)
    assert outcome.value == 0
    assert outcome.calls.count(INITIALIZE) == 1
    after = outcome.stdout.partition("again\n")[2]
    assert after.startswith("Shutdowning .NET Core host...")


def test_a_domain_that_was_shut_down_is_created_again(in_process):
    def program():
        import native

        Script()
        native.start_host()
        native.function("host_try_shutdown_default_app_domain")()
        return native.function("host_create_default_app_domain")()

    outcome = in_process(program)
    assert outcome.value == 1
    assert outcome.calls == [LOAD, INITIALIZE, SHUTDOWN, INITIALIZE, SHUTDOWN]


@behaviour("host-start.delegate.forward")
@pytest.mark.parametrize("code", [0, 1, MISSING])
def test_a_request_for_a_delegate_is_forwarded_as_it_is(in_process, code):
    def program(code):
        import native

        script = Script()
        if code:
            script.refuse(code=code)
        native.start_host()
        slot = ctypes.c_void_p()
        text, pointer = ctypes.c_char_p, ctypes.c_void_p
        create = native.function(
            "host_try_create_delegate", ctypes.c_int, text, text, text, pointer
        )
        answer = create(b"An assembly", b"A.Type", b"Method", ctypes.addressof(slot))
        given = script.method("A.Type", "Method", "An assembly").address
        return answer, ctypes.addressof(slot), slot.value == (None if code else given)

    outcome = in_process(program, code)
    answer, slot, filled = outcome.value
    assert (answer, filled) == (code, True)
    entry = outcome.entry("coreclr_wrap_create_delegate")
    assert [entry[name] for name in ("assembly", "type", "method", "slot")] == [
        "An assembly",
        "A.Type",
        "Method",
        slot,
    ]


# The one object.


@behaviour("host-start.instance.same-object", "host-start.instance.later-calls-ignore-args")
def test_later_calls_give_the_object_and_do_nothing_else(in_process, installation):
    def program(elsewhere):
        import native

        script = Script()
        first = native.start_host()
        calls = script.calls
        os.environ["NETCORE_WRAPPER_NETCORE_DIR_abc"] = elsewhere
        later = [
            native.start_host(None),
            native.start_host("abc", True, elsewhere, elsewhere, (b"x", b"y")),
            native.start_host(None, names=(None, None)),
        ]
        folder = native.function("host_netcore_dir", ctypes.c_char_p)().decode()
        print("end of the calls", flush=True)
        return later == [first] * 3, script.calls == calls, folder

    elsewhere = str(installation.root)
    outcome = in_process(program, elsewhere, environment=TRACE)
    assert outcome.value == [True, True, str(installation.runtimes / "netcore10.0")]
    before = outcome.stdout.partition("end of the calls")[0]
    assert before.endswith(lines("Default AppDomain ready."))
    assert before.count("Initializing .NET Core host...") == 1


def test_a_first_call_that_only_wants_the_object_ends_the_process(in_process):
    def program():
        import native

        Script()
        native.start_host(None, names=(None, None))

    outcome = in_process(program, code=None)
    assert outcome.code == ABORTED
    # It is the name of the family that is read first of all.
    assert "terminate called after throwing an instance of 'std::logic_error'" in outcome.stderr
    assert outcome.calls == []


@behaviour("host-start.instance.names-unread")
def test_the_two_names_reach_nothing(in_process):
    def seen(*names):
        outcome = in_process(start_from, None, None, names, environment=TRACE)
        journal = [{k: v for k, v in entry.items() if k != "process"} for entry in outcome.journal]
        return outcome.value, outcome.stdout, journal

    assert seen("first-name", "second-name") == seen(None, None)
    assert "first-name" not in str(seen("first-name", "second-name"))


@behaviour("host-start.instance.netcore-dir-given")
def test_a_given_runtime_folder_is_taken_as_it_is(in_process, installation):
    wrap_library(installation.root / "given" / WRAP)
    (installation.root / "given" / "netcore99.0").mkdir()
    given = str(installation.root / "given")
    outcome = in_process(start_from, given, None)
    assert outcome.value[0] == given
    assert outcome.entry(LOAD)["path"] == f"{given}/libcoreclr.so"


@behaviour("host-start.instance.assembly-dir-given")
def test_a_given_assembly_folder_is_the_only_one(in_process, installation):
    (installation.root / "given" / "sub").mkdir(parents=True)
    given = str(installation.root / "given")
    runtime = str(installation.runtimes / "netcore10.0")
    assert folders_of(in_process(start_from, None, given)) == [given, runtime]
    assert folders_of(in_process(start_from, None, runtime)) == [runtime]


# The diary.


@behaviour("host-start.trace.first-load", "host-start.shutdown.trace")
@pytest.mark.parametrize("result", [0, 7, -5])
def test_the_diary_of_a_first_load(in_process, places, result):
    outcome = in_process(start_with, {"shutdown": result}, environment=TRACE)
    assert outcome.stdout == lines(
        *diary(*places),
        "Shutdowning .NET Core host...",
        f".NET Core host is down: {result}",
    )
    assert outcome.stderr == ""


@behaviour("host-start.trace.attach")
def test_the_diary_of_an_attaching_module(in_process, installation):
    folder = installation.runtimes / "netcore10.0"
    outcome = in_process(attach, str(folder), environment=TRACE)
    text = outcome.stdout
    assert text[text.index("Loading: ") :] == lines(
        f"Loading: '{folder}/{WRAP}'",
        "Try get module...",
        "Using existed module...",
        "wrap dll loaded",
        ".NET Core host ready.",
    )


@behaviour("host-platform.trace-init.read-once")
@pytest.mark.parametrize(("before", "after"), [(None, "1"), ("1", None)])
def test_the_wish_for_a_diary_is_read_once(in_process, before, after):
    def program(after):
        import native

        Script()
        native.start_host()
        os.environ.pop("COREHOST_TRACE", None)
        if after:
            os.environ["COREHOST_TRACE"] = after
        native.start_services()

    outcome = in_process(program, after, environment={"COREHOST_TRACE": before})
    assert outcome.stdout.endswith(".NET Core host is down: 0\r\n") == (before == "1")
    assert (outcome.stdout == "") == (before is None)


# Loading and binding.


@behaviour("host-start.load.missing")
def test_a_wrap_library_that_cannot_be_loaded_ends_the_process(in_process, empty_installation):
    folder = empty_installation.runtimes / "netcore10.0"
    folder.mkdir()
    (folder / WRAP).write_text("no library")
    outcome = in_process(start, code=None, environment=TRACE)
    assert ended_by(outcome, "std::runtime_error", "DynamicLibrary::load")
    tail = lines("No module...", f"No: '{folder}/{WRAP}'")
    assert outcome.stdout == diary_up_to("No existed module...", folder) + tail


@behaviour("host-start.load.never-unloaded")
def test_the_wrap_library_stays(in_process):
    def program():
        import native

        Script()
        native.start_host()
        native.function("host_try_shutdown_default_app_domain")()
        maps = pathlib.Path("/proc/self/maps").read_text()
        return native.function("host_can_free_library")(), WRAP in maps

    assert in_process(program).value == [0, True]


@behaviour("host-start.bind.missing-symbol")
@pytest.mark.parametrize("entry", ENTRIES)
def test_a_missing_entry_ends_the_process(in_process, empty_installation, entry):
    folder = empty_installation.add_runtime(without=[entry])
    outcome = in_process(start, code=None, environment=TRACE)
    assert ended_by(outcome, "std::runtime_error", f"No such symbol: {entry}")
    # The path of the runtime is told once there is an entry to take it.
    assert outcome.stdout == diary_up_to("wrap dll loaded", folder)
    assert outcome.calls == []


@behaviour("host-start.bind.order")
@pytest.mark.parametrize("first", range(len(ENTRIES)))
def test_of_several_missing_entries_the_first_is_named(in_process, empty_installation, first):
    empty_installation.add_runtime(without=ENTRIES[first:])
    outcome = in_process(start, code=None)
    assert ended_by(outcome, "std::runtime_error", f"No such symbol: {ENTRIES[first]}")


@behaviour("host-start.bind.attach-needs-no-load")
def test_an_attaching_module_does_not_look_for_the_load_entry(in_process, empty_installation):
    folder = empty_installation.add_runtime(without=[LOAD])
    assert in_process(attach, str(folder), 1).value == 1
