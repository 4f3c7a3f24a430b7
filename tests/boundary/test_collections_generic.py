"""The generic instances of the extension: element forms, hosts, converters, callbacks."""

import ctypes
import struct

import pytest
from peer import ROOT
from psd_scene import psd_scene
from wrappers import handle_of, i32, raised, shown, text_of, variant


def shapes():
    """Tag, element type and wrapper letters of the list of behaviours, row by row."""
    import csv
    import re

    kinds = {"_ArrayWrapper": "A", "_IterWrapper": "I", "_IterableWrapper": "E"}
    kinds["_ListWrapper"] = "L"
    with open(ROOT / "tests/behaviours/collections-generic.tsv", encoding="utf-8") as file:
        for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            if ".tag-" not in row["id"]:
                continue
            text = row["behaviour"]
            tag = re.search(r"Tag (\w{8})", text)[1]
            has = text.split("has exactly")[1].split(" and no ")[0] if "has exactly" in text else ""
            letters = {kinds[name] for name in re.findall(r"`(_\w+Wrapper)_\w{8}`", has)}
            yield row["id"], tag, letters, "has no entry" not in text


def tag_parameters():
    mark = pytest.mark.behaviour
    return [pytest.param(t, h, c, id=t, marks=mark(b)) for b, t, h, c in shapes()]


@pytest.fixture(scope="module")
def found_shapes(tmp_path_factory):
    """What the extension has: wrapper names, and tags with both callbacks."""
    import peer

    def program():
        from psd_scene import GENERIC_ORDER, Psd

        s = Psd()
        names = [name for name in vars(s.generic) if "Wrapper_" in name]
        return names, [t for t in GENERIC_ORDER if s.callback(t, 0) and s.callback(t, 1)]

    installation = peer.Installation(tmp_path_factory.mktemp("generic") / "installation")
    installation.add_runtime()
    installation.add_assemblies("psd")
    outcome = peer.run_python(program, environment=installation.environment())
    assert outcome.code == 0, outcome
    return outcome.value


@pytest.mark.parametrize(("tag", "letters", "has_callbacks"), tag_parameters())
def test_the_shapes_of_a_tag(found_shapes, tag, letters, has_callbacks):
    names, with_callbacks = found_shapes
    kinds = {"Array": "A", "Iter": "I", "Iterable": "E", "List": "L"}
    found = {letter for kind, letter in kinds.items() if f"_{kind}Wrapper_{tag}" in names}
    if not found and (letters or tag not in with_callbacks):
        pytest.skip("the managed library has no member over this element type yet")
    assert found == letters
    assert (tag in with_callbacks) == has_callbacks


def wrapper(s, kind, tag):
    return getattr(s.generic, f"_{kind}Wrapper_{tag}")


def entry(kind, tag):
    names = {"Array": "SiApiArray", "Iter": "SiApiEnumerator", "Iterable": "SiApiEnumerable"}
    return f"Kelmor.WrpGen.Generic.{names[kind]}_{tag}"


def layer(s):
    return s.psd.fileformats.psd.layers.Layer


def out_bytes(s, tag, kind, method, argument, content, status=0):
    s.method(entry(kind, tag), method).reset().writes(argument, content).returns(status)


@psd_scene(
    "collections-generic.module.type-names",
    "collections-generic.types.no-base",
    "collections-generic.types.not-subclassable",
    "collections-generic.host.class-names",
    "collections-generic.host-iterable.delegates",
    "collections-generic.host.no-creators",
    "collections-generic.host.lazy-bind",
)
def test_names_and_hosts(s):
    assert not [e for e in s.journal_of_start if "WrpGen.Generic" in e.get("type", "")]
    btp = ["btp_TypeOf", "btp_CastTo", "btp_CastAs", "btp_IsAssignable"]
    seen = 0
    for name, kind in vars(s.generic).items():
        if "Wrapper_" not in name:
            continue
        shape, tag = name[1:].split("Wrapper_")
        assert f"{kind.__module__}.{kind.__name__}" == f"kelmor.psd._wrpgen._generic.{name}"
        base = s.interop._ArrayWrapper if shape == "Array" else object
        assert kind.__base__ is base
        raised(TypeError, type, "X", (kind,), {})
        s.clear()
        s.wrap(kind, 1)
        asked = s.requests(entry(shape, tag))
        if shape == "Iter":
            assert asked == ["MoveNext"] + btp
        if shape == "Iterable":
            assert asked == ["GetEnumerator"] + btp
        assert asked and not [m for m in asked if m.startswith("Create")]
        seen += 1
    assert seen > 40


@psd_scene(
    "collections-generic.array.getitem-object",
    "collections-generic.array.setitem-object",
    "collections-generic.host.signatures-object",
    "collections-generic.iter.next-object",
)
def test_class_elements_cross_as_handles(s):
    array, tag = wrapper(s, "Array", "0D30925B"), "0D30925B"
    a = s.wrap(array, 0x10)
    s.method(entry("Array", tag), "SqLength").returns(3)
    out_bytes(s, tag, "Array", "SqGetItem", 2, ctypes.c_uint64(0x77))
    got = a[1]
    assert type(got) is layer(s) and handle_of(got) == 0x77
    assert s.calls("GetTypeName") == []
    del got
    assert s.calls("FreeInstance") == [[0x77]]
    out_bytes(s, tag, "Array", "SqGetItem", 2, ctypes.c_uint64(0))
    assert a[1] is None
    item = s.wrap(layer(s), 0x55)
    s.clear()
    a[0], a[0] = item, None
    assert [words[2] for words in s.calls("SqSetItem", 3)] == [0x55, 0]
    s.method(entry("Array", tag), "SqContains").returns(1, 0)
    assert item in a and None not in a
    assert [words[1] for words in s.calls("SqContains", 2)] == [0x55, 0]
    assert text_of(TypeError, a.__setitem__, 0, 5) == "can't build Layer value from 'int'"
    it = s.wrap(wrapper(s, "Iter", tag), 0x20)
    out_bytes(s, tag, "Iter", "MoveNext", 1, ctypes.c_uint64(0x99))
    got = next(it)
    assert type(got) is layer(s) and handle_of(got) == 0x99


@psd_scene(
    "collections-generic.array.iteration",
    "collections-generic.iterable.iter",
    "collections-generic.iterable.surface",
)
def test_iteration_gives_typed_iterators(s):
    s.registry.name = "No.Such.Type"
    untyped = "Kelmor.WrpGen.Interop.SiApiEnumerable"
    s.method(untyped, "GetEnumerator").writes(1, struct.pack("<Qq", 0x20, 5)).returns(0)
    out_bytes(s, "0D30925B", "Iter", "MoveNext", 1, ctypes.c_uint64(0x99))
    s.method(entry("Iter", "0D30925B"), "MoveNext").returns(1)
    got = list(s.wrap(wrapper(s, "Array", "0D30925B"), 0x10))
    assert [type(one) for one in got] == [layer(s)]
    tag = "A4A29720"
    typed = s.method(entry("Iterable", tag), "GetEnumerator")
    typed.writes(1, struct.pack("<Qq", 0x30, 6)).returns(0)
    x = s.wrap(wrapper(s, "Iterable", tag), 0x11)
    it = iter(x)
    assert type(it) is wrapper(s, "Iter", tag) and handle_of(it) == 0x30
    out_bytes(s, tag, "Iter", "MoveNext", 1, ctypes.c_int32(-4))
    s.method(entry("Iter", tag), "MoveNext").returns(1)
    assert list(s.wrap(wrapper(s, "Array", tag), 0x12)) == [-4]
    raised(TypeError, len, x), raised(TypeError, lambda: x[0])
    assert not hasattr(x, "__enter__")


@psd_scene(
    "collections-generic.array.getitem-scalars",
    "collections-generic.host.signatures-scalar",
    "collections-generic.host.no-check-value",
)
def test_scalars_cross_unboxed(s):
    rows = [
        ("CF33F510", ctypes.c_int8, -128),
        ("A2718E40", ctypes.c_int16, -32768),
        ("A4A29720", ctypes.c_int32, -(2**31)),
        ("E7C32114", ctypes.c_int64, -(2**63)),
        ("57AC8DC4", ctypes.c_uint16, 65535),
        ("110A8374", ctypes.c_uint32, 4294967295),
        ("FCB07591", ctypes.c_float, 0.5),
        ("1BA766B5", ctypes.c_double, 0.1),
    ]
    for tag, width, value in rows:
        a = s.wrap(wrapper(s, "Array", tag), 0x10)
        host = entry("Array", tag)
        s.method(host, "SqLength").returns(2)
        out_bytes(s, tag, "Array", "SqGetItem", 2, width(value))
        assert a[0] == value and type(a[0]) is type(value)
        if width is ctypes.c_float:
            s.method(host, "SqGetItemNoCheck").returns_float32(value)
        else:
            s.method(host, "SqGetItemNoCheck").returns(value)
        assert a[:] == [value] * 2
        for method in ("SqSetItem", "SqContains", "CountOf", "IndexBy"):
            s.method(host, method).takes(6, 1)
        s.clear()
        a[0] = value
        value in a, a.count(value), a.index(value, 1)
        places = {"SqSetItem": 2, "SqContains": 1, "CountOf": 1, "IndexBy": 5}
        for method, place in places.items():
            (call,) = [e for e in s.script.journal if e.get("method") == method]
            if isinstance(value, float):
                raw = struct.pack("<Q", call["floats"][0])
                assert width.from_buffer_copy(raw).value == value
            else:
                assert width(call["arguments"][place]).value == value
        (call,) = [e for e in s.script.journal if e.get("method") == "IndexBy"]
        assert [i32(word) for word in call["arguments"][1:5]] == [1, 1, 0, 0]
    tag = "CBE911FC"
    a = s.wrap(wrapper(s, "Array", tag), 0x10)
    s.method(entry("Array", tag), "SqLength").returns(1)
    s.writes_object(entry("Array", tag), "SqGetItem", 2, "text")
    assert a[0] == "text"


@psd_scene("collections-generic.host.signatures-struct")
def test_struct_elements_go_in_as_records(s):
    tag = "25E8868A"
    host = entry("Array", tag)
    a = s.wrap(wrapper(s, "Array", tag), 0x10)
    s.method(host, "SqLength").returns(1)
    out_bytes(s, tag, "Array", "SqGetItem", 2, ctypes.c_uint64(0x77))
    got = a[0]
    assert type(got) is s.psd.Point and handle_of(got) == 0x77
    s.method(host, "SqSetItem").shows(2, 16)
    for method in ("SqContains", "CountOf"):
        s.method(host, method).shows(1, 16)
    a[0] = got
    got in a, a.count(got)
    for method in ("SqSetItem", "SqContains", "CountOf"):
        assert [variant(part[0]) for part in s.memory(method)] == [(1, 0x77)]
    text = "can't build Point value from 'NoneType'"
    assert text_of(TypeError, a.__setitem__, 0, None) == text


@psd_scene(
    "collections-generic.array.getitem-interface",
    "collections-generic.array.getitem-nested",
)
def test_interfaces_and_arrays_come_as_records(s):
    tag = "1209469D"
    a = s.wrap(wrapper(s, "Array", tag), 0x10)
    s.method(entry("Array", tag), "SqLength").returns(1)
    s.registry.name = "No.Such.Type"
    out_bytes(s, tag, "Array", "SqGetItem", 2, struct.pack("<Qq", 0x77, 5))
    got = a[0]
    assert type(got).__name__ == "ILayerEffect" and handle_of(got) == 0x77
    tag = "F25B175D"
    a = s.wrap(wrapper(s, "Array", tag), 0x10)
    s.method(entry("Array", tag), "SqLength").returns(1)
    out_bytes(s, tag, "Array", "SqGetItem", 2, struct.pack("<i4xQq", 0, 0x78, 5))
    got = a[0]
    assert type(got) is wrapper(s, "Array", "FCB07591") and handle_of(got) == 0x78


@psd_scene("collections-generic.array.getitem-sibling")
def test_sibling_elements_go_through_the_siblings_converter(s):
    for tag, name in [("ADFCB9C9", "Color"), ("8D7E2A03", "ColorMap"), ("2A1D6ECF", "PointF")]:
        a = s.wrap(wrapper(s, "Array", tag), 0x10)
        s.method(entry("Array", tag), "SqLength").returns(1)
        out_bytes(s, tag, "Array", "SqGetItem", 2, ctypes.c_uint64(0x77))
        assert a[0] == (name, 0x77)
        refused = f"the sibling has no {name} for that"
        s.method("Test", name + "FromPy").raises(ValueError, refused).returns(0)
        for use in (a.index, a.contains, a.count, lambda value: a.__setitem__(0, value)):
            assert text_of(ValueError, use, 5) == refused


@psd_scene(
    "collections-generic.array.setslice",
    "collections-generic.array.surface",
    "collections-generic.array.sort-index-texts",
    "collections-generic.array.concat-repeat",
)
def test_the_surface_of_a_typed_array(s):
    tag = "A4A29720"
    a = s.wrap(wrapper(s, "Array", tag), 0x10)
    host = entry("Array", tag)
    s.method(host, "SqLength").returns(3)
    s.method(host, "SqGetItemNoCheck").returns(1, 2, 3, 1, 2, 3, 1, 2, 3)
    assert a + [9] == [1, 2, 3, 9] and a * 2 == [1, 2, 3] * 2 and a.copy() == [1, 2, 3]
    s.clear()
    a[0:2] = [7, 8]
    given = [[i32(word) for word in words[1:]] for words in s.calls("SqSetItemNoChek", 3)]
    assert given == [[0, 7], [1, 8]]
    text = "attempt to assign sequence of size 1 to extended slice of size 2"
    assert text_of(ValueError, a.__setitem__, slice(0, 2), [1]) == text
    assert text_of(ValueError, a.sort, key=len) == "custom sorting key is not supported"
    s.method(host, "IndexBy").returns(-1)
    assert text_of(ValueError, a.index, 5) == "value is not in list"
    assert len(a) == a.length == 3 and a.reverse() is None and a.contains(5) is False
    for name in ("append", "insert", "extend", "remove", "pop", "clear"):
        assert not hasattr(a, name)
    for name in ("_type_of", "_cast_to", "_cast_from", "_is_assignable", "_cast_as", "get_type"):
        assert hasattr(a, name)
    s.method("Test", "ObjectFromPy").writes(1, ctypes.c_uint64(0x99)).returns(1)
    s.method(host, "btp_ReInterpretObj").writes(1, ctypes.c_uint64(0x79)).returns(1)
    made = type(a)._reinterpret_obj("object")
    assert type(made) is type(a) and handle_of(made) == 0x79
    for kind in ("Iter", "Iterable"):
        full = f"kelmor.psd._wrpgen._generic._{kind}Wrapper_{tag}"
        text = f"cannot convert from  'int' to '{full}'"
        assert text_of(TypeError, wrapper(s, kind, tag)._reinterpret_obj, 5) == text


@psd_scene(
    "collections-generic.array.iterable-validity",
    refuse=[("Kelmor.WrpGen.Generic.SiApiEnumerable_A4A29720", "GetEnumerator")],
)
def test_an_array_needs_its_iterable(s):
    failed = raised(TypeError, s.wrap, wrapper(s, "Array", "A4A29720"), 1)
    assert str(failed) == "one or more refereced type is not initialized"
    assert "SiApiEnumerable_A4A29720" in str(failed.__cause__)


def read(s, tag, items, index, out, size=16):
    """Reads an element of a list by the tag's callback: the status, and what was written."""
    memory = (ctypes.c_ubyte * size)(*[0xEE] * size)
    outcome = shown(s.status(s.callback(tag, 0), items, index, ctypes.addressof(memory)))
    return outcome, bytes(memory)


@psd_scene(
    "collections-generic.callbacks-list.int16-range",
    "collections-generic.callbacks-list.widths",
    "collections-generic.callbacks-list.float",
)
def test_numbers_are_read_in_their_width(s):
    for tag, form, value in [
        ("CF33F510", "<b", -5),
        ("A2718E40", "<h", -500),
        ("57AC8DC4", "<H", 50000),
        ("A4A29720", "<i", -70000),
        ("110A8374", "<I", 4000000000),
        ("FCB07591", "<f", 0.5),
        ("E7C32114", "<q", -(2**40)),
        ("1BA766B5", "<d", 0.1),
    ]:
        outcome, memory = read(s, tag, [value], 0, None)
        raw = struct.pack(form, value)
        assert outcome == (0, None) and memory == raw + b"\xee" * (16 - len(raw)), tag
    text = "value '70000' is out of the INT16 range"
    assert read(s, "A2718E40", [70000], 0, None)[0] == (-1, OverflowError, text)
    for tag, form in [("FCB07591", "<f"), ("1BA766B5", "<d")]:
        assert read(s, tag, [1], 0, None)[1].startswith(struct.pack(form, 1.0))
        text = "numeric argument expected, got 'bool'"
        assert read(s, tag, [True], 0, None)[0] == (-1, TypeError, text)


@psd_scene(
    "collections-generic.callbacks-list.string",
    "collections-generic.callbacks-list.struct",
    "collections-generic.callbacks-list.nested",
)
def test_records_are_read(s):
    text = "é"
    outcome, memory = read(s, "CBE911FC", [text], 0, None)
    length, size, place = struct.unpack("<iiQ", memory)
    assert outcome == (0, None) and (length, size) == (1, 1)
    assert ctypes.string_at(place, 1) == text.encode("latin-1")
    outcome, memory = read(s, "CBE911FC", [None], 0, None)
    assert outcome == (0, None) and memory[:4] == struct.pack("<i", -1)
    refused = (-1, TypeError, "can't build String from 'int'")
    assert read(s, "CBE911FC", [5], 0, None)[0] == refused
    point = s.wrap(s.psd.Point, 0x77)
    outcome, memory = read(s, "25E8868A", [point], 0, None)
    assert outcome == (0, None) and variant(memory) == (1, 0x77)
    for value, shown_as in [(None, "NoneType"), (5, "int")]:
        refused = (-1, TypeError, f"can't build Point value from '{shown_as}'")
        assert read(s, "25E8868A", [value], 0, None)[0] == refused
    inner = [0.5]
    outcome, memory = read(s, "F25B175D", [inner], 0, None)
    assert outcome == (0, None) and variant(memory) == (2, id(inner))
    refused = (-1, TypeError, "can't build Array value from 'int'")
    assert read(s, "F25B175D", [5], 0, None)[0] == refused


@psd_scene(
    "collections-generic.array.getitem-enum",
    "collections-generic.callbacks-list.enum",
)
def test_members_of_an_enumeration_cross_as_numbers(s):
    tag, kind = "67EEC098", s.psd.fileformats.tiff.enums.TiffSampleFormats
    a = s.wrap(wrapper(s, "Array", tag), 0x10)
    s.method(entry("Array", tag), "SqLength").returns(1)
    out_bytes(s, tag, "Array", "SqGetItem", 2, ctypes.c_uint16(3))
    assert a[0] is kind.IEEE_FLOAT
    outcome, memory = read(s, tag, [kind.UNDEFINED], 0, None)
    assert outcome == (0, None) and memory == struct.pack("<H", 4) + b"\xee" * 14
    refused = (-1, TypeError, "can't build TiffSampleFormats value from 'int'")
    assert read(s, tag, [4], 0, None)[0] == refused
