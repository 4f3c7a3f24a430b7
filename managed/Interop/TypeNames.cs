// How a managed type is known to the native side: by a name and by an identity.

namespace Kelmor.WrpGen.Interop;

/// <summary>Names and identities of run-time types.</summary>
internal static class TypeNames
{
    /// <summary>The identity of an object's run-time type; 0 for null.</summary>
    public static long Token(object? value) =>
        value is null ? 0 : value.GetType().TypeHandle.Value;

    /// <summary>
    /// The full name under which an object's type is exposed. What the library keeps to itself
    /// shows as its nearest public ancestor.
    /// </summary>
    public static string Exposed(object value)
    {
        if (value is Type)
        {
            return "System.Type";
        }
        Type type = value.GetType();
        while (!type.IsVisible && type.BaseType is { } ancestor)
        {
            type = ancestor;
        }
        return Name(type);
    }

    /// <summary>
    /// The full name of a type; nested types are joined to their outer one by "+".
    /// </summary>
    public static string Name(Type type) => type.FullName ?? type.Name;
}
