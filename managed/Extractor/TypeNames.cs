// Spells types the one way that descriptions use: full names, C# brackets, "+" before a nested type.
using System.Reflection;
using System.Text;

namespace Kelmor.Extractor;

internal static class TypeNames
{
    public static string Of(Type type)
    {
        if (type.IsByRef)
        {
            return Of(type.GetElementType()!);
        }
        if (type.IsArray)
        {
            return Of(type.GetElementType()!) + "[" + new string(',', type.GetArrayRank() - 1) + "]";
        }
        if (type.IsPointer)
        {
            return Of(type.GetElementType()!) + "*";
        }
        if (type.IsGenericParameter)
        {
            return "!" + type.Name;
        }
        var name = (type.Namespace is { } space ? space + "." : "") + Simple(type);
        return type.IsGenericType
            ? name + "<" + string.Join(",", type.GetGenericArguments().Select(Of)) + ">"
            : name;
    }

    /// <summary>Name without the namespace: "Outer+Inner" for a nested type.</summary>
    public static string Simple(Type type)
    {
        var own = type.Name.Split('`')[0];
        return type.DeclaringType is { } outer && !type.IsGenericParameter ? Simple(outer) + "+" + own : own;
    }

    /// <summary>Documentation id of a type or member, as the compiler writes it into its XML file.</summary>
    public static string DocumentationId(MemberInfo member) => member switch
    {
        Type type => "T:" + Documented(type),
        FieldInfo field => "F:" + Documented(field.DeclaringType!) + "." + field.Name,
        PropertyInfo property => "P:" + Documented(property.DeclaringType!) + "." + property.Name,
        MethodBase method => "M:" + Documented(method.DeclaringType!) + "." + method.Name.Replace('.', '#')
            + Arguments(method.GetParameters()),
        _ => "",
    };

    private static string Arguments(ParameterInfo[] parameters) => parameters.Length == 0
        ? ""
        : "(" + string.Join(",", parameters.Select(parameter => Documented(parameter.ParameterType))) + ")";

    private static string Documented(Type type)
    {
        if (type.IsByRef)
        {
            return Documented(type.GetElementType()!) + "@";
        }
        if (type.IsArray)
        {
            return Documented(type.GetElementType()!) + "[]";
        }
        if (type.IsPointer)
        {
            return Documented(type.GetElementType()!) + "*";
        }
        var text = new StringBuilder(type.Namespace is { } space ? space + "." : "").Append(Simple(type).Replace('+', '.'));
        if (type.IsConstructedGenericType)
        {
            text.Append('{').AppendJoin(',', type.GetGenericArguments().Select(Documented)).Append('}');
        }
        return text.ToString();
    }
}
