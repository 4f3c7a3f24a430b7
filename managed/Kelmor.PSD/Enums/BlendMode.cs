// Blend modes.
namespace Kelmor.PSD.FileFormats.Core.Blending;

/// <summary>Blend modes: their four-letter keys as big-endian numbers.</summary>
public enum BlendMode : int
{
    Normal = 0x6E6F726D, // "norm"
    Darken = 0x6461726B, // "dark"
    Lighten = 0x6C697465, // "lite"
    Hue = 0x68756520, // "hue "
    Saturation = 0x73617420, // "sat "
    Color = 0x636F6C72, // "colr"
    Luminosity = 0x6C756D20, // "lum "
    Multiply = 0x6D756C20, // "mul "
    Screen = 0x7363726E, // "scrn"
    Dissolve = 0x64697373, // "diss"
    Overlay = 0x6F766572, // "over"
    HardLight = 0x684C6974, // "hLit"
    SoftLight = 0x734C6974, // "sLit"
    Subtract = 0x66737562, // "fsub"
    Difference = 0x64696666, // "diff"
    Exclusion = 0x736D7564, // "smud"
    ColorDodge = 0x64697620, // "div "
    ColorBurn = 0x69646976, // "idiv"
    LinearBurn = 0x6C62726E, // "lbrn"
    LinearDodge = 0x6C646467, // "lddg"
    VividLight = 0x764C6974, // "vLit"
    LinearLight = 0x6C4C6974, // "lLit"
    PinLight = 0x704C6974, // "pLit"
    HardMix = 0x684D6978, // "hMix"
    PassThrough = 0x70617373, // "pass"
    DarkerColor = 0x646B436C, // "dkCl"
    LighterColor = 0x6C67436C, // "lgCl"
    Divide = 0x66646976, // "fdiv"
    Absent = 0,
}
