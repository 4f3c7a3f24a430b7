// Collects the public types of a library and describes each: bases, interfaces, members in their order.
using System.Reflection;

namespace Kelmor.Extractor;

internal sealed class Surface(Library library, Selection? selection)
{
    /// <summary>Types by namespace; namespaces and types sorted by name, nested types behind their owner.</summary>
    public SortedDictionary<string, List<TypeRow>> Describe()
    {
        var spaces = new SortedDictionary<string, List<TypeRow>>(StringComparer.Ordinal);
        foreach (var type in Types().OrderBy(TypeNames.Of, StringComparer.Ordinal))
        {
            if (!spaces.TryGetValue(type.Namespace ?? "", out var rows))
            {
                spaces[type.Namespace ?? ""] = rows = [];
            }
            rows.Add(DescribeType(type));
        }
        return spaces;
    }

    private IEnumerable<Type> Types() => library.Assembly.GetExportedTypes()
        .Where(type => !type.IsGenericTypeDefinition && !IsDelegate(type))
        .Where(type => selection is null || selection.Has(TypeNames.Of(type)));

    private TypeRow DescribeType(Type type)
    {
        var interfaces = type.GetInterfaces().Select(TypeNames.Of).Order(StringComparer.Ordinal).ToList();
        return new TypeRow(
            Name: TypeNames.Simple(type),
            Kind: KindOf(type),
            Base: BaseOf(type),
            Abstract: type is { IsAbstract: true, IsSealed: false, IsInterface: false },
            Static: type is { IsAbstract: true, IsSealed: true },
            Interfaces: type.IsEnum ? [] : interfaces,
            Explicit: type.IsInterface || type.IsEnum ? [] : ExplicitInterfaces(type, interfaces),
            Width: type.IsEnum ? TypeNames.Of(type.GetEnumUnderlyingType()) : null,
            Flags: type.IsEnum && Attributes.Has(type, "System.FlagsAttribute"),
            Members: type.IsEnum ? [] : new MemberCollector(library, selection, type).Collect(),
            Values: type.IsEnum ? Values(type) : [],
            Summary: library.Summary(TypeNames.DocumentationId(type)));
    }

    // Of a library that is not ours, the nearest base that is bound; of ours, the base as it is.
    private string? BaseOf(Type type)
    {
        if (!type.IsClass)
        {
            return null;
        }
        var parent = type.BaseType;
        while (selection is not null && parent is not null && !selection.Has(TypeNames.Of(parent)))
        {
            parent = parent.BaseType;
        }
        return parent is null || (selection is null && parent.FullName == "System.Object") ? null : TypeNames.Of(parent);
    }

    private List<EnumValueRow> Values(Type type) => type
        .GetFields(BindingFlags.Public | BindingFlags.Static)
        .OrderBy(field => field.MetadataToken)
        .Select(field => new EnumValueRow(field.Name, AsLong(field.GetRawConstantValue()!),
            library.Summary(TypeNames.DocumentationId(field))))
        .ToList();

    // An unsigned 64-bit value is written by its bits: JSON readers differ on numbers beyond 2^63.
    private static long AsLong(object value) => value is ulong wide ? unchecked((long)wide) : Convert.ToInt64(value);

    private static string KindOf(Type type) => type switch
    {
        { IsEnum: true } => "enum",
        { IsInterface: true } => "interface",
        { IsValueType: true } => "struct",
        _ => "class",
    };

    // An explicit implementation is a private method that bears the interface in its name.
    private static List<string> ExplicitInterfaces(Type type, List<string> interfaces)
    {
        var found = new SortedSet<string>(StringComparer.Ordinal);
        for (var owner = type; owner is not null; owner = owner.BaseType)
        {
            const BindingFlags Hidden = BindingFlags.Instance | BindingFlags.NonPublic | BindingFlags.DeclaredOnly;
            foreach (var method in owner.GetMethods(Hidden).Where(method => method.Name.Contains('.')))
            {
                found.Add(method.Name[..method.Name.LastIndexOf('.')]);
            }
        }
        found.IntersectWith(interfaces);
        return [.. found];
    }

    private static bool IsDelegate(Type type)
    {
        for (var parent = type.BaseType; parent is not null; parent = parent.BaseType)
        {
            if (parent.FullName == "System.Delegate")
            {
                return true;
            }
        }
        return false;
    }
}
