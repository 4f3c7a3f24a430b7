// What callers of pixel loading supply, and how raw data are described.
namespace Kelmor.PSD
{
    /// <summary>Receives pixels block by block.</summary>
    public interface IPartialArgb32PixelLoader
    {
        /// <summary>Takes the pixels of one block, row by row, 0xAARRGGBB each.</summary>
        void Process(Rectangle pixelsRectangle, int[] pixels, Point start, Point end);
    }

    /// <summary>Receives colours block by block.</summary>
    public interface IPartialPixelLoader
    {
        /// <summary>Takes the colours of one block, row by row.</summary>
        void Process(Rectangle pixelsRectangle, Color[] pixels, Point start, Point end);
    }

    /// <summary>Receives raw data block by block.</summary>
    public interface IPartialRawDataLoader
    {
        /// <summary>Takes the bytes of one block, row by row.</summary>
        void Process(Rectangle dataRectangle, byte[] data, Point start, Point end);
    }

    /// <summary>Turns stored values into colours.</summary>
    public interface IColorConverter
    {
        /// <summary>0xAARRGGBB of a stored value.</summary>
        int ConvertToArgb32(long value);
    }

    /// <summary>Turns stored indexes into colours.</summary>
    public interface IIndexedColorConverter
    {
        /// <summary>0xAARRGGBB of a stored index.</summary>
        int ConvertToArgb32(int index);
    }

    /// <summary>Order and width of the samples of a pixel.</summary>
    public sealed class PixelDataFormat
    {
        private PixelDataFormat(PixelFormat pixelFormat, int channelsCount, int bitsPerChannel)
        {
            PixelFormat = pixelFormat;
            ChannelsCount = channelsCount;
            BitsPerPixel = channelsCount * bitsPerChannel;
        }

        /// <summary>Red, green, blue of 8 bits each.</summary>
        public static PixelDataFormat Rgb24Bpp => new(PixelFormat.Rgb, 3, 8);

        /// <summary>Blue, green, red, alpha of 8 bits each.</summary>
        public static PixelDataFormat Bgra32Bpp => new(PixelFormat.Bgr, 4, 8);

        /// <summary>Gray of 8 bits.</summary>
        public static PixelDataFormat Grayscale => new(PixelFormat.Grayscale, 1, 8);

        /// <summary>Cyan, magenta, yellow, black of 8 bits each.</summary>
        public static PixelDataFormat Cmyk => new(PixelFormat.Cmyk, 4, 8);

        /// <summary>Order and meaning of the samples.</summary>
        public PixelFormat PixelFormat { get; }

        /// <summary>Number of samples of a pixel.</summary>
        public int ChannelsCount { get; }

        /// <summary>Bits of a pixel.</summary>
        public int BitsPerPixel { get; }

        /// <summary>A format by its parts.</summary>
        internal static PixelDataFormat Of(PixelFormat format, int channels, int bits) =>
            new(format, channels, bits);
    }

    /// <summary>How raw data are laid out.</summary>
    public class RawDataSettings
    {
        /// <summary>Order and width of the samples.</summary>
        public PixelDataFormat? PixelDataFormat { get; set; }

        /// <summary>Bytes of one row.</summary>
        public int LineSize { get; set; }

        /// <summary>Palette of indexed data.</summary>
        public IColorPalette? ColorPalette { get; set; }

        /// <summary>Entry that stands for colours that the palette lacks.</summary>
        public int FallbackIndex { get; set; }
    }
}

namespace Kelmor.PSD.ImageFilters.FilterOptions
{
    /// <summary>Settings of a filter.</summary>
    public abstract class FilterOptionsBase { }
}
