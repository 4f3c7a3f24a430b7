"""The wrap library over the real runtime: start, delegates, end, and what it leaves alone."""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import textwrap

import pytest
import wrap_driver
from interrupting import interrupted
from wrap_driver import RUNTIME, WRAP

behaviour = pytest.mark.behaviour

REAL_FOLDER = (RUNTIME / "libcoreclr.so").resolve().parent
PREAMBLE = f"""\
import ctypes, os, pathlib, resource, signal, sys, time
sys.path.insert(0, {str(pathlib.Path(__file__).parent)!r})
resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
from wrap_driver import *
"""


def run(code, code_of_end=0, **options):
    """Runs a script in a process of its own; gives its two outputs."""
    script = PREAMBLE + textwrap.dedent(code)
    environment = {**os.environ, "KELMOR_BUILD": str(wrap_driver.BUILD), **options.pop("env", {})}
    result = subprocess.run(
        [sys.executable, "-c", script],
        capture_output=True,
        text=True,
        timeout=100,
        env=environment,
        **options,
    )
    assert result.returncode == code_of_end, result.stdout + result.stderr
    return result.stdout, result.stderr


@pytest.fixture(scope="session")
def assembly(tmp_path_factory):
    """A folder with the test assembly Start.dll."""
    folder = tmp_path_factory.mktemp("start")
    root = REAL_FOLDER.parents[2]
    compilers = sorted(root.glob("sdk/*/Roslyn/bincore/csc.dll"))
    if not compilers:
        pytest.skip("no C# compiler beside the runtime")
    names = ["System.Private.CoreLib", "System.Runtime", "System.Threading"]
    usings = folder / "Usings.cs"
    usings.write_text("global using System; global using System.Threading;")
    source = pathlib.Path(__file__).parent / "managed/Entries.cs"
    command = ["dotnet", compilers[-1], "-nologo", "-target:library", "-unsafe", "-nullable"]
    command += ["-optimize", "-nostdlib", f"-out:{folder}/Start.dll", usings, source]
    command += [f"-r:{REAL_FOLDER}/{name}.dll" for name in names]
    subprocess.run(list(map(str, command)), check=True, capture_output=True)
    usings.unlink()
    return folder


# Loading.


@behaviour("host-start.wraplib.load")
def test_a_runtime_is_loaded():
    out, err = run("runtime = Runtime()\nprint(runtime.load(), runtime.load())")
    assert (out, err) == ("1 1\n", "")


@behaviour("host-start.wraplib.load")
def test_what_is_no_runtime_is_refused_with_a_line_of_text(tmp_path):
    text = tmp_path / "text.so"
    text.write_text("no library" * 1000)
    other = RUNTIME / WRAP
    out, err = run(
        f"""
        runtime = Runtime()
        for path in ({str(tmp_path / "missing.so")!r}, {str(text)!r}, {str(other)!r}):
            print(runtime.load(path))
        print(runtime.library.coreclr_wrap_load(None))
        """
    )
    assert out == "0\n0\n0\n0\n"
    lines = err.splitlines()
    start = "kelmor: the .NET runtime '{}' can't be loaded: "
    assert lines[0] == start.format(tmp_path / "missing.so") + "No such file or directory"
    assert lines[1].startswith(start.format(text)) and "invalid ELF header" in lines[1]
    assert lines[2] == start.format(other) + "it has no function coreclr_initialize"
    assert len(lines) == 3


def test_after_a_refused_load_another_may_succeed(assembly):
    out, _ = run(
        f"""
        runtime = Runtime()
        print(runtime.load("/nowhere/libcoreclr.so"), runtime.load())
        print(runtime.initialize({str(assembly)!r}))
        print(runtime.entry("Add", ctypes.c_int, ctypes.c_int)(2, 3))
        """
    )
    assert out == "0 1\n0\n5\n"


# Starting.


@behaviour("host-start.wraplib.initialize")
def test_the_empty_trusted_list_is_completed(assembly):
    out, err = run(
        f"""
        runtime = Runtime().start({str(assembly)!r})
        print(runtime.entry("Add", ctypes.c_int, ctypes.c_int)(40, 2))
        code, count = runtime.delegate(
            "System.Private.CoreLib", "System.Environment", "get_ProcessorCount")
        print(code, ctypes.PYFUNCTYPE(ctypes.c_int)(count)() >= 1)
        """
    )
    assert (out, err) == ("42\n0 True\n", "")


def test_a_trusted_list_of_the_caller_is_left_as_it_is(assembly):
    core = REAL_FOLDER / "System.Private.CoreLib.dll"
    out, _ = run(
        f"""
        runtime = Runtime()
        runtime.load()
        folder = {str(assembly)!r}
        print(runtime.initialize(values=[{str(core)!r}, folder, folder, folder, "x"]))
        print(hex(runtime.delegate("System.Linq", "System.Linq.Enumerable", "Empty")[0]))
        """
    )
    assert out == "0\n0x80070002\n"


@behaviour("host-start.wraplib.initialize")
def test_a_failing_start_gives_the_runtimes_code_and_a_line_of_text():
    out, err = run(
        """
        runtime = Runtime()
        runtime.load()
        print(hex(runtime.initialize(values=["relative/assembly.dll", "", "", "", ""])))
        print(runtime.is_running())
        """
    )
    assert out == "0x80070057\n0\n"
    expected = f"kelmor: the .NET runtime in '{REAL_FOLDER}' refused to start (0x80070057)\n"
    assert err.endswith(expected)


def test_a_runtime_without_its_core_library_refuses_to_start(tmp_path):
    for file in (RUNTIME / WRAP, REAL_FOLDER / "libcoreclr.so"):
        shutil.copy(file, tmp_path)
    out, err = run(
        f"""
        runtime = Runtime({str(tmp_path)!r})
        print(runtime.load(), hex(runtime.initialize()), runtime.is_running())
        """
    )
    assert out == "1 0x80070002 0\n"
    assert "Failed to load System.Private.CoreLib.dll" in err
    assert err.endswith(f"kelmor: the .NET runtime in '{tmp_path}' refused to start (0x80070002)\n")


def test_what_cannot_be_read_is_refused_with_a_code(tmp_path):
    out, err = run(
        f"""
        os.chdir({str(tmp_path)!r})
        os.rmdir({str(tmp_path)!r})
        runtime = Runtime()
        runtime.load()
        codes = [runtime.initialize("relative")]  # to a folder that is gone
        values = texts([""] * len(KEYS))
        values[1] = None
        codes += [runtime.library.coreclr_wrap_initialize(b"", b"", len(KEYS), texts(KEYS), values)]
        print([hex(code & 0xFFFFFFFF) for code in codes], runtime.is_running())
        """
    )
    assert (out, err) == ("['0x8000ffff', '0x8000ffff'] 0\n", "")


def test_a_start_before_the_load_is_refused():
    out, _ = run("print(hex(Runtime().initialize()))")
    assert out == "0x80131022\n"


def test_a_second_start_leaves_the_first_unharmed(assembly):
    out, _ = run(
        f"""
        runtime = Runtime().start({str(assembly)!r})
        print(hex(runtime.initialize("")))
        print(runtime.is_running(), runtime.entry("Add", ctypes.c_int, ctypes.c_int)(1, 1))
        """
    )
    assert out == "0x80131022\n1 2\n"


def test_a_key_that_comes_twice_is_taken_once(assembly):
    out, _ = run(
        f"""
        runtime = Runtime()
        runtime.load()
        folder = {str(assembly)!r}
        keys = KEYS + ["APP_PATHS", "System.GC.Concurrent"]
        values = ["", folder, folder, folder, "x", "/elsewhere", "true"]
        print(runtime.initialize(keys=keys, values=values))
        print(runtime.entry("Add", ctypes.c_int, ctypes.c_int)(1, 1))
        """
    )
    assert out == "0\n2\n"


@behaviour("host-start.wraplib.domain-query")
def test_the_domain_is_there_from_the_start_to_the_end():
    out, _ = run(
        """
        runtime = Runtime()
        states = [runtime.is_running()]
        runtime.load()
        states += [runtime.is_running()]
        runtime.initialize("relative:")
        states += [runtime.is_running()]
        runtime.shutdown()
        print(states + [runtime.is_running()])
        """
    )
    assert out == "[0, 0, 1, 0]\n"


def test_settings_that_the_caller_left_open(assembly):
    out, _ = run(
        f"""
        runtime = Runtime().start({str(assembly)!r})
        print(runtime.text("BaseDirectory"))
        # Without ICU on the machine a named culture would end the process.
        print(runtime.text("GermanNumber"))
        # Code pages that are mapped twice would be shared with a forked child.
        print("doublemapper" in pathlib.Path("/proc/self/maps").read_text())
        # 0 is a collector without a thread of its own.
        settings = "System.Runtime.GCSettings"
        _, mode = runtime.delegate("System.Private.CoreLib", settings, "get_LatencyMode")
        print(ctypes.PYFUNCTYPE(ctypes.c_int)(mode)())
        """
    )
    assert out == f"{assembly}/\nCultureNotFoundException\nFalse\n0\n"


@pytest.mark.parametrize("name", ["Start.dll", "start.DLL"])
def test_the_first_application_folder_with_a_name_wins(assembly, tmp_path, name):
    for folder in ("first", "second"):
        shutil.copytree(assembly, tmp_path / folder)
    (tmp_path / "first/Start.dll").rename(tmp_path / "first" / name)
    out, _ = run(
        f"""
        folders = "{tmp_path}/nowhere:{tmp_path}/first:{tmp_path}/second"
        print(Runtime().start(folders).text("Location"))
        """
    )
    assert out == f"{tmp_path}/first/{name}\n"


# Paths.


@pytest.mark.parametrize("name", ["with blanks", "größe-数据", "a,b;c=d"])
@pytest.mark.parametrize("way", ["absolute", "relative", "linked"])
def test_folders_of_any_name_serve(assembly, tmp_path, name, way):
    runtime, assemblies = tmp_path / name / "runtime", tmp_path / name / "assemblies"
    runtime.mkdir(parents=True)
    shutil.copy(RUNTIME / WRAP, runtime)
    (runtime / "libcoreclr.so").symlink_to(REAL_FOLDER / "libcoreclr.so")
    shutil.copytree(assembly, assemblies)
    folders = [runtime, assemblies]
    if way == "linked":
        (tmp_path / "link").symlink_to(tmp_path / name)
        folders = [tmp_path / "link" / folder.name for folder in folders]
    elif way == "relative":
        folders = [folder.relative_to(tmp_path) for folder in folders]
    out, err = run(
        f"""
        runtime = Runtime(pathlib.Path({str(folders[0])!r}).absolute())
        print(runtime.load({str(folders[0] / "libcoreclr.so")!r}))
        print(runtime.initialize({str(folders[1])!r}))
        print(runtime.entry("Add", ctypes.c_int, ctypes.c_int)(2, 2))
        """,
        cwd=tmp_path,
    )
    assert (out, err) == ("1\n0\n4\n", "")


# Delegates.

FAILURES = {
    "assembly": (("Missing", "Start.Entries", "Add"), 0x80070002),
    "type": (("Start", "Start.Missing", "Add"), 0x80131522),
    "method": (("Start", "Start.Entries", "Missing"), 0x80131513),
    "case": (("Start", "Start.Entries", "add"), 0x80131513),
    "overloaded": (("Start", "Start.Entries", "Overloaded"), 0x8000211D),
    "no-name": (("", "", ""), 0x80070057),
    "null-assembly": ((None, "Start.Entries", "Add"), 0x80004003),
    "null-type": (("Start", None, "Add"), 0x80004003),
    "null-method": (("Start", "Start.Entries", None), 0x80004003),
    "damaged-assembly": (("Damaged", "Start.Entries", "Add"), 0x80070002),
    # The runtime itself would end the process.
    "malformed-assembly": (("Start, Version=x", "Start.Entries", "Add"), 0x80131047),
    "blank-assembly": ((" \t", "Start.Entries", "Add"), 0x80131047),
}


@behaviour("host-start.wraplib.create-delegate")
@pytest.mark.parametrize("failure", FAILURES)
def test_a_delegate_that_cannot_be_made_gives_a_code(assembly, tmp_path, failure):
    names, code = FAILURES[failure]
    (tmp_path / "Damaged.dll").write_bytes(b"MZ but no more")
    out, _ = run(
        f"""
        runtime = Runtime().start("{assembly}:{tmp_path}")
        print(hex(runtime.delegate(*{names!r})[0]))
        print(runtime.entry("Add", ctypes.c_int, ctypes.c_int)(1, 2))
        """
    )
    assert out == f"{code:#x}\n3\n"


def test_a_delegate_needs_a_place(assembly):
    out, _ = run(
        f"""
        runtime = Runtime().start({str(assembly)!r})
        create = runtime.library.coreclr_wrap_create_delegate
        print(hex(create(b"Start", b"Start.Entries", b"Add", None) & 0xFFFFFFFF))
        """
    )
    assert out == "0x80004003\n"


def test_there_are_no_delegates_before_the_start_and_after_the_end():
    out, _ = run(
        """
        runtime = Runtime()
        wanted = ("System.Private.CoreLib", "System.Environment", "get_ProcessorCount")
        codes = [runtime.delegate(*wanted)[0]]
        runtime.start()
        codes += [runtime.delegate(*wanted)[0]]
        runtime.shutdown()
        print([hex(code) for code in codes + [runtime.delegate(*wanted)[0]]])
        """
    )
    assert out == "['0x80131023', '0x0', '0x80131023']\n"


# The end.


@behaviour("host-start.wraplib.shutdown")
def test_only_the_first_call_ends_the_runtime():
    out, _ = run(
        """
        runtime = Runtime().start()
        print(hex(runtime.shutdown()), hex(runtime.shutdown()), hex(runtime.shutdown()))
        """
    )
    assert out == "0x0 0x80131023 0x80131023\n"


def test_without_a_start_there_is_nothing_to_end():
    assert run("print(hex(Runtime().shutdown()))")[0] == "0x80131023\n"


@pytest.mark.parametrize("end", ["", "sys.exit(0)", "os._exit(0)", "runtime.shutdown()"])
def test_a_process_ends_well_whichever_way(end):
    run(f"runtime = Runtime().start()\n{end}")


# What belongs to the process.


def test_signal_handlers_stay_as_they_were():
    out, _ = run(
        """
        def actions():
            # What the kernel knows: ignored, and caught by somebody.
            lines = pathlib.Path("/proc/self/status").read_text().splitlines()
            found = dict(line.split(":\\t") for line in lines if line.startswith("Sig"))
            return int(found["SigIgn"], 16), int(found["SigCgt"], 16)

        signal.signal(signal.SIGUSR1, lambda *_: print("user signal"))
        signal.signal(signal.SIGPIPE, signal.SIG_DFL)
        kept = [n for n in range(1, 65) if n not in (4, 5, 7, 8, 11, 33, 34)]
        mask = sum(1 << (n - 1) for n in kept)
        before = actions()
        Runtime().start()
        after = actions()
        print(before[0] == after[0], before[1] & mask == after[1] & mask)
        signal.raise_signal(signal.SIGUSR1)
        """
    )
    assert out == "True True\nuser signal\n"


def test_limits_mask_and_environment_stay_as_they_were():
    out, _ = run(
        """
        resource.setrlimit(resource.RLIMIT_NOFILE, (300, 2000))
        signal.pthread_sigmask(signal.SIG_SETMASK, [signal.SIGUSR2, signal.SIGINT])
        getenv = ctypes.CDLL(None).getenv
        getenv.restype = ctypes.c_char_p
        Runtime().start()
        print(resource.getrlimit(resource.RLIMIT_NOFILE))
        print(signal.pthread_sigmask(signal.SIG_BLOCK, []) == {signal.SIGUSR2, signal.SIGINT})
        print(getenv(b"DOTNET_EnableDiagnostics"))
        """
    )
    assert out == "(300, 2000)\nTrue\nNone\n"


@pytest.mark.parametrize(("value", "sockets"), [(None, False), ("1", True)])
def test_the_diagnostic_server_is_off_unless_the_user_wants_it(tmp_path, value, sockets):
    environment = {"TMPDIR": str(tmp_path)}
    if value:
        environment["DOTNET_EnableDiagnostics"] = value
    code = f"""
        Runtime().start()
        getenv = ctypes.CDLL(None).getenv
        getenv.restype = ctypes.c_char_p
        print(any(pathlib.Path({str(tmp_path)!r}).glob("dotnet-diagnostic*")))
        print(getenv(b"DOTNET_EnableDiagnostics"))
        """
    out, _ = run(code, env=environment)
    assert out == f"{sockets}\n{value and value.encode()}\n"


def test_the_runtimes_threads_leave_signals_to_the_main_thread():
    out, _ = run(
        """
        def blocked(thread):
            status = pathlib.Path(f"/proc/self/task/{thread}/status").read_text()
            return int(status.partition("SigBlk:")[2].split()[0], 16)

        Runtime().start()
        others = [t for t in os.listdir("/proc/self/task") if int(t) != os.getpid()]
        wanted = [signal.SIGINT, signal.SIGTERM, signal.SIGCHLD, signal.SIGALRM, signal.SIGUSR1]
        mask = sum(1 << (n - 1) for n in wanted)
        print(len(others) > 0, all(blocked(t) & mask == mask for t in others))
        """
    )
    assert out == "True True\n"


def signalled(code, sent):
    return interrupted(PREAMBLE + textwrap.dedent(code), sent)


@pytest.mark.parametrize("wait", ["time.sleep(60)", "os.read(0, 1)"])
def test_ctrl_c_interrupts_a_wait_at_once(wait):
    code, seconds, words = signalled(
        f"Runtime().start()\nprint('ready', flush=True)\n{wait}", signal.SIGINT
    )
    assert code == -signal.SIGINT
    assert words.endswith("KeyboardInterrupt\n")
    assert seconds < 2


def test_ctrl_c_is_seen_after_a_long_managed_call(assembly):
    code, seconds, words = signalled(
        f"""
        spin = Runtime().start({str(assembly)!r}).entry("Spin", ctypes.c_int)
        print("ready", flush=True)
        spin(1000)
        time.sleep(60)
        """,
        signal.SIGINT,
    )
    assert code == -signal.SIGINT
    assert words.endswith("KeyboardInterrupt\n")
    assert seconds < 10


def test_sigterm_ends_the_process():
    code, _, words = signalled(
        "Runtime().start()\nprint('ready', flush=True)\ntime.sleep(60)", signal.SIGTERM
    )
    assert (code, words) == (-signal.SIGTERM, "")


# What stays with the runtime.


@pytest.mark.parametrize("before", ["", "import faulthandler; faulthandler.enable()"])
def test_a_null_reference_is_an_exception_on_every_thread(assembly, before):
    out, err = run(
        f"""
        {before}
        runtime = Runtime().start({str(assembly)!r})
        print(runtime.entry("CatchNullReference")())
        print(runtime.entry("CatchNullReferenceInFinalizer")())
        """
    )
    assert (out, err) == ("1\n1\n", "")


def test_a_collection_can_stop_a_busy_thread(assembly):
    out, _ = run(
        f"""
        print(Runtime().start({str(assembly)!r}).entry("CollectBesideBusyThread")())
        """
    )
    assert out == "1\n"


# A forked child.


def test_a_forked_child_is_refused_and_the_parent_is_unharmed(assembly):
    out, err = run(
        f"""
        runtime = Runtime().start({str(assembly)!r})
        add = runtime.entry("Add", ctypes.c_int, ctypes.c_int)
        child = os.fork()
        if child == 0:
            print(runtime.is_running(), hex(runtime.delegate("Start", "Start.Entries", "Add")[0]))
            print(hex(runtime.shutdown()), flush=True)
            sys.exit(3)
        print(os.WEXITSTATUS(os.waitpid(child, 0)[1]))
        print(add(2, 5), runtime.is_running())
        print(runtime.delegate("Start", "Start.Entries", "Spin")[0])
        """
    )
    assert out == "0 0x80131023\n0x80131023\n3\n7 1\n0\n"
    assert err == ""


# The library itself.


def test_nothing_but_the_five_entries_leaves_the_library():
    command = ["nm", "-D", "--defined-only", str(RUNTIME / WRAP)]
    listing = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    names = [line.split()[-1] for line in listing.splitlines()]
    assert sorted(names) == [
        "coreclr_wrap_create_delegate",
        "coreclr_wrap_initialize",
        "coreclr_wrap_is_domain_initialized",
        "coreclr_wrap_load",
        "coreclr_wrap_shutdown",
    ]
    assert not re.search(r" u ", listing)


def test_the_driver_found_the_library_of_this_build():
    assert wrap_driver.BUILD in RUNTIME.parents
