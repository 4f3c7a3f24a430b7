// A managed list of unknown element type, as a list of objects.
using System.Collections;
using System.Collections.Concurrent;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// Shows an <see cref="IList"/> as a list of objects. What goes in is fitted to the element type
/// when the list has one, since a Python int comes as the narrowest integer that holds it.
/// </summary>
internal sealed class UntypedList(IList inner) : IList<object?>
{
    private static readonly ConcurrentDictionary<Type, Type?> s_elementTypes = [];

    public IList Inner { get; } = inner;

    public int Count => Inner.Count;

    public bool IsReadOnly => Inner.IsReadOnly;

    public object? this[int index]
    {
        get => Inner[index];
        set => Inner[index] = Fit(value);
    }

    public void Add(object? item) => Inner.Add(Fit(item));

    public void Clear() => Inner.Clear();

    public bool Contains(object? item) => Inner.Contains(item);

    public void CopyTo(object?[] array, int arrayIndex) => Inner.CopyTo(array, arrayIndex);

    public int IndexOf(object? item) => Inner.IndexOf(item);

    public void Insert(int index, object? item) => Inner.Insert(index, Fit(item));

    public bool Remove(object? item)
    {
        bool found = Inner.Contains(item);
        Inner.Remove(item);
        return found;
    }

    public void RemoveAt(int index) => Inner.RemoveAt(index);

    public IEnumerator<object?> GetEnumerator() => Inner.Cast<object?>().GetEnumerator();

    IEnumerator IEnumerable.GetEnumerator() => Inner.GetEnumerator();

    private object? Fit(object? value) =>
        ElementType(Inner.GetType()) is { } type ? Variants.Fit(value, type) : value;

    private static Type? ElementType(Type type) =>
        type.IsArray ? type.GetElementType() : s_elementTypes.GetOrAdd(type, DeclaredElementType);

    private static Type? DeclaredElementType(Type type) => type.GetInterfaces()
        .FirstOrDefault(each =>
            each.IsGenericType && each.GetGenericTypeDefinition() == typeof(IList<>))
        ?.GenericTypeArguments[0];
}
