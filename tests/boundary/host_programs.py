"""Programs that start the host in a process of its own, and what they leave behind."""

import ctypes
import os

from peer import WRAP, Script

EXECUTABLE = os.readlink(f"/proc/{os.getpid()}/exe")
EXECUTABLE_FOLDER = os.path.dirname(EXECUTABLE)
RUNTIME_VARIABLE = "NETCORE_WRAPPER_NETCORE_DIR_kelmor"
ASSEMBLY_VARIABLE = "NETCORE_WRAPPER_ASSEMBLY_DIR_kelmor"
ABORTED = -6
TRACE = {"COREHOST_TRACE": "1"}
MISSING = 0x80131513 - 2**32

LOAD, INITIALIZE = "coreclr_wrap_load", "coreclr_wrap_initialize"
QUERY, SHUTDOWN = "coreclr_wrap_is_domain_initialized", "coreclr_wrap_shutdown"


def start():
    import native

    Script()
    native.start_host()


def start_with(answers):
    import native

    script = Script()
    for entry, answer in answers.items():
        script.answer(entry, answer)
    native.start_host()


def start_from(netcore_dir, assembly_dir, names=("", ""), family="kelmor", debug=False):
    import native

    Script()
    names = [name if name is None else name.encode() for name in names]
    native.start_host(family, debug, netcore_dir, assembly_dir, names)
    folder = native.function("host_netcore_dir", ctypes.c_char_p)()
    assemblies = native.function("host_product_assembly_dir", ctypes.c_char_p)()
    return [folder.decode(), assemblies.decode()]


def attach(runtime, domain=None):
    """Somebody else has brought the wrap library into the process."""
    import native

    script = Script()
    ctypes.CDLL(f"{runtime}/libkelmor.embed.coreclrwrap.so", mode=ctypes.RTLD_GLOBAL)
    if domain is not None:
        script.answer("is_domain_initialized", domain)
    native.start_host()
    return native.function("host_domain_initialized")()


def ended_by(outcome, kind, text):
    """Whether an exception of this kind, that nobody caught, has ended the process."""
    assert outcome.code == ABORTED, outcome
    assert f"terminate called after throwing an instance of '{kind}'" in outcome.stderr
    assert f"what():  {text}\n" in outcome.stderr
    return True


def values_of(outcome):
    entry = outcome.entry(INITIALIZE)
    return dict(zip(entry["keys"], entry["values"]))


def folders_of(outcome):
    return values_of(outcome)["APP_PATHS"].split(":")


def lines(*texts):
    return "".join(f"{text}\r\n" for text in texts)


def diary(folder, assemblies=()):
    """The lines of a first load; a start that fails writes those up to its failure."""
    folders = ":".join(map(str, [*assemblies, folder]))
    return [
        "CLR host tracing enabled",
        "Initializing .NET Core host...",
        f"NETCORE_DIR: '{folder}'",
        f"PRODUCT_ASSEMBLY_DIR: '{folders}'",
        f"Loading: '{folder}/{WRAP}'",
        "Try get module...",
        "No existed module...",
        "wrap dll loaded",
        f"Loading2: '{folder}/libcoreclr.so'",
        ".NET Core host ready.",
        "Creating default AppDomain...",
        f"APP_PATH: '{folders}'",
        f"APP_NI_PATHS: '{folders}'",
        f"NATIVE_DLL_SEARCH_DIRECTORIES: '{folders}'",
        f"HOST_EXE_PATH: '{EXECUTABLE}'",
        "Default AppDomain ready.",
    ]


def diary_up_to(last, folder, assemblies=()):
    whole = diary(folder, assemblies)
    (end,) = [place for place, line in enumerate(whole) if line.startswith(last)]
    return lines(*whole[: end + 1])
