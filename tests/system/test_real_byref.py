"""The one member of the surface with by-reference parameters, over the real runtime."""

import pytest

from kelmor.psd import CustomLineCap, LineCap

behaviour = pytest.mark.behaviour


@pytest.fixture
def cap():
    made = CustomLineCap()
    made.set_stroke_caps(LineCap.SQUARE, LineCap.TRIANGLE)
    return made


@pytest.mark.parametrize(
    "given",
    [
        pytest.param([], marks=behaviour("marshal-others.byref.api.get-stroke-caps"), id="empty"),
        pytest.param([None], marks=behaviour("marshal-others.byref.api.replace"), id="none"),
        pytest.param([LineCap.ROUND], marks=behaviour("marshal-others.byref.api.replace"), id="x"),
    ],
)
def test_the_caps_stand_in_the_lists_afterwards(cap, given):
    start, end = list(given), list(given)
    assert cap.get_stroke_caps(start, end) is None
    assert (start, end) == ([LineCap.SQUARE], [LineCap.TRIANGLE])


@behaviour("marshal-others.byref.api.tuple-refused")
def test_tuples_are_refused(cap):
    with pytest.raises(TypeError) as refusal:
        cap.get_stroke_caps((), ())
    words = "argument should be empty list or list contains default value, not 'tuple'"
    assert words in str(refusal.value)


def test_lists_stay_empty_when_the_object_was_never_constructed():
    start, end = [], []
    with pytest.raises(RuntimeError, match="has not been constructed"):
        CustomLineCap.__new__(CustomLineCap).get_stroke_caps(start, end)
    assert (start, end) == ([], [])
