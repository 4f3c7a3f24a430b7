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

    // Blocks that get the long signature, and so a length of 8 bytes, in a PSB document only.
    private static readonly HashSet<uint> KeysOfLongSignature = new[]
    {
        "cinf",
        "artd",
        "extd",
        "extn",
        "pths",
        "lnk3",
        "lnkE",
        "FELS",
    }
        .Select(Code)
        .ToHashSet();

    /// <summary>The signature that a block has in a document of the given variant.</summary>
    public static uint SignatureFor(uint signature, uint key, bool isBig) =>
        !isBig ? Signature
        : KeysOfLongSignature.Contains(key) ? LongSignature
        : signature;

    public static bool IsSignature(uint code) => code is Signature or LongSignature;

    public static bool HasLongLength(uint signature, uint key, bool isBig) =>
        isBig && (signature == LongSignature || LongKeys.Contains(key));

    /// <summary>Key of the block that holds the layers of a document of 16 or 32 bits.</summary>
    public static uint LayersOf(int depth) => Code($"Lr{depth}");

    /// <summary>Key of the block that says: the merged image has transparency.</summary>
    public static uint TransparencyMark(int depth) => Code(depth > 8 ? $"Mt{depth}" : "Mtrn");

    public static bool IsTransparencyMark(uint key) => Letters(key) is "Mtrn" or "Mt16" or "Mt32";

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
