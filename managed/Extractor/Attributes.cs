// Custom attributes and nullable annotations, read from metadata alone.
using System.Reflection;

namespace Kelmor.Extractor;

internal static class Attributes
{
    public static bool Has(MemberInfo member, string attribute) =>
        member.GetCustomAttributesData().Any(data => data.AttributeType.FullName == attribute);

    /// <summary>True when the outermost reference type is annotated with "?".</summary>
    public static bool IsNullable(Type type, IEnumerable<CustomAttributeData> own, MemberInfo member)
    {
        var outer = type.IsByRef ? type.GetElementType()! : type;
        if (outer.IsValueType)
        {
            return false; // a nullable value type already says so in its name
        }
        if (Flag(own, "System.Runtime.CompilerServices.NullableAttribute") is { } flag)
        {
            return flag == 2;
        }
        for (MemberInfo? scope = member; scope is not null; scope = scope.DeclaringType)
        {
            if (Flag(scope.GetCustomAttributesData(), "System.Runtime.CompilerServices.NullableContextAttribute") is { } context)
            {
                return context == 2;
            }
        }
        return false;
    }

    private static byte? Flag(IEnumerable<CustomAttributeData> attributes, string name)
    {
        var data = attributes.FirstOrDefault(data => data.AttributeType.FullName == name);
        return data?.ConstructorArguments[0].Value switch
        {
            byte flag => flag,
            IReadOnlyCollection<CustomAttributeTypedArgument> flags => (byte?)flags.First().Value,
            _ => null,
        };
    }
}
