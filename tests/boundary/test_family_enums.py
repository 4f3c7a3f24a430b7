"""Bound enumerations: how they are made, and how their numbers cross."""

import ctypes
import enum

import pytest
from psd_scene import entry_class, missing_text, psd_scene
from wrappers import raised, text_of

LAYER = "FileFormats.Psd.Layers.Layer"
ARRAY_TYPE = "Xmp.XmpArrayType"
JPEG = "kelmor.psd.coreexceptions.imageformats.JpegLoadException"
PROTOCOL = [
    ("_type_of", "_StaticMethodDescrType"),
    ("_cast_to", "_StaticMethodDescrType"),
    ("_cast_from", "_InstanceMethodDescrType"),
    ("_reinterpret_obj", "_StaticMethodDescrType"),
    ("_as_uni_enum", "_InstanceMethodDescrType"),
    ("_cast_as", "_StaticMethodDescrType"),
    ("_is_assignable", "_StaticMethodDescrType"),
    ("get_type", "_InstanceMethodDescrType"),
]


def all_enums(s):
    found = [kind for _, _, kind in s.types_below() if issubclass(kind, enum.Enum)]
    assert len(found) >= 30
    return found


@psd_scene(
    "family-enums.type.python-enum",
    "family-enums.members.names",
    "family-enums.members.is-int",
    "family-enums.make.simple-name",
)
def test_an_enumeration_is_pythons_own(s):
    kind = s.type_of(ARRAY_TYPE)
    assert isinstance(kind, type(enum.Enum)) and kind.__name__ == "XmpArrayType"
    members = {"UNORDERED": 0, "ORDERED": 1, "ALTERNATIVE": 2}
    assert {name: int(value) for name, value in kind.__members__.items()} == members
    assert isinstance(kind.ORDERED, int) and kind.ORDERED + 1 == kind.ALTERNATIVE > kind(0)
    assert s.requests() == [] and s.calls() == []


@psd_scene("family-enums.type.base")
def test_flags_are_flags(s):
    flags = ["FontStyle", "FileFormats.Psd.Layers.LayerFlags", "FileFormat"]
    for name in flags:
        assert s.type_of(name).__bases__ == (enum.IntFlag,)
    named = {name.rpartition(".")[2] for name in flags}
    declared = {"Group3Options", "LayerMaskFlags", "LayerLockType", "StringFormatFlags", *named}
    for kind in all_enums(s):
        base = enum.IntFlag if kind.__name__ in declared else enum.IntEnum
        assert kind.__bases__ == (base,), kind


@psd_scene("family-enums.members.order")
def test_members_stand_as_declared(s):
    names = list(s.type_of("FileFormats.Core.Blending.BlendMode").__members__)
    import json

    import peer

    path = peer.ROOT / "api/psd/Kelmor.PSD.FileFormats.Core.Blending.json"
    (row,) = [t for t in json.loads(path.read_text())["types"] if t["type"] == "BlendMode"]
    found = [name.replace("_", "").lower() for name in names]
    assert found == [value["name"].lower() for value in row["values"]]
    numbers = [value["value"] for value in row["values"]]
    assert [int(v) for v in s.type_of("FileFormats.Core.Blending.BlendMode")] == numbers


@psd_scene(
    "family-enums.make.no-host-marker",
    "family-enums.make.protocol-order",
    "family-enums.make.protocol-not-members",
    "binding-markers.key.castable-enum",
)
def test_an_enumeration_has_one_marker_and_the_protocol(s):
    for kind in all_enums(s):
        entries = vars(kind)
        assert entries["_kelmor_clr_castable_obj"] is ...
        others = ("_kelmor_clr_host", "_additional_interfaces", "_implicit_interfaces")
        assert not [key for key in others if key in entries]
        keys = list(entries)
        place = keys.index("_kelmor_clr_castable_obj") + 1
        found = [(key, type(entries[key]).__name__) for key in keys[place : place + 8]]
        assert found == PROTOCOL
        names = {name for name, _ in PROTOCOL}
        assert not names & set(kind.__members__) and not names & {m.name for m in kind}


@psd_scene("family-enums.make.not-registered")
def test_an_enumeration_is_not_registered(s):
    assert s.registry.find("Kelmor.PSD.Xmp.XmpArrayType") is None
    assert s.registry.find("Kelmor.PSD.Xmp.XmpHeaderPi") is s.type_of("Xmp.XmpHeaderPi")


@psd_scene("family-enums.host.entries")
def test_the_host_is_bound_by_the_first_use_of_the_protocol(s):
    kind = s.type_of(ARRAY_TYPE)
    kind(1), kind.ORDERED, kind.ORDERED._cast_from(1)
    assert s.requests() == []
    s.method(ARRAY_TYPE, "btp_GetType").writes(1, ctypes.c_uint64(0x90)).returns(1)
    assert kind.ORDERED.get_type() == ("Type", 0x90)
    names = ["TypeOf", "CastTo", "ReInterpretObj", "AsUniEnum", "CastAs", "IsAssignable"]
    wanted = [f"btp_{name}" for name in [*names, "GetType"]]
    assert s.requests() == [(entry_class(ARRAY_TYPE), name) for name in wanted]


@psd_scene(
    "family-enums.host.missing-entry",
    refuse=[("FileFormats.Psd.Layers.LayerFlags", "btp_GetType")],
)
def test_only_the_protocol_needs_the_host(s):
    kind, layer = s.type_of("FileFormats.Psd.Layers.LayerFlags"), s.wrap(LAYER, 0x10)
    s.method(LAYER, "get_Flags").returns(2)
    assert layer.flags is kind.VISIBLE is kind(2)
    layer.flags = kind.VISIBLE
    assert s.calls("set_Flags", 2) == [[0x10, 2]]
    assert kind.VISIBLE._cast_from(1) is not None
    wanted = missing_text("FileFormats.Psd.Layers.LayerFlags", "btp_GetType")
    for function in (
        kind._type_of,
        lambda: kind._cast_to(layer),
        lambda: kind._cast_as(layer),
        lambda: kind._is_assignable(layer),
        lambda: kind._reinterpret_obj(layer),
        kind.VISIBLE._as_uni_enum,
        kind.VISIBLE.get_type,
    ):
        assert text_of(TypeError, function) == wanted


@psd_scene(
    "family-enums.width.short",
    "family-enums.width.byte",
    "family-enums.conv.from-python",
    "family-enums.conv.to-python",
)
def test_numbers_cross_in_the_width_of_their_type(s):
    modes = s.type_of("FileFormats.Psd.ColorModes")
    options = s.wrap("ImageOptions.PsdOptions", 0x10)
    s.method("ImageOptions.PsdOptions", "get_ColorMode").returns(0xFFFF0003)
    assert options.color_mode is modes(3)
    s.method("ImageOptions.PsdOptions", "get_ColorMode").reset().returns(0x8000)
    assert text_of(ValueError, lambda: options.color_mode).startswith("-32768 is not a valid")
    s.clear()
    options.color_mode = modes(4)
    assert s.calls("set_ColorMode", 2) == [[0x10, 4]] and s.calls() == ["set_ColorMode"]
    layer, flags = s.wrap(LAYER, 0x20), s.type_of("FileFormats.Psd.Layers.LayerFlags")
    s.method(LAYER, "get_Flags").returns(0x1280)
    assert int(layer.flags) == 0x80
    s.clear()
    layer.flags = flags(0xFE)
    ((_, word),) = s.calls("set_Flags", 2)
    assert word & 0xFF == 0xFE


@psd_scene("family-enums.width.ulong", "family-enums.conv.to-python-composite")
def test_all_64_bits_of_a_file_format_come(s):
    kind, image = s.type_of("FileFormat"), s.wrap("Image", 0x10)
    for number in (80, 2**63, 2**63 + 5, 2**64 - 1):
        s.method("Image", "get_FileFormat").reset().returns(number)
        if number > 80:
            # The interpreter refuses or keeps bits that no member has, each version its own way.
            try:
                wanted = kind(number)
            except ValueError:
                raised(ValueError, lambda: image.file_format)
                continue
        else:
            wanted = kind.PSD | kind.PNG
        assert image.file_format == wanted and int(image.file_format) == int(wanted)
    given = []
    s.method("FileFormat", "btp_GetType").calls(lambda f: given.append(f.integers[0]))
    highest = int.__new__(kind, 2**63 + 5)
    highest._value_ = 2**63 + 5
    highest.get_type()
    assert given == [2**63 + 5]


@psd_scene("family-enums.conv.to-python-unknown", "family-enums.conv.to-python-every-time")
def test_the_enumeration_is_called_for_each_result(s):
    kind, image = s.type_of("FileFormats.Psd.ColorModes"), s.wrap("FileFormats.Psd.PsdImage", 0x10)
    asked, call = [], type(kind).__call__

    def counting(cls, *arguments, **keywords):
        asked.append((cls, arguments, keywords))
        return call(cls, *arguments, **keywords)

    s.method("FileFormats.Psd.PsdImage", "get_ColorMode").returns(3, 3, 77)
    type(kind).__call__ = counting
    image.color_mode, image.color_mode
    assert asked == [(kind, (3,), {})] * 2
    text = text_of(ValueError, lambda: image.color_mode)
    assert text == "77 is not a valid ColorModes"


@psd_scene("family-enums.conv.refuses-int", "family-enums.conv.refuses-others")
def test_only_members_pass(s):
    layer, options = s.wrap(LAYER, 0x10), s.wrap("ImageOptions.PsdOptions", 0x20)
    s.clear()
    other = s.type_of(ARRAY_TYPE).ORDERED
    rows = [(5, "int"), (None, "NoneType"), ("VISIBLE", "str"), (other, "XmpArrayType")]
    for value, name in rows:
        wanted = f"can't build LayerFlags value from '{name}'"
        assert text_of(TypeError, setattr, layer, "flags", value) == wanted
        wanted = f"can't build ColorModes value from '{name}'"
        assert text_of(TypeError, setattr, options, "color_mode", value) == wanted
    assert s.calls() == []


@psd_scene("family-enums.conv.read-error", "family-enums.conv.truncates")
def test_numbers_too_wide_are_cut_or_refused(s):
    layer, kind = s.wrap(LAYER, 0x10), s.type_of("FileFormats.Psd.Layers.LayerFlags")

    def member(number):
        made = int.__new__(kind, number)
        made._value_ = number
        return made

    s.clear()
    layer.flags = member(1 << 40 | 2)
    assert [row[1] & 0xFF for row in s.calls("set_Flags", 2)] == [2]
    raised(OverflowError, setattr, layer, "flags", member(1 << 64))
    raised(OverflowError, setattr, layer, "flags", member(-1))
    assert s.calls() == ["set_Flags"]


def imports_with(replacement):
    """Imports the extension with another base of enumerations: what was asked, what was raised."""
    import enum
    import sys
    import types

    import family
    import psd_scene  # noqa: F401  (before the module is replaced)

    asked, fake = [], types.ModuleType("enum")

    class Base:
        def __new__(cls, *arguments, **keywords):
            name, members = arguments
            asked.append((name, type(members).__name__, keywords))
            if name == replacement:
                raise LookupError("refused by the test")
            assert all(type(pair) is tuple and len(pair) == 2 for pair in members)
            return enum.IntEnum(name, members)

    fake.IntEnum, fake.IntFlag = Base, enum.IntFlag
    if replacement == "none":
        del fake.IntEnum
    stubs = family.Family().complete()
    sys.modules["enum"] = fake
    if replacement is None:
        psd = stubs.psd()
        return asked, psd.xmp.XmpArrayType.__name__
    return asked, stubs.failure()


@pytest.mark.behaviour("family-enums.type.base-looked-up-at-import", "family-enums.make.call")
def test_the_base_is_looked_up_and_called_at_import(in_process):
    asked, name = in_process(imports_with, None).value
    assert name == "XmpArrayType" and ["XmpArrayType", "tuple", {}] in asked


@pytest.mark.behaviour("family-enums.make.base-import-fails")
def test_without_a_base_the_import_fails(in_process):
    asked, chain = in_process(imports_with, "none").value
    assert asked == [] and chain[-1][0] in ("AttributeError", "ImportError")
    assert any("(-1013)" in text for _, text, _, _ in chain)


def test_a_base_that_gives_no_class_fails_the_import(in_process):
    def program():
        import enum
        import sys
        import types

        import family

        fake = types.ModuleType("enum")
        fake.__dict__.update(vars(enum), IntEnum=lambda name, members: [name])
        stubs = family.Family().complete()
        sys.modules["enum"] = fake
        return [entry[:2] for entry in stubs.failure()]

    chain = in_process(program).value
    assert [kind for kind, _ in chain] == ["ImportError", "ImportError", "TypeError"]
    assert chain[1][1].startswith("Type initialization internal error (-1013) <kelmor.psd.")
    assert chain[2][1] == "'list' object is no enumeration"


@pytest.mark.behaviour("family-enums.make.call-fails", "family-enums.nested.full-name")
@pytest.mark.parametrize(
    ("name", "full_name"),
    [
        pytest.param("XmpArrayType", "kelmor.psd.xmp.XmpArrayType", id="of-a-module"),
        pytest.param("ErrorReason", JPEG + ".ErrorReason", id="nested"),
    ],
)
def test_a_failure_to_make_an_enumeration_is_told_by_its_full_name(in_process, name, full_name):
    _, chain = in_process(imports_with, name).value
    texts = [text for _, text, _, _ in chain]
    assert f"Type initialization internal error (-1013) <{full_name}>" in texts
    assert chain[-1][:2] == ["LookupError", "refused by the test"]
