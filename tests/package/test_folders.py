"""The package names the folders of runtime and assemblies unless the user has."""

import os
import pathlib

import kelmor
import process
import pytest

VARIABLES = ["NETCORE_WRAPPER_NETCORE_DIR_kelmor", "NETCORE_WRAPPER_ASSEMBLY_DIR_kelmor"]
PACKAGE = pathlib.Path(kelmor.__file__).parent


def environment(**changes):
    result = {key: value for key, value in os.environ.items() if key not in VARIABLES}
    return {**result, **changes}


@pytest.mark.parametrize(("variable", "folder"), zip(VARIABLES, ["runtime", "assemblies"]))
def test_a_variable_that_is_not_set_names_the_folder_of_the_package(variable, folder):
    code = f"import kelmor, os; print(os.environ[{variable!r}])"
    assert process.run(code, env=environment()) == str(PACKAGE / folder)


@pytest.mark.parametrize("variable", VARIABLES)
@pytest.mark.parametrize("value", ["/somewhere/else", ""])
def test_a_variable_that_is_set_is_left_alone(variable, value):
    code = f"import kelmor, os; print('[' + os.environ[{variable!r}] + ']')"
    assert process.run(code, env=environment(**{variable: value})) == f"[{value}]"


def test_the_package_alone_starts_nothing():
    code = """
        import sys
        before = set(sys.modules)
        import kelmor
        print(sorted(set(sys.modules) - before), open("/proc/self/maps").read().count("coreclr"))
    """
    assert process.run(code, env=environment()) == "['kelmor'] 0"


def test_the_runtime_folder_holds_wrap_library_and_runtime():
    (runtime,) = (PACKAGE / "runtime").iterdir()
    assert runtime.name.startswith("netcore") and not runtime.is_symlink()
    for name in ["libkelmor.embed.coreclrwrap.so", "libcoreclr.so", "System.Private.CoreLib.dll"]:
        assert (runtime / name).is_file(), name


def test_the_assembly_folders_are_real_folders():
    found = {folder.name for folder in (PACKAGE / "assemblies").iterdir()}
    assert {"psd", "gfxtypes", "typemodel"} <= found
    assert not any(folder.is_symlink() for folder in (PACKAGE / "assemblies").iterdir())
