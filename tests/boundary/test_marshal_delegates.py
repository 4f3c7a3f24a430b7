"""What delegates receive and what becomes of what they give: the harness over the script."""

# flake8: noqa: F403, F405
import gc
import sys

from harness_scene import *

# Numbers.


@harness_scene("marshal-records.scalars.by-value", "marshal-records.delegate.static-no-handle")
def test_scalars_travel_by_value_in_their_width(s):
    whole = [
        ("echo_bool", "EchoBool", 1, False, [True, False]),
        ("echo_int8", "EchoInt8", 1, True, [-128, 127, -1]),
        ("echo_u_int8", "EchoUInt8", 1, False, [255]),
        ("echo_int16", "EchoInt16", 2, True, [-32768, 32767]),
        ("echo_u_int16", "EchoUInt16", 2, False, [65535]),
        ("echo_int32", "EchoInt32", 4, True, [-(2**31), 2**31 - 1]),
        ("echo_u_int32", "EchoUInt32", 4, False, [2**32 - 1]),
        ("echo_int64", "EchoInt64", 8, True, [-(2**63), 2**63 - 1]),
        ("echo_u_int64", "EchoUInt64", 8, False, [2**64 - 1]),
    ]
    for name, entry, size, signed, values in whole:
        seen = []

        def echo(frame, size=size, signed=signed, seen=seen):
            seen.append(low(frame.integers[0], size, signed))
            frame.result = frame.integers[0]

        s.on("Scalars", f"call_000_{entry}", echo)
        for value in values:
            assert getattr(s.harness.Scalars, name)(value) == value
        assert seen == values

    units = []

    def echo_unit(frame):
        units.append(low(frame.integers[0], 2))
        frame.result = frame.integers[0]

    s.on("Scalars", "call_000_EchoChar", echo_unit)
    assert s.harness.Scalars.echo_char("€") == "€" and units == [0x20AC]

    doubles, singles = [], []

    def echo_double(frame):
        doubles.append(frame.floats[0])
        frame.result_float = frame.floats[0]

    def echo_single(frame):
        raw = struct.pack("<d", frame.floats[0])
        singles.append(struct.unpack("<f", raw[:4])[0])
        frame.result_float = frame.floats[0]

    s.on("Scalars", "call_000_EchoDouble", echo_double)
    s.on("Scalars", "call_000_EchoSingle", echo_single)
    assert s.harness.Scalars.echo_double(1.25) == 1.25 and doubles == [1.25]
    assert s.harness.Scalars.echo_single(0.1) == singles[0] == 0.10000000149011612


@harness_scene("marshal-records.scalars.enum")
def test_a_member_travels_as_its_number(s):
    instance = s.make("Enumerations", 0x5000)
    for bits, signed in [(8, True), (8, False), (16, True), (16, False)] + [
        (32, True),
        (32, False),
        (64, True),
        (64, False),
    ]:
        name = f"{'Int' if signed else 'UInt'}{bits}"
        kind = getattr(s.harness, f"Width{name}")
        seen = []

        def echo(frame, size=bits // 8, signed=signed, seen=seen):
            seen.append((frame.integers[0], low(frame.integers[1], size, signed)))
            frame.result = frame.integers[1]

        s.on("Enumerations", f"call_000_Echo{name}", echo)
        method = getattr(instance, "echo_int" + str(bits) if signed else "echo_u_int" + str(bits))
        for member in kind:
            assert method(member) is member
        assert seen == [(0x5000, member.value) for member in kind]


@harness_scene("marshal-scalars.int.before-managed-code")
def test_a_refused_number_reaches_no_delegate(s):
    s.method("Scalars", "call_000_EchoInt8")
    s.method("Scalars", "call_000_EchoInt32")
    raised(OverflowError, s.harness.Scalars.echo_int8, 128)
    raised(TypeError, s.harness.Scalars.echo_int8, True)
    raised(TypeError, s.harness.Scalars.echo_int32, 1.0)
    raised(OverflowError, s.harness.Scalars.echo_int32, 2**100)
    assert s.calls("call_000_EchoInt8") == s.calls("call_000_EchoInt32") == []
    s.harness.Scalars.echo_int8(127)
    assert len(s.calls("call_000_EchoInt8")) == 1


@harness_scene("marshal-scalars.edge.int32-ends")
def test_the_ends_of_an_int32_parameter(s):
    seen = []
    s.on("Scalars", "call_000_EchoInt32", lambda f: seen.append(low(f.integers[0], 4, True)))
    error = raised(OverflowError, s.harness.Scalars.echo_int32, 2147483648)
    assert "value '2147483648' is out of the INT32 range" in str(error)
    s.harness.Scalars.echo_int32(-2147483648)
    assert seen == [-2147483648]


@harness_scene("marshal-scalars.error.kinds-collected")
def test_the_words_of_all_attempts_are_collected(s):
    square = s.make("Square", 0x5000)
    error = raised(TypeError, s.harness.Counter, 2**31)
    (words,) = error.args
    assert isinstance(words, list) and len(words) >= 3
    assert any("value '2147483648' is out of the INT32 range" in text for text in words)
    assert any("can't build String from 'int'" in text for text in words)
    (words,) = raised(TypeError, square.describe, 1.5).args
    assert any("integer argument expected, got 'float'" in text for text in words)
    assert any("can't build bool from 'float'" in text for text in words)


# Records.


@harness_scene("marshal-records.string-arg.prepared")
def test_the_record_of_no_text_is_as_it_was_prepared(s):
    seen = []

    def look(frame):
        seen.append(string_arg(frame.integers[0]))
        frame.result = 1

    s.on("Texts", "call_000_IsNull", look)
    # Fills the stack, where the record will stand.
    for text in ("x" * 100, None, "abc", None):
        s.harness.Texts.is_null(text)
    assert [seen[1], seen[3]] == [(-1, 0, 0)] * 2
    assert seen[0][:2] == (100, 1) and seen[2][:2] == (3, 1)


@harness_scene("marshal-records.bytes-builder.delegate-gets-arg-only")
def test_a_delegate_gets_the_record_of_a_block_alone(s):
    block = b"some bytes"
    seen = []

    def look(frame):
        where = frame.integers[0]
        held, length, data = struct.unpack("<iiQ", bytes_at(where, 16))
        view_data, view_object = struct.unpack("<QQ", bytes_at(where - 80, 16))
        seen.append((held, length, bytes_at(data, length), view_data == data, view_object))

    s.on("Blocks", "call_000_Length", look)
    s.harness.Blocks.length(block)
    assert seen == [(1, len(block), block, True, id(block))]


@harness_scene("marshal-records.nullable.none")
def test_a_nullable_tells_whether_it_has_a_value(s):
    seen = []

    def look(frame):
        has_value, _, target = struct.unpack("<i4xQQ", bytes_at(frame.integers[0], 24))
        seen.append((has_value, *struct.unpack("<i", bytes_at(target, 4))))
        frame.result = 1

    s.on("Others", "call_000_HasValue", look)
    assert s.harness.Others.has_value(None) is True
    s.harness.Others.has_value(-5)
    assert seen[0][0] == 0 and seen[1] == (1, -5)


@harness_scene("marshal-records.scalars.fixed-blocks")
def test_blocks_travel_by_pointer(s):
    import datetime
    import decimal
    import uuid

    def echo(frame):
        ctypes.memmove(frame.integers[1], frame.integers[0], 16)
        seen.append(bytes_at(frame.integers[0], 16))

    seen = []
    guid = uuid.UUID("00112233-4455-6677-8899-aabbccddeeff")
    s.on("Others", "call_000_EchoGuid", echo)
    assert s.harness.Others.echo_guid(guid) == guid
    s.on("Decimals", "call_000_Echo", echo)
    number = decimal.Decimal("-1.5")
    assert s.harness.Decimals.echo(number) == number
    s.on("Times", "call_000_EchoOffset", echo)
    zone = datetime.timezone(datetime.timedelta(hours=2))
    moment = datetime.datetime(1, 1, 1, 1, tzinfo=zone)
    shown = s.harness.Times.echo_offset(moment)
    assert shown == moment and shown.tzinfo == zone
    assert seen == [
        guid.bytes_le,
        struct.pack("<4I", 15, 0, 0, 0x80010000),
        struct.pack("<2q", 36000000000, 72000000000),
    ]


@harness_scene(
    "marshal-records.delegate.argument-order", "marshal-records.delegate.records-by-pointer"
)
def test_arguments_come_in_their_order(s):
    # Instance, arguments, slot; numbers beside them in registers of their own.
    square = s.make("Square", 0x5000)
    seen = []
    s.on("IShape", "call_001_Scale", lambda f: seen.append((f.integers[0], *f.floats[:2])))
    square.scale(1.5, 2.5)
    assert seen == [(0x5000, 1.5, 2.5)]

    slots = []

    def neighbour(frame):
        slots.append(frame.integers[0])
        ctypes.memmove(frame.integers[1], struct.pack("<Qq", 0, 0), 16)

    s.on("Square", "get_Neighbour", neighbour)
    assert square.neighbour is None and slots == [0x5000]

    texts = []

    def join(frame):
        for where in frame.integers[:2]:
            length, size, data = string_arg(where)
            texts.append(bytes_at(data, length * size).decode())
        frame.result = s.new_ref("joined")

    s.on("Texts", "call_000_Join", join)
    assert s.harness.Texts.join("first", "second") == "joined"
    assert texts == ["first", "second"]

    dates = []

    def date_from(frame):
        dates.append((frame.integers[0], low(frame.integers[1], 4)))
        ctypes.c_int64.from_address(frame.integers[2]).value = 0

    s.on("Times", "call_000_DateFrom", date_from)
    s.harness.Times.date_from(12345, 1)
    assert dates == [(12345, 1)]

    added = []

    def add_to(frame):
        added.append([variant_arg(where) for where in frame.integers[:2]])

    s.on("Collections", "call_000_AddTo", add_to)
    items, value = [1], "a value"
    s.harness.Collections.add_to(items, value)
    assert added == [[(2, id(items)), (3, id(value))]]


@harness_scene("marshal-records.delegate.python-result")
def test_a_python_object_is_the_result_itself(s):
    result = "".join(["a ", "result"])
    before = sys.getrefcount(result)

    def answer(frame):
        ctypes.pythonapi.Py_IncRef(OBJECT(result))
        frame.result = id(result)

    s.on("Texts", "call_000_Echo", answer)
    shown = s.harness.Texts.echo("x")
    assert shown is result
    assert sys.getrefcount(result) == before + 1
    del shown
    assert sys.getrefcount(result) == before


# Buffers.


@harness_scene("marshal-records.lifetime.buffer-held-during-call")
def test_a_buffer_is_held_for_the_call(s):
    block = bytearray(b"abc")
    errors = []

    def resize(frame):
        try:
            block.append(1)
        except BufferError as error:
            errors.append(error)

    s.on("Blocks", "call_000_Length", resize)
    s.harness.Blocks.length(block)
    assert len(errors) == 1
    block.append(1)


@harness_scene("marshal-records.lifetime.buffer-released-on-failure")
def test_a_buffer_is_released_when_the_call_fails(s):
    block = bytearray(b"abc")
    raised(TypeError, s.harness.Counter, block, 5)
    block.append(1)
    raised(TypeError, s.harness.Square, block, name=b"x")
    block.append(1)
    s.method("Blocks", "call_000_Length").raises(ValueError, "no")
    raised(ValueError, s.harness.Blocks.length, block)
    block.append(1)


# Errors.


@harness_scene("marshal-records.error.no-code", "marshal-records.error.result-discarded")
def test_a_pending_error_is_the_result_of_a_call(s):
    square = s.make("Square", 0x5000)
    for result in (0, 1, -1, 5):
        s.method("Scalars", "call_000_EchoInt32").reset().raises(ValueError, "no").returns(result)
        assert str(raised(ValueError, s.harness.Scalars.echo_int32, 1)) == "no"
    for result in (0, 7):
        s.method("Scalars", "call_000_EchoInt32").reset().returns(result)
        assert s.harness.Scalars.echo_int32(1) == result
    # A slot that was filled is not looked at.
    s.method("Square", "get_Neighbour").raises(KeyError, "slot").writes(
        1, struct.pack("<Qq", 0x7777, 5)
    )
    assert str(raised(KeyError, lambda: square.neighbour)) == "'slot'"
    assert s.calls("GetTypeName") == []
    s.method("Counter", "set_Value").raises(OSError, "setter")
    counter = s.make("Counter", 0x6000)
    assert str(raised(OSError, setattr, counter, "value", 5)) == "setter"
    s.method("Others", "call_000_EchoGuid").raises(ValueError, "block")
    import uuid

    raised(ValueError, s.harness.Others.echo_guid, uuid.UUID(int=1))


@harness_scene("marshal-records.error.getter-drops-result-unreleased")
def test_a_getter_drops_what_came_with_an_error(s):
    square = s.make("Square", 0x5000)
    s.method("Square", "get_Twin").raises(ValueError, "no").returns(0x7777)
    raised(ValueError, lambda: square.twin)
    gc.collect()
    assert s.freed() == []
    name = "".join(["a ", "name"])
    before = sys.getrefcount(name)
    counter = s.make("Counter", 0x6000)
    s.method("Counter", "get_Name").raises(ValueError, "no").returns(s.new_ref(name))
    s.kept.clear()
    raised(ValueError, lambda: counter.name)
    gc.collect()
    assert sys.getrefcount(name) == before + 1
    del counter
    assert s.freed() == [0x6000]


@harness_scene("marshal-exceptions.to-python.through-delegate")
def test_a_managed_exception_is_raised_by_the_call(s):
    build = ctypes.PYFUNCTYPE(POINTER, ctypes.c_char_p, ctypes.c_int32)
    text = lambda value: build(s.callbacks["SetPyStrBuilderCallback"])(  # noqa: E731
        value.encode("utf-16-le"), len(value)
    )
    texts = [text("System.IO.IOException"), text("disk full")]
    # The delegate itself hands the exception over: ctypes would raise it too early.
    s.method("Texts", "call_000_Echo").invokes(s.callbacks["SetExceptionCallback"], *texts)
    error = raised(RuntimeError, s.harness.Texts.echo, "x")
    assert str(error) == "Proxy error(System.IO.IOException): disk full"
    s.method("Texts", "call_000_Echo").reset().returns(s.new_ref("fine"))
    assert s.harness.Texts.echo("x") == "fine"
