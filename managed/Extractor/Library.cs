// A compiled library opened for reading only: no code of it runs.
using System.Reflection;
using System.Runtime.InteropServices;
using System.Xml.Linq;

namespace Kelmor.Extractor;

internal sealed class Library : IDisposable
{
    private readonly MetadataLoadContext context;
    private readonly Dictionary<string, string> summaries;

    public Library(string path)
    {
        Path = System.IO.Path.GetFullPath(path);
        var folder = System.IO.Path.GetDirectoryName(Path)!;
        // The library's own folder comes first, so that its dependencies win over the runtime's.
        var assemblies = Directory.GetFiles(folder, "*.dll")
            .Concat(Directory.GetFiles(RuntimeEnvironment.GetRuntimeDirectory(), "*.dll"))
            .DistinctBy(System.IO.Path.GetFileName);
        context = new MetadataLoadContext(new PathAssemblyResolver(assemblies));
        Assembly = context.LoadFromAssemblyPath(Path);
        summaries = ReadSummaries(System.IO.Path.ChangeExtension(Path, ".xml"));
    }

    public string Path { get; }

    public Assembly Assembly { get; }

    /// <summary>Summary of a member by its documentation id, on one line; empty when there is none.</summary>
    public string Summary(string id) => summaries.GetValueOrDefault(id, "");

    public void Dispose() => context.Dispose();

    private static Dictionary<string, string> ReadSummaries(string path)
    {
        if (!File.Exists(path))
        {
            return [];
        }
        return XDocument.Load(path).Descendants("member")
            .Where(member => member.Attribute("name") is not null && member.Element("summary") is not null)
            .ToDictionary(member => member.Attribute("name")!.Value, member => OneLine(member.Element("summary")!));
    }

    private static string OneLine(XElement summary)
    {
        foreach (var reference in summary.Descendants().ToList())
        {
            var name = reference.Attribute("cref") ?? reference.Attribute("name") ?? reference.Attribute("langword");
            if (name is not null && reference.IsEmpty)
            {
                reference.ReplaceWith(name.Value[(name.Value.LastIndexOf('.') + 1)..]);
            }
        }
        return string.Join(' ', summary.Value.Split((char[]?)null, StringSplitOptions.RemoveEmptyEntries));
    }
}
