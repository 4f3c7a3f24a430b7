// The chosen members of a library that is not ours: {"System.Type": ["FullName", ...], ...}.
using System.Text.Json;

namespace Kelmor.Extractor;

internal sealed class Selection(Dictionary<string, HashSet<string>> types)
{
    public static Selection Read(string path) =>
        new(JsonSerializer.Deserialize<Dictionary<string, HashSet<string>>>(File.ReadAllText(path))!);

    public bool Has(string type) => types.ContainsKey(type);

    public bool Has(string type, string member) => types.TryGetValue(type, out var members) && members.Contains(member);
}
