"""Decimals against whole-number arithmetic and against .NET's own parser."""

import decimal
import random

import pytest

from kelmor.harness import Decimals

LIMIT = 2**96
TOO_LARGE = "value too large for .Net decimal"


def half_even(number, parity):
    """Drops the last digit of `number`; `parity` is what decides a tie."""
    kept, last = divmod(number, 10)
    return kept + (last > 5 or (last == 5 and parity % 2 == 1))


def expected(sign, digits, exponent):
    """(sign, mantissa, scale) of the managed decimal, or None where it is refused.

    At most 30 digits are read and a digit beyond the scale of 28 or beyond the 29th decides the
    rounding, half to even. The digits travel in groups of nine: a tie on a digit that stands
    alone in its group sees no neighbour and rounds down.
    """
    count = len(digits)
    if exponent > 29 - count and count >= 2:
        return None
    round_at = -1
    if exponent < -28:
        cut = -28 - exponent
        exponent = -28
        if count < cut:
            return (0, 0, 0)
        count -= cut
        round_at = count + 1
    if count > 29:
        exponent += count - 29
        round_at, read = 30, 30
    else:
        read = max(round_at, count)
    number = int("0" + "".join(map(str, digits[:read])))
    kept = read
    if read == round_at:
        alone = read % 9 == 1
        number = half_even(number, 0 if alone else number // 10)
        kept = read - 1
    if kept == 29 and exponent < 0 and number >= LIMIT:
        exponent += 1
        number = half_even(number, number // 10)
    if number >= LIMIT:
        return None
    if number == 0:
        return (0, 0, 0)
    if exponent > 0:
        number *= 10**exponent
        return (sign, number, 0) if number < LIMIT else None
    return (sign, number, -exponent)


def values(rng, how_many):
    for length in range(1, 41):
        for scale in range(-12, 46):
            first = rng.randrange(1, 10)
            yield (
                rng.randrange(2),
                (first, *(rng.randrange(10) for _ in range(length - 1))),
                -scale,
            )
            yield 0, (first,) + (0,) * (length - 1), -scale
            yield 1, (9,) * length, -scale
            yield 0, (first, *(rng.choice((0, 5, 9)) for _ in range(length - 1))), -scale
    for _ in range(how_many):
        length = rng.randrange(1, 41)
        digits = tuple(rng.randrange(10) for _ in range(length))
        yield rng.randrange(2), digits, -rng.randrange(-3, 44)
    for _ in range(how_many // 10):
        near = str(LIMIT + rng.randrange(-1000, 1000)) + str(rng.randrange(100))
        yield 0, tuple(map(int, near[: rng.randrange(28, 32)])), -rng.randrange(0, 30)


def managed(value):
    try:
        text = Decimals.text(value)
    except OverflowError as refusal:
        assert str(refusal) == TOO_LARGE
        return None
    sign, digits, exponent = decimal.Decimal(text).as_tuple()
    mantissa = int("".join(map(str, digits)))
    return (sign, mantissa, -exponent if mantissa else 0)


def test_a_hundred_thousand_decimals_arrive_as_whole_number_arithmetic_says(count_case):
    for sign, digits, exponent in values(random.Random(20), 100_000):
        value = decimal.Decimal((sign, digits, exponent))
        assert managed(value) == expected(sign, value.as_tuple().digits, exponent), value
        count_case()


def test_what_fits_exactly_is_what_the_managed_parser_reads(count_case):
    for sign, digits, exponent in values(random.Random(7), 60_000):
        if len(digits) > 28 or not -28 <= exponent <= 0:
            continue
        value = decimal.Decimal((sign, digits, exponent))
        assert decimal.Decimal(Decimals.text(value)) == decimal.Decimal(
            Decimals.parse_text(f"{value:f}")
        )
        count_case()


def test_what_must_be_rounded_is_within_one_unit_of_what_the_managed_parser_reads(count_case):
    compared = 0
    for sign, digits, exponent in values(random.Random(8), 120_000):
        value = decimal.Decimal((sign, digits, exponent))
        ours, parsed = managed(value), Decimals.parse_text(f"{value:f}")
        if ours is None or not parsed:
            continue
        with decimal.localcontext() as context:
            context.prec = 100
            mine = decimal.Decimal(ours[1]).scaleb(-ours[2]) * (-1 if ours[0] else 1)
            theirs = decimal.Decimal(parsed)
            unit = decimal.Decimal(1).scaleb(-min(ours[2], -theirs.as_tuple().exponent))
            assert abs(mine - theirs) <= unit, value
        compared += 1
    count_case(compared)
    assert compared >= 100_000


def test_every_managed_decimal_comes_back_digit_for_digit(count_case):
    rng = random.Random(3)
    for scale in range(29):
        for bits in range(97):
            mantissa = rng.getrandbits(bits) if bits else 0
            words = [(mantissa >> shift) & 0xFFFFFFFF for shift in (0, 32, 64)]
            low, middle, high = (w - 2**32 if w >= 2**31 else w for w in words)
            negative = bool(rng.randrange(2))
            value = Decimals.from_bits(low, middle, high, negative, scale)
            assert (
                value.as_tuple()
                == decimal.Decimal(
                    (int(negative), tuple(map(int, str(mantissa))), -scale)
                ).as_tuple()
            )
            count_case()


@pytest.mark.parametrize(
    ("text", "message"),
    [
        pytest.param("NaN", "value is not a number", id="quiet-nan"),
        pytest.param("sNaN", "value is not a number", id="signalling-nan"),
        pytest.param("Infinity", "value too large for .Net 'Decimal'", id="infinity"),
        pytest.param("-Infinity", "value too large for .Net 'Decimal'", id="minus-infinity"),
    ],
)
def test_special_values_are_refused(text, message):
    with pytest.raises(OverflowError) as refusal:
        Decimals.echo(decimal.Decimal(text))
    assert str(refusal.value) == message
