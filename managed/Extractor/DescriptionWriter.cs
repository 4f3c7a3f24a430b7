// Turns the description of one namespace into JSON with one row a line, so that changes review well.
using System.Text;
using System.Text.Encodings.Web;
using System.Text.Json;

namespace Kelmor.Extractor;

internal static class DescriptionWriter
{
    private static readonly JsonSerializerOptions Plain =
        new() { Encoder = JavaScriptEncoder.UnsafeRelaxedJsonEscaping };

    public static string Write(string space, IEnumerable<TypeRow> types)
    {
        var text = new StringBuilder();
        text.Append("{\"namespace\": ").Append(Quote(space)).Append(", \"types\": [\n");
        text.AppendJoin(",\n", types.Select(WriteType));
        return text.Append("\n]}\n").ToString();
    }

    private static string WriteType(TypeRow type)
    {
        var fields = new List<string> { Field("type", type.Name), Field("kind", type.Kind) };
        if (type.Base is not null)
        {
            fields.Add(Field("base", type.Base));
        }
        AddFlag(fields, "abstract", type.Abstract);
        AddFlag(fields, "static", type.Static);
        AddList(fields, "interfaces", type.Interfaces);
        AddList(fields, "explicit", type.Explicit);
        if (type.Width is not null)
        {
            fields.Add(Field("width", type.Width));
        }
        AddFlag(fields, "flags", type.Flags);
        AddSummary(fields, type.Summary);
        var rows = type.Kind == "enum" ? type.Values.Select(WriteValue) : type.Members.Select(WriteMember);
        var label = type.Kind == "enum" ? "values" : "members";
        var body = string.Join(",\n", rows.Select(row => "  " + row));
        return "{" + string.Join(", ", fields) + $", \"{label}\": [" + (body == "" ? "" : "\n" + body) + "]}";
    }

    private static string WriteValue(EnumValueRow value)
    {
        var fields = new List<string> { Field("name", value.Name), "\"value\": " + value.Value };
        AddSummary(fields, value.Summary);
        return "{" + string.Join(", ", fields) + "}";
    }

    private static string WriteMember(MemberRow member)
    {
        var fields = new List<string> { Field("kind", member.Kind) };
        if (member.Kind != "ctor")
        {
            fields.Add(Field("name", member.Name));
        }
        AddFlag(fields, "static", member.Static);
        if (member.Kind != "ctor")
        {
            fields.Add(Field("type", member.Type + (member.Nullable ? "?" : "")));
        }
        if (member.Kind is "property" or "field")
        {
            AddFlag(fields, "get", member.Get);
            AddFlag(fields, "set", member.Set);
        }
        else
        {
            fields.Add("\"params\": [" + string.Join(", ", member.Parameters.Select(WriteParameter)) + "]");
        }
        AddSummary(fields, member.Summary);
        return "{" + string.Join(", ", fields) + "}";
    }

    private static string WriteParameter(ParameterRow parameter)
    {
        var prefix = parameter.Direction == "in" ? "" : parameter.Direction + " ";
        return Quote(prefix + parameter.Type + (parameter.Nullable ? "?" : "") + " " + parameter.Name);
    }

    private static void AddFlag(List<string> fields, string name, bool value)
    {
        if (value)
        {
            fields.Add($"\"{name}\": true");
        }
    }

    private static void AddList(List<string> fields, string name, IReadOnlyList<string> values)
    {
        if (values.Count > 0)
        {
            fields.Add($"\"{name}\": [" + string.Join(", ", values.Select(Quote)) + "]");
        }
    }

    private static void AddSummary(List<string> fields, string summary)
    {
        if (summary != "")
        {
            fields.Add(Field("doc", summary));
        }
    }

    private static string Field(string name, string value) => $"\"{name}\": {Quote(value)}";

    private static string Quote(string value) => JsonSerializer.Serialize(value, Plain);
}
