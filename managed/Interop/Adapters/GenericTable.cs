// Which element types have readers of their own on the native side, and where.
namespace Kelmor.WrpGen.Interop;

/// <summary>
/// The positions in the native table of typed element readers. The generated half fills it; a
/// module without generic instances has no such half, and then every element is read as a variant.
/// </summary>
internal static partial class GenericTable
{
    private static readonly Dictionary<Type, int> s_positions = Positions();

    /// <summary>Element types in the table: as many readers of lists, then of sequences.</summary>
    public static int Count => s_positions.Count;

    /// <summary>The position of an element type; -1 when it has no reader.</summary>
    public static int PositionOf(Type type) => s_positions.GetValueOrDefault(type, -1);

    /// <summary>Adds the element types in the order of the native table.</summary>
    static partial void Fill(List<Type> types);

    private static Dictionary<Type, int> Positions()
    {
        var types = new List<Type>();
        Fill(types);
        var positions = new Dictionary<Type, int>(types.Count);
        foreach (Type type in types)
        {
            positions.Add(type, positions.Count);
        }
        return positions;
    }
}
