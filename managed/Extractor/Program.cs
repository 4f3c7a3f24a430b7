// Command line of the extractor: describes the public surface of a compiled library as JSON files.
namespace Kelmor.Extractor;

internal static class Program
{
    private const string Usage = """
        usage: Kelmor.Extractor --library <assembly.dll> --out <folder> [--only <list.json>] [--check]
               Kelmor.Extractor --library <assembly.dll> --status <file.md> [--check]
          --out     folder of descriptions, one file for each namespace
          --only    binds only the types and members that the list names (for a library that is not ours)
          --status  writes the members whose work is not done yet
          --check   writes nothing; fails when a file differs from what would be written
        """;

    private static int Main(string[] arguments)
    {
        Options options;
        try
        {
            options = Options.Parse(arguments);
        }
        catch (ArgumentException problem)
        {
            Console.Error.WriteLine(problem.Message);
            Console.Error.WriteLine(Usage);
            return 2;
        }
        using var library = new Library(options.Library);
        var output = new Output(options.Check);
        if (options.Out is { } folder)
        {
            var selection = options.Only is { } list ? Selection.Read(list) : null;
            var surface = new Surface(library, selection);
            output.WriteFolder(folder, surface.Describe().ToDictionary(
                entry => entry.Key + ".json", entry => DescriptionWriter.Write(entry.Key, entry.Value)));
        }
        if (options.Status is { } page)
        {
            output.WriteFile(page, StatusPage.Write(NotYetFinder.Find(library)));
        }
        foreach (var difference in output.Differences)
        {
            Console.Error.WriteLine(options.Check ? $"differs: {difference}" : $"written: {difference}");
        }
        return options.Check && output.Differences.Count > 0 ? 1 : 0;
    }
}

internal sealed record Options(string Library, string? Out, string? Only, string? Status, bool Check)
{
    public static Options Parse(string[] arguments)
    {
        var values = new Dictionary<string, string>();
        var check = false;
        for (var i = 0; i < arguments.Length; i++)
        {
            switch (arguments[i])
            {
                case "--check":
                    check = true;
                    break;
                case "--library" or "--out" or "--only" or "--status" when i + 1 < arguments.Length:
                    values[arguments[i]] = arguments[++i];
                    break;
                default:
                    throw new ArgumentException($"unknown or incomplete argument '{arguments[i]}'");
            }
        }
        if (!values.TryGetValue("--library", out var library))
        {
            throw new ArgumentException("--library is missing");
        }
        return new Options(library, values.GetValueOrDefault("--out"), values.GetValueOrDefault("--only"),
            values.GetValueOrDefault("--status"), check);
    }
}
