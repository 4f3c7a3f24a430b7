// Finds the corpus of real documents and what is known about each.
using System.Text.Json;

namespace Kelmor.PSD.Tests.Corpus;

/// <summary>
/// The documents beside the repository, with the truth about them from independent programs.
/// </summary>
internal static class CorpusFiles
{
    private static readonly Lazy<Dictionary<string, JsonElement>> Truths = new(ReadTruths);

    /// <summary>Folder of the documents, or null when this machine has none.</summary>
    public static string? Folder { get; } = Find();

    public const string Absence = "The corpus of real documents is not beside the repository.";

    public static IEnumerable<string> All => Truths.Value.Keys;

    public static JsonElement Truth(string file) => Truths.Value[file];

    public static string PathOf(string file) => Path.Combine(Folder!, file);

    public static byte[] Bytes(string file) => File.ReadAllBytes(PathOf(file));

    public static bool MustLoad(string file) =>
        !Truth(file)
            .GetProperty("expect")
            .GetString()!
            .StartsWith("damaged", StringComparison.Ordinal);

    private static Dictionary<string, JsonElement> ReadTruths()
    {
        using var stream = File.OpenRead(Path.Combine(Folder!, "truth.json"));
        var document = JsonDocument.Parse(stream);
        return document
            .RootElement.GetProperty("files")
            .EnumerateArray()
            .ToDictionary(row => row.GetProperty("file").GetString()!);
    }

    private static string? Find()
    {
        for (
            var folder = new DirectoryInfo(AppContext.BaseDirectory);
            folder is not null;
            folder = folder.Parent
        )
        {
            var candidate = Path.Combine(folder.FullName, "..", "shared", "corpus");
            if (
                Directory.Exists(Path.Combine(folder.FullName, "managed"))
                && File.Exists(Path.Combine(candidate, "truth.json"))
            )
            {
                return Path.GetFullPath(candidate);
            }
        }
        return null;
    }
}

/// <summary>Documents that a reader must load.</summary>
public sealed class ReadableDocuments : TheoryData<string>
{
    public ReadableDocuments()
    {
        foreach (
            var file in CorpusFiles.Folder is null
                ? []
                : CorpusFiles.All.Where(CorpusFiles.MustLoad)
        )
        {
            Add(file);
        }
    }
}

/// <summary>Documents that are damaged.</summary>
public sealed class DamagedDocuments : TheoryData<string>
{
    public DamagedDocuments()
    {
        foreach (
            var file in CorpusFiles.Folder is null
                ? []
                : CorpusFiles.All.Where(file => !CorpusFiles.MustLoad(file))
        )
        {
            Add(file);
        }
    }
}

/// <summary>A theory over the corpus; skipped where there is none.</summary>
public sealed class CorpusTheoryAttribute : TheoryAttribute
{
    public CorpusTheoryAttribute()
    {
        if (CorpusFiles.Folder is null)
        {
            Skip = CorpusFiles.Absence;
        }
    }
}

/// <summary>A fact about the corpus; skipped where there is none.</summary>
public sealed class CorpusFactAttribute : FactAttribute
{
    public CorpusFactAttribute()
    {
        if (CorpusFiles.Folder is null)
        {
            Skip = CorpusFiles.Absence;
        }
    }
}
