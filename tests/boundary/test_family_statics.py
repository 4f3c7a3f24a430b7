"""Static members, structs and nested types of the bound classes."""

import ctypes

from psd_scene import missing_text, psd_scene, string_at, variant_at
from wrappers import handle_of, i64, raised, text_of, variant

JPEG = "CoreExceptions.ImageFormats.JpegLoadException"


@psd_scene(
    "family-statics.names.upper",
    "family-statics.read.call",
    "family-statics.read.instance",
    "family-statics.read.anew",
)
def test_a_static_member_is_asked_for_each_time(s):
    color, c = s.type_of("Color"), s.wrap("Color", 0x10)
    s.method("Color", "getsa_Red").returns(0x50, 0x51, 0x52)
    s.clear()
    values = [color.RED, color.RED, c.RED]
    assert [handle_of(value) for value in values] == [0x50, 0x51, 0x52]
    assert all(type(value) is color for value in values)
    assert s.calls() == ["getsa_Red"] * 3
    s.method("Cache", "getsa_AllocatedMemoryBytesCount").returns(-5)
    assert s.type_of("Cache").ALLOCATED_MEMORY_BYTES_COUNT == -5


@psd_scene("family-statics.read.managed-exception")
def test_a_managed_exception_is_raised_by_the_access(s):
    s.method("Color", "getsa_Red").raises(RuntimeError, "no red").returns(0x50)
    assert text_of(RuntimeError, lambda: s.type_of("Color").RED) == "no red"
    assert s.calls("FreeInstance") == [] and s.calls("FreeStruct") == []


@psd_scene(
    "family-statics.read.invalid",
    "family-statics.write.setter-invalid",
    refuse=[("Cache", "btp_TypeOf")],
)
def test_an_invalid_class_answers_no_static_member(s):
    cache, wanted = s.type_of("Cache"), missing_text("Cache", "btp_TypeOf")
    assert text_of(TypeError, lambda: cache.CACHE_FOLDER) == wanted
    assert text_of(TypeError, cache.set_cache_folder, "x") == wanted
    assert text_of(TypeError, cache.set_cache_folder, 5) == wanted
    assert s.calls() == []


@psd_scene("family-statics.write.type", "family-statics.write.instance")
def test_a_static_member_cannot_be_assigned(s):
    c = s.wrap("Color", 0x10)
    for kind, name in (("Color", "RED"), ("Cache", "CACHE_FOLDER")):
        error = raised(TypeError, setattr, s.type_of(kind), name, 1)
        assert "immutable type" in str(error) or "built-in/extension type" in str(error)
        raised(TypeError, delattr, s.type_of(kind), name)
    raised(AttributeError, setattr, c, "RED", 1)
    assert s.calls() == []


@psd_scene(
    "family-statics.write.setter-call",
    "family-statics.write.setter-only-way",
    "family-statics.write.setter-refusals",
)
def test_a_writable_static_property_has_a_setter_of_its_own(s):
    cache, given = s.type_of("Cache"), []
    s.method("Cache", "setsa_CacheFolder").calls(lambda f: given.append(string_at(f.integers[0])))
    assert cache.set_cache_folder("/a") is None and given == ["/a"]
    s.clear()
    raised(TypeError, cache.set_cache_folder), raised(TypeError, cache.set_cache_folder, "a", "b")
    raised(TypeError, cache.set_cache_folder, value="a")
    assert text_of(TypeError, cache.set_cache_folder, 5) == "can't build String from 'int'"
    assert s.calls() == []
    descriptor = vars(cache)["CACHE_FOLDER"]
    assert type(descriptor).__name__ == "_FieldDescrType" and not hasattr(descriptor, "__set__")
    s.method("Cache", "setsa_CacheFolder").reset().raises(ValueError, "no folder")
    assert text_of(ValueError, cache.set_cache_folder, "x") == "no folder"
    s.method("Cache", "setsa_MaxMemoryForCache").takes(1)
    cache.set_max_memory_for_cache(-(2**40))
    assert [i64(row[0]) for row in s.calls("setsa_MaxMemoryForCache")] == [-(2**40)]


@psd_scene("family-statics.install.order", "family-statics.install.color-constants")
def test_static_members_stand_behind_the_markers(s):
    for name in ("Color", "Rectangle", "Cache", "FontSettings"):
        members = vars(s.type_of(name))
        keys = list(members)
        fields = [k for k, v in members.items() if type(v).__name__ == "_FieldDescrType"]
        assert fields and all(key == key.upper() for key in fields)
        place = max(keys.index("_kelmor_clr_host"), keys.index("_kelmor_clr_castable_obj"))
        assert keys[place + 1 : place + 1 + len(fields)] == fields
    assert {"EMPTY", "RED", "BLUE", "TRANSPARENT"} <= set(vars(s.type_of("Color")))


@psd_scene("family-statics.struct.eight-types", "binding-wrapper.type.struct-set")
def test_eight_types_are_structs(s):
    names = ["CmykColor", "Color", "Point", "PointF", "Rectangle", "RectangleF", "Size", "SizeF"]
    found = []
    for _, name, kind in s.types_below():
        marker = vars(kind).get("_kelmor_clr_host", 0)
        if marker == 0:
            continue  # an enumeration, or no wrapper at all
        s.clear()
        hash(s.wrap(kind, 0x70))
        family = "Stc" if marker is ... else "Obj"
        assert s.calls() == [f"GetHashOf{family}", "FreeInstance"], name
        found += [name] if marker is ... else []
    assert sorted(found) == names


@psd_scene("family-statics.read.no-instance-needed")
def test_a_static_class_has_members_and_no_instances(s):
    namespaces = s.type_of("Xmp.Namespaces")
    s.returns_object("Xmp.Namespaces", "getsa_Xml", "http://www.w3.org/XML/1998/namespace")
    assert namespaces.XML.startswith("http://www.w3.org/")
    assert text_of(TypeError, namespaces) == "type has no available constructor"


@psd_scene(
    "family-statics.struct.param-own-type",
    "family-statics.struct.param-other-wrapper",
    "family-statics.struct.param-refused",
    "family-statics.struct.param-none",
    "family-statics.struct.entries",
)
def test_a_struct_parameter_is_never_null(s):
    rectangle, own = s.type_of("Rectangle"), s.wrap("Rectangle", 0x30)
    taken, asked = [], []
    s.method("Rectangle", "call_000_Round").calls(lambda f: taken.append(variant_at(f.integers[0])))
    ask = s.method("RectangleF", "btp_IsAssignable")
    ask.calls(lambda f: asked.append(variant_at(f.integers[0])))
    s.clear()
    given = s.wrap("RectangleF", 0x31)
    assert rectangle.round(given) is None
    assert taken == [(1, 0x31)] and asked == [] and s.calls() == ["call_000_Round"]

    def accept(frame):
        asked.append(variant_at(frame.integers[0]))
        frame.result = 1

    ask.reset().calls(accept)
    rectangle.round(own), rectangle.round(s.wrap("Image", 0x40))
    assert asked == [(1, 0x30), (0, 0x40)] and taken[1:] == asked
    ask.reset().returns(0)
    wanted = "can't build RectangleF value from 'kelmor.psd.Rectangle'"
    assert text_of(TypeError, rectangle.round, own) == wanted
    s.clear()
    for value in (None, 5, "x"):
        wanted = f"can't build RectangleF value from '{type(value).__name__}'"
        assert text_of(TypeError, rectangle.round, value) == wanted
    assert s.calls() == []
    s.method("RectangleF", "btp_CastAs").shows(0, 16)
    s.type_of("RectangleF")._cast_as(own)
    assert [variant(part) for (part,) in s.memory("btp_CastAs")] == [(1, 0x30)]


@psd_scene("family-statics.struct.param-invalid", refuse=[("RectangleF", "btp_TypeOf")])
def test_an_invalid_struct_is_told_where_it_is_asked(s):
    wanted = missing_text("RectangleF", "btp_TypeOf")
    own = s.wrap("Rectangle", 0x30)
    assert text_of(TypeError, type(own).round, own) == wanted


@psd_scene("family-statics.struct.result", "family-statics.struct.ctor")
def test_a_struct_comes_as_a_handle(s):
    image = s.wrap("Image", 0x10)
    s.method("Image", "get_Bounds").returns(0x50, 0)
    bounds = image.bounds
    assert type(bounds) is s.type_of("Rectangle") and handle_of(bounds) == 0x50
    assert image.bounds is None and s.calls("GetTypeName") == []
    s.method("Color", "ctor_000_Color").returns(0x60)
    assert handle_of(s.type_of("Color")()) == 0x60


@psd_scene("family-statics.struct.get-type", "family-statics.struct.equality")
def test_a_struct_asks_as_a_struct(s):
    left, right = s.wrap("Rectangle", 0x30), s.wrap("Rectangle", 0x31)
    s.method("Object", "GetStcType").writes(1, ctypes.c_uint64(0x90)).returns(1)
    assert left.get_type() == ("Type", 0x90) and s.calls("GetStcType") == [[0x30]]
    s.method("Object", "IsEqualsOfStc").shows(1, 16).returns(1)
    assert left == right
    assert s.calls("IsEqualsOfStc") == [[0x30]]
    assert [variant(part) for (part,) in s.memory("IsEqualsOfStc")] == [(1, 0x31)]


@psd_scene("binding-descriptors.get.mixed-two-defs", "binding-descriptors.compare.identity")
def test_both_faces_of_a_mixed_name(s):
    kind, r = s.type_of("Rectangle"), s.wrap("Rectangle", 0x30)
    assert r.inflate is not r.inflate and kind.inflate is kind.inflate
    assert r.inflate == r.inflate != kind.inflate and hash(r.inflate) == hash(r.inflate)
    assert r.inflate.__doc__ is None and kind.inflate.__doc__ is None
    own = "<extension method inflate of kelmor.psd.Rectangle object"
    assert repr(kind.inflate) == own + "s>" and repr(r.inflate) == f"{own} at {hex(id(r))}>"
    assert repr(vars(kind)["inflate"]) == "<method 'inflate' of 'kelmor.psd.Rectangle' objects>"
    red = vars(s.type_of("Color"))["RED"]
    assert repr(red) == "<attribute 'RED' of 'kelmor.psd.Color' objects>"


@psd_scene("family-statics.capsule.value-type-by-address")
def test_a_siblings_value_type_is_given_by_its_address(s):
    tag = "2A1D6ECF"
    array = getattr(s.generic, f"_ArrayWrapper_{tag}", None) or s.generic._ArrayWrapper_ADFCB9C9
    tag = array.__name__[-8:]
    host = f"Kelmor.WrpGen.Generic.SiApiArray_{tag}"
    s.method(host, "SqLength").returns(1)
    s.method(host, "SqGetItem").writes(2, ctypes.c_uint64(0x77)).returns(0)
    # The scene's converter reads the handle behind the address.
    assert s.wrap(array, 0x10)[0] in [("Color", 0x77), ("PointF", 0x77)]


@psd_scene(
    "family-statics.nested.enum-in-class",
    "family-enums.nested.not-in-module",
)
def test_a_nested_enumeration_stands_in_its_class(s):
    import enum

    nested = vars(s.type_of(JPEG))["ErrorReason"]
    assert isinstance(nested, type) and issubclass(nested, enum.IntEnum)
    assert nested.__name__ == "ErrorReason"
    assert not hasattr(s.psd.coreexceptions.imageformats, "ErrorReason")
