"""The layout of the records, and how builders begin and end."""

import ctypes
import sys

import pytest
from marshal_probe import (
    OBJECT,
    POINTER,
    PyBytesArg,
    PyBytesArgBuilder,
    PyNullableArg,
    PyParamByRef,
    VariantArg,
    accepted,
    address,
    identity,
    native,
    parse_one,
    said,
)
from shell_probe import kelmor_probe

behaviour = pytest.mark.behaviour


def numbers(name, count):
    return list((ctypes.c_int * count).from_address(address(name)))


LAYOUTS = {
    "PyStringArg": ("string-arg", [16, 0, 4, 8]),
    "PyEphStrArg": ("eph-str", [24, 0, 16]),
    "PyBytesArg": ("bytes-arg", [16, 0, 4, 8]),
    "PyBytesArgBuilder": ("bytes-builder", [96, 0, 80]),
    "VariantArg": ("variant", [16, 0, 8]),
    "PyObjectOutArg": ("object-out", [16, 0, 8]),
    "PyCollectionArg": ("collection-out", [24, 0, 8, 16]),
    "PyParamByRef": ("by-ref", [24, 0, 8, 16]),
    "PyNullableArg": ("nullable", [24, 0, 8, 16]),
    "PySysVersionArg": ("version", [20, 0, 4]),
    "PyInterimArgBuilder": ("interim", [16, 0, 8]),
}


@pytest.mark.parametrize(
    ("name", "layout"),
    [
        pytest.param(name, layout, id=name, marks=behaviour(f"marshal-records.{subject}.layout"))
        for name, (subject, layout) in LAYOUTS.items()
    ],
)
def test_a_record_has_its_size_and_offsets(name, layout):
    assert numbers("layout_" + name, len(layout)) == layout


@behaviour("marshal-bytes.view-type.layout")
def test_a_window_has_its_offsets():
    assert numbers("layout_PyShlBufferView", 4) == [40, 16, 24, 32]


@behaviour("marshal-records.target.abi")
def test_records_are_plain_bytes_of_the_assumed_machine():
    assert numbers("abi_sizes", 4) == [4, 8, 8, 8]
    assert numbers("plain_records", 9) == [1] * 9
    assert numbers("plain_builders", 3) == [0] * 3
    assert sys.byteorder == "little"


# Builders.


@behaviour("marshal-records.bytes-builder.default")
def test_the_builder_of_a_block_leaves_the_view_as_it_is():
    with PyBytesArgBuilder(fill=0xAA) as builder:
        assert builder.memory.raw[:80] == b"\xaa" * 80
        assert (builder.info.held, builder.info.length, builder.info.data) == (0, -1, None)


@behaviour("marshal-records.bytes-builder.getters")
def test_the_builder_of_a_block_gives_its_two_parts():
    with PyBytesArgBuilder() as builder:
        assert native("get_view", POINTER, POINTER)(builder.address) == builder.address
        assert native("get_info", POINTER, POINTER)(builder.address) == builder.address + 80


class Exporter:
    """An exporter of the probe's, with what was taken and released."""

    def __init__(self, length=3, stride=0):
        self.block = ctypes.create_string_buffer(b"abcdef", 6)
        create = native("exporter_new", OBJECT, POINTER, ctypes.c_ssize_t, ctypes.c_ssize_t)
        self.object = create(ctypes.addressof(self.block), length, stride)

    @property
    def counts(self):
        return tuple(
            native("exporter_" + name, ctypes.c_int, OBJECT)(self.object)
            for name in ("taken", "released")
        )


@behaviour("marshal-records.bytes-builder.destructor-held")
def test_the_builder_of_a_block_releases_once_what_it_holds():
    exporter = Exporter()
    with PyBytesArgBuilder() as builder:
        accepted("fn_conv_py_bytes_to_clr_bytes", exporter.object, builder.address)
        assert exporter.counts == (1, 0)
    assert exporter.counts == (1, 1)


@behaviour("marshal-records.bytes-builder.destructor-not-held")
def test_the_builder_of_a_block_releases_nothing_that_it_does_not_hold():
    exporter = Exporter()
    with PyBytesArgBuilder() as builder:
        accepted("fn_conv_py_bytes_to_clr_bytes", exporter.object, builder.address)
        builder.info.held = 0
        view = ctypes.string_at(builder.address, 80)
    assert exporter.counts == (1, 0)
    native("fn_release_py_buffer", None, ctypes.c_char_p)(view)
    assert exporter.counts == (1, 1)


@behaviour("marshal-records.bytes-arg.meaning")
def test_a_block_is_lent_where_it_stands():
    exporter = Exporter()
    with PyBytesArgBuilder() as builder:
        accepted("fn_conv_py_bytes_to_clr_bytes", exporter.object, builder.address)
        info = builder.info
        assert (info.held, info.length) == (1, 3)
        assert info.data == ctypes.addressof(exporter.block)
    with PyBytesArgBuilder() as builder:
        accepted("fn_conv_py_bytes_to_clr_bytes", b"abc", builder.address)
        assert (builder.info.held, builder.info.length) == (1, 3)
        assert ctypes.string_at(builder.info.data, 3) == b"abc"


@behaviour("marshal-records.interim.lifetime")
def test_an_interim_value_drops_its_owner_once():
    memory = (ctypes.c_uint64 * 2)(*[0xAAAAAAAAAAAAAAAA] * 2)
    construct = native("interim_construct", None, POINTER)
    destroy = native("interim_destroy", None, POINTER)
    construct(ctypes.addressof(memory))
    assert list(memory) == [0, 0]
    destroy(ctypes.addressof(memory))

    owner = object()
    before = sys.getrefcount(owner)
    construct(ctypes.addressof(memory))
    ctypes.pythonapi.Py_IncRef(OBJECT(owner))
    memory[1] = identity(owner)
    destroy(ctypes.addressof(memory))
    assert sys.getrefcount(owner) == before


# Every converter as the "O&" unit of an argument parse.


def by_ref(memory):
    memory.inner = ctypes.c_int32()
    memory.record = PyParamByRef(
        None, address("fn_conv_py_long_to_clr_int32"), ctypes.addressof(memory.inner)
    )
    return memory.record


def nullable(memory):
    memory.inner = ctypes.c_int32()
    memory.record = PyNullableArg(
        0, address("fn_conv_py_long_to_clr_int32"), ctypes.addressof(memory.inner)
    )
    return memory.record


def plain(memory):
    memory.record = ctypes.create_string_buffer(96)
    return memory.record


def sample_values():
    import datetime
    import decimal
    import uuid

    aware = datetime.datetime(2020, 1, 1, tzinfo=datetime.timezone.utc)
    return {
        "long_to_clr_int8": 1,
        "long_to_clr_int16": 1,
        "long_to_clr_int32": 1,
        "long_to_clr_int64": 1,
        "ulong_to_clr_uint8": 1,
        "ulong_to_clr_uint16": 1,
        "ulong_to_clr_uint32": 1,
        "ulong_to_clr_uint64": 1,
        "float_to_clr_double": 1.5,
        "float_to_clr_float": 1.5,
        "bool_to_clr_bool": True,
        "string_to_clr_string": "text",
        "strorpath_to_clr_string": "path",
        "string_to_clr_char": "c",
        "bytes_to_clr_bytes": b"block",
        "datetime_to_clr_datetime": aware,
        "datetime_to_clr_datetimeoffset": aware,
        "datetimedelta_to_clr_timespan": datetime.timedelta(1),
        "decimal_to_clr_decimal": decimal.Decimal("1.5"),
        "uuid_to_clr_guid": uuid.UUID(int=5),
        "tuple_to_clr_version": (1, 2),
        "nullable_to_clr_nullable": 5,
        "parbyref_to_clr_parbyref": [5],
        "obj_to_ssize_t": 5,
        "variant_to_clr_variant": "anything",
    }


SAMPLES = sample_values()
TARGETS = {"nullable_to_clr_nullable": nullable, "parbyref_to_clr_parbyref": by_ref}


class Memory:
    """Keeps a converter's target alive."""


@behaviour("marshal-records.converter.signature")
@pytest.mark.parametrize("form", SAMPLES)
def test_a_converter_is_the_unit_of_an_argument_parse(form):
    name = "fn_conv_py_" + form
    if name not in kelmor_probe.names():
        pytest.skip("the probe was built without the layer of this converter")
    memory = Memory()
    target = TARGETS.get(form, plain)(memory)
    if form == "bytes_to_clr_bytes":
        with PyBytesArgBuilder() as builder:
            assert parse_one(name, SAMPLES[form], builder.address) is None
    else:
        assert parse_one(name, SAMPLES[form], target) is None
    with pytest.raises(Exception) as caught:
        parse_one(name, {1: 2}.keys(), target)
    assert caught.type is TypeError and str(caught.value)


@behaviour("marshal-records.converter.signature")
def test_no_converter_is_left_out():
    # Those of known values take more arguments or skip the test of the type.
    values = {"string_to_clr_string", "bytes_to_clr_bytes", "uuid_to_clr_guid"}
    known = {form + "_value" for form in values} | {
        "decimal_obj_to_clr_decimal",
        "decimal_tuple_to_clr_decimal",
        "optional_to_ssize_t",
    }
    prefix = "fn_conv_py_"
    forms = {name[len(prefix) :] for name in kelmor_probe.names() if name.startswith(prefix)}
    reached_otherwise = {form for form in forms if form.startswith("obj_to_clr_")}
    assert forms - known - reached_otherwise <= set(SAMPLES)


def test_a_stack_of_values_keeps_what_is_not_taken():
    first, second = object(), object()
    before = sys.getrefcount(first), sys.getrefcount(second)
    stack = native("stack_of_two", OBJECT, OBJECT, OBJECT, ctypes.c_int)
    assert stack(first, second, 0) == []
    assert stack(first, second, 1) == [second]
    assert stack(first, second, 2) == [second, first]
    assert (sys.getrefcount(first), sys.getrefcount(second)) == before


def test_the_records_of_the_tests_are_those_of_the_runtime():
    for record in (PyBytesArg, VariantArg, PyParamByRef, PyNullableArg):
        layout = numbers("layout_" + record.__name__, len(record._fields_) + 1)
        offsets = [getattr(record, name).offset for name, _ in record._fields_]
        assert layout == [ctypes.sizeof(record), *offsets]


@behaviour("marshal-records.partial.version")
def test_a_refused_version_is_partly_written():
    version = (ctypes.c_int32 * 5)(*[9] * 5)
    convert = native("convert", OBJECT, POINTER, OBJECT, POINTER)
    result, error = convert(
        address("fn_conv_py_tuple_to_clr_version"), (1, -1), ctypes.addressof(version)
    )
    assert result == 0 and said(error)[0] is ValueError
    assert list(version[:2]) == [2, 1]


@behaviour("marshal-records.version.count")
@pytest.mark.parametrize("parts", [(1, 2), (1, 2, 3), (1, 2, 3, 4)])
def test_the_count_of_a_version_tells_its_parts(parts):
    version = (ctypes.c_int32 * 5)(*[9] * 5)
    accepted("fn_conv_py_tuple_to_clr_version", parts, version)
    assert list(version) == [len(parts), *parts, *[9] * (4 - len(parts))]
    accepted("fn_conv_py_tuple_to_clr_version", None, version)
    assert version[0] == -1
