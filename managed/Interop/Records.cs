// The records that cross the boundary, byte for byte as native code lays them out.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>A Python string, lent for the call in its own canonical form.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyStringArg
{
    /// <summary>Code points; -1 stands for None, and then nothing else may be looked at.</summary>
    public int Length;

    /// <summary>Bytes of one code point: 1 (Latin-1), 2 (UCS-2) or 4 (UCS-4).</summary>
    public int CharSize;

    /// <summary>The characters, owned by the Python object.</summary>
    public void* Data;
}

/// <summary>A block of bytes, lent for the call.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyBytesArg
{
    /// <summary>1 while the exporter's buffer is held.</summary>
    public int Held;

    /// <summary>Bytes; -1 stands for None.</summary>
    public int Length;

    /// <summary>The exporter's memory.</summary>
    public void* Data;
}

/// <summary>A value whose form is decided at run time; bytes 4 to 7 are padding.</summary>
[StructLayout(LayoutKind.Sequential)]
internal struct VariantArg
{
    /// <summary>
    /// What <see cref="Value"/> is. The declared parameter decides which kinds there are, see
    /// <see cref="VariantKind"/> and <see cref="CollectionKind"/>; not written for None in struct,
    /// interface and equality arguments, so there the value is tested first.
    /// </summary>
    public int Kind;

    /// <summary>A managed handle, a borrowed Python object, or null.</summary>
    public nint Value;
}

/// <summary>A result slot for an object of interface type.</summary>
[StructLayout(LayoutKind.Sequential)]
internal struct PyObjectOutArg
{
    /// <summary>A handle that the receiver owns; null stands for None.</summary>
    public nint Handle;

    /// <summary>Identity of the run-time type.</summary>
    public long TypeToken;
}

/// <summary>A result slot for a collection or stream; bytes 4 to 7 are padding.</summary>
[StructLayout(LayoutKind.Sequential)]
internal struct PyCollectionArg
{
    /// <summary>0 declared type, 1 another run-time type, 2 a Python object.</summary>
    public int Kind;

    /// <summary>A handle that the receiver owns or, for kind 2, a borrowed Python object.</summary>
    public nint Handle;

    /// <summary>Identity of the run-time type.</summary>
    public long TypeToken;
}

/// <summary>A version number.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PySysVersionArg
{
    /// <summary>2, 3 or 4 components; -1 stands for None.</summary>
    public int Count;

    /// <summary>
    /// Major, minor, build, revision; the first <see cref="Count"/> are meaningful.
    /// </summary>
    public fixed int Components[4];
}

/// <summary>A nullable value, which the native side has converted already.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyNullableArg
{
    /// <summary>1 with a value, 0 for None.</summary>
    public int HasValue;

    /// <summary>The native side's own converter.</summary>
    public void* Convert;

    /// <summary>The value, in the form of its type.</summary>
    public void* Target;
}

/// <summary>Kinds of a <see cref="VariantArg"/> for a parameter that takes any value.</summary>
internal enum VariantKind
{
    None = 0,
    Object = 1,
    Struct = 2,
    String = 3,
    Bytes = 4,
    Bool = 5,
    Int = 6,
    Float = 7,
    Decimal = 8,
    DecimalTuple = 9,
    DateTime = 10,
    Date = 11,
    Time = 12,
    TimeDelta = 13,
    Guid = 14,
    List = 15,
    Tuple = 16,
}

/// <summary>
/// Kinds of a <see cref="VariantArg"/> for a collection, enumerable or stream parameter.
/// </summary>
internal enum CollectionKind
{
    Handle = 0,
    PythonObject = 2,
    PythonSequence = 3,
}
