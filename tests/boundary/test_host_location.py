"""Which folders the host finds: that of the runtime and those of the assemblies."""

import pathlib

import pytest
from host_programs import (
    ASSEMBLY_VARIABLE,
    EXECUTABLE_FOLDER,
    INITIALIZE,
    LOAD,
    RUNTIME_VARIABLE,
    SHUTDOWN,
    TRACE,
    ended_by,
    folders_of,
    start,
    start_from,
)
from peer import DEBUG_WRAP, WRAP, wrap_library

behaviour = pytest.mark.behaviour


# The runtime folder.


@behaviour("host-start.netcore-dir.from-variable", "host-start.load.path")
def test_the_runtime_folder_is_the_highest_version_below_the_variable(in_process, installation):
    installation.add_runtime("netcore9.9")
    folder = str(installation.runtimes / "netcore10.0")
    outcome = in_process(start, environment=TRACE)
    assert outcome.entry(LOAD)["path"] == f"{folder}/libcoreclr.so"
    assert f"Loading: '{folder}/{WRAP}'\r\n" in outcome.stdout


@behaviour("host-start.netcore-dir.variable-name", "host-start.assembly-dir.variable-name")
@pytest.mark.parametrize("family", ["kelmor", "abc"])
def test_the_variables_are_named_after_the_family(in_process, installation, family):
    environment = {
        RUNTIME_VARIABLE: None,
        ASSEMBLY_VARIABLE: None,
        f"NETCORE_WRAPPER_NETCORE_DIR_{family}": str(installation.runtimes),
        f"NETCORE_WRAPPER_ASSEMBLY_DIR_{family}": str(installation.assemblies),
    }
    outcome = in_process(start_from, None, None, ("", ""), family, environment=environment)
    folder = str(installation.runtimes / "netcore10.0")
    assemblies = [str(installation.assemblies / name) for name in ("psd", "gfxtypes")]
    assert outcome.value == [folder, ":".join(assemblies + [folder])]


def fallback(in_process, **environment):
    """Where the library is looked for when no folder is found: beside the executable."""
    environment["COREHOST_TRACE"] = "1"
    outcome = in_process(start, code=None, environment=environment)
    assert ended_by(outcome, "std::runtime_error", "DynamicLibrary::load")
    assert f"Loading: '{EXECUTABLE_FOLDER}/{WRAP}'\r\n" in outcome.stdout
    assert outcome.calls == []
    return f"NETCORE_DIR: '{EXECUTABLE_FOLDER}'\r\n" in outcome.stdout


@behaviour("host-start.netcore-dir.absent-variable", "host-start.exe.path")
def test_without_the_variable_the_runtime_is_beside_the_executable(in_process):
    assert fallback(in_process, **{RUNTIME_VARIABLE: None})


@behaviour("host-start.netcore-dir.empty-variable")
def test_an_empty_variable_counts_as_absent(in_process):
    assert fallback(in_process, **{RUNTIME_VARIABLE: ""})


@behaviour("host-start.netcore-dir.nothing-found")
def test_a_root_without_a_runtime_is_not_used_itself(in_process, empty_installation):
    assert fallback(in_process, **{RUNTIME_VARIABLE: str(empty_installation.root / "nowhere")})
    assert fallback(in_process)
    wrap_library(empty_installation.runtimes / WRAP)
    assert fallback(in_process)


@behaviour("host-start.netcore-dir.release-name-searched")
def test_a_debug_start_still_searches_the_release_library(in_process, empty_installation):
    empty_installation.add_runtime("netcore9.0", (WRAP, DEBUG_WRAP))
    empty_installation.add_runtime("netcore10.0", (DEBUG_WRAP,))
    outcome = in_process(start_from, None, None, ("", ""), "kelmor", True)
    assert outcome.value[0] == str(empty_installation.runtimes / "netcore9.0")


@behaviour("host-start.netcore-dir.debug-loads-debug")
def test_a_debug_start_loads_the_debug_library(in_process, empty_installation):
    folder = empty_installation.add_runtime("netcore10.0", (WRAP, DEBUG_WRAP))
    arguments = (None, None, ("", ""), "kelmor", True)
    outcome = in_process(start_from, *arguments, environment=TRACE)
    assert f"Loading: '{folder}/{DEBUG_WRAP}'\r\n" in outcome.stdout
    assert outcome.calls == [LOAD, INITIALIZE, SHUTDOWN]
    (folder / DEBUG_WRAP).unlink()
    outcome = in_process(start_from, *arguments, code=None, environment=TRACE)
    assert f"Loading: '{folder}/{DEBUG_WRAP}'\r\n" in outcome.stdout
    assert ended_by(outcome, "std::runtime_error", "DynamicLibrary::load")


@behaviour("host-location.netcore.overflow-ends-process")
def test_a_folder_with_too_large_a_number_ends_the_process(in_process, installation):
    (installation.runtimes / "netcore99999999999.0").mkdir()
    outcome = in_process(start, code=None)
    assert ended_by(outcome, "std::out_of_range", "stoi")


# The assembly folders.


@behaviour("host-start.assembly-dir.from-variable", "host-start.assembly-dir.runtime-folder-last")
def test_the_assembly_folders_are_the_sub_folders_and_then_the_runtimes(in_process, installation):
    installation.add_assemblies("other")
    folders = folders_of(in_process(start))
    names = [pathlib.Path(folder).name for folder in folders]
    assert sorted(names[:2]) == ["other", "psd"]
    assert names[2:] == ["gfxtypes", "netcore10.0"]
    assert {str(pathlib.Path(folder).parent) for folder in folders[:3]} == {
        str(installation.assemblies)
    }
    assert EXECUTABLE_FOLDER not in folders


@behaviour("host-start.assembly-dir.runtime-folder-last")
def test_the_runtime_folder_is_not_added_twice(in_process, installation):
    environment = {ASSEMBLY_VARIABLE: str(installation.runtimes)}
    folder = str(installation.runtimes / "netcore10.0")
    assert folders_of(in_process(start, environment=environment)) == [folder]


@behaviour("host-start.assembly-dir.debug")
def test_a_debug_start_takes_the_debug_folders(in_process, empty_installation):
    folder = empty_installation.add_runtime("netcore10.0", (WRAP, DEBUG_WRAP))
    empty_installation.add_assemblies("psd/debug", "gfxtypes/debug", "other")
    outcome = in_process(start_from, None, None, ("", ""), "kelmor", True)
    assemblies = [str(empty_installation.assemblies / n / "debug") for n in ("psd", "gfxtypes")]
    assert folders_of(outcome) == assemblies + [str(folder)]


@behaviour("host-start.assembly-dir.absent-variable")
@pytest.mark.parametrize("value", [None, ""])
def test_without_the_variable_the_assemblies_are_beside_the_executable(
    in_process, installation, value
):
    outcome = in_process(start, environment={ASSEMBLY_VARIABLE: value})
    assert folders_of(outcome) == [EXECUTABLE_FOLDER, str(installation.runtimes / "netcore10.0")]


@behaviour("host-start.assembly-dir.both-absent")
def test_without_both_variables_the_executables_folder_stands_once(in_process):
    environment = {RUNTIME_VARIABLE: None, ASSEMBLY_VARIABLE: None, "COREHOST_TRACE": "1"}
    outcome = in_process(start, code=None, environment=environment)
    assert f"PRODUCT_ASSEMBLY_DIR: '{EXECUTABLE_FOLDER}'\r\n" in outcome.stdout


@behaviour("host-start.assembly-dir.no-sub-folder")
@pytest.mark.parametrize("name", ["assemblies", "nowhere"])
def test_without_sub_folders_the_runtime_folder_stands_alone(in_process, empty_installation, name):
    folder = empty_installation.add_runtime()
    environment = {ASSEMBLY_VARIABLE: str(empty_installation.root / name)}
    outcome = in_process(start, environment=environment)
    assert folders_of(outcome) == [str(folder)]
    assert outcome.calls == [LOAD, INITIALIZE, SHUTDOWN]


@behaviour("host-start.assembly-dir.joined")
def test_the_folders_are_joined_by_colons(in_process, installation):
    value = in_process(start_from, None, None).value[1]
    names = [installation.assemblies / "psd", installation.assemblies / "gfxtypes"]
    assert value == ":".join(map(str, names + [installation.runtimes / "netcore10.0"]))
