"""By-reference parameters, through the one member of the surface that has them."""

import sys
from ctypes import c_int32

from psd_scene import psd_scene
from wrappers import raised

CAP, GET = "CustomLineCap", "call_000_GetStrokeCaps"
REFUSED = "argument should be empty list or list contains default value, not 'tuple'"


def cap_with_delegate(s):
    """A cap whose delegate puts Square and Triangle out, and what it found on its way in."""
    seen = []

    def give(frame):
        start, end = [c_int32.from_address(place) for place in frame.integers[1:3]]
        seen.append((frame.integers[0], start.value, end.value))
        start.value, end.value = 1, 3

    s.method(CAP, GET).calls(give)
    return s.make(CAP, handle=0x40), seen


@psd_scene("marshal-others.byref.api.get-stroke-caps")
def test_what_comes_out_stands_in_the_lists_of_the_caller(s):
    cap, seen = cap_with_delegate(s)
    LineCap = s.type_of("LineCap")
    start, end = [], []
    assert cap.get_stroke_caps(start, end) is None
    assert seen == [(0x40, 0, 0)]
    assert (start, end) == ([LineCap.SQUARE], [LineCap.TRIANGLE])
    assert type(start[0]) is LineCap and type(end[0]) is LineCap
    cap.get_stroke_caps(end_cap=end, start_cap=start)
    assert (start, end) == ([LineCap.SQUARE], [LineCap.TRIANGLE])


@psd_scene("marshal-others.byref.api.replace")
def test_what_comes_out_replaces_what_went_in(s):
    cap, seen = cap_with_delegate(s)
    LineCap = s.type_of("LineCap")
    for value, number in ((None, 0), (LineCap.ROUND, 2)):
        start, end = [value], [value]
        cap.get_stroke_caps(start, end)
        assert seen.pop() == (0x40, number, number)
        assert (start, end) == ([LineCap.SQUARE], [LineCap.TRIANGLE])
        assert len(start) == len(end) == 1


@psd_scene("marshal-others.byref.api.tuple-refused")
def test_a_tuple_cannot_take_what_comes_out(s):
    cap, seen = cap_with_delegate(s)
    for start, end in (((), ()), ([], ()), ((), [])):
        assert REFUSED in str(raised(TypeError, cap.get_stroke_caps, start, end))
        assert start in ((), []) and end in ((), [])
    assert seen == []


@psd_scene()
def test_lists_stay_as_they_were_when_the_call_fails(s):
    cap, seen = cap_with_delegate(s)
    start, end = [], ["no cap"]
    raised(TypeError, cap.get_stroke_caps, start, end)
    assert (start, end, seen) == ([], ["no cap"], [])
    s.method(CAP, GET).reset().raises(ValueError, "from below")
    start, end = [], [None]
    assert str(raised(ValueError, cap.get_stroke_caps, start, end)) == "from below"
    assert (start, end) == ([], [None])


@psd_scene()
def test_what_is_put_into_a_list_belongs_to_the_list_alone(s):
    cap, _ = cap_with_delegate(s)
    square, given = s.type_of("LineCap").SQUARE, s.type_of("LineCap").ROUND
    start, end = [given], [None]
    before = sys.getrefcount(square), sys.getrefcount(given)
    for _ in range(100):
        cap.get_stroke_caps(start, end)
        cap.get_stroke_caps([given], [])
    after = sys.getrefcount(square), sys.getrefcount(given)
    # one in `start`; the list let go of what it held
    assert after == (before[0] + 1, before[1] - 1)


@psd_scene()
def test_no_list_changes_when_one_value_cannot_be_made(s):
    cap, _ = cap_with_delegate(s)

    def give(frame):
        c_int32.from_address(frame.integers[1]).value = 1
        c_int32.from_address(frame.integers[2]).value = 12345

    s.method(CAP, GET).reset().calls(give)
    square = s.type_of("LineCap").SQUARE
    before = sys.getrefcount(square)
    start, end = [], [None]
    raised(ValueError, cap.get_stroke_caps, start, end)
    assert (start, end) == ([], [None])
    assert sys.getrefcount(square) == before
