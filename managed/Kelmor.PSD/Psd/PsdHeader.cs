// The file header of a layered document.
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd.Reading;

namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>
/// Size and kind of a document (Adobe Photoshop File Formats Specification, File Header Section).
/// </summary>
/// <param name="Version">PSD or PSB.</param>
/// <param name="Reserved">Six bytes that should be zero; kept as they are.</param>
/// <param name="Channels">Channels of the merged image, alpha included.</param>
/// <param name="Height">Rows.</param>
/// <param name="Width">Columns.</param>
/// <param name="Depth">Bits of one sample.</param>
/// <param name="Mode">Colour mode.</param>
internal sealed record PsdHeader(
    PsdVersion Version,
    ReadOnlyMemory<byte> Reserved,
    int Channels,
    int Height,
    int Width,
    int Depth,
    ColorModes Mode
)
{
    public const uint Signature = 0x38425053; // "8BPS"
    public const int Size = 26;

    public bool IsBig => Version == PsdVersion.Psb;

    /// <summary>Channels that carry colour; further ones are alpha or spot channels.</summary>
    public int ColorChannels => ColorChannelsOf(Mode, Channels);

    public static int ColorChannelsOf(ColorModes mode, int channels) =>
        mode switch
        {
            ColorModes.Rgb or ColorModes.Lab => 3,
            ColorModes.Cmyk => 4,
            ColorModes.Multichannel => channels,
            _ => 1,
        };

    /// <summary>Reads and checks the header.</summary>
    /// <exception cref="PsdImageException">It is no layered document, or its header contradicts the
    /// format.</exception>
    public static PsdHeader Read(SectionReader reader)
    {
        if (reader.UInt32("the signature") != Signature)
        {
            throw new PsdImageException(
                "The file header is damaged: the signature '8BPS' is missing."
            );
        }
        var version = reader.UInt16("the version");
        var header = new PsdHeader(
            (PsdVersion)Math.Min(version, (ushort)255),
            reader.Take(6, "the reserved bytes"),
            reader.UInt16("the number of channels"),
            reader.Int32("the height"),
            reader.Int32("the width"),
            reader.UInt16("the depth"),
            (ColorModes)reader.Int16("the colour mode")
        );
        header.Verify();
        return header;
    }

    /// <summary>Refuses what the format does not allow.</summary>
    /// <param name="trouble">What the refusal begins with.</param>
    public void Verify(string trouble = "The file header is damaged")
    {
        void Require(bool condition, string otherwise)
        {
            if (!condition)
            {
                throw new PsdImageException($"{trouble}: {otherwise}.");
            }
        }

        Require(
            Version is PsdVersion.Psd or PsdVersion.Psb,
            $"the version {(int)Version} is not known"
        );
        Require(Channels is >= 1 and <= 56, $"{Channels} channels are not between 1 and 56");
        var largest = IsBig ? 300_000 : 30_000;
        Require(
            Width >= 1 && Width <= largest,
            $"the width {Width} is not between 1 and {largest}"
        );
        Require(
            Height >= 1 && Height <= largest,
            $"the height {Height} is not between 1 and {largest}"
        );
        Require(Depth is 1 or 8 or 16 or 32, $"the depth {Depth} is none of 1, 8, 16 and 32");
        Require(Enum.IsDefined(Mode), $"the colour mode {(int)Mode} is not known");
        Require(
            Channels >= ColorChannels,
            $"the colour mode {Mode} has {ColorChannels} channels, not {Channels}"
        );
    }
}
