// The channels that make up pixels.
namespace Kelmor.PSD.FileFormats.Psd.Channels;

/// <summary>Channels of one picture or layer.</summary>
/// <param name="Mode">Meaning of the colour channels.</param>
/// <param name="Layout">Their size.</param>
/// <param name="Colors">Colour channels; a missing one counts as zero.</param>
/// <param name="Alpha">Transparency, or null when all is opaque.</param>
/// <param name="Palette">0xAARRGGBB for each index of an indexed document.</param>
internal sealed record PixelPlanes(
    ColorModes Mode,
    PlaneLayout Layout,
    byte[]?[] Colors,
    byte[]? Alpha,
    int[]? Palette
);
