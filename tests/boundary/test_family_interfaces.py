"""Bound interfaces: their types, their converters both ways, and what is shown for them."""

import gc
import struct

from psd_scene import REFERENCE, entry_class, missing_text, psd_scene, variant_at
from wrappers import handle_of, raised, text_of

PALETTE = "IColorPalette"
MEMBERS = [
    "get_nearest_color_index",
    "get_argb_32_color",
    "get_color",
    "entries_count",
    "argb_32_entries",
    "entries",
    "is_compact_palette",
]


def copies(s):
    """Records that reach the member with an interface parameter, and those asked about."""
    taken, asked = [], []
    s.method("ColorPalette", "call_000_CopyPalette").calls(
        lambda frame: taken.append(variant_at(frame.integers[0]))
    )

    def accept(frame):
        asked.append(variant_at(frame.integers[0]))
        frame.result = 0xFF01  # the low byte counts

    s.method(PALETTE, "btp_IsAssignable").calls(accept)
    return taken, asked


def sibling_wrapper(marker=None, **entries):
    """What a wrapper of another module looks like; its handle is the address of the marker."""
    members = {"__slots__": ("handle",), "_kelmor_clr_host": marker, **entries}
    wrapper = type("Foreign", (), members)()
    wrapper.handle = marker
    return wrapper


@psd_scene(
    "family-interfaces.type.slots",
    "family-interfaces.type.members-only",
    "family-interfaces.no-python-subclass",
)
def test_an_interface_has_its_own_members_and_the_common_ones(s):
    kind = s.type_of(PALETTE)
    assert kind.__base__ is object and kind.__repr__ is not object.__repr__
    common = ["get_type", "_type_of", "_cast_to", "_cast_from", "_reinterpret_obj", "_cast_as"]
    common.append("_is_assignable")
    methods = [n for n, v in vars(kind).items() if n[:2] != "__" and "method" in str(type(v))]
    properties = [n for n, v in vars(kind).items() if type(v).__name__ == "getset_descriptor"]
    assert methods == MEMBERS[:3] + common and properties == MEMBERS[3:]
    raised(TypeError, type, "X", (kind,), {})
    assert type(kind.__new__(kind)) is kind


@psd_scene("family-interfaces.type.no-constructor")
def test_an_interface_cannot_be_called(s):
    interfaces = [
        kind
        for _, name, kind in s.types_below()
        if name[0] == "I" and name[1].isupper() and "_kelmor_clr_host" in vars(kind)
    ]
    assert len(interfaces) >= 5
    for kind in interfaces:
        assert text_of(TypeError, kind) == "type has no available constructor"
    assert s.calls() == []


@psd_scene("family-interfaces.host.slots-icolorpalette", "family-interfaces.host.no-reinterpret")
def test_the_host_of_an_interface(s):
    s.wrap(PALETTE, 0)
    assert s.requests(PALETTE) == [
        "call_000_GetNearestColorIndex",
        "call_001_GetNearestColorIndex",
        "call_000_GetArgb32Color",
        "call_000_GetColor",
        "get_EntriesCount",
        "get_Argb32Entries",
        "get_Entries",
        "get_IsCompactPalette",
        "btp_TypeOf",
        "btp_CastTo",
        "btp_CastAs",
        "btp_IsAssignable",
    ]
    for name in ("Xmp.IXmlValue", "IPsdColorPalette", "FileFormats.Psd.Layers.IShapeLayer"):
        s.wrap(name, 0)
        asked = s.requests(name)
        assert asked[-4:] == ["btp_TypeOf", "btp_CastTo", "btp_CastAs", "btp_IsAssignable"]
        assert not [m for m in asked if m == "btp_ReInterpretObj" or m.startswith("ctor_")]


@psd_scene("family-interfaces.members.interface-host")
def test_a_class_reaches_an_inherited_member_through_the_interface(s):
    palette = s.wrap("ColorPalette", 0x20)
    s.method(PALETTE, "call_000_GetColor").returns(0x50)
    s.method(PALETTE, "get_EntriesCount").returns(7)
    s.clear()
    assert handle_of(palette.get_color(3)) == 0x50 and palette.entries_count == 7
    calls = [e for e in s.script.journal if e["call"] == "delegate"]
    reached = {e["type"] for e in calls if e["method"] != "FreeInstance"}
    assert reached == {entry_class(PALETTE)}
    assert s.calls("call_000_GetColor", 2) == [[0x20, 3]]
    assert s.calls("get_EntriesCount") == [[0x20]]


@psd_scene("family-interfaces.host.variant-entries")
def test_casts_of_an_interface_take_records(s):
    for entry in ("btp_CastAs", "btp_IsAssignable"):
        s.method(PALETTE, entry).shows(0, 16)
    kind, value = s.type_of(PALETTE), s.wrap("Rectangle", 0x30)
    kind._cast_as(value), kind._is_assignable(value)
    for entry in ("btp_CastAs", "btp_IsAssignable"):
        ((memory,),) = s.memory(entry)
        assert struct.unpack("<i4xQ", memory) == (1, 0x30)


@psd_scene("family-interfaces.valid.host-only", refuse=[(PALETTE, "btp_CastAs")])
def test_an_invalid_interface_is_told_without_a_chain(s):
    kind = s.type_of(PALETTE)
    for function in (lambda: kind.__new__(kind), kind._type_of):
        error = raised(TypeError, function)
        assert str(error) == missing_text(PALETTE, "btp_CastAs") != REFERENCE
        assert error.__cause__ is None and error.__context__ is None


@psd_scene(
    "family-interfaces.conv.none",
    "family-interfaces.conv.exact-type",
    "family-interfaces.conv.declared",
)
def test_what_shows_the_interface_passes_unasked(s):
    copy = s.type_of("ColorPalette").copy_palette
    taken, asked = copies(s)
    values = [None, s.wrap(PALETTE, 0x21), s.wrap("ColorPalette", 0x22)]
    s.clear()
    for value in values:
        copy(value)
    assert taken == [(0, 0), (0, 0x21), (0, 0x22)] and asked == []
    assert s.calls() == ["call_000_CopyPalette"] * 3


@psd_scene(
    "family-interfaces.conv.assignable",
    "family-interfaces.conv.no-subtype-test",
    "family-interfaces.conv.sibling-not-fast",
)
def test_all_other_wrappers_are_asked_about(s):
    kind = s.type_of(PALETTE)
    copy = s.type_of("ColorPalette").copy_palette
    taken, asked = copies(s)
    shown = sibling_wrapper(_additional_interfaces={kind})
    values = [
        s.wrap("Xmp.XmpHeaderPi", 0x21),
        s.wrap("Rectangle", 0x22),
        s.wrap("IPsdColorPalette", 0x23),
        sibling_wrapper(),
        shown,
        sibling_wrapper(...),
    ]
    for value in values:
        copy(value)
    foreign = [(0, id(None)), (0, id(None)), (1, id(...))]
    assert taken == [(0, 0x21), (1, 0x22), (0, 0x23), *foreign]
    assert asked == taken


@psd_scene("family-interfaces.conv.declared-struct")
def test_a_struct_that_shows_the_interface_passes_unasked(s):
    copy = s.type_of("ColorPalette").copy_palette
    taken, asked = copies(s)
    # No struct of the library has an interface: one gets it as its module would give it.
    point = s.wrap("Point", 0x27)
    give_interface(s.type_of("Point"), s.type_of(PALETTE))
    copy(point)
    assert taken == [(1, 0x27)] and asked == []


def give_interface(kind, interface):
    """Writes the marker into a static type, whose dictionary Python only shows read-only."""
    (members,) = [m for m in gc.get_referents(vars(kind)) if type(m) is dict]
    members["_additional_interfaces"] = {interface}


@psd_scene("family-interfaces.conv.refused", "family-interfaces.no-python-implementation")
def test_what_does_not_fit_an_interface_is_refused(s):
    copy = s.type_of("ColorPalette").copy_palette
    s.method(PALETTE, "btp_IsAssignable").returns(0xFF00)
    wanted = "can't build IColorPalette value from 'kelmor.psd.Rectangle'"
    assert text_of(TypeError, copy, s.wrap("Rectangle", 0x22)) == wanted
    imitation = type("Imitation", (), {name: lambda self: None for name in MEMBERS})
    for value in (5, "x", imitation()):
        name = type(value).__name__
        wanted = f"can't build IColorPalette value from '{name}'"
        assert text_of(TypeError, copy, value) == wanted
    assert s.calls("call_000_CopyPalette") == []


@psd_scene("family-interfaces.conv.invalid", refuse=[(PALETTE, "btp_CastAs")])
def test_an_invalid_interface_matters_only_where_it_is_asked(s):
    copy = s.type_of("ColorPalette").copy_palette
    taken, asked = copies(s)
    copy(None), copy(s.wrap("ColorPalette", 0x22))
    assert taken == [(0, 0), (0, 0x22)] and asked == []
    wanted = missing_text(PALETTE, "btp_CastAs")
    assert text_of(TypeError, copy, s.wrap("Rectangle", 0x23)) == wanted
    assert len(taken) == 2 and asked == []


def gives_palette(s, handle, token, name):
    s.registry.name = name
    record = struct.pack("<Qq", handle, token)
    s.method("Image", "get_Palette").reset().writes(1, record)


@psd_scene(
    "family-interfaces.result.pattern",
    "family-interfaces.result.concrete",
    "family-interfaces.result.interface",
)
def test_an_interface_result_is_shown_as_what_it_is(s):
    image = s.wrap("Image", 0x10)
    rows = [
        ("Kelmor.PSD.ColorPalette", "ColorPalette"),
        ("Kelmor.PSD.Hidden", PALETTE),
        ("Kelmor.PSD.Rectangle", PALETTE),
        ("Kelmor.PSD.FileFormats.Psd.PsdColorPalette", "FileFormats.Psd.PsdColorPalette"),
    ]
    for token, (managed, shown) in enumerate(rows, 1):
        gives_palette(s, 0x20 + token, token, managed)
        s.clear()
        palette = image.palette
        assert type(palette) is s.type_of(shown) and handle_of(palette) == 0x20 + token
        assert s.calls("get_Palette") == [[0x10]] and s.calls("GetTypeName") == [[0x20 + token]]
    gives_palette(s, 0, 9, "Kelmor.PSD.ColorPalette")
    assert image.palette is None
    gives_palette(s, 0x20, 1, "Kelmor.PSD.ColorPalette")
    s.method("Image", "get_Palette").raises(RuntimeError, "no palette")
    assert text_of(RuntimeError, lambda: image.palette) == "no palette"


@psd_scene("family-interfaces.runtime.in-sets")
def test_runtime_interfaces_stand_in_the_sets(s):
    for name in ("Image", "LoadOptions", "StreamContainer"):
        kind = s.type_of(name)
        has = "_additional_interfaces" in vars(kind)
        assert has == (name != "LoadOptions")
        if has:
            assert s.interop._IDisposableWrapper in vars(kind)["_additional_interfaces"]
            assert s.interop._IDisposableWrapper in vars(kind)["_implicit_interfaces"]


@psd_scene("family-interfaces.external.local-bases")
def test_all_bases_are_of_the_module(s):
    kinds = {kind for _, _, kind in s.types_below()}
    found = [kind for kind in kinds if "_kelmor_clr_host" in vars(kind)]
    assert len(found) > 100
    for kind in found:
        assert kind.__base__ is object or kind.__base__.__module__.startswith("kelmor.psd")
