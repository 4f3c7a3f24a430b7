"""Whole imports over the real runtime: diary, folders, ends of a bad installation."""

import os
import pathlib
import shutil
import subprocess
import sys
import textwrap

import kelmor
import pytest

behaviour = pytest.mark.behaviour
PACKAGE = pathlib.Path(kelmor.__file__).parent
(RUNTIME,) = (PACKAGE / "runtime").iterdir()
ASSEMBLIES = PACKAGE / "assemblies"
WRAP = "libkelmor.embed.coreclrwrap.so"
RUNTIME_VARIABLE = "NETCORE_WRAPPER_NETCORE_DIR_kelmor"
ASSEMBLY_VARIABLE = "NETCORE_WRAPPER_ASSEMBLY_DIR_kelmor"
ABORTED = -6
WORK = """
from kelmor.psd import Rectangle
from kelmor.psd.fileformats.psd import PsdImage
assert (Rectangle(1, 2, 3, 4).width, PsdImage(4, 5).height) == (3, 5)
"""


def run(code="import kelmor.psd", cwd=None, **variables):
    """A script in a process of its own, with its output as bytes; the variables name paths."""
    environment = {RUNTIME_VARIABLE: PACKAGE / "runtime", ASSEMBLY_VARIABLE: ASSEMBLIES}
    environment.update(variables)
    return subprocess.run(
        [sys.executable, "-c", textwrap.dedent(code)],
        capture_output=True,
        timeout=120,
        cwd=cwd,
        env={**os.environ, **{name: str(value) for name, value in environment.items()}},
    )


def runtime_root(folder):
    """A root with the wrap library alone; gives it and the runtime folder in it."""
    inner = folder / RUNTIME.name
    inner.mkdir(parents=True)
    shutil.copy(RUNTIME / WRAP, inner)
    return folder, inner


def whole_root(folder):
    root, inner = runtime_root(folder)
    (inner / "libcoreclr.so").symlink_to((RUNTIME / "libcoreclr.so").resolve())
    return root


def lines(*texts):
    return "".join(f"{text}\r\n" for text in texts)


def assembly_list():
    """The folders in the order of the search: turned round, the drawing module's at the end."""
    names = [entry.name for entry in os.scandir(ASSEMBLIES) if entry.is_dir(follow_symlinks=False)]
    names = [name for name in reversed(names) if name != "gfxtypes"] + ["gfxtypes"]
    return ":".join([*(f"{ASSEMBLIES}/{name}" for name in names), str(RUNTIME)])


def diary_of_location():
    return [
        "CLR host tracing enabled",
        "Initializing .NET Core host...",
        f"NETCORE_DIR: '{RUNTIME}'",
        f"PRODUCT_ASSEMBLY_DIR: '{assembly_list()}'",
        f"Loading: '{RUNTIME}/{WRAP}'",
        "Try get module...",
    ]


@behaviour("host-start.trace.first-load", "host-start.trace.attach", "host-start.shutdown.trace")
def test_the_diary_of_an_import():
    folders, program = assembly_list(), os.path.realpath(sys.executable)
    started = [
        *diary_of_location(),
        "No existed module...",
        "wrap dll loaded",
        f"Loading2: '{RUNTIME}/libcoreclr.so'",
        ".NET Core host ready.",
        "Creating default AppDomain...",
        f"APP_PATH: '{folders}'",
        f"APP_NI_PATHS: '{folders}'",
        f"NATIVE_DLL_SEARCH_DIRECTORIES: '{folders}'",
        f"HOST_EXE_PATH: '{program}'",
        "Default AppDomain ready.",
    ]
    attached = [
        *diary_of_location(),
        "Using existed module...",
        "wrap dll loaded",
        ".NET Core host ready.",
    ]
    ended = ["Shutdowning .NET Core host...", ".NET Core host is down: 0"]
    result = run(COREHOST_TRACE="1")
    assert result.returncode == 0 and result.stderr == b""
    assert result.stdout.decode() == lines(*started, *attached, *attached, *ended)


# Installations that cannot work. The diary stands on a pipe here, and an abort does not lose it.


def aborted(result, kind, text):
    """Whether the process was ended by that exception; gives the rest of standard error."""
    assert result.returncode == ABORTED, result
    words = f"terminate called after throwing an instance of '{kind}'\n  what():  {text}"
    before, found, after = result.stderr.decode().partition(words)
    assert found, result.stderr
    return before + after.strip("\n")


def test_without_the_wrap_library_the_process_ends(tmp_path):
    root, inner = runtime_root(tmp_path / "runtime")
    (inner / WRAP).write_text("no library")
    variables = {RUNTIME_VARIABLE: root, "COREHOST_TRACE": "1"}
    result = run(**variables)
    assert aborted(result, "std::runtime_error", "DynamicLibrary::load") == ""
    assert result.stdout.decode().endswith(
        lines("No existed module...", "No module...", f"No: '{inner}/{WRAP}'")
    )


@pytest.mark.parametrize("wrong", ["missing", "text", "other-library"])
def test_without_the_runtime_the_process_ends_with_a_reason(tmp_path, wrong):
    root, inner = runtime_root(tmp_path / "runtime")
    library = inner / "libcoreclr.so"
    if wrong == "text":
        library.write_text("no library")
    elif wrong == "other-library":
        shutil.copy(inner / WRAP, library)
    reasons = {
        "missing": "No such file or directory",
        "text": f"{library}: file too short",
        "other-library": "it has no function coreclr_initialize",
    }
    result = run(**{RUNTIME_VARIABLE: root, "COREHOST_TRACE": "1"})
    rest = aborted(result, "std::runtime_error", "init coreclr wap")
    expected = f"kelmor: the .NET runtime '{library}' can't be loaded: {reasons[wrong]}\n"
    assert rest == expected
    assert result.stdout.decode().endswith(lines("wrap dll loaded", f"Loading2: '{library}'"))


def test_a_runtime_that_refuses_to_start_ends_the_process_with_all_that_it_was_given():
    # A heap in which not even the first objects have a place.
    result = run(DOTNET_GCHeapHardLimit="1", COREHOST_TRACE="1")
    folders = assembly_list()
    given = "".join(
        f",<{key}>='{value}'"
        for key, value in [
            ("HOST_EXE_PATH", os.path.realpath(sys.executable)),
            ("TRUSTED_PLATFORM_ASSEMBLIES", ""),
            ("APP_PATHS", folders),
            ("APP_NI_PATHS", folders),
            ("NATIVE_DLL_SEARCH_DIRECTORIES", folders),
            ("AppDomainCompatSwitch", "UseLatestBehaviorWhenTFMNotSpecified"),
        ]
    )
    rest = aborted(
        result,
        "CoreClrInitException",
        f"coreclr_initialize failed (0x8007000e) [<APP_DOMAIN_NAME>='KelmorCLRHostDomain'{given}]",
    )
    assert "refused to start (0x8007000e)" in rest
    assert "Default AppDomain ready." not in result.stdout.decode()
    assert result.stdout.decode().endswith("'\r\n")


@behaviour("shell-entry.code.1007-assembly")
@pytest.mark.parametrize("damage", ["missing", "empty", "half", "no-assembly"])
def test_a_damaged_assembly_is_an_import_error(tmp_path, damage):
    shutil.copytree(ASSEMBLIES, tmp_path / "assemblies")
    file = tmp_path / "assemblies/psd/WrpInterop.Kelmor.PSD.dll"
    whole = file.read_bytes()
    if damage == "missing":
        file.unlink()
    else:
        file.write_bytes({"empty": b"", "half": whole[: len(whole) // 2]}.get(damage, b"MZ" * 500))
    code = """
    try:
        import kelmor.psd
    except ImportError as error:
        cause = error.__cause__
        print(error, type(cause).__name__, cause, sep="|")
        print(cause is error.__context__, "kelmor.psd" in __import__("sys").modules)
    """
    result = run(code, **{ASSEMBLY_VARIABLE: tmp_path / "assemblies"})
    assert result.returncode == 0, result.stderr
    text, verdict = result.stdout.decode().splitlines()
    number, kind, reason = text.split("|")
    assert number == "One or more errors occurred while loading the module 'kelmor.psd' (-1007)"
    assert kind == "TypeError"
    assert reason == (
        "While initializing the host for the 'Kelmor.WrpGen.Interop.ExchangeHost "
        "(Assembly=WrpInterop.Kelmor.PSD)' type, an error occurred - Method 'GetTypeName' not found"
        " (error=-2147024894)"
    )
    assert verdict == "True False"


# Folders of any kind.


@pytest.mark.parametrize("name", ["with blanks", "größe-数据"])
@pytest.mark.parametrize("way", ["absolute", "relative", "linked"])
def test_the_folders_may_have_any_name(tmp_path, name, way):
    root = tmp_path / name
    whole_root(root / "runtime")
    shutil.copytree(ASSEMBLIES, root / "assemblies")
    base = {"absolute": root, "relative": name, "linked": tmp_path / "link"}[way]
    if way == "linked":
        base.symlink_to(root)
    variables = {RUNTIME_VARIABLE: f"{base}/runtime", ASSEMBLY_VARIABLE: f"{base}/assemblies"}
    result = run(WORK, cwd=tmp_path, **variables)
    assert (result.returncode, result.stderr) == (0, b"")


def test_the_runtime_needs_no_icu_libraries():
    code = WORK + "print('libicu' in open('/proc/self/maps').read())"
    result = run(code)
    assert (result.returncode, result.stdout) == (0, b"False\n"), result.stderr


# Several imports in one process.


@behaviour("shell-entry.second.after-sibling-failure")
@pytest.mark.parametrize("leaf", ["gfxtypes", "typemodel", "shellbase"])
def test_a_good_import_follows_a_failed_one(leaf):
    code = f"""
    import sys
    sys.modules["kelmor.{leaf}"] = None
    try:
        import kelmor.psd
    except ImportError as error:
        print(str(error)[-7:])
    del sys.modules["kelmor.{leaf}"]
    """
    result = run(textwrap.dedent(code) + WORK, COREHOST_TRACE="1")
    assert result.returncode == 0, result.stderr
    diary = result.stdout.decode()
    # The drawing module, which comes first, needs all the others.
    assert "(-1009)\n" in diary
    for line in ("Creating default AppDomain...", "Shutdowning .NET Core host..."):
        assert diary.count(f"{line}\r\n") == 1


@pytest.mark.parametrize("first", ["psd", "typemodel"])
def test_modules_with_global_symbols_share_nothing(first):
    code = f"""
    import ctypes, sys, os
    sys.setdlopenflags(os.RTLD_NOW | os.RTLD_GLOBAL)
    import kelmor.{first}
    import kelmor.shellbase, kelmor.typemodel, kelmor.gfxtypes, kelmor.shellcommon, kelmor.psd
    from kelmor.psd import Rectangle as OfDocuments
    from kelmor.gfxtypes import Rectangle as OfDrawing
    assert OfDocuments is not OfDrawing
    assert type(OfDocuments(1, 2, 3, 4).location).__module__ == "kelmor.psd"
    assert type(OfDrawing(1, 2, 3, 4).location).__module__ == "kelmor.gfxtypes"
    leaves = ["shellbase", "typemodel", "gfxtypes", "shellcommon", "psd"]
    modules = [getattr(kelmor, leaf) for leaf in leaves]
    assert len({{module._ModuleVersionType for module in modules}}) == 5
    libraries = [ctypes.PyDLL(module.__file__) for module in modules]
    for name in ["KelmorDomainName", "HostNotReady", "PyShCastOpResult_New", "PyWrpIdRawIo_Write"]:
        own = {{ctypes.addressof(ctypes.c_void_p.in_dll(library, name)) for library in libraries}}
        assert len(own) == 5, name
    """
    result = run(textwrap.dedent(code) + WORK, COREHOST_TRACE="1")
    assert result.returncode == 0, result.stderr
    diary = result.stdout.decode()
    assert diary.count("Initializing .NET Core host...") == 3
    assert diary.count("Creating default AppDomain...") == 1
    assert diary.count("Shutdowning .NET Core host...") == 1
