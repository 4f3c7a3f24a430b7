// Writes files only when their text changes, and tells what differed.
namespace Kelmor.Extractor;

internal sealed class Output(bool check)
{
    public List<string> Differences { get; } = [];

    /// <summary>Makes the folder hold exactly these files: a description of a vanished namespace is removed.</summary>
    public void WriteFolder(string folder, IReadOnlyDictionary<string, string> files)
    {
        if (!check)
        {
            Directory.CreateDirectory(folder);
        }
        foreach (var (name, text) in files.OrderBy(file => file.Key, StringComparer.Ordinal))
        {
            WriteFile(Path.Combine(folder, name), text);
        }
        if (!Directory.Exists(folder))
        {
            return;
        }
        foreach (var path in Directory.GetFiles(folder, "*.json").Order(StringComparer.Ordinal))
        {
            if (files.ContainsKey(Path.GetFileName(path)))
            {
                continue;
            }
            Differences.Add(path);
            if (!check)
            {
                File.Delete(path);
            }
        }
    }

    public void WriteFile(string path, string text)
    {
        if (File.Exists(path) && File.ReadAllText(path) == text)
        {
            return;
        }
        Differences.Add(path);
        if (!check)
        {
            File.WriteAllText(path, text);
        }
    }
}
