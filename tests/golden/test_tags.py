"""Tags: known ones kept, all of one form, none twice."""

import json
import pathlib
import re

import pytest

API = pathlib.Path(__file__).resolve().parents[2] / "api"
TAGS = json.loads((API / "tags.json").read_text())
MODULES = json.loads((API / "modules.json").read_text())
GENERICS = json.loads((API / "generics.json").read_text())
KNOWN = {
    "Kelmor.PSD.Image": ("7E7D27DF", None),
    "Kelmor.PSD.DataStreamSupporter": ("35B3618B", None),
    "Kelmor.PSD.FileFormats.Psd.Layers.Layer": ("8D6FBABB", "0D30925B"),
    "Kelmor.PSD.Xmp.XmpHeaderPi": ("D91BAC5C", "B968B5B1"),
    "Kelmor.PSD.Color": ("342A74C1", "342FE80E"),
    "Kelmor.PSD.Rectangle": ("5021E3DF", "50C6B2CE"),
    "Kelmor.PSD.IColorPalette": ("6868585B", None),
    "Kelmor.PSD.Xmp.Schemas.Photoshop.ColorMode": (None, "9E8BB7C7"),
}


def all_tags():
    return [tag for types in TAGS.values() for pair in types.values() for tag in pair if tag]


@pytest.mark.behaviour("family-class.symbols.known-tags")
@pytest.mark.parametrize(("name", "known"), KNOWN.items(), ids=list(KNOWN))
def test_known_tags_are_kept(name, known):
    recorded = TAGS["psd"][name]
    assert [given for given, fixed in zip(recorded, known) if fixed] == [k for k in known if k]


@pytest.mark.behaviour("family-class.symbols.tag-form")
def test_every_tag_is_eight_upper_case_hexadecimal_digits():
    assert all(re.fullmatch("[0-9A-F]{8}", tag) for tag in all_tags())


def test_no_tag_is_given_twice():
    tags = all_tags()
    assert len(set(tags)) == len(tags)


def test_the_tag_of_a_type_does_not_depend_on_what_else_is_tagged(tmp_path):
    from wrpgen import tags

    for name in ("modules.json", "generics.json"):
        (tmp_path / name).write_text((API / name).read_text())
    (tmp_path / "tags.json").write_text("{}")
    (tmp_path / "harness").mkdir()
    (tmp_path / "harness" / "Kelmor.Harness.json").write_text(
        '{"namespace": "Kelmor.Harness", "types": [{"type": "Square", "kind": "class"}]}'
    )
    tags.complete(tmp_path)
    made = json.loads((tmp_path / "tags.json").read_text())["harness"]["Kelmor.Harness.Square"]
    assert made == TAGS["harness"]["Kelmor.Harness.Square"]


@pytest.mark.behaviour("family-class.symbols.tag-stable")
def test_a_recorded_tag_is_never_made_anew(tmp_path):
    from wrpgen import tags

    for name in ("modules.json", "generics.json"):
        (tmp_path / name).write_text((API / name).read_text())
    (tmp_path / "tags.json").write_text(
        '{"harness": {"Kelmor.Harness.Square": ["AAAAAAAA", null]}}'
    )
    (tmp_path / "harness").mkdir()
    (tmp_path / "harness" / "Kelmor.Harness.json").write_text(
        '{"namespace": "Kelmor.Harness", "types": [{"type": "Square", "kind": "class"}]}'
    )
    tags.complete(tmp_path)
    native, managed = json.loads((tmp_path / "tags.json").read_text())["harness"][
        "Kelmor.Harness.Square"
    ]
    assert native == "AAAAAAAA" and managed
    assert tags.complete(tmp_path) == []


@pytest.mark.behaviour("family-class.entry.tag-not-hash")
def test_the_managed_tag_of_a_type_differs_from_its_native_one():
    pairs = [pair for types in TAGS.values() for pair in types.values()]
    assert all(native != managed for native, managed in pairs)


def test_an_element_type_has_the_tag_of_its_generic_instance():
    from wrpgen.tags import _python_name

    elements = {row[1]: row[0] for row in GENERICS["psd"]}
    checked = 0
    for name, (_, managed) in TAGS["psd"].items():
        python = _python_name(MODULES["psd"], name)
        if python in elements:
            assert managed == elements[python]
            checked += 1
    assert checked > 10
