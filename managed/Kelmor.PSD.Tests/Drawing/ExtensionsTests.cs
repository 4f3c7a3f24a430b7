// Values become those of the drawing types and keep what they say.
using Kelmor.PSD.Brushes;
using Kelmor.PSD.Extensions;
using Gdi = Kelmor.GfxTypes;

namespace Kelmor.PSD.Tests.Drawing;

public class ExtensionsTests
{
    [Fact]
    public void Colours_keep_their_number_and_that_they_are_empty()
    {
        Color[] colors = [Color.FromArgb(0, 0, 0, 0), Color.FromArgb(-2), Color.Red, Color.Empty];
        Gdi.Color[] made = colors.ToGdiColors();
        Assert.Equal([0, -2, Color.Red.ToArgb(), 0], made.Select(color => color.ToArgb()));
        Assert.Equal([false, false, false, true], made.Select(color => color.IsEmpty));
        Assert.Equal(
            colors.Select(color => (color.ToArgb(), color.IsEmpty)),
            made.Select(ColorExtensions.FromGdiColor)
                .Select(color => (color.ToArgb(), color.IsEmpty))
        );
        Assert.Throws<ArgumentNullException>(() => ColorExtensions.ToGdiColors(null!));
    }

    [Theory]
    [InlineData(1f, 0x80)]
    [InlineData(2f, 0x80)]
    [InlineData(0.5f, 0x40)]
    [InlineData(0f, 0)]
    [InlineData(-1f, 0)]
    public void A_brush_brings_its_opacity_into_the_colour(float opacity, int alpha)
    {
        using var brush = new SolidBrush(Color.FromArgb(0x80, 1, 2, 3)) { Opacity = opacity };
        using var made = Assert.IsType<Gdi.SolidBrush>(brush.ToGdiBrush());
        Assert.Equal((alpha << 24) | 0x010203, made.Color.ToArgb());
    }

    [Fact]
    public void What_is_no_brush_or_an_unknown_one_is_refused()
    {
        Assert.Throws<ArgumentNullException>(() => BrushExtensions.ToGdiBrush(null!));
        Assert.Throws<NotSupportedException>(() => new OtherBrush().ToGdiBrush());
    }

    [Fact]
    public void Fonts_points_and_rectangles_keep_their_numbers()
    {
        var font = new Font("Lato", 12.5f, FontStyle.Bold | FontStyle.Italic);
        var points = new Gdi.Font("Lato", 12.5f, Gdi.FontStyle.Bold | Gdi.FontStyle.Italic);
        Assert.Equal(points, font.ToGdiFont());
        Assert.Equal(Gdi.GraphicsUnit.Pixel, font.ToGdiFont(Gdi.GraphicsUnit.Pixel).Unit);
        PointF[] ends = [new(1.5f, -2), new(0, 3)];
        Assert.Equal([new Gdi.PointF(1.5f, -2), new Gdi.PointF(0, 3)], ends.ToGdiPoints());
        Assert.Equal(ends, ends.ToGdiPoints().Select(PointExtensions.FromGdiPoint));
        Assert.Equal(new Gdi.Rectangle(1, 2, 3, 4), new Rectangle(1, 2, 3, 4).ToGdiRectangle());
        Assert.Equal(
            new Gdi.RectangleF(1.5f, 2, 3, 4.5f),
            new RectangleF(1.5f, 2, 3, 4.5f).ToGdiRectangle()
        );
    }

    [Fact]
    public void Turns_styles_and_their_numbers_are_the_same_on_both_sides()
    {
        foreach (string name in Enum.GetNames<RotateFlipType>())
            Assert.Equal(
                Enum.Parse<Gdi.RotateFlipType>(name),
                Enum.Parse<RotateFlipType>(name).ToGdiRotateFlip()
            );
        foreach (string name in Enum.GetNames<FontStyle>())
            Assert.Equal((int)Enum.Parse<Gdi.FontStyle>(name), (int)Enum.Parse<FontStyle>(name));
    }

    private sealed class OtherBrush : Brush { }
}
