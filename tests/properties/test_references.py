"""By-reference parameters of every form over the real runtime."""

import datetime as dt

import pytest

from kelmor.harness import Circle, Counter, References, Shade

PAIRS = [
    ("bool", True, False, False),
    ("int8", -128, 127, 0),
    ("u_int8", 255, 1, 0),
    ("int16", -(2**15), 2**15 - 1, 0),
    ("u_int16", 2**16 - 1, 1, 0),
    ("u_int32", 2**32 - 1, 1, 0),
    ("int64", -(2**63), 2**63 - 1, 0),
    ("u_int64", 2**64 - 1, 1, 0),
    ("single", 0.5, -0.25, 0.0),
    ("double", 0.1, -1e300, 0.0),
    ("char", "é", "漢", "\0"),
    ("span", dt.timedelta(days=-1, microseconds=7), dt.timedelta(5), dt.timedelta(0)),
    ("shade", Shade.LIGHT, Shade.DARK, Shade.MIDDLE),
    ("text", "größer 漢字 😀", "", None),
    ("block", b"abc", b"", None),
    ("any", 2**63, "text", None),
    ("counter", Counter(5), Counter(6), None),
]


def shown(value):
    """What can be compared: each crossing of an object makes a wrapper of its own."""
    return value.value if isinstance(value, Counter) else value


@pytest.mark.parametrize(("form", "first", "second", "nothing"), PAIRS, ids=[p[0] for p in PAIRS])
def test_values_go_in_and_come_out(count_case, form, first, second, nothing):
    count_case()
    swap = getattr(References, f"swap_{form}")
    left, right = [first], [second, "kept"]
    assert swap(left, right) is None
    assert [shown(value) for value in left] == [shown(second)]
    assert [shown(value) for value in right] == [shown(first), "kept"]
    # Without a value the default goes in, and an empty list grows.
    for empty in ([], [None]):
        left = [first]
        swap(left, empty)
        assert [shown(value) for value in empty] == [shown(first)]
        assert left == [nothing] and type(left[0]) is type(nothing)


@pytest.mark.parametrize(("form", "first", "second", "nothing"), PAIRS, ids=[p[0] for p in PAIRS])
def test_a_wrong_value_changes_no_list(count_case, form, first, second, nothing):
    count_case()
    wrong = object()
    left, right = [first], [wrong]
    with pytest.raises(TypeError):
        getattr(References, f"swap_{form}")(left, right)
    assert left == [first] and right == [wrong]


def test_a_result_and_what_comes_out_arrive_together(count_case):
    count_case()
    name, lower, shade, upper = [], [], [], []
    square = References.divide(7, name, lower, shade, upper)
    assert (square.side, name, shade) == (7, ["halves"], [Shade.LIGHT])
    assert (lower[0].value, upper[0].radius) == (3, 4)


def test_a_text_comes_out_beside_a_text(count_case):
    count_case()
    head, length = [], []
    assert References.cut("one two", head, length) == "two"
    assert (head, length[0].value) == (["one"], 7)
    assert References.cut("one", head, length) is None


def test_values_come_out_beside_an_interface_and_a_nullable(count_case):
    count_case()
    area, name = [], []
    figure = References.measure(Circle(1), area, name)
    assert type(figure) is Circle and name == ["circle"] and 3.14 < area[0] < 3.15
    assert References.measure(None, area, name) is None and (area, name) == ([0.0], [None])
    rest = []
    assert References.number("12ab", rest) == 12 and rest == ["ab"]
    assert References.number("ab", rest) is None and rest == ["ab"]


def test_no_list_changes_when_a_value_cannot_be_made(count_case):
    count_case()
    for total, error in ((-1, LookupError), (100, ValueError)):
        lists = [], [None], [Shade.DARK], []
        with pytest.raises(error):
            References.divide(total, *lists)
        assert lists == ([], [None], [Shade.DARK], [])
    for text in ("a\ud800 b", "a \ud800"):
        head, length = [], []
        with pytest.raises(LookupError):
            References.cut(text, head, length)
        assert (head, length) == ([], [])
