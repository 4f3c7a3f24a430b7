// The description of a surface: what the generator is told about each type and member.
namespace Kelmor.Extractor;

/// <param name="Direction">"in", "ref" or "out".</param>
internal sealed record ParameterRow(string Name, string Type, string Direction, bool Nullable);

/// <param name="Kind">"ctor", "method", "property" or "field".</param>
internal sealed record MemberRow(string Kind, string Name, bool Static, string Type, bool Nullable,
    bool Get, bool Set, IReadOnlyList<ParameterRow> Parameters, string Summary);

internal sealed record EnumValueRow(string Name, long Value, string Summary);

/// <param name="Name">Simple name, with "Outer+Inner" for a nested type.</param>
/// <param name="Kind">"class", "struct", "interface" or "enum".</param>
/// <param name="Interfaces">All interfaces, inherited ones included.</param>
/// <param name="Explicit">Those of them that have a member which only the interface reaches.</param>
internal sealed record TypeRow(string Name, string Kind, string? Base, bool Abstract, bool Static,
    IReadOnlyList<string> Interfaces, IReadOnlyList<string> Explicit, string? Width, bool Flags,
    IReadOnlyList<MemberRow> Members, IReadOnlyList<EnumValueRow> Values, string Summary);
