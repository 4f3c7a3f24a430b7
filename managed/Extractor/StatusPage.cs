// The page that lists what is not done yet, made from the compiled library.
using System.Text;

namespace Kelmor.Extractor;

internal static class StatusPage
{
    public static string Write(SortedDictionary<string, SortedSet<string>> members)
    {
        var text = new StringBuilder();
        text.Append("# What is not done yet\n\n");
        text.Append("Made from the compiled library by `make api`; do not edit. Each member below is bound and can be ");
        text.Append("called,\nand raises a managed `NotSupportedException` that names it.\n\n");
        text.Append($"{members.Values.Sum(names => names.Count)} members of {members.Count} types.\n");
        foreach (var (type, names) in members)
        {
            text.Append($"\n## {type}\n\n");
            foreach (var name in names)
            {
                text.Append($"- `{name}`\n");
            }
        }
        return text.ToString();
    }
}
