// Settings that several options point at.
using Kelmor.PSD.ImageOptions;

namespace Kelmor.PSD
{
    /// <summary>Resolution in pixels per inch.</summary>
    public class ResolutionSetting
    {
        /// <summary>96 pixels per inch both ways.</summary>
        public ResolutionSetting()
            : this(96, 96) { }

        /// <summary>A resolution.</summary>
        public ResolutionSetting(double horizontalResolution, double verticalResolution)
        {
            HorizontalResolution = horizontalResolution;
            VerticalResolution = verticalResolution;
        }

        /// <summary>Pixels per inch across.</summary>
        public double HorizontalResolution { get; set; }

        /// <summary>Pixels per inch downwards.</summary>
        public double VerticalResolution { get; set; }
    }

    /// <summary>A range of whole numbers.</summary>
    public class IntRange
    {
        /// <summary>An empty range at 0.</summary>
        public IntRange() { }

        /// <summary>A range.</summary>
        /// <param name="startValue">First number.</param>
        /// <param name="endValue">Number behind the last.</param>
        public IntRange(int startValue, int endValue)
        {
            StartIndex = startValue;
            EndIndex = endValue;
        }

        /// <summary>First number.</summary>
        public int StartIndex { get; set; }

        /// <summary>Number behind the last.</summary>
        public int EndIndex { get; set; }
    }

    /// <summary>How an image changes its size.</summary>
    public class ImageResizeSettings
    {
        /// <summary>How pixels are computed.</summary>
        public ResizeType Mode { get; set; } = ResizeType.NearestNeighbourResample;
    }
}

namespace Kelmor.PSD.ImageOptions
{
    /// <summary>Which pages of a document are saved, and which part of them.</summary>
    public class MultiPageOptions
    {
        /// <summary>All pages.</summary>
        public MultiPageOptions() => Mode = MultiPageMode.AllPages;

        /// <summary>Some pages, counted from 0.</summary>
        public MultiPageOptions(int[] pages)
        {
            ArgumentNullException.ThrowIfNull(pages);
            Pages = pages;
            Mode = MultiPageMode.Pages;
        }

        /// <summary>Pages by their numbers, counted from 0.</summary>
        public int[]? Pages { get; set; }

        /// <summary>How pages are chosen.</summary>
        public MultiPageMode Mode { get; set; }

        /// <summary>Part of each page; Empty for the whole of it.</summary>
        public Rectangle ExportArea { get; set; }
    }

    /// <summary>How drawings become pixels.</summary>
    public class VectorRasterizationOptions
    {
        /// <summary>Colour below the drawing.</summary>
        public Color BackgroundColor { get; set; } = Color.White;

        /// <summary>Width of the page in pixels; 0 for that of the drawing.</summary>
        public float PageWidth { get; set; }

        /// <summary>Height of the page in pixels; 0 for that of the drawing.</summary>
        public float PageHeight { get; set; }
    }
}
