"""GUIDs, characters, versions, nullables, by-reference parameters and indexes."""

import collections
import ctypes
import sys
import types
import uuid

import pytest
from marshal_probe import (
    INT,
    INT64,
    OBJECT,
    POINTER,
    PyNullableArg,
    PyParamByRef,
    PySysVersionArg,
    accepted,
    address,
    convert,
    identity,
    native,
    refused,
    said,
)

behaviour = pytest.mark.behaviour

# GUIDs.

SAMPLE = uuid.UUID("00112233-4455-6677-8899-aabbccddeeff")
WIRE = bytes.fromhex("33221100554477668899aabbccddeeff")
GUID = "fn_conv_py_uuid_to_clr_guid"


class MyUuid(uuid.UUID):
    pass


def guid_block():
    return ctypes.create_string_buffer(b"\xaa" * 17, 17)


@behaviour("marshal-others.guid.to-clr.bytes-le")
def test_a_uuid_travels_as_its_little_endian_bytes():
    block = accepted(GUID, SAMPLE, guid_block())
    assert block.raw == WIRE + b"\xaa"


@behaviour("marshal-others.guid.to-clr.type-test")
@pytest.mark.parametrize(
    ("value", "name"),
    [("00112233-4455-6677-8899-aabbccddeeff", "str"), (None, "NoneType"), (5, "int")],
)
def test_only_a_uuid_is_a_guid(value, name):
    block = guid_block()
    assert said(refused(GUID, value, block)) == (TypeError, f"can't build Guid from '{name}'")
    assert block.raw == b"\xaa" * 17
    assert accepted(GUID, MyUuid(bytes_le=WIRE), guid_block()).raw[:16] == WIRE


@behaviour("marshal-others.guid.to-clr.lookup-each-call")
def test_the_class_of_uuids_is_looked_up_each_time(monkeypatch):
    with monkeypatch.context() as patch:
        patch.setitem(sys.modules, "uuid", None)
        error = refused(GUID, SAMPLE)
        assert isinstance(error, ImportError)
        assert str(error).startswith("Unable to import the specified module uuid.")
    accepted(GUID, SAMPLE, guid_block())
    stub = types.ModuleType("uuid")
    stub.UUID = str
    monkeypatch.setitem(sys.modules, "uuid", stub)
    assert said(refused(GUID, SAMPLE)) == (TypeError, "can't build Guid from 'UUID'")


@behaviour("marshal-others.guid.to-clr.value-no-type-test")
def test_a_known_uuid_is_not_tested():
    value = types.SimpleNamespace(bytes_le=bytes(range(16)))
    name = "fn_conv_py_uuid_to_clr_guid_value"
    assert accepted(name, value, guid_block()).raw[:16] == bytes(range(16))
    assert type(refused(name, object())) is AttributeError
    for wrong in (b"short", "x" * 16, None):
        error = refused(name, types.SimpleNamespace(bytes_le=wrong))
        assert said(error) == (TypeError, "can't build Guid from 'types.SimpleNamespace'")


@behaviour("marshal-others.guid.read-callback")
def test_a_guid_is_read_by_its_slot():
    read_slot = (ctypes.c_void_p * 11).from_address(address("m_py_read_callbacks"))[10]
    assert read_slot == address("fn_read_py_guid")
    assert accepted("fn_read_py_guid", SAMPLE, guid_block()).raw == WIRE + b"\xaa"


@behaviour("marshal-others.guid.to-python")
@pytest.mark.parametrize("name", ["fn_conv_clr_guid_to_py_uuid", "fn_write_py_guid"])
def test_a_guid_becomes_a_uuid(name, monkeypatch):
    build = native(name, OBJECT, ctypes.c_char_p)
    made = build(WIRE)
    assert type(made) is uuid.UUID and made == SAMPLE

    stub = types.ModuleType("uuid")
    stub.UUID = lambda *args, **kwds: (args, kwds)
    monkeypatch.setitem(sys.modules, "uuid", stub)
    assert build(WIRE) == ((), {"bytes_le": WIRE})


# Characters.

CHAR = "fn_conv_py_string_to_clr_char"


class MyStr(str):
    pass


@behaviour("marshal-others.char.to-clr.value")
@pytest.mark.parametrize(
    ("text", "unit"),
    [("A", 0x41), ("é", 0xE9), ("€", 0x20AC), ("\uffff", 0xFFFF), ("\ufeff", 0xFEFF), ("\0", 0)],
)
def test_a_character_is_one_unit(text, unit):
    for value in (text, MyStr(text)):
        memory = (ctypes.c_uint16 * 2)(0xAAAA, 0xAAAA)
        accepted(CHAR, value, memory)
        assert list(memory) == [unit, 0xAAAA]


@behaviour("marshal-others.char.to-clr.type")
@pytest.mark.parametrize(("value", "name"), [(5, "int"), (None, "NoneType"), (b"A", "bytes")])
def test_only_a_str_is_a_character(value, name):
    assert said(refused(CHAR, value)) == (TypeError, f"can't build Char from '{name}'")


@behaviour("marshal-others.char.to-clr.length")
@pytest.mark.parametrize("text", ["", "ab", "\U0001f600"])
def test_a_character_is_no_other_number_of_units(text):
    memory = ctypes.c_uint16(0xAAAA)
    error = refused(CHAR, text, memory)
    assert said(error) == (TypeError, "string must contain one UTF-16 code unit")
    assert memory.value == 0xAAAA


@behaviour("marshal-others.char.to-clr.encode-error")
def test_a_lone_surrogate_is_the_encoders_error():
    error = refused(CHAR, "\ud800")
    assert type(error) is UnicodeEncodeError
    assert error.object == "\ud800" and error.encoding.startswith("utf-16")


@behaviour("marshal-others.char.to-clr.guard-texts")
@pytest.mark.parametrize(
    ("encoded", "words"),
    [
        (None, "cannot convert unicode object to byte string"),
        ("A", "converted string must be bytes-like object, not 'str'"),
    ],
)
def test_an_encoder_that_breaks_its_word_is_told(encoded, words):
    stub = (ctypes.c_size_t * 2).from_address(address("stub_as_utf16_string"))
    stub[:] = [1, 0 if encoded is None else identity(encoded)]
    try:
        error = refused(CHAR, "A")
    finally:
        stub[:] = [0, 0]
    assert said(error) == (TypeError, words)


@behaviour("marshal-others.char.to-python")
@pytest.mark.parametrize(
    ("unit", "text"), [(0x41, "A"), (0x20AC, "€"), (0xFEFF, "\ufeff"), (0, "\0")]
)
def test_a_unit_becomes_a_text(unit, text):
    assert native("fn_conv_clr_char_to_py_string", OBJECT, ctypes.c_uint16)(unit) == text
    assert native("fn_write_py_char", OBJECT, ctypes.c_int32)(unit) == text


@behaviour("marshal-others.char.to-python.surrogate")
def test_a_lone_surrogate_becomes_no_text():
    with pytest.raises(UnicodeDecodeError):
        native("fn_write_py_char", OBJECT, ctypes.c_int32)(0xD800)


@behaviour("marshal-variant.write.char-low-bits")
def test_only_the_low_bits_of_a_unit_count():
    assert native("fn_write_py_char", OBJECT, ctypes.c_int32)(0x00010041) == "A"


# Versions.

VERSION = "fn_conv_py_tuple_to_clr_version"


def version(*values):
    return PySysVersionArg(9, (9, 9, 9, 9)) if not values else PySysVersionArg(*values)


def parts_of(arg):
    return arg.count, *arg.components


@behaviour("marshal-others.version.none")
def test_no_version_has_no_parts():
    assert parts_of(accepted(VERSION, None, version())) == (-1, 9, 9, 9, 9)


@behaviour("marshal-others.version.tuple")
@pytest.mark.parametrize(
    ("value", "expected"),
    [
        ((1, 2), (2, 1, 2, 9, 9)),
        ((1, 2, 3), (3, 1, 2, 3, 9)),
        ((24, 11, 0, 7), (4, 24, 11, 0, 7)),
        (collections.namedtuple("V", "a b")(3, 4), (2, 3, 4, 9, 9)),
        ((True, 2), (2, 1, 2, 9, 9)),
    ],
)
def test_a_tuple_of_ints_is_a_version(value, expected):
    assert parts_of(accepted(VERSION, value, version())) == expected


@behaviour("marshal-others.version.not-a-tuple")
@pytest.mark.parametrize(("value", "name"), [([1, 2], "list"), ("1.2", "str"), (1, "int")])
def test_a_version_is_a_tuple_or_none(value, name):
    arg = version()
    assert said(refused(VERSION, value, arg)) == (
        TypeError,
        f"a tuple or None is required, not '{name}'",
    )
    long_name = type("N" * 300, (), {})()
    assert said(refused(VERSION, long_name, arg))[1] == (
        f"a tuple or None is required, not '{'N' * 200}'"
    )
    assert parts_of(arg) == (9, 9, 9, 9, 9)


@behaviour("marshal-others.version.length")
@pytest.mark.parametrize("count", [0, 1, 5])
def test_a_version_has_two_to_four_parts(count):
    arg = version()
    assert said(refused(VERSION, (1,) * count, arg)) == (
        ValueError,
        "a version number tuple must contains at least 2 and at most 4 elements "
        f"({count} given)",
    )
    assert parts_of(arg) == (9, 9, 9, 9, 9)


@behaviour("marshal-others.version.element-type")
@pytest.mark.parametrize(("value", "name"), [((1, "2"), "str"), ((None, 2), "NoneType")])
def test_a_part_is_an_integer(value, name):
    assert said(refused(VERSION, value)) == (
        ValueError,
        f"an element of a version number tuple must be integer, not {name}",
    )


@behaviour("marshal-others.version.element-negative")
@pytest.mark.parametrize("value", [(1, -1), (1, 2, -(2**40))])
def test_a_part_is_not_negative(value):
    assert said(refused(VERSION, value)) == (
        ValueError,
        f"an element of a version number tuple must be greater or equal zero, not {value[-1]}",
    )


@behaviour("marshal-others.version.element-order")
def test_the_first_wrong_part_is_told():
    assert "greater or equal zero, not -1" in str(refused(VERSION, (-1, "x")))
    assert "must be integer, not str" in str(refused(VERSION, ("x", -1)))


@behaviour("marshal-others.version.partly-written")
def test_the_count_is_written_before_the_parts_are_looked_at():
    arg = version()
    refused(VERSION, (1, -1), arg)
    assert parts_of(arg) == (2, 1, 9, 9, 9)


@behaviour("marshal-others.version.cut-to-32-bits")
def test_a_part_is_cut_to_32_bits():
    assert parts_of(accepted(VERSION, (1, 4294967301), version())) == (2, 1, 5, 9, 9)
    assert type(refused(VERSION, (1, 2**63))) is OverflowError


@behaviour("marshal-others.version.to-python")
def test_a_version_becomes_a_tuple():
    build = native("fn_conv_clr_version_to_py_tuple", OBJECT, POINTER)
    made = build(ctypes.byref(version(3, (1, 2, 3, 9))))
    assert type(made) is tuple and made == (1, 2, 3)
    assert build(ctypes.byref(version(4, (24, 11, 0, 7)))) == (24, 11, 0, 7)
    assert build(ctypes.byref(version(2, (1, 2, 9, 9)))) == (1, 2)
    assert build(ctypes.byref(version(-1, (1, 2, 3, 4)))) is None


# Nullables.

NULLABLE = "fn_conv_py_nullable_to_clr_nullable"
TOLD = address("told_converter")


class Answer(ctypes.Structure):
    """What the probe's converter answers, and how it was called."""

    _fields_ = [
        ("result", ctypes.c_int64),
        ("error", ctypes.c_void_p),
        ("calls", ctypes.c_int64),
        ("value", ctypes.c_void_p),
    ]


def answering(record, result=1, error=None):
    """A record with the probe's converter and a target that has the answer."""
    answer = Answer(result, error and identity(error))
    record.convert, record.target = TOLD, ctypes.addressof(answer)
    return record, answer


@behaviour("marshal-others.nullable.none")
def test_none_is_no_value():
    arg, answer = answering(PyNullableArg())
    accepted(NULLABLE, None, arg)
    assert (arg.has_value, answer.calls) == (0, 0)


@behaviour("marshal-others.nullable.value")
def test_a_value_is_converted_once():
    value = "anything"
    arg, answer = answering(PyNullableArg())
    accepted(NULLABLE, value, arg)
    assert (arg.has_value, answer.calls, answer.value) == (1, 1, identity(value))


@behaviour("marshal-others.nullable.convert-refuses")
@pytest.mark.parametrize("result", [0, 2, -1])
def test_a_refused_value_is_no_value(result):
    error = ValueError("no")
    arg, answer = answering(PyNullableArg(), result, error)
    assert convert(NULLABLE, "anything", arg) == (0, error)
    assert (arg.has_value, answer.calls) == (0, 1)
    number = ctypes.c_int32(7)
    arg = PyNullableArg(0, address("fn_conv_py_long_to_clr_int32"), ctypes.addressof(number))
    assert said(refused(NULLABLE, "x", arg)) == (
        TypeError,
        "integer argument expected, got 'str'",
    )
    assert (arg.has_value, number.value) == (0, 7)


# By-reference parameters.

BY_REF = "fn_conv_py_parbyref_to_clr_parbyref"


class MyList(list):
    pass


@behaviour("marshal-others.byref.exact-list")
@pytest.mark.parametrize(
    ("value", "name"), [((), "tuple"), (None, "NoneType"), (MyList(), "MyList"), (5, "int")]
)
def test_a_reference_is_exactly_a_list(value, name):
    arg, answer = answering(PyParamByRef(0x77))
    assert said(refused(BY_REF, value, arg)) == (
        TypeError,
        f"argument should be empty list or list contains default value, not '{name}'",
    )
    assert (arg.list, answer.calls) == (0x77, 0)


@behaviour("marshal-others.byref.list-field", "marshal-others.byref.empty-or-none")
@pytest.mark.parametrize("value", [[], [None]])
def test_a_list_without_a_value_goes_in_with_the_default(value):
    arg, answer = answering(PyParamByRef())
    before = sys.getrefcount(value)
    accepted(BY_REF, value, arg)
    assert sys.getrefcount(value) == before
    assert (arg.list, answer.calls) == (identity(value), 0)


@behaviour("marshal-others.byref.default-value", "marshal-others.byref.list-field")
@pytest.mark.parametrize("result", [1, 0, 2, -1])
def test_the_value_in_a_list_is_converted(result):
    error = None if result == 1 else ValueError("no")
    arg, answer = answering(PyParamByRef(), result, error)
    value = ["x"]
    assert convert(BY_REF, value, arg) == (int(result == 1), error)
    assert (answer.calls, answer.value) == (1, identity(value[0]))
    assert arg.list == identity(value)


@behaviour("marshal-others.byref.longer-list")
def test_only_the_first_of_many_is_converted():
    arg, answer = answering(PyParamByRef())
    value = ["x", "y", None]
    accepted(BY_REF, value, arg)
    assert (answer.calls, answer.value) == (1, identity(value[0]))


push_value = native("fn_push_parbyref_outvalue", INT, OBJECT, POINTER)


def owned(value):
    """The address of an object, with a reference of its own."""
    ctypes.pythonapi.Py_IncRef(OBJECT(value))
    return identity(value)


@behaviour("marshal-others.byref.push.replace")
def test_an_out_value_replaces_the_first_item():
    value, old = object(), object()
    target = [old, 2, 3]
    before = sys.getrefcount(value), sys.getrefcount(old)
    assert push_value(target, owned(value)) == 0
    assert target[0] is value and target[1:] == [2, 3]
    assert (sys.getrefcount(value), sys.getrefcount(old)) == (before[0] + 1, before[1] - 1)
    del target
    assert sys.getrefcount(value) == before[0]


@behaviour("marshal-others.byref.push.append")
def test_an_out_value_is_appended_to_an_empty_list():
    value = object()
    target = []
    before = sys.getrefcount(value)
    assert push_value(target, owned(value)) == 0
    assert len(target) == 1 and target[0] is value
    assert sys.getrefcount(value) == before + 1


@behaviour("marshal-others.byref.push.result")
@pytest.mark.parametrize("target", [(), (1,), "x", None], ids=repr)
def test_what_is_no_list_takes_no_out_value(target):
    value = object()
    before = sys.getrefcount(value)
    result, error = None, None
    try:
        result = push_value(target, owned(value))
    except SystemError as caught:  # the interpreter's word for it
        error = caught
    assert result is None and error is not None
    del error
    assert sys.getrefcount(value) == before


# Indexes.

INDEX = "fn_conv_py_obj_to_ssize_t"
OPTIONAL = "fn_conv_py_optional_to_ssize_t"


class Index:
    def __init__(self, value):
        self.value = value

    def __index__(self):
        return self.value


@behaviour("marshal-others.ssize.index")
@pytest.mark.parametrize(
    ("value", "expected"),
    [
        (5, 5),
        (True, 1),
        (Index(7), 7),
        (-1, -1),
        (2**63 - 1, 2**63 - 1),
        (-(2**63), -(2**63)),
    ],
)
def test_what_has_an_index_is_a_number(value, expected):
    assert accepted(INDEX, value, INT64(9)).value == expected


@behaviour("marshal-others.ssize.type")
@pytest.mark.parametrize(("value", "name"), [(1.0, "float"), ("1", "str"), (None, "NoneType")])
def test_what_has_no_index_is_refused(value, name):
    target = INT64(9)
    assert said(refused(INDEX, value, target)) == (
        TypeError,
        f"argument should be integer or None, not '{name}'",
    )
    assert target.value == 9


@behaviour("marshal-others.ssize.overflow")
@pytest.mark.parametrize("value", [2**63, -(2**63) - 1])
def test_an_index_beyond_64_bits_is_the_interpreters_overflow(value):
    target = INT64(9)
    assert said(refused(INDEX, value, target)) == (
        OverflowError,
        "cannot fit 'int' into an index-sized integer",
    )
    assert target.value == 9


@behaviour("marshal-others.ssize.optional")
def test_an_optional_index_is_the_first_argument():
    assert accepted(OPTIONAL, (5,), INT64(9)).value == 5
    assert accepted(OPTIONAL, (5, "x"), INT64(9)).value == 5
    assert accepted(OPTIONAL, (None,), INT64(9)).value == 9
    assert said(refused(OPTIONAL, ("x",), INT64(9))) == (
        TypeError,
        "argument should be integer or None, not 'str'",
    )
