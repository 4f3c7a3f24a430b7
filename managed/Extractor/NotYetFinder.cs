// Finds the members whose work is not done: those whose code calls NotYet.Member.
using System.Reflection;

namespace Kelmor.Extractor;

internal static class NotYetFinder
{
    private const byte Call = 0x28; // ECMA-335, Partition III, 3.19

    /// <summary>Public members by type that call the marker, themselves or in an accessor.</summary>
    public static SortedDictionary<string, SortedSet<string>> Find(Library library)
    {
        var found = new SortedDictionary<string, SortedSet<string>>(StringComparer.Ordinal);
        var markers = Markers(library.Assembly);
        foreach (var type in library.Assembly.GetTypes())
        {
            const BindingFlags All = BindingFlags.Public | BindingFlags.NonPublic | BindingFlags.Instance
                | BindingFlags.Static | BindingFlags.DeclaredOnly;
            foreach (var method in type.GetMethods(All).Cast<MethodBase>().Concat(type.GetConstructors(All)))
            {
                if (method.GetMethodBody() is { } body && Calls(body.GetILAsByteArray(), markers))
                {
                    var owner = TypeNames.Of(type);
                    found.TryAdd(owner, new SortedSet<string>(StringComparer.Ordinal));
                    found[owner].Add(Title(method));
                }
            }
        }
        return found;
    }

    private static HashSet<int> Markers(Assembly assembly) => assembly.GetTypes()
        .Where(type => type.Name == "NotYet")
        .SelectMany(type => type.GetMethods(BindingFlags.Public | BindingFlags.NonPublic | BindingFlags.Static))
        .Where(method => method.Name == "Member")
        .Select(method => method.MetadataToken)
        .ToHashSet();

    // The marker's token is unlikely enough as data that decoding every instruction would find nothing more.
    private static bool Calls(byte[]? code, HashSet<int> markers)
    {
        for (var i = 0; code is not null && i + 5 <= code.Length; i++)
        {
            if (code[i] == Call && markers.Contains(BitConverter.ToInt32(code, i + 1)))
            {
                return true;
            }
        }
        return false;
    }

    private static string Title(MethodBase method)
    {
        var name = method.Name;
        if (method.IsSpecialName && (name.StartsWith("get_") || name.StartsWith("set_")))
        {
            return name[4..] + (name[0] == 'g' ? " (get)" : " (set)");
        }
        var parameters = method.GetParameters().Select(parameter => TypeNames.Of(parameter.ParameterType).Split('.')[^1]);
        return (method.IsConstructor ? "constructor" : name) + "(" + string.Join(", ", parameters) + ")";
    }
}
