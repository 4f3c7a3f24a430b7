"""A bound class: its host, its validity, its tables, its members and its converters."""

import json
import sys

import peer
from psd_scene import REFERENCE, entry_class, missing_text, psd_scene, string_at
from wrappers import handle_of, raised, text_of


def slots_of(key, name):
    """The slots that a description without shared members demands."""
    space, _, simple = f"Kelmor.PSD.{name}".rpartition(".")
    rows = json.loads((peer.ROOT / f"api/{key}/{space}.json").read_text())["types"]
    (row,) = [row for row in rows if row["type"] == simple]
    members = row["members"]
    constructors = [m for m in members if m["kind"] == "ctor"]
    slots = [f"ctor_{n:03}_{simple}" for n in range(len(constructors))]
    counted = {}
    for member in members:
        if member["kind"] == "method":
            number = counted.setdefault(member["name"], 0)
            counted[member["name"]] += 1
            slots.append(f"call_{number:03}_{member['name']}")
        elif member["kind"] == "property" and not member.get("static"):
            slots.append(f"get_{member['name']}")
            slots += [f"set_{member['name']}"] if member.get("set") else []
    return slots


@psd_scene(
    "family-class.host.slots-xmp-header-pi",
    "family-class.entry.class-xmp-header-pi",
    "family-class.host.request-arguments",
    "family-class.host.lazy-per-class",
    "family-class.host.lazy-at-import",
    "family-class.host.bound-once",
)
def test_a_host_asks_for_its_slots_at_first_use(s):
    at_import = [e["type"] for e in s.journal_of_start if "type" in e]
    assert not [name for name in at_import if name.startswith("WrpNs_")]
    s.make("Xmp.XmpHeaderPi")
    asked = [e for e in s.script.journal if e["call"] == "coreclr_wrap_create_delegate"]
    name = "WrpNs_Kelmor.WrpNs_PSD.WrpNs_Xmp.WrpCs_XmpHeade_B968B5B1"
    assert [(e["assembly"], e["type"]) for e in asked] == [("WrpInterop.Kelmor.PSD", name)] * 11
    assert [e["method"] for e in asked] == [
        "ctor_000_XmpHeaderPi",
        "ctor_001_XmpHeaderPi",
        "call_000_GetXmlValue",
        "call_000_Equals",
        "get_Guid",
        "set_Guid",
        "btp_TypeOf",
        "btp_CastTo",
        "btp_ReInterpretObj",
        "btp_CastAs",
        "btp_IsAssignable",
    ]
    s.clear()
    s.make("Xmp.XmpHeaderPi")
    assert s.requests() == []


@psd_scene(
    "family-class.host.slots-general-order",
    "family-class.entry.property-names",
    "family-class.entry.call-names",
)
def test_slots_follow_the_description(s):
    casts = ["TypeOf", "CastTo", "ReInterpretObj", "CastAs", "IsAssignable"]
    for name in ("LoadOptions", "ImageLoadOptions.PsdLoadOptions", "ImageOptions.PsdOptions"):
        kind = s.type_of(name)
        kind.__new__(kind)
        assert s.requests(name) == slots_of("psd", name) + [f"btp_{cast}" for cast in casts]


@psd_scene("family-class.host.slots-cast-from")
def test_the_five_types_have_their_cast_behind_cast_to(s):
    for name in ("Point", "Size", "SizeF", "StreamContainer", "FileStreamContainer"):
        kind = s.type_of(name)
        kind.__new__(kind)
        asked = s.requests(name)
        place = asked.index("btp_CastFrom")
        assert asked[place - 1 : place + 2] == ["btp_CastTo", "btp_CastFrom", "btp_ReInterpretObj"]
    s.type_of("Rectangle").__new__(s.type_of("Rectangle"))
    assert "btp_CastFrom" not in s.requests("Rectangle")


@psd_scene("family-class.entry.ctor-names")
def test_constructors_are_numbered_with_the_simple_name(s):
    kind = s.type_of("FileFormats.Psd.PsdImage")
    kind.__new__(kind)
    asked = s.requests("FileFormats.Psd.PsdImage")
    assert asked[:8] == [f"ctor_{n:03}_PsdImage" for n in range(8)]
    assert not asked[8].startswith("ctor_")


@psd_scene("family-class.host.signatures", "family-class.method.handle-first")
def test_delegates_are_called_in_their_forms(s):
    name = "Xmp.XmpHeaderPi"
    texts = []
    s.method(name, "ctor_001_XmpHeaderPi").calls(lambda f: texts.append(string_at(f.integers[0])))
    s.type_of(name)("one")
    h, other = s.make(name, 0x10), s.make(name, 0x20)
    s.returns_object(name, "call_000_GetXmlValue", "text")
    assert h.get_xml_value() == "text" and s.calls("call_000_GetXmlValue", 1) == [[0x10]]
    s.method(name, "call_000_Equals").returns(0x101)
    assert h.equals(other) is True and s.calls("call_000_Equals", 2) == [[0x10, 0x20]]
    s.method(name, "set_Guid").calls(
        lambda f: texts.append((f.integers[0], string_at(f.integers[1])))
    )
    h.guid = "two"
    assert texts == ["one", (0x10, "two")]


@psd_scene(
    "family-class.host.missing-entry-text",
    "family-class.missing.constructor-raises",
    "family-class.missing.import-works",
    "family-class.missing.permanent",
    "family-class.host.stops-at-first-missing",
    "family-class.new.checks",
    "family-class.state.once",
    refuse=[("Xmp.XmpHeaderPi", "call_000_Equals")],
)
def test_a_missing_entry_makes_the_class_unusable_for_good(s):
    name = "Xmp.XmpHeaderPi"
    kind = s.type_of(name)
    error = raised(TypeError, kind)
    assert str(error) == missing_text(name, "call_000_Equals") and error.__cause__ is None
    asked = ["ctor_000_XmpHeaderPi", "ctor_001_XmpHeaderPi", "call_000_GetXmlValue"]
    assert s.requests(name) == asked + ["call_000_Equals"]
    s.script.allow(entry_class(name), "call_000_Equals")
    s.clear()
    assert text_of(TypeError, kind) == text_of(TypeError, kind.__new__, kind) == str(error)
    assert s.requests() == []
    assert s.make("LoadOptions") is not None


@psd_scene(
    "family-class.state.own-host-first",
    "family-class.checks.static-paths",
    refuse=[("Image", "btp_TypeOf"), ("DataStreamSupporter", "btp_TypeOf")],
)
def test_the_own_host_is_judged_first_and_alone(s):
    image = s.type_of("Image")
    error = raised(TypeError, image.load, 1, 2, 3, 4)
    assert str(error) == missing_text("Image", "btp_TypeOf") and error.__cause__ is None
    assert s.requests("DataStreamSupporter") == [] and s.calls() == []


@psd_scene(
    "family-class.state.references-general",
    "family-class.state.chained-error",
    "family-class.state.own-host-stays-valid",
    refuse=[("DisposableObject", "btp_CastAs")],
)
def test_a_failed_ancestor_makes_the_class_unusable(s):
    image = s.type_of("Image")
    error = raised(TypeError, image.__new__, image)
    assert str(error) == REFERENCE and error.__cause__ is error.__context__
    assert type(error.__cause__) is TypeError
    assert str(error.__cause__) == missing_text("DisposableObject", "btp_CastAs")
    assert s.requests("Image")[-1] == "btp_IsAssignable"


@psd_scene(
    "family-class.state.interface-wrapper-fails",
    "family-interfaces.runtime.validity",
    refuse=[("Disposable", "btp_CastAs")],
)
def test_a_failed_runtime_interface_makes_the_class_unusable(s):
    image = s.type_of("Image")
    error = raised(TypeError, image.__new__, image)
    assert str(error) == REFERENCE
    assert str(error.__cause__) == missing_text("Disposable", "btp_CastAs")


@psd_scene("family-class.state.image-references")
def test_image_asks_its_base_and_then_the_disposable_wrapper(s):
    image = s.type_of("Image")
    image.__new__(image)
    order = list(dict.fromkeys(cls for cls, _ in s.script.requests))
    names = [entry_class(n) for n in ("Image", "DataStreamSupporter", "DisposableObject")]
    assert order == [*names, entry_class("Disposable")]


@psd_scene("family-class.state.first-invalid-ends", refuse=[("DataStreamSupporter", "btp_CastAs")])
def test_the_scan_ends_at_the_first_failure(s):
    image = s.type_of("Image")
    error = raised(TypeError, image.__new__, image)
    assert str(error.__cause__) == missing_text("DataStreamSupporter", "btp_CastAs")
    assert s.requests("DisposableObject") == [] and s.requests("Disposable") == []


@psd_scene("family-class.state.no-references")
def test_a_class_without_references_is_judged_by_its_host_alone(s):
    s.make("Xmp.XmpHeaderPi")
    assert {cls for cls, _ in s.script.requests} == {entry_class("Xmp.XmpHeaderPi")}


@psd_scene("family-class.new.null-handle")
def test_a_fresh_wrapper_passes_a_null_handle(s):
    kind = s.type_of("Xmp.XmpHeaderPi")
    h = kind.__new__(kind)
    assert handle_of(h) is None
    s.returns_object("Xmp.XmpHeaderPi", "call_000_GetXmlValue", "x")
    h.get_xml_value()
    assert s.calls("call_000_GetXmlValue", 1) == [[0]]


@psd_scene("family-class.methods.table-order", "family-class.docs.null")
def test_own_members_stand_before_the_common_seven(s):
    kind = s.type_of("Xmp.XmpHeaderPi")
    common = ["get_type", "_type_of", "_cast_to", "_cast_from", "_reinterpret_obj", "_cast_as"]
    common.append("_is_assignable")
    names = [n for n in kind.__dict__ if n in common + ["get_xml_value", "equals"]]
    assert names == ["get_xml_value", "equals", *common]
    assert kind.equals.__doc__ is None and kind.guid.__doc__ is None
    for name in ("LoadOptions", "Image", "Color", "IColorPalette"):
        table = [n for n, v in s.type_of(name).__dict__.items() if n in common]
        assert table == common
        methods = list(s.type_of(name).__dict__)
        own = [n for n, v in s.type_of(name).__dict__.items() if "method" in type(v).__name__]
        assert [n for n in own if n in common] == own[-7:], methods


@psd_scene("family-class.methods.flags", "family-class.methods.noargs-refuses")
def test_methods_take_what_their_flags_say(s):
    h = s.make("Xmp.XmpHeaderPi")
    s.clear()
    assert "takes no arguments" in text_of(TypeError, h.get_xml_value, 1)
    assert "takes no arguments" in text_of(TypeError, h.get_type, 1)
    assert "takes no arguments" in text_of(TypeError, type(h)._type_of, 1)
    for name in ("_cast_to", "_cast_as", "_is_assignable", "_reinterpret_obj", "_cast_from"):
        assert "takes exactly one argument" in text_of(TypeError, getattr(h, name))
        assert "keyword" in text_of(TypeError, getattr(h, name), obj=1)
    for name in ("_type_of", "_cast_to", "_reinterpret_obj", "_cast_as", "_is_assignable"):
        assert isinstance(type(h).__dict__[name], staticmethod)
    assert not isinstance(type(h).__dict__["_cast_from"], staticmethod)
    h.equals(other=None)
    assert s.calls() == ["call_000_Equals"]


@psd_scene("family-class.methods.static")
def test_a_static_method_is_called_on_the_type_and_on_an_instance(s):
    s.method("Image", "call_001_CanLoad").returns(1)
    image = s.wrap("Image", 0)
    assert s.type_of("Image").can_load("x") is True and image.can_load("x") is True


@psd_scene("family-class.getset.writable", "family-class.setter.call", "family-class.getter.call")
def test_a_property_asks_and_sets_each_time(s):
    name, texts = "Xmp.XmpHeaderPi", []
    h = s.make(name)
    s.returns_object(name, "get_Guid", "one")
    assert (h.guid, h.guid) == ("one", "one") and s.calls("get_Guid", 1) == [[0x10], [0x10]]
    s.method(name, "set_Guid").calls(
        lambda f: texts.append((f.integers[0], string_at(f.integers[1])))
    )
    h.guid = "x"
    assert texts == [(0x10, "x")]
    s.method(name, "get_Guid").reset().raises(ValueError, "no guid").returns(0x1234)
    assert text_of(ValueError, lambda: h.guid) == "no guid"


@psd_scene("family-class.getset.read-only")
def test_a_property_without_a_setter_cannot_be_assigned(s):
    image = s.wrap("Image", 0)
    raised(AttributeError, setattr, image, "width", 5)
    assert s.calls() == []


@psd_scene(
    "family-class.method.keyword-call",
    "family-class.method.parse-failure",
    "family-class.method.all-parameters-required",
)
def test_arguments_come_by_place_or_keyword(s):
    name = "Xmp.XmpHeaderPi"
    h, other = s.make(name, 0x10), s.make(name, 0x20)
    h.equals(other), h.equals(other=other)
    assert s.calls("call_000_Equals", 2) == [[0x10, 0x20]] * 2
    s.clear()
    assert text_of(TypeError, h.equals, 5) == "can't build XmpHeaderPi value from 'int'"
    wanted = "function missing required argument 'other' (pos 1)"
    assert text_of(TypeError, h.equals) == wanted
    raised(TypeError, h.equals, other, 1)
    assert s.calls() == []


@psd_scene("family-class.method.managed-exception", "family-class.method.only-error-test")
def test_the_pending_error_alone_decides(s):
    name = "Xmp.XmpHeaderPi"
    h = s.make(name)
    s.method(name, "call_000_GetXmlValue").raises(RuntimeError, "managed").returns(0x12345)
    assert text_of(RuntimeError, h.get_xml_value) == "managed"
    s.method(name, "call_000_Equals").returns(0)
    assert h.equals(None) is False


@psd_scene("family-class.method.scalar-results")
def test_scalars_come_in_their_widths(s):
    image = s.wrap("Image", 0x10)
    s.method("Image", "get_Width").returns(0xFFFFFFFF)
    assert image.width == -1
    s.method("Image", "get_UsePalette").returns(0x100)
    assert image.use_palette is False
    raster = s.wrap("RasterImage", 0x10)
    s.method("RasterImage", "get_HorizontalResolution").returns(72.5)
    assert raster.horizontal_resolution == 72.5


@psd_scene("family-class.method.object-results", "family-class.method.void-results")
def test_built_results_come_unchanged(s):
    name, answer = "Xmp.XmpHeaderPi", ["built"]
    h = s.make(name)
    s.returns_object(name, "get_Guid", answer)
    before = sys.getrefcount(answer)
    result = h.guid
    assert result is answer and sys.getrefcount(answer) == before + 2  # ours and the script's own
    image = s.wrap("DataStreamSupporter", 0x10)
    assert image.cache_data() is None


@psd_scene("family-class.method.bound-results", "family-class.conv.to-python")
def test_a_class_result_is_wrapped_as_declared(s):
    image = s.wrap("Image", 0x10)
    s.method("Image", "get_BackgroundColor").returns(0x77)
    color = image.background_color
    assert type(color) is s.type_of("Color") and handle_of(color) == 0x77
    s.method("Image", "get_Container").returns(0x78, 0)
    assert type(image.container) is s.type_of("Image") and image.container is None
    assert s.calls("GetTypeName") == []


@psd_scene("family-class.setter.converter-failure", "family-class.setter.managed-exception")
def test_an_assignment_raises_what_went_wrong(s):
    name = "Xmp.XmpHeaderPi"
    h = s.make(name)
    s.clear()
    assert text_of(TypeError, setattr, h, "guid", 5) == "can't build String from 'int'"
    assert s.calls() == []
    s.method(name, "set_Guid").raises(ValueError, "refused")
    assert text_of(ValueError, setattr, h, "guid", "x") == "refused"


@psd_scene(
    "family-class.conv.none",
    "family-class.conv.own-type",
    "family-class.conv.unrelated-assignable",
    "family-class.conv.unrelated-refused",
    "family-class.conv.not-a-wrapper",
)
def test_a_class_parameter_takes_what_may_be_one(s):
    name = "Xmp.XmpHeaderPi"
    h, own, foreign = s.make(name, 0x10), s.make(name, 0x20), s.make("LoadOptions", 0x30)
    s.clear()
    h.equals(None), h.equals(own)
    assert s.calls() == ["call_000_Equals"] * 2
    s.method(name, "btp_IsAssignable").returns(1)
    h.equals(foreign)
    assert s.calls("call_000_Equals", 2) == [[0x10, 0], [0x10, 0x20], [0x10, 0x30]]
    assert s.calls("btp_IsAssignable", 1) == [[0x30]]
    s.method(name, "btp_IsAssignable").reset().returns(0)
    wanted = "can't build XmpHeaderPi value from 'kelmor.psd.LoadOptions'"
    assert text_of(TypeError, h.equals, foreign) == wanted
    s.clear()
    for value, spelled in ((5, "int"), ("x", "str"), (s.wrap("Color", 5), "kelmor.psd.Color")):
        wanted = f"can't build XmpHeaderPi value from '{spelled}'"
        assert text_of(TypeError, h.equals, value) == wanted
    assert s.calls("btp_IsAssignable") == []


@psd_scene(
    "family-class.checks.not-in-plain-converter",
    "family-class.conv.invalid-type",
    "family-class.missing.result-refused",
    refuse=[("LoadOptions", "btp_TypeOf"), ("Color", "btp_TypeOf")],
)
def test_an_invalid_class_matters_only_where_it_is_needed(s):
    image = s.type_of("Image")
    s.method("Image", "call_000_CanLoad").returns(1)
    assert image.can_load("x", None) is True
    assert s.requests("LoadOptions") == []
    header = s.make("Xmp.XmpHeaderPi", 0x10)
    failures = raised(TypeError, image.can_load, "x", header).args[0]
    assert missing_text("LoadOptions", "btp_TypeOf") in failures
    assert s.calls("btp_IsAssignable") == []
    s.method("Image", "get_BackgroundColor").returns(0x77)
    wrapper = s.wrap("Image", 0x10)
    wanted = missing_text("Color", "btp_TypeOf")
    assert text_of(TypeError, lambda: wrapper.background_color) == wanted
    assert s.calls("FreeInstance", 1) == [[0x77]]


@psd_scene("family-class.getset.writable")
def test_a_property_cannot_be_deleted(s):
    h, c = s.make("Xmp.XmpHeaderPi"), s.wrap("Color", 0x20)
    s.clear()
    assert text_of(AttributeError, delattr, h, "guid") == "can't delete attribute 'guid'"
    r = s.wrap("Rectangle", 0x30)
    assert text_of(AttributeError, delattr, r, "x") == "can't delete attribute 'x'"
    raised(AttributeError, delattr, c, "a")
    assert s.calls() == []
