// File formats.
namespace Kelmor.PSD;

/// <summary>File formats; several may be named at once.</summary>
[Flags]
public enum FileFormat : ulong
{
    Undefined = 0,
    Custom = 1,
    Bmp = 2,
    Gif = 4,
    Jpeg = 8,
    Png = 16,
    Tiff = 32,
    Psd = 64,
    Jpeg2000 = 512,
    Djvu = 1024,
    Webp = 2048,
    Emf = 4096,
    Dicom = 8192,
    Svg = 16384,
    Wmf = 32768,
    Dng = 65536,
    Odg = 131072,
    Cdr = 524288,
    Cmx = 1048576,
    Otg = 2097152,
    Ai = 4194304,
    Html5Canvas = 8388608,
    Eps = 262144,
    Apng = 16777216,
    Tga = 33554432,
}
