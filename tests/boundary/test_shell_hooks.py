"""Where the packaging hooks of the family lie."""

import ctypes
import os
import sys

import kelmor_probe
import pytest
from peer import STAGE, Script
from shell_probe import OBJECT, POINTER, native

behaviour = pytest.mark.behaviour
SSIZE = ctypes.c_ssize_t
FOLDERS = ["psd", "gfxtypes", "typemodel", "shellbase", "shellcommon"]


@behaviour("shell-tree.hook-dirs.flags")
def test_the_function_takes_no_arguments(in_process):
    def program():
        from family import Family

        function = Family().complete().psd().get_pyinstaller_hook_dirs
        texts = []
        for arguments, keywords in [((1,), {}), ((), {"count": 1})]:
            try:
                function(*arguments, **keywords)
            except TypeError as error:
                texts.append(str(error))
        get_flags = ctypes.pythonapi.PyCFunction_GetFlags
        get_flags.argtypes = [ctypes.py_object]
        return texts, get_flags(function)

    texts, flags = in_process(program).value
    assert "takes no arguments (1 given)" in texts[0]
    assert "takes no keyword arguments" in texts[1]
    assert flags == 4  # METH_NOARGS


@behaviour("shell-tree.hook-dirs.doc", "shell-tree.hook-dirs.six-paths")
def test_there_is_a_folder_for_the_family_and_one_for_each_module(in_process):
    def program():
        from family import Family

        psd = Family().complete().psd()
        return psd.get_pyinstaller_hook_dirs.__doc__, psd.get_pyinstaller_hook_dirs(), psd.__file__

    doc, paths, file = in_process(program).value
    assert doc == (
        "Function required by PyInstaller. Returns paths to module\nPyInstaller hooks. Not "
        "intended to be called explicitly.\n\n"
    )
    base = os.path.dirname(file)
    assert base == str(STAGE / "kelmor")
    assert paths == [os.path.join(base, *folder, "__pyinstaller") for folder in [(), *zip(FOLDERS)]]


@behaviour("shell-tree.hook-dirs.os-path-functions", "shell-identifiers.classes.module-of-each")
def test_the_paths_are_made_by_the_functions_that_stand_there(in_process):
    def program():
        import types

        from family import Family

        psd = Family().complete().psd()
        calls = []

        def dirname(*arguments):
            calls.append(["dirname", *arguments])
            return "the base"

        def join(*arguments):
            calls.append(["join", *arguments])
            return len(calls)

        fake = types.ModuleType("os.path")
        fake.dirname, fake.join = dirname, join
        sys.modules["os.path"] = fake
        return psd.get_pyinstaller_hook_dirs(), calls, psd.__file__

    paths, calls, file = in_process(program).value
    assert calls == [
        ["dirname", file],
        ["join", "the base", "__pyinstaller"],
        *(["join", "the base", folder, "__pyinstaller"] for folder in FOLDERS),
    ]
    assert paths == [2, 3, 4, 5, 6, 7]


@behaviour("shell-tree.hook-dirs.generic-function")
@pytest.mark.parametrize("folders", [[], ["one"], ["one", "two", "three"]])
def test_there_is_one_path_more_than_folders(folders):
    get_def = ctypes.pythonapi.PyModule_GetDef
    get_def.restype, get_def.argtypes = ctypes.c_void_p, [ctypes.py_object]
    function = native("fn_get_pyinstaller_hook_dirs", OBJECT, POINTER, POINTER, SSIZE, POINTER)
    names = (ctypes.c_char_p * (len(folders) + 1))(*[name.encode() for name in folders])
    hook = ctypes.create_string_buffer(b"the hooks")
    found = function(get_def(kelmor_probe), names, len(folders), ctypes.addressof(hook))
    base = os.path.dirname(kelmor_probe.__file__)
    wanted = [os.path.join(base, *folder, "the hooks") for folder in [(), *zip(folders)]]
    assert type(found) is list and found == wanted


@behaviour("shell-tree.hook-dirs.no-module-or-filename")
def test_a_module_without_a_file_name_is_told_by_the_interpreter(in_process):
    def program():
        from family import Family

        psd = Family().complete().psd()
        del psd.__file__
        try:
            psd.get_pyinstaller_hook_dirs()
        except SystemError as error:
            return str(error), error.__cause__ is None

    assert in_process(program).value == ["module filename missing", True]


@behaviour("shell-tree.hook-dirs.no-module-or-filename")
def test_a_failure_to_find_the_module_goes_up_as_it_is(in_process):
    def program():
        from family import Family, chain, interposed

        family = Family().complete()
        between = interposed(Script())
        psd = family.psd()
        shown = []
        for message in ("refused by the test", None):
            between.fail("PyState_FindModule", "kelmor.psd", result=0, message=message)
            try:
                psd.get_pyinstaller_hook_dirs()
            except Exception as error:
                shown.append(chain(error))
            between.relent()
        return [[entry[:2] for entry in one] for one in shown]

    assert in_process(program).value == [
        [["RuntimeError", "refused by the test"]],
        # Null without an exception: nothing would tell the user, or the interpreter, what is wrong.
        [["ImportError", "Module initialization internal error (-1010)"]],
    ]


@behaviour("shell-tree.hook-dirs.os-path-import-failure")
def test_os_path_must_be_importable(in_process):
    def program():
        from family import Family, chain

        psd = Family().complete().psd()
        sys.modules["os.path"] = None
        try:
            psd.get_pyinstaller_hook_dirs()
        except ImportError as error:
            return chain(error)

    shown = in_process(program).value
    assert [entry[:2] for entry in shown] == [
        [
            "ImportError",
            "Unable to import the specified module os.path. The module not found or errors "
            "occurred while initializing it.",
        ],
        ["ModuleNotFoundError", "import of os.path halted; None in sys.modules"],
    ]
    assert shown[0][2]


@behaviour("shell-tree.hook-dirs.step-failure")
@pytest.mark.parametrize("failing", range(7))
def test_a_failing_step_drops_what_was_made(in_process, failing):
    def program(failing):
        import types
        import weakref

        from family import Family

        psd = Family().complete().psd()
        alive = weakref.WeakSet()

        class Path(str):
            __hash__ = object.__hash__

        def step(*arguments):
            if len(made) == failing:
                raise KeyError(failing)
            made.append(None)
            path = Path("a path")
            alive.add(path)
            return path

        made = []
        fake = types.ModuleType("os.path")
        fake.dirname = fake.join = step
        sys.modules["os.path"] = fake
        try:
            psd.get_pyinstaller_hook_dirs()
        except KeyError as error:
            shown = error.args
        return shown, len(made), len(alive)

    assert in_process(program, failing).value == [[failing], failing, 0]
