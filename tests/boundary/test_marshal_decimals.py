"""Decimals: which digits count, how they are rounded, what does not fit."""

import ctypes
import decimal
import random
import sys
import types
from decimal import Decimal, DecimalTuple

import pytest
from marshal_probe import OBJECT, POINTER, accepted, address, native, refused, said

behaviour = pytest.mark.behaviour

UNIT = "fn_conv_py_decimal_to_clr_decimal"
MAX = 2**96 - 1
TOO_LARGE = (OverflowError, "value too large for .Net decimal")


def words_of(value, name=UNIT):
    return list(accepted(name, value, (ctypes.c_uint32 * 4)(*[0xAAAAAAAA] * 4)))


def number_of(value, name=UNIT):
    """(sign, mantissa, scale); no other bits of the flags are set."""
    low, middle, high, flags = words_of(value, name)
    assert flags & ~0x80FF0000 == 0
    return flags >> 31, low | middle << 32 | high << 64, flags >> 16 & 0xFF


def shows(*names):
    return [behaviour("marshal-decimals." + name) for name in names]


def row(value, expected, *names):
    return pytest.param(value, expected, id=f"{names[0]}-{value}", marks=shows(*names))


# Which objects.


class MyDecimal(Decimal):
    pass


class Told(Decimal):
    def as_tuple(self):
        return DecimalTuple(1, (4, 2), -1)


@behaviour("marshal-decimals.wire.words")
def test_a_decimal_is_four_words():
    assert words_of(Decimal("-1.5"), "fn_read_py_decimal") == [0xF, 0, 0, 0x80010000]
    large = Decimal(0x0123456789ABCDEF76543210).scaleb(-3, decimal.Context(prec=40))
    assert words_of(large, "fn_read_py_decimal") == [
        0x76543210,
        0x89ABCDEF,
        0x01234567,
        0x00030000,
    ]


@behaviour("marshal-decimals.param.accepts-decimal")
def test_a_decimal_is_asked_for_its_own_tuple():
    assert number_of(Decimal("1.5")) == (0, 15, 1)
    assert number_of(MyDecimal("1.5")) == (0, 15, 1)
    assert number_of(Told("1.5")) == (1, 42, 1)


@behaviour("marshal-decimals.param.accepts-decimal-tuple")
def test_a_decimal_tuple_is_taken_as_it_is():
    assert words_of(DecimalTuple(1, (1, 5), -1)) == [15, 0, 0, 0x80010000]


@behaviour("marshal-decimals.param.other-type")
@pytest.mark.parametrize(
    ("value", "name"),
    [
        (1, "int"),
        (1.0, "float"),
        ("1", "str"),
        (None, "NoneType"),
        ((0, (1,), 0), "tuple"),
    ],
)
def test_nothing_else_is_a_decimal(value, name):
    assert said(refused(UNIT, value)) == (TypeError, f"can't build Decimal from '{name}'")


@behaviour("marshal-decimals.param.lookup-each-call")
def test_the_classes_are_looked_up_each_time(monkeypatch):
    stub = types.ModuleType("decimal")
    stub.Decimal = type("Decimal", (), {})
    stub.DecimalTuple = type("DecimalTuple", (), {})
    with monkeypatch.context() as patch:
        patch.setitem(sys.modules, "decimal", stub)
        assert said(refused(UNIT, Decimal(1))) == (
            TypeError,
            "can't build Decimal from 'decimal.Decimal'",
        )
    assert number_of(Decimal(1)) == (0, 1, 0)


@behaviour("marshal-decimals.param.accepts-decimal-tuple")
def test_a_decimal_tuple_is_recognised_first(monkeypatch):
    class Anything(type):
        def __instancecheck__(cls, value):
            return True

    both = types.SimpleNamespace(sign=1, digits=(1, 5), exponent=-1)
    for name in ("Decimal", "DecimalTuple"):
        monkeypatch.setattr(decimal, name, Anything("Any", (), {}))
    assert words_of(both) == [15, 0, 0, 0x80010000]  # it has no as_tuple()


@behaviour("marshal-decimals.param.lookup-failure")
def test_a_missing_module_is_an_import_error(monkeypatch):
    monkeypatch.setitem(sys.modules, "decimal", None)
    assert isinstance(refused(UNIT, Decimal(1)), ImportError)


@behaviour("marshal-decimals.functions.read-table")
def test_the_read_table_converts_the_same():
    slots = (ctypes.c_void_p * 11).from_address(address("m_py_read_callbacks"))
    assert slots[4] == address("fn_read_py_decimal")
    assert slots[5] == address("fn_read_py_decimal_tuple")
    for text in ("-1.5", "79228162514264337593543950335", "1E+28", "6E-29"):
        value = Decimal(text)
        expected = words_of(value)
        for name in ("fn_read_py_decimal", "fn_conv_py_decimal_obj_to_clr_decimal"):
            assert words_of(value, name) == expected
        for name in ("fn_read_py_decimal_tuple", "fn_conv_py_decimal_tuple_to_clr_decimal"):
            assert words_of(value.as_tuple(), name) == expected
    for name in ("fn_read_py_decimal", "fn_conv_py_decimal_obj_to_clr_decimal"):
        assert said(refused(name, Decimal("1E+29"))) == TOO_LARGE
    for name in ("fn_read_py_decimal_tuple", "fn_conv_py_decimal_tuple_to_clr_decimal"):
        assert said(refused(name, Decimal("1E+29").as_tuple())) == TOO_LARGE


@behaviour("marshal-decimals.tuple.by-attribute")
def test_the_parts_of_a_tuple_are_taken_by_name():
    value = types.SimpleNamespace(exponent=-1, sign=1, digits=(1, 5))
    name = "fn_conv_py_decimal_tuple_to_clr_decimal"
    assert words_of(value, name) == [15, 0, 0, 0x80010000]
    for part in ("exponent", "sign", "digits"):
        lacking = types.SimpleNamespace(**{k: v for k, v in vars(value).items() if k != part})
        error = refused(name, lacking)
        assert type(error) is AttributeError and f"'{part}'" in str(error)


def test_digits_that_are_none_are_refused():
    for digits in ((1, "x"), (1, -1), 5):
        assert isinstance(refused(UNIT, DecimalTuple(0, digits, 0)), (TypeError, OverflowError))
    assert number_of(DecimalTuple(0, [1, 5], 0)) == (0, 15, 0)


# Special values.

NOT_A_NUMBER = (OverflowError, "value is not a number")
INFINITE = (OverflowError, "value too large for .Net 'Decimal'")


@pytest.mark.parametrize(
    ("value", "error"),
    [
        row(Decimal("Infinity"), INFINITE, "special.infinity"),
        row(Decimal("-Infinity"), INFINITE, "special.infinity"),
        row(Decimal("NaN"), NOT_A_NUMBER, "special.nan"),
        row(Decimal("-NaN"), NOT_A_NUMBER, "special.nan"),
        row(Decimal("sNaN"), NOT_A_NUMBER, "special.nan"),
        row(Decimal("-sNaN"), NOT_A_NUMBER, "special.nan"),
        row(
            DecimalTuple(0, (1,), "X"),
            (TypeError, "can't build 'Decimal' from exponent value 'X'"),
            "special.other-str",
        ),
        row(
            DecimalTuple(0, (1,), ""),
            (TypeError, "can't build 'Decimal' from exponent value ''"),
            "special.other-str",
        ),
        row(
            DecimalTuple(0, (1,), 1.5),
            (TypeError, "unknown exponent type 'float'"),
            "special.non-int",
        ),
        row(
            DecimalTuple(0, (1,), None),
            (TypeError, "unknown exponent type 'NoneType'"),
            "special.non-int",
        ),
    ],
)
def test_a_special_value_is_refused(value, error):
    assert said(refused(UNIT, value)) == error


def test_an_exponent_beyond_64_bits_is_the_interpreters_overflow():
    error = refused(UNIT, DecimalTuple(0, (1,), 2**63))
    assert type(error) is OverflowError and "decimal" not in str(error)


# The range.


@pytest.mark.parametrize(
    "value",
    [
        pytest.param(value, id=f"{name}-{index}", marks=shows(name))
        for index, (name, value) in enumerate(
            [
                ("range.exponent-too-large", Decimal("12E+28")),
                ("range.by-digit-count-not-value", DecimalTuple(0, (0, 0), 30)),
                ("range.leading-zeros-count", DecimalTuple(0, (0,) * 28 + (1, 2), 0)),
                ("range.30-digit-integer", Decimal("123456789012345678901234567890")),
                ("range.single-digit-passes-early-test", Decimal("8E+28")),
                ("range.single-digit-passes-early-test", Decimal("1E+29")),
                ("range.single-digit-passes-early-test", Decimal("1E+100")),
                ("range.early-test-edge", Decimal("1" * 28 + "E+2")),
                ("range.early-test-edge", Decimal("1" * 29 + "E+1")),
                ("range.early-test-edge", Decimal("10E+28")),
                ("value.max-plus-one", Decimal(MAX + 1)),
                ("round.up-past-max", Decimal(f"{MAX}.5")),
                ("shrink.not-without-scale", Decimal("9" * 29 + ".9")),
                ("shrink.not-without-scale", Decimal(MAX + 1)),
                ("positive-exponent.edge", Decimal("7922816251426433759354395034E+1")),
            ]
        )
    ],
)
def test_what_does_not_fit_is_refused(value):
    assert said(refused(UNIT, value)) == TOO_LARGE


@behaviour("marshal-decimals.range.huge-exponent-prompt")
@pytest.mark.timeout(5)
def test_a_huge_exponent_is_refused_at_once():
    for exponent in (999999999999999999, 2**63 - 1):
        assert said(refused(UNIT, DecimalTuple(0, (1,), exponent))) == TOO_LARGE
    assert said(refused(UNIT, Decimal("1E+999999999999999999"))) == TOO_LARGE


# The numbers. Several rows come from one behaviour: each is a border of it.

NEGATIVE_ZERO_TUPLE = DecimalTuple(1, (0,), 0)
NUMBERS = [
    row(Decimal("12E+27"), (0, 12 * 10**27, 0), "range.exponent-too-large"),
    row(DecimalTuple(0, (0, 0, 0, 1), 0), (0, 1, 0), "range.leading-zeros-count"),
    row(Decimal("7E+28"), (0, 7 * 10**28, 0), "range.single-digit-passes-early-test"),
    row(Decimal("1" * 28 + "E+1"), (0, int("1" * 28) * 10, 0), "range.early-test-edge"),
    row(Decimal("1" * 29), (0, int("1" * 29), 0), "range.early-test-edge"),
    row(Decimal("10E+27"), (0, 10**28, 0), "range.early-test-edge"),
    row(Decimal("0E+30"), (0, 0, 0), "range.zero-with-large-exponent"),
    row(Decimal("0E+1000000"), (0, 0, 0), "range.zero-with-large-exponent"),
    row(DecimalTuple(0, (), 0), (0, 0, 0), "range.no-digits"),
    row(DecimalTuple(1, (), 100), (0, 0, 0), "range.no-digits"),
    row(Decimal(MAX), (0, MAX, 0), "value.max"),
    row(Decimal(-MAX), (1, MAX, 0), "value.max"),
    row(Decimal("0"), (0, 0, 0), "value.zero"),
    row(Decimal("-0"), (0, 0, 0), "value.negative-zero"),
    row(NEGATIVE_ZERO_TUPLE, (0, 0, 0), "value.negative-zero"),
    row(Decimal("0.00"), (0, 0, 0), "value.zero-loses-scale"),
    row(Decimal("-0.00"), (0, 0, 0), "value.zero-loses-scale"),
    row(Decimal("12345678901"), (0, 12345678901, 0), "value.groups"),
    row(Decimal("123456789012345678"), (0, 123456789012345678, 0), "value.groups"),
    row(Decimal("1E-28"), (0, 1, 28), "value.smallest-scale"),
    row(Decimal("1.500"), (0, 1500, 3), "value.trailing-zeros-kept"),
    row(Decimal("15E-29"), (0, 2, 28), "round.below-scale-28"),
    row(Decimal("25E-29"), (0, 2, 28), "round.below-scale-28"),
    row(Decimal("35E-29"), (0, 4, 28), "round.below-scale-28"),
    row(Decimal("99E-29"), (0, 10, 28), "round.below-scale-28"),
    row(Decimal("1E-29"), (0, 0, 0), "round.single-digit-below"),
    row(Decimal("5E-29"), (0, 0, 0), "round.single-digit-below"),
    row(Decimal("-5E-29"), (0, 0, 0), "round.single-digit-below"),
    row(Decimal("6E-29"), (0, 1, 28), "round.single-digit-below"),
    row(Decimal("51E-30"), (0, 0, 0), "round.digits-after-first-dropped-ignored"),
    row(Decimal("9E-30"), (0, 0, 0), "round.far-below"),
    row(Decimal("99E-31"), (0, 0, 0), "round.far-below"),
    row(Decimal("-1E-100"), (0, 0, 0), "round.far-below"),
    row(Decimal("9" * 35 + "E-100"), (0, 0, 0), "round.far-below"),
    row(Decimal(f"{MAX}.4"), (0, MAX, 0), "round.more-than-29-digits"),
    row(Decimal(f"{MAX - 1}.5"), (0, MAX - 1, 0), "round.more-than-29-digits"),
    row(
        Decimal("12345678901234567890123456788.6"),
        (0, 12345678901234567890123456789, 0),
        "round.more-than-29-digits",
    ),
    row(
        Decimal("12345678901234567890123456788.51"),
        (0, 12345678901234567890123456788, 0),
        "round.31st-digit-ignored",
    ),
    row(
        Decimal("12345678901234567890123456789.51"),
        (0, 12345678901234567890123456790, 0),
        "round.31st-digit-ignored",
    ),
    row(Decimal(f"{MAX}.49"), (0, MAX, 0), "round.31st-digit-ignored"),
    row(
        Decimal("1.234567890123456789012345678951"),
        (0, 12345678901234567890123456790, 28),
        "round.31-digits-below-scale-28",
    ),
    row(
        Decimal("0.99999999999999999999999999996"),
        (0, 10**28, 28),
        "round.carry-through-all-groups",
    ),
    row(
        Decimal("1.99999999999999999999999999996"),
        (0, 2 * 10**28, 28),
        "round.carry-through-all-groups",
    ),
    row(Decimal("7.9228162514264337593543950335"), (0, MAX, 28), "shrink.29th-digit-36"),
    row(
        Decimal("7.9228162514264337593543950336"),
        (0, 7922816251426433759354395034, 27),
        "shrink.29th-digit-36",
    ),
    row(
        Decimal("7.9228162514264337593543950345"),
        (0, 7922816251426433759354395034, 27),
        "shrink.half-even",
    ),
    row(
        Decimal("7.9228162514264337593543950355"),
        (0, 7922816251426433759354395036, 27),
        "shrink.half-even",
    ),
    row(
        Decimal("7.9228162514264337593543950396"),
        (0, 7922816251426433759354395040, 27),
        "shrink.carry",
    ),
    row(Decimal("9.9999999999999999999999999999"), (0, 10**28, 27), "shrink.carry"),
    row(
        Decimal("7.92281625142643375935439503549"),
        (0, 7922816251426433759354395036, 27),
        "shrink.double-rounding",
    ),
    row(Decimal("1E+28"), (0, 10**28, 0), "positive-exponent.into-mantissa"),
    row(Decimal("-1E+1"), (1, 10, 0), "positive-exponent.into-mantissa"),
    row(
        Decimal("7922816251426433759354395033E+1"),
        (0, 79228162514264337593543950330, 0),
        "positive-exponent.edge",
    ),
]


@pytest.mark.parametrize(("value", "expected"), NUMBERS)
def test_a_number_becomes_mantissa_and_scale(value, expected):
    assert number_of(value) == expected


def test_the_words_of_large_numbers():
    assert words_of(Decimal("7E+28")) == [0x70000000, 0xB30310A7, 0xE22EA493, 0]
    assert words_of(Decimal("1E+28")) == [0x10000000, 0x3E250261, 0x204FCE5E, 0]
    assert words_of(Decimal(MAX)) == [0xFFFFFFFF] * 3 + [0]
    assert words_of(Decimal("12345678901")) == [0xDFDC1C35, 2, 0, 0]


def rounded(digits, exponent):
    """What the managed type makes of it, by whole-number arithmetic: (mantissa, scale) or None."""

    def cut(digits, count):
        """Keeps `count` digits and rounds half to even on the one behind them.

        Digits arrive in groups of nine, and a tie looks at its own group alone: where the digit
        behind begins a group, there is nothing odd to round up.
        """
        number = int("0" + digits[:count])
        behind = int(digits[count])
        tie_goes_up = number % 2 == 1 and count % 9 != 0
        return number + (behind > 5 or (behind == 5 and tie_goes_up))

    if len(digits) >= 2 and exponent > 29 - len(digits):
        return None
    number, scale = int(digits), -exponent
    places = 28 + len(digits) + exponent  # that stand at or above the last place of the scale
    if exponent < -28 or len(digits) > 29:
        if places < 0:
            return 0, 0
        keep = min(29, places if exponent < -28 else 29)
        scale = -exponent - (len(digits) - keep)
        number = cut(digits, keep)
        if keep == 29 and number > MAX and scale > 0:
            # Rounded once more, from the already rounded number.
            number, scale = cut(str(number), len(str(number)) - 1), scale - 1
    elif len(digits) == 29 and number > MAX and scale > 0:
        number, scale = cut(digits, 28), scale - 1
    if scale < 0:
        number, scale = number * 10**-scale, 0
    if number > MAX:
        return None
    return (number, scale) if number else (0, 0)


def test_numbers_of_every_length_agree_with_whole_number_arithmetic():
    chance = random.Random(35)
    cases = 0
    for length in range(1, 41):
        for exponent in range(-45, 31):
            for digits in (
                str(chance.randrange(10 ** (length - 1), 10**length)),
                ("79228162514264337593543950335" + str(chance.randrange(10**12)))[:length],
                "9" * length,
            ):
                value = DecimalTuple(0, tuple(map(int, digits)), exponent)
                expected = rounded(digits, exponent)
                if expected is None:
                    assert said(refused(UNIT, value)) == TOO_LARGE, (digits, exponent)
                else:
                    assert number_of(value)[1:] == expected, (digits, exponent)
                cases += 1
    assert cases == 40 * 76 * 3


# To Python.

TO_PYTHON = ["fn_conv_clr_decimal_to_py_decimal", "fn_write_py_decimal"]


def block(*words):
    return (ctypes.c_uint32 * 4)(*words)


def made(name, words):
    return native(name, OBJECT, POINTER)(ctypes.byref(words))


@pytest.mark.parametrize("name", TO_PYTHON)
@behaviour("marshal-decimals.to-python.result")
def test_four_words_become_a_decimal(name, monkeypatch):
    value = made(name, block(15, 0, 0, 0x80010000))
    assert type(value) is Decimal and value.as_tuple() == Decimal("-1.5").as_tuple()
    stub = types.ModuleType("decimal")
    stub.Decimal = lambda *args, **kwds: (args, kwds)
    monkeypatch.setitem(sys.modules, "decimal", stub)
    assert made(name, block(15, 0, 0, 0x80010000)) == (((1, (1, 5), -1),), {})


@pytest.mark.parametrize("name", TO_PYTHON)
@behaviour("marshal-decimals.to-python.zero-keeps-scale")
def test_a_zero_keeps_its_scale(name):
    assert str(made(name, block(0, 0, 0, 0x00020000))) == "0.00"
    assert str(made(name, block(0, 0, 0, 0x80020000))) == "-0.00"


@pytest.mark.parametrize("name", TO_PYTHON)
@behaviour("marshal-decimals.to-python.exact")
def test_the_context_does_not_round(name):
    with decimal.localcontext() as context:
        context.prec = 5
        value = made(name, block(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0x001C0000))
        assert value.as_tuple() == Decimal("7.9228162514264337593543950335").as_tuple()


@pytest.mark.parametrize("name", TO_PYTHON)
@behaviour("marshal-decimals.to-python.write-callback-destroys-block")
def test_the_block_is_consumed(name):
    words = block(1, 2, 3, 0x80050000)
    made(name, words)
    assert list(words) == [0, 0, 0, 0x80050000]


@behaviour("marshal-decimals.to-python.lookup-each-call")
def test_the_class_of_a_result_is_looked_up_each_time(monkeypatch):
    monkeypatch.setattr(decimal, "Decimal", lambda *args: ["made", *args])
    assert made("fn_write_py_decimal", block(15, 0, 0, 0x00010000)) == ["made", (0, (1, 5), -1)]
    monkeypatch.undo()
    assert type(made("fn_write_py_decimal", block(15, 0, 0, 0))) is Decimal
    monkeypatch.setitem(sys.modules, "decimal", None)
    with pytest.raises(ImportError):
        made("fn_write_py_decimal", block(15, 0, 0, 0))


@pytest.mark.parametrize(
    "text", ["1.50", "-79228162514264337593543950335", "1E-28", "123456789012"]
)
def test_a_decimal_survives_both_ways(text):
    words = block(*words_of(Decimal(text)))
    assert made("fn_write_py_decimal", words).as_tuple() == Decimal(text).as_tuple()
