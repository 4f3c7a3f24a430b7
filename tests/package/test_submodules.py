"""Dotted names below the extension modules import as the import system promises."""

import importlib
import importlib.util
import pathlib
import pickle
import sys
import types

import kelmor
import kelmor.psd as psd
import process
import pytest


def all_modules(module):
    for name, child in vars(module).items():
        if isinstance(child, types.ModuleType) and child.__name__ == f"{module.__name__}.{name}":
            yield child
            yield from all_modules(child)


# Without the hidden tree, whose modules are no packages and are reached as attributes alone.
TREE = [module.__name__ for module in all_modules(psd) if "._" not in module.__name__]


def test_the_tree_has_every_module():
    assert len(TREE) == 79
    assert len(set(TREE)) == 79


@pytest.mark.parametrize("name", TREE)
def test_a_module_imports_by_its_dotted_name(name):
    module = importlib.import_module(name)
    assert sys.modules[name] is module
    attribute = psd
    for part in name.split(".")[2:]:
        attribute = getattr(attribute, part)
    assert module is attribute
    assert module.__spec__.name == module.__name__ == name
    assert module.__spec__.parent == module.__package__
    is_package = hasattr(module, "__path__")
    assert module.__spec__.submodule_search_locations == ([] if is_package else None)
    assert module.__spec__.origin == psd.__file__
    assert module.__spec__.loader.is_package(name) is is_package


def test_names_import_from_modules():
    from kelmor.psd.fileformats.psd import PsdImage
    from kelmor.psd.fileformats.psd.layers import Layer

    assert PsdImage is psd.fileformats.psd.PsdImage
    assert Layer is psd.fileformats.psd.layers.Layer


def test_the_first_import_may_be_the_deepest():
    code = """
        import sys
        import kelmor.psd.xmp.schemas.photoshop as photoshop
        names = ["kelmor", "kelmor.psd", "kelmor.psd.xmp", "kelmor.psd.xmp.schemas"]
        assert all(name in sys.modules for name in names)
        import kelmor
        assert photoshop is kelmor.psd.xmp.schemas.photoshop
        print(photoshop.__name__)
    """
    assert process.run(code) == "kelmor.psd.xmp.schemas.photoshop"


def test_modules_of_the_drawing_sibling_import():
    from kelmor import gfxtypes
    import kelmor.gfxtypes.drawing2d as drawing2d
    import kelmor.gfxtypes.imaging as imaging

    assert sys.modules["kelmor.gfxtypes.drawing2d"] is drawing2d is gfxtypes.drawing2d
    assert imaging.__spec__.name == "kelmor.gfxtypes.imaging"


@pytest.mark.parametrize(
    ("name", "words"),
    [
        ("kelmor.psd.nothing", "No module named 'kelmor.psd.nothing'"),
        ("kelmor.psd.xmp.nothing", "No module named 'kelmor.psd.xmp.nothing'"),
        ("kelmor.psd.Image", "No module named 'kelmor.psd.Image'"),
        (
            "kelmor.psd.xmp.schemas.photoshop.x",
            "No module named 'kelmor.psd.xmp.schemas.photoshop.x'; "
            "'kelmor.psd.xmp.schemas.photoshop' is not a package",
        ),
        ("kelmor.nothing", "No module named 'kelmor.nothing'"),
    ],
)
def test_a_name_that_is_no_module_is_not_found(name, words):
    with pytest.raises(ModuleNotFoundError) as failure:
        importlib.import_module(name)
    assert str(failure.value) == words
    assert failure.value.name == name
    assert name not in sys.modules


def test_a_spec_is_found_without_an_import():
    code = """
        import importlib.util, sys
        spec = importlib.util.find_spec("kelmor.psd.xmp")
        assert "kelmor.psd.xmp" not in sys.modules
        print(spec.name, spec.submodule_search_locations, importlib.util.find_spec("kelmor.psd.no"))
    """
    assert process.run(code) == "kelmor.psd.xmp [] None"


def test_a_reload_gives_the_same_module():
    module = importlib.import_module("kelmor.psd.xmp")
    assert importlib.reload(module) is module


def test_a_reload_of_the_package_leaves_one_finder():
    code = """
        import importlib, sys, kelmor
        importlib.reload(kelmor)
        importlib.reload(kelmor)
        print([type(f).__name__ for f in sys.meta_path].count("_Finder"))
        import kelmor.psd.xmp
    """
    assert process.run(code) == "1"


def test_a_module_is_no_program():
    code = """
        import runpy
        try:
            runpy.run_module("kelmor.psd.xmp.schemas.photoshop")
        except ImportError as failure:
            print(failure)
    """
    assert "kelmor.psd.xmp.schemas.photoshop" in process.run(code)


def test_an_enumeration_pickles_by_its_module():
    from kelmor.psd.fileformats.psd import ColorModes

    assert pickle.loads(pickle.dumps(ColorModes.CMYK)) is ColorModes.CMYK


def test_the_hook_folders_exist_and_name_their_modules():
    folders = psd.get_pyinstaller_hook_dirs()
    assert len(folders) == 6
    for folder in folders:
        names = [path.name for path in pathlib.Path(folder).iterdir()]
        assert any(name.startswith("hook-kelmor") for name in names), folder


def test_a_folder_of_hooks_is_no_module(tmp_path):
    package = tmp_path / "kelmor"
    (package / "psd/__pyinstaller").mkdir(parents=True)
    (package / "__init__.py").write_bytes(pathlib.Path(kelmor.__file__).read_bytes())
    code = """
        try:
            import kelmor.psd
        except ModuleNotFoundError as failure:
            print(failure.name, failure)
    """
    words = "No module named 'kelmor.psd' that is built for this interpreter"
    assert process.run(code, env={"PYTHONPATH": str(tmp_path)}) == f"kelmor.psd {words}"
