// Reads collection, enumerable and stream arguments: managed objects, or Python ones behind
// adapters.
using System.Collections;

namespace Kelmor.WrpGen.Interop;

internal static unsafe partial class Args
{
    /// <summary>
    /// A stream. A Python file object stays open when the adapter is disposed of, as a stream that
    /// somebody lent; <paramref name="owned"/> is for members that take the stream over.
    /// </summary>
    public static Stream? Stream(VariantArg* argument, bool owned = false) =>
        FromPython(argument) is { } stream ? new PyStream(stream, owned) : Handle<Stream>(argument);

    /// <summary>An IList: a Python list is a live view, another sequence a read-only one.</summary>
    public static IList? List(VariantArg* argument) => (CollectionKind)argument->Kind switch
    {
        CollectionKind.PythonObject => new PyList(argument->Value),
        CollectionKind.PythonSequence => new PySequence(argument->Value),
        _ => Handle<IList>(argument),
    };

    /// <summary>An IList of one element type, as <see cref="List(VariantArg*)"/>.</summary>
    public static IList<T>? List<T>(VariantArg* argument) => (CollectionKind)argument->Kind switch
    {
        CollectionKind.PythonObject => new PyList<T>(argument->Value),
        CollectionKind.PythonSequence => new PySequence<T>(argument->Value),
        _ => Handle<IList<T>>(argument),
    };

    /// <summary>An ICollection over a sized iterable.</summary>
    public static ICollection? Collection(VariantArg* argument) =>
        FromPython(argument) is { } sized ? new PyCollection(sized) : Handle<ICollection>(argument);

    /// <summary>An IEnumerable over any iterable.</summary>
    public static IEnumerable? Enumerable(VariantArg* argument) =>
        FromPython(argument) is { } items
            ? new PyEnumerable(items)
            : Handle<IEnumerable>(argument);

    /// <summary>An IEnumerable of one element type over any iterable.</summary>
    public static IEnumerable<T>? Enumerable<T>(VariantArg* argument) =>
        FromPython(argument) is { } items
            ? new PyEnumerable<T>(items)
            : Handle<IEnumerable<T>>(argument);

    /// <summary>An IEnumerator over a Python iterator.</summary>
    public static IEnumerator? Enumerator(VariantArg* argument) =>
        FromPython(argument) is { } iterator
            ? new PyEnumerator(PyRef.Borrow(iterator))
            : Handle<IEnumerator>(argument);

    /// <summary>An IEnumerator of one element type over a Python iterator.</summary>
    public static IEnumerator<T>? Enumerator<T>(VariantArg* argument) =>
        FromPython(argument) is { } iterator
            ? new PyEnumerator<T>(PyRef.Borrow(iterator))
            : Handle<IEnumerator<T>>(argument);

    /// <summary>An array: the managed one itself, or a copy of a Python sequence.</summary>
    public static T[]? Array<T>(VariantArg* argument) => (CollectionKind)argument->Kind switch
    {
        CollectionKind.PythonObject => Elements<T>.CopyList(argument->Value),
        CollectionKind.PythonSequence => Elements<T>.CopySequence(argument->Value),
        _ => Handle<T[]>(argument),
    };

    /// <summary>
    /// An array of unknown element type; a Python sequence gives an object array.
    /// </summary>
    public static Array? Array(VariantArg* argument) => (CollectionKind)argument->Kind switch
    {
        CollectionKind.Handle => Handle<Array>(argument),
        _ => Array<object>(argument),
    };

    /// <summary>A List: the managed one itself, or a copy of a Python sequence.</summary>
    public static List<T>? GenericList<T>(VariantArg* argument) =>
        (CollectionKind)argument->Kind == CollectionKind.Handle
            ? Handle<List<T>>(argument)
            : [.. Array<T>(argument)!];

    /// <summary>An ArrayList: the managed one itself, or one over the Python sequence.</summary>
    public static ArrayList? ArrayList(VariantArg* argument) =>
        (CollectionKind)argument->Kind == CollectionKind.Handle
            ? Handle<ArrayList>(argument)
            : System.Collections.ArrayList.Adapter(List(argument)!);

    /// <summary>
    /// A CollectionBase: the managed one itself, or one filled from the sequence.
    /// </summary>
    public static CollectionBase? CollectionBase(VariantArg* argument) =>
        (CollectionKind)argument->Kind == CollectionKind.Handle
            ? Handle<CollectionBase>(argument)
            : new PyCollectionBase(Array<object?>(argument)!);

    /// <summary>As <see cref="CollectionBase"/>, for its read-only sister.</summary>
    public static ReadOnlyCollectionBase? ReadOnlyCollectionBase(VariantArg* argument) =>
        (CollectionKind)argument->Kind == CollectionKind.Handle
            ? Handle<ReadOnlyCollectionBase>(argument)
            : new PyReadOnlyCollectionBase(Array<object?>(argument)!);

    private static nint? FromPython(VariantArg* argument) =>
        (CollectionKind)argument->Kind == CollectionKind.Handle ? null : argument->Value;

    private static T? Handle<T>(VariantArg* argument) where T : class =>
        Handles.Optional<T>(argument->Value);
}
