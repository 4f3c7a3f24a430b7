// The flat interface of the native codec library, which stands beside this assembly.
using System.Runtime.InteropServices;

namespace Kelmor.PSD.Codecs.Native;

internal static unsafe partial class NativeImaging
{
    public const string Library = "libkelmor.imaging.so";

    [LibraryImport(Library, EntryPoint = "kelmor_png_begin")]
    public static partial Status PngBegin(
        PngPicture* picture,
        NativeStream.StreamTable* stream,
        nint* writer
    );

    [LibraryImport(Library, EntryPoint = "kelmor_png_rows")]
    public static partial Status PngRows(nint writer, byte* rows, long stride, int count);

    [LibraryImport(Library, EntryPoint = "kelmor_png_end")]
    public static partial Status PngEnd(nint writer);

    [LibraryImport(Library, EntryPoint = "kelmor_png_message")]
    public static partial byte* PngMessage(nint writer);

    [LibraryImport(Library, EntryPoint = "kelmor_png_release")]
    public static partial void PngRelease(nint writer);

    /// <summary>What every entry answers.</summary>
    public enum Status
    {
        Ok = 0,
        StreamFailed = -1,
        WrongArgument = -2,
        OutOfMemory = -3,
        CodecFailed = -4,
    }

    /// <summary>
    /// The record `kelmor_png_picture`: everything that stands before the pixels.
    /// </summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct PngPicture
    {
        public int Width;
        public int Height;
        public int BitDepth;
        public int ColorType; // as in IHDR
        public int Interlaced; // 1: Adam7
        public int Level;
        public int Filter;
        public int PaletteCount;
        public int PaletteAlphaCount;
        public int HasTransparent;
        public fixed ushort Transparent[4];
        public int PixelsPerMeterX; // 0 in both: not told
        public int PixelsPerMeterY;
        public byte* Palette; // red, green, blue of each entry
        public byte* PaletteAlpha;
        public byte* IccName;
        public byte* Icc;
        public long IccLength;
        public byte* Xmp; // UTF-8
        public long XmpLength;
        public void* Texts;
        public long TextCount;
    }
}
