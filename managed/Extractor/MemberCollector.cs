// The public members that one type declares itself, in declaration order.
using System.Reflection;

namespace Kelmor.Extractor;

internal sealed class MemberCollector(Library library, Selection? selection, Type type)
{
    private const BindingFlags Declared =
        BindingFlags.Public | BindingFlags.Instance | BindingFlags.Static | BindingFlags.DeclaredOnly;

    // These reach Python through the slots of every wrapper, or as its context manager and iterator.
    private static readonly HashSet<string> InSlots =
        ["ToString()", "GetHashCode()", "Equals(System.Object)", "GetType()", "Dispose()", "GetEnumerator()"];

    private string TypeName { get; } = TypeNames.Of(type);

    public List<MemberRow> Collect()
    {
        // Kinds keep the order that entry points have: constructors, then the rest as declared.
        var members = type.GetMembers(Declared).Where(Wanted).OrderBy(Position);
        return members.Select(Describe).ToList();
    }

    private bool Wanted(MemberInfo member) => member switch
    {
        ConstructorInfo constructor => !type.IsAbstract && !constructor.IsStatic && Selected(constructor),
        MethodInfo method => !method.IsSpecialName && !method.IsGenericMethodDefinition
            && (!InSlots.Contains(Signature(method)) || selection is not null) && Selected(method),
        PropertyInfo property => property.GetIndexParameters().Length == 0 && Selected(property),
        FieldInfo field => !field.IsSpecialName && Selected(field),
        _ => false,
    };

    private bool Selected(MemberInfo member) => selection is null || selection.Has(TypeName, member.Name);

    // Metadata keeps methods, properties and fields in tables of their own. A property stands where its first
    // accessor does; fields stand behind, in their own order.
    private static (int Table, int Token) Position(MemberInfo member) => member switch
    {
        ConstructorInfo => (0, member.MetadataToken),
        PropertyInfo property => (1, property.GetAccessors(true).Min(accessor => accessor.MetadataToken)),
        MethodInfo => (1, member.MetadataToken),
        _ => (2, member.MetadataToken),
    };

    private MemberRow Describe(MemberInfo member)
    {
        var summary = library.Summary(TypeNames.DocumentationId(member));
        switch (member)
        {
            case ConstructorInfo constructor:
                return new MemberRow("ctor", "", false, "", false, false, false, Parameters(constructor), summary);
            case MethodInfo method:
                return new MemberRow("method", method.Name, method.IsStatic, TypeNames.Of(method.ReturnType),
                    Attributes.IsNullable(method.ReturnType, method.ReturnParameter.GetCustomAttributesData(), method),
                    false, false, Parameters(method), summary);
            case PropertyInfo property:
                return new MemberRow("property", property.Name, property.GetAccessors()[0].IsStatic,
                    TypeNames.Of(property.PropertyType),
                    Attributes.IsNullable(property.PropertyType, property.GetCustomAttributesData(), property.GetAccessors()[0]),
                    property.GetMethod is { IsPublic: true }, property.SetMethod is { IsPublic: true } set && !IsInitOnly(set), [], summary);
            default:
                var field = (FieldInfo)member;
                return new MemberRow("field", field.Name, field.IsStatic, TypeNames.Of(field.FieldType),
                    Attributes.IsNullable(field.FieldType, field.GetCustomAttributesData(), field),
                    true, !field.IsInitOnly && !field.IsLiteral, [], summary);
        }
    }

    private static bool IsInitOnly(MethodInfo setter) => setter.ReturnParameter.GetRequiredCustomModifiers()
        .Any(modifier => modifier.FullName == "System.Runtime.CompilerServices.IsExternalInit");

    private static List<ParameterRow> Parameters(MethodBase method) => method.GetParameters().Select(parameter =>
        new ParameterRow(parameter.Name ?? $"arg{parameter.Position}", TypeNames.Of(parameter.ParameterType),
            parameter.IsOut ? "out" : parameter.ParameterType.IsByRef && !parameter.IsIn ? "ref" : "in",
            Attributes.IsNullable(parameter.ParameterType, parameter.GetCustomAttributesData(), method))).ToList();

    private static string Signature(MethodInfo method) =>
        method.Name + "(" + string.Join(",", method.GetParameters().Select(parameter => TypeNames.Of(parameter.ParameterType))) + ")";
}
