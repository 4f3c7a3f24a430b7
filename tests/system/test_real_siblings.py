"""Values of the drawing types, which live in a sibling module, in and out of the library."""

import kelmor.gfxtypes as gfx
import pytest
from kelmor.psd import Color, Font, PointF, Rectangle, RectangleF, RotateFlipType
from kelmor.psd.brushes import SolidBrush
from kelmor.psd.extensions import (
    BrushExtensions,
    ColorExtensions,
    FontExtensions,
    PointExtensions,
    RectangleExtensions,
    RotateFlipExtensions,
)


@pytest.mark.behaviour("family-interfaces.external.result")
def test_a_brush_is_a_brush_of_the_drawing_types():
    brush = SolidBrush(Color.from_argb(1, 2, 3))
    made = BrushExtensions.to_gdi_brush(brush)
    assert type(made) is gfx.Brush
    solid = gfx.SolidBrush._cast_as(made).value
    assert solid.color.to_argb() == Color.from_argb(1, 2, 3).to_argb()
    with pytest.raises(TypeError, match="can't build Brush value from 'int'"):
        BrushExtensions.to_gdi_brush(5)


@pytest.mark.behaviour(
    "family-interfaces.external.parameter", "family-statics.capsule.sibling-class-enum"
)
def test_values_go_to_the_sibling_and_come_back():
    red = ColorExtensions.to_gdi_color(Color.RED)
    assert type(red) is gfx.Color and ColorExtensions.from_gdi_color(red) == Color.from_argb(
        Color.RED.to_argb()
    )
    point = PointExtensions.to_gdi_point(PointF(1.5, -2.0))
    assert type(point) is gfx.PointF
    assert PointExtensions.from_gdi_point(point) == PointF(1.5, -2.0)
    font = FontExtensions.to_gdi_font(Font("Lato", 12.0), gfx.GraphicsUnit.PIXEL)
    assert (font.name, font.size, font.unit) == ("Lato", 12.0, gfx.GraphicsUnit.PIXEL)
    turn = RotateFlipExtensions.to_gdi_rotate_flip(RotateFlipType.ROTATE_90_FLIP_X)
    assert turn is gfx.RotateFlipType.ROTATE_90_FLIP_X
    for value in (Color.RED, "red", None):
        with pytest.raises(TypeError, match="^can't build Color value from "):
            ColorExtensions.from_gdi_color(value)


@pytest.mark.behaviour("collections-generic.array.getitem-sibling")
def test_arrays_of_a_siblings_values():
    colors = ColorExtensions.to_gdi_colors([Color.RED, Color.BLUE])
    assert [type(color) for color in colors] == [gfx.Color] * 2
    colors[0] = colors[1]
    assert colors[0] == colors[1] and colors.index(colors[1]) == 0
    points = PointExtensions.to_gdi_points([PointF(1, 2), PointF(3, 4)])
    assert [(point.x, point.y) for point in points[::-1]] == [(3.0, 4.0), (1.0, 2.0)]


def test_rectangles_of_both_kinds():
    whole = RectangleExtensions.to_gdi_rectangle(Rectangle(1, 2, 3, 4))
    part = RectangleExtensions.to_gdi_rectangle(RectangleF(1.5, 2, 3, 4))
    assert type(whole) is gfx.Rectangle and type(part) is gfx.RectangleF
    assert (whole.x, whole.right, part.x) == (1, 4, 1.5)
