// Positions, sizes, rectangles and colours behave as values.
namespace Kelmor.PSD.Tests.Drawing;

public class StructTests
{
    [Fact]
    public void Points_move_and_become_sizes()
    {
        var point = new Point(3, 4);
        point.Offset(1, -1);
        Assert.Equal(new Point(4, 3), point);
        point.Offset(new Point(-4, -3));
        Assert.True(point.IsEmpty);
        Assert.Equal(new Point(5, 7), Point.Add(new Point(2, 3), new Size(3, 4)));
        Assert.Equal(new Point(2, 3), new Point(5, 7) - new Size(3, 4));
        Assert.Equal(new Size(5, 7), (Size)new Point(5, 7));
        Assert.Equal(new PointF(5, 7), new Point(5, 7));
    }

    [Theory]
    [InlineData(1.5f, 2, 2, 1)]
    [InlineData(2.5f, 3, 2, 2)]
    [InlineData(-1.5f, -1, -2, -1)]
    [InlineData(1e20f, int.MaxValue, int.MaxValue, int.MaxValue)]
    [InlineData(-1e20f, int.MinValue, int.MinValue, int.MinValue)]
    [InlineData(float.NaN, 0, 0, 0)]
    public void Fractions_become_whole_pixels(float value, int ceiling, int rounded, int cut)
    {
        Assert.Equal(new Point(ceiling, ceiling), Point.Ceiling(new PointF(value, value)));
        Assert.Equal(new Point(rounded, rounded), Point.Round(new PointF(value, value)));
        Assert.Equal(new Size(cut, cut), Size.Truncate(new SizeF(value, value)));
        Assert.Equal(
            new Rectangle(rounded, rounded, rounded, rounded),
            Rectangle.Round(new RectangleF(value, value, value, value))
        );
    }

    [Fact]
    public void Rectangles_meet_and_join()
    {
        var left = new Rectangle(0, 0, 10, 10);
        var right = new Rectangle(5, 5, 10, 10);
        Assert.Equal(new Rectangle(5, 5, 5, 5), Rectangle.Intersect(left, right));
        Assert.Equal(new Rectangle(0, 0, 15, 15), Rectangle.Union(left, right));
        Assert.True(left.IntersectsWith(right));
        Assert.False(left.IntersectsWith(new Rectangle(10, 0, 5, 5)));
        Assert.Equal(Rectangle.Empty, Rectangle.Intersect(left, new Rectangle(11, 0, 5, 5)));
        Assert.True(left.Contains(9, 9));
        Assert.False(left.Contains(10, 9));
        Assert.True(left.Contains(new Rectangle(2, 2, 8, 8)));
    }

    [Fact]
    public void Rectangles_grow_and_turn_right_side_out()
    {
        var rectangle = new Rectangle(1, 2, 3, 4);
        rectangle.Inflate(1, 2);
        Assert.Equal(new Rectangle(0, 0, 5, 8), rectangle);
        Assert.Equal(new Rectangle(0, 0, 5, 8), Rectangle.Inflate(new Rectangle(1, 2, 3, 4), 1, 2));
        rectangle = new Rectangle(5, 5, -3, -2);
        rectangle.Normalize();
        Assert.Equal(new Rectangle(2, 3, 3, 2), rectangle);
        Assert.Equal(
            new Rectangle(2, 3, 3, 2),
            Rectangle.FromPoints(new Point(5, 3), new Point(2, 5))
        );
        Assert.Equal(
            (2, 3, 5, 5),
            (rectangle.Left, rectangle.Top, rectangle.Right, rectangle.Bottom)
        );
        rectangle.Left = 0;
        Assert.Equal(new Rectangle(0, 3, 5, 2), rectangle);
    }

    [Fact]
    public void Colours_keep_their_channels_and_names()
    {
        var color = Color.FromArgb(1, 2, 3, 4);
        Assert.Equal((1, 2, 3, 4), (color.A, color.R, color.G, color.B));
        Assert.Equal(0x01020304, color.ToArgb());
        Assert.Equal(Color.FromArgb(200, 2, 3, 4), Color.FromArgb(200, color));
        Assert.Equal("1020304", color.Name);
        Assert.Equal("Red", Color.Red.Name);
        Assert.True(Color.Red.IsNamedColor);
        Assert.NotEqual(Color.Red, Color.FromArgb(255, 0, 0));
        Assert.Equal(Color.Red.ToArgb(), Color.FromArgb(255, 0, 0).ToArgb());
        Assert.Equal(Color.CornflowerBlue, Color.FromName("cornflowerblue"));
        Assert.True(Color.FromName("no colour").IsEmpty);
        Assert.True(default(Color).IsEmpty);
        Assert.False(Color.FromArgb(0).IsEmpty);
        Assert.Throws<ArgumentException>(() => Color.FromArgb(256, 0, 0));
    }

    [Theory]
    [InlineData(255, 0, 0, 0, 1, 0.5)]
    [InlineData(0, 255, 0, 120, 1, 0.5)]
    [InlineData(0, 0, 255, 240, 1, 0.5)]
    [InlineData(255, 0, 128, 329.88, 1, 0.5)]
    [InlineData(128, 128, 128, 0, 0, 0.502)]
    [InlineData(200, 220, 240, 210, 0.571, 0.863)]
    public void Colours_have_hue_saturation_and_brightness(
        int red,
        int green,
        int blue,
        double hue,
        double saturation,
        double brightness
    )
    {
        var color = Color.FromArgb(red, green, blue);
        Assert.Equal(hue, color.GetHue(), 2);
        Assert.Equal(saturation, color.GetSaturation(), 3);
        Assert.Equal(brightness, color.GetBrightness(), 3);
    }

    [Theory]
    [InlineData(255, 255, 255, 0, 0, 0, 0)]
    [InlineData(0, 0, 0, 0, 0, 0, 255)]
    [InlineData(255, 0, 0, 0, 255, 255, 0)]
    [InlineData(0, 128, 128, 255, 0, 0, 127)]
    public void Colours_become_ink_and_come_back(
        int red,
        int green,
        int blue,
        int cyan,
        int magenta,
        int yellow,
        int black
    )
    {
        var ink = Color.FromArgb(red, green, blue).ToCmyk();
        Assert.Equal((cyan, magenta, yellow, black), (ink.C, ink.M, ink.Y, ink.K));
        Assert.Equal(Color.FromArgb(red, green, blue), ink.ToColor());
        Assert.Equal(ink, CmykColor.FromCmyk32(ink.ToCmyk32()));
    }

    [Fact]
    public void A_palette_finds_the_nearest_entry()
    {
        var palette = new ColorPalette([Color.Black, Color.White, Color.Red]);
        Assert.Equal(2, palette.GetNearestColorIndex(Color.FromArgb(200, 10, 10)));
        Assert.Equal(1, palette.GetNearestColorIndex(Color.White));
        Assert.Equal(Color.Red.ToArgb(), palette.GetArgb32Color(2));
        Assert.Throws<ArgumentOutOfRangeException>(() => palette.GetColor(3));
        Assert.Throws<ArgumentException>(() => new ColorPalette(new int[257]));
    }
}
