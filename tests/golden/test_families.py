"""Families as they come out, held against files: run with KELMOR_UPDATE_GOLDENS=1 to write them."""

import os
import pathlib

import pytest

EXPECTED = pathlib.Path(__file__).with_name("expected")
CASES = [
    pytest.param("psd", "Kelmor.PSD.Xmp.XmpHeaderPi", id="class"),
    pytest.param("harness", "Kelmor.Harness.Square", id="class-with-overloads"),
    pytest.param("harness", "Kelmor.Harness.Pair", id="struct"),
    pytest.param("harness", "Kelmor.Harness.WidthUInt64", id="enumeration"),
    pytest.param("harness", "Kelmor.Harness.IShape", id="interface"),
]


def hold(name, text):
    path = EXPECTED / (name + ".txt")  # no formatter shall touch it
    if os.environ.get("KELMOR_UPDATE_GOLDENS"):
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)
    assert text == path.read_text(), f"{name} differs: review it, then update the goldens"


@pytest.mark.parametrize(("key", "name"), CASES)
def test_the_native_family_is_as_reviewed(generation, key, name):
    from wrpgen import units

    made = generation(key)
    text = units.write_family(made.family(name), made.families)
    hold(name.rsplit(".", 1)[-1] + ".cpp", text)


@pytest.mark.parametrize(("key", "name"), CASES)
def test_the_managed_entries_are_as_reviewed(generation, key, name):
    from wrpgen import managed

    made = generation(key)
    (text,) = managed.write_entries(made.extension, [made.family(name)]).values()
    hold(name.rsplit(".", 1)[-1] + ".cs", text)


def test_a_generic_instance_is_as_reviewed(generation):
    from wrpgen import generics

    made = generation("harness")
    squares = [i for i in made.generics if i.element == "Kelmor.Harness.Square"]
    hold("ArrayOfSquare.cpp", generics.write_native(made.extension, squares))
    hold("ArrayOfSquare.cs", generics.write_managed(made.extension, squares)["Generic.cs"])


def test_the_stubs_are_as_reviewed(generation):
    from wrpgen import stubs

    made = generation("harness")
    chosen = ("ShapeBase", "Square", "Pair", "WidthUInt64", "IShape")
    families = [f for f in made.families if f.type.name in chosen]
    text = stubs.write(made.extension, families)["kelmor/harness/__init__.pyi"]
    hold("harness.pyi", text)


@pytest.mark.parametrize("key", ["psd", "gfxtypes", "typemodel", "harness"])
def test_stubs_are_valid_python(generation, key):
    import ast

    from wrpgen import stubs

    made = generation(key)
    for name, text in stubs.write(made.extension, made.families).items():
        ast.parse(text, name)


def test_generating_twice_gives_the_same_text_and_touches_nothing(tmp_path, generation):
    made = generation("harness")
    assert made.write_native(tmp_path, 2) > 0
    times = {path: path.stat().st_mtime_ns for path in tmp_path.iterdir()}
    assert made.write_native(tmp_path, 2) == 0
    assert {path: path.stat().st_mtime_ns for path in tmp_path.iterdir()} == times


def test_a_file_that_is_no_longer_generated_goes(tmp_path, generation):
    made = generation("typemodel")
    (tmp_path / "group_07.cpp").write_text("stale")
    made.write_native(tmp_path, 1)
    assert not (tmp_path / "group_07.cpp").exists()


@pytest.mark.parametrize("key", ["psd", "gfxtypes", "typemodel", "harness"])
def test_no_code_line_passes_a_hundred_columns_without_need(generation, key):
    for name, text in generation(key).native_files(2).items():
        for line in text.splitlines():
            # A comment or one long word cannot be broken.
            longest = max((len(word) for word in line.split()), default=0)
            assert len(line) <= 100 or line.lstrip().startswith("//") or longest > 60, (name, line)


@pytest.mark.parametrize("key", ["psd", "gfxtypes", "typemodel", "harness"])
def test_only_a_module_with_hook_folders_tells_them(generation, key):
    from wrpgen import tree

    made = generation(key)
    text = tree.write_tree(made.extension, made.families)
    assert ("get_pyinstaller_hook_dirs" in text) == bool(made.extension.hook_folders)
    assert bool(made.extension.hook_folders) == (key == "psd")
