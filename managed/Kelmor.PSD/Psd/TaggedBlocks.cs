// What holds for the tagged blocks of layers and of the document.
namespace Kelmor.PSD.FileFormats.Psd;

internal static class TaggedBlocks
{
    public const uint Signature = 0x3842494D; // "8BIM"
    public const uint LongSignature = 0x38423634; // "8B64"

    // Blocks whose length has 8 bytes in a PSB document.
    private static readonly HashSet<uint> LongKeys = new[]
    {
        "LMsk",
        "Lr16",
        "Lr32",
        "Layr",
        "Mt16",
        "Mt32",
        "Mtrn",
        "Alph",
        "FMsk",
        "lnk2",
        "FEid",
        "FXid",
        "PxSD",
    }
        .Select(Code)
        .ToHashSet();

    public static bool IsSignature(uint code) => code is Signature or LongSignature;

    public static bool HasLongLength(uint signature, uint key, bool isBig) =>
        isBig && (signature == LongSignature || LongKeys.Contains(key));

    /// <summary>Four letters as a big-endian number.</summary>
    public static uint Code(string letters) =>
        (uint)letters[0] << 24 | (uint)letters[1] << 16 | (uint)letters[2] << 8 | letters[3];

    /// <summary>A big-endian number as its four letters.</summary>
    public static string Letters(uint code) =>
        string.Create(
            4,
            code,
            (text, value) =>
            {
                for (var i = 0; i < 4; i++)
                {
                    text[i] = (char)(value >> (24 - 8 * i) & 255);
                }
            }
        );
}
