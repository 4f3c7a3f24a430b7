// The drawing types do what their names say.
using Kelmor.GfxTypes;
using Kelmor.GfxTypes.Drawing2D;
using Kelmor.GfxTypes.Imaging;

namespace Kelmor.WrpGen.Interop.Tests;

public class GfxTypesTests
{
    [Fact]
    public void A_color_is_made_of_its_channels()
    {
        Color color = Color.FromArgb(1, 2, 3, 4);
        Assert.Equal(0x01020304, color.ToArgb());
        Assert.Equal((1, 2, 3, 4), (color.A, color.R, color.G, color.B));
        Assert.Equal(Color.FromArgb(255, 9, 8, 7), Color.FromArgb(9, 8, 7));
        Assert.True(default(Color).IsEmpty);
        Assert.False(Color.FromArgb(0).IsEmpty);
        Assert.Throws<ArgumentOutOfRangeException>(() => Color.FromArgb(0, 256, 0, 0));
    }

    [Theory]
    [InlineData(255, 0, 0, 0f, 1f, 0.5f)]
    [InlineData(0, 255, 0, 120f, 1f, 0.5f)]
    [InlineData(0, 0, 255, 240f, 1f, 0.5f)]
    [InlineData(255, 0, 255, 300f, 1f, 0.5f)]
    [InlineData(128, 128, 128, 0f, 0f, 128 / 255f)]
    [InlineData(255, 255, 255, 0f, 0f, 1f)]
    public void A_color_has_hue_saturation_and_brightness(
        int red, int green, int blue, float hue, float saturation, float brightness)
    {
        Color color = Color.FromArgb(red, green, blue);
        Assert.Equal(hue, color.GetHue(), 3);
        Assert.Equal(saturation, color.GetSaturation(), 3);
        Assert.Equal(brightness, color.GetBrightness(), 3);
    }

    [Fact]
    public void Rectangles_meet_join_and_contain()
    {
        var first = new Rectangle(0, 0, 10, 10);
        var second = new Rectangle(5, 5, 10, 10);
        Assert.Equal(new Rectangle(5, 5, 5, 5), Rectangle.Intersect(first, second));
        Assert.Equal(new Rectangle(0, 0, 15, 15), Rectangle.Union(first, second));
        Assert.True(Rectangle.Intersect(first, new Rectangle(20, 20, 1, 1)).IsEmpty);
        Assert.True(first.IntersectsWith(second) && first.Contains(9, 9) && !first.Contains(10, 9));
        first.Inflate(1, 2);
        first.Offset(1, 1);
        Assert.Equal(new Rectangle(0, -1, 12, 14), first);
        Assert.Equal(new Rectangle(1, 2, 3, 4), Rectangle.FromLTRB(1, 2, 4, 6));
    }

    [Fact]
    public void A_matrix_transforms_and_is_undone_by_its_inverse()
    {
        var matrix = new Matrix();
        Assert.True(matrix.IsIdentity);
        matrix.Translate(10, 20);
        matrix.Rotate(90);
        matrix.Scale(2, 3);
        PointF[] points = [new PointF(1, 0), new PointF(0, 1)];
        PointF[] moved = matrix.TransformPoints(points);
        Assert.Equal((10f, 22f), (MathF.Round(moved[0].X, 4), MathF.Round(moved[0].Y, 4)));
        Assert.Equal((7f, 20f), (MathF.Round(moved[1].X, 4), MathF.Round(moved[1].Y, 4)));
        matrix.Invert();
        PointF[] back = matrix.TransformPoints(moved);
        Assert.Equal(1f, back[0].X, 4);
        Assert.Equal(0f, back[0].Y, 4);
        Assert.Throws<ArgumentException>(new Matrix(1, 2, 2, 4, 0, 0).Invert);
    }

    [Fact]
    public void A_path_keeps_points_types_and_figures()
    {
        var path = new GraphicsPath();
        path.AddLine(new PointF(0, 0), new PointF(1, 0));
        path.AddLine(new PointF(1, 0), new PointF(1, 1));
        path.CloseFigure();
        path.AddRectangle(new RectangleF(2, 2, 3, 4));
        Assert.Equal([0, 1, 0x81, 0, 1, 1, 0x81], path.PathTypes);
        Assert.Equal(new RectangleF(0, 0, 5, 6), path.GetBounds());
        path.Reset();
        path.AddEllipse(new RectangleF(0, 0, 2, 2));
        Assert.Equal(13, path.PointCount);
        Assert.Equal(0x83, path.PathTypes[^1]);
    }

    [Theory]
    [InlineData(RotateFlipType.RotateNoneFlipNone, 3, new[] { 1, 2, 3, 4, 5, 6 })]
    [InlineData(RotateFlipType.Rotate90FlipNone, 2, new[] { 4, 1, 5, 2, 6, 3 })]
    [InlineData(RotateFlipType.Rotate180FlipNone, 3, new[] { 6, 5, 4, 3, 2, 1 })]
    [InlineData(RotateFlipType.Rotate270FlipNone, 2, new[] { 3, 6, 2, 5, 1, 4 })]
    [InlineData(RotateFlipType.RotateNoneFlipX, 3, new[] { 3, 2, 1, 6, 5, 4 })]
    [InlineData(RotateFlipType.RotateNoneFlipY, 3, new[] { 4, 5, 6, 1, 2, 3 })]
    [InlineData(RotateFlipType.Rotate90FlipX, 2, new[] { 1, 4, 2, 5, 3, 6 })]
    public void A_bitmap_is_turned_and_mirrored(RotateFlipType type, int width, int[] expected)
    {
        var bitmap = new Bitmap(3, 2);
        bitmap.SetArgb32Pixels([1, 2, 3, 4, 5, 6]);
        bitmap.RotateFlip(type);
        Assert.Equal(width, bitmap.Width);
        Assert.Equal(expected, bitmap.GetArgb32Pixels());
    }

    [Fact]
    public void A_bitmap_refuses_pixels_outside_and_sizes_that_cannot_be()
    {
        var bitmap = new Bitmap(2, 2);
        Assert.Throws<ArgumentOutOfRangeException>(() => bitmap.GetPixel(2, 0));
        Assert.Throws<ArgumentOutOfRangeException>(() => bitmap.SetPixel(0, -1, Color.Red));
        Assert.Throws<ArgumentException>(() => bitmap.SetArgb32Pixels([1]));
        Assert.Throws<ArgumentOutOfRangeException>(() => new Bitmap(0, 5));
        Assert.Throws<ArgumentException>(() => new Bitmap(int.MaxValue, int.MaxValue));
    }

    [Fact]
    public void A_region_is_what_was_added_less_what_was_taken_away()
    {
        var region = new Region(new RectangleF(0, 0, 10, 10));
        region.Exclude(new RectangleF(2, 2, 3, 3));
        region.Union(new RectangleF(8, 8, 4, 4));
        Assert.True(region.IsVisible(new PointF(1, 1)) && region.IsVisible(new PointF(11, 11)));
        Assert.False(region.IsVisible(new PointF(3, 3)));
        Assert.Equal(new RectangleF(0, 0, 12, 12), region.GetBounds());
        Assert.Equal(100 - 9 + 16 - 4, region.GetRegionScans().Sum(r => r.Width * r.Height));
        region.Intersect(new RectangleF(0, 0, 1, 1));
        Assert.Equal([new RectangleF(0, 0, 1, 1)], region.GetRegionScans());
    }

    [Fact]
    public void Attributes_replace_multiply_and_correct()
    {
        var attributes = new ImageAttributes();
        attributes.SetRemapTable([new ColorMap { OldColor = Color.Red, NewColor = Color.White }]);
        var half = new ColorMatrix { Matrix00 = 0.5f };
        attributes.SetColorMatrix(half);
        Assert.Equal(Color.FromArgb(128, 255, 255), attributes.Apply(Color.Red));
        attributes.ClearRemapTable();
        attributes.ClearColorMatrix();
        attributes.SetGamma(2f);
        Assert.Equal(Color.FromArgb(64, 0, 255), attributes.Apply(Color.FromArgb(128, 0, 255)));
        Assert.Throws<ArgumentException>(() => new ColorMatrix([[1f]]));
    }

    [Fact]
    public void A_pen_has_the_color_of_its_brush_and_a_font_its_styles()
    {
        var pen = new Pen(Color.Blue, 3f);
        Assert.Equal(Color.Blue, pen.Clone().Color);
        pen.Brush = new LinearGradientBrush(default, new PointF(1, 1), Color.Red, Color.Blue);
        Assert.True(pen.Color.IsEmpty);
        var font = new Font("Serif", 9f, FontStyle.Bold | FontStyle.Underline);
        Assert.True(font is { Bold: true, Underline: true, Italic: false, Strikeout: false });
        Assert.Equal(font, new Font("Serif", 9f, FontStyle.Bold | FontStyle.Underline));
        Assert.Throws<ArgumentOutOfRangeException>(() => new Font("Serif", 0f));
    }
}
