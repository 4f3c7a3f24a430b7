// What drawing is done with: pens, brushes, fonts, paths, regions, matrices.
namespace Kelmor.PSD
{
    /// <summary>An affine transformation of the plane.</summary>
    public sealed class Matrix
    {
        /// <summary>The identity.</summary>
        public Matrix()
            : this(1, 0, 0, 1, 0, 0) { }

        /// <summary>A transformation: x' = x*m11 + y*m21 + m31, y' = x*m12 + y*m22 + m32.</summary>
        public Matrix(float m11, float m12, float m21, float m22, float m31, float m32) =>
            Elements = [m11, m12, m21, m22, m31, m32];

        /// <summary>The six numbers, in the order of the constructor.</summary>
        public float[] Elements { get; }
    }

    /// <summary>What areas are filled with.</summary>
    public abstract class Brush : DisposableObject
    {
        /// <summary>Opacity, 0 to 1.</summary>
        public float Opacity { get; set; } = 1;
    }

    /// <summary>What lines are drawn with.</summary>
    public sealed class Pen
    {
        /// <summary>A pen of one pixel.</summary>
        public Pen(Color color)
            : this(color, 1) { }

        /// <summary>A pen.</summary>
        /// <param name="color">Colour.</param>
        /// <param name="width">Width of the line.</param>
        public Pen(Color color, float width)
        {
            Color = color;
            Width = width;
        }

        /// <summary>Colour.</summary>
        public Color Color { get; set; }

        /// <summary>Width of the line.</summary>
        public float Width { get; set; }
    }

    /// <summary>A font by its name, size and style.</summary>
    public sealed class Font
    {
        /// <summary>A font in regular style.</summary>
        public Font(string fontName, float fontSize)
            : this(fontName, fontSize, FontStyle.Regular) { }

        /// <summary>A font.</summary>
        /// <param name="fontName">Name of the family.</param>
        /// <param name="fontSize">Size in points.</param>
        /// <param name="style">Style.</param>
        public Font(string fontName, float fontSize, FontStyle style)
        {
            ArgumentNullException.ThrowIfNull(fontName);
            Name = fontName;
            Size = fontSize;
            Style = style;
        }

        /// <summary>Name of the family.</summary>
        public string Name { get; }

        /// <summary>Size in points.</summary>
        public float Size { get; }

        /// <summary>Style.</summary>
        public FontStyle Style { get; }

        /// <summary>True for bold.</summary>
        public bool Bold => Style.HasFlag(FontStyle.Bold);

        /// <summary>True for italic.</summary>
        public bool Italic => Style.HasFlag(FontStyle.Italic);
    }

    /// <summary>How text is laid out.</summary>
    public sealed class StringFormat { }

    /// <summary>Lines and curves that form outlines.</summary>
    public sealed class GraphicsPath
    {
        /// <summary>How the inside is told from the outside.</summary>
        public FillMode FillMode { get; set; }
    }

    /// <summary>An area of any form.</summary>
    public sealed class Region { }
}

namespace Kelmor.PSD.Brushes
{
    /// <summary>A brush of one colour.</summary>
    public sealed class SolidBrush : Brush
    {
        /// <summary>A black brush.</summary>
        public SolidBrush()
            : this(Color.Black) { }

        /// <summary>A brush of one colour.</summary>
        public SolidBrush(Color color) => Color = color;

        /// <summary>The colour.</summary>
        public Color Color { get; set; }
    }
}
