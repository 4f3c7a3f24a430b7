// The callback tables of the native side, as structs of function pointers in slot order.
//
// A table is indexed by its slots, so a field must never move. All tables live as long as the
// process: pointers to them are kept, nothing is copied or freed. Every callback may be used on the
// thread of the current boundary call only, for the interpreter lock is held there and nowhere
// else.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>References to Python objects.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyObjectCallbacks
{
    /// <summary>None, borrowed.</summary>
    public delegate* unmanaged[SuppressGCTransition]<nint> GetNone;
    public delegate* unmanaged[SuppressGCTransition]<nint, void> XIncRef;

    /// <summary>May run any Python code, for it may be the last reference.</summary>
    public delegate* unmanaged<nint, void> XDecRef;
}

/// <summary>Reading one Python value; the object comes first.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyReadCallbacks
{
    public delegate* unmanaged<nint, PyStringArg*, int> String;
    public delegate* unmanaged<nint, int> Bool;

    /// <summary>1, 2 or 3 for int32, int64 and uint64; 0 on failure.</summary>
    public delegate* unmanaged<nint, ulong*, int> VersLong;
    public delegate* unmanaged<nint, double*, int> Double;
    public delegate* unmanaged<nint, uint*, int> Decimal;
    public delegate* unmanaged<nint, uint*, int> DecimalTuple;

    /// <summary>1 for a DateTime, 2 for a DateTimeOffset, 0 on failure.</summary>
    public delegate* unmanaged<nint, long*, int> VersDateTime;
    public delegate* unmanaged<nint, long*, int> VersDate;

    /// <summary>As <see cref="VersDateTime"/>.</summary>
    public delegate* unmanaged<nint, long*, int> VersTime;
    public delegate* unmanaged<nint, long*, int> DateTimeDelta;
    public delegate* unmanaged<nint, byte*, int> Guid;
}

/// <summary>Making one Python value: a new reference, or null with a Python error.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyWriteCallbacks
{
    /// <summary>The wrapper of a handle, which is given away, by its type id.</summary>
    public delegate* unmanaged<nint, long, nint> Tpo;
    public delegate* unmanaged<int, nint> Bool;
    public delegate* unmanaged<int, nint> Long;
    public delegate* unmanaged<uint, nint> ULong;
    public delegate* unmanaged<long, nint> LongLong;
    public delegate* unmanaged<ulong, nint> ULongLong;
    public delegate* unmanaged<double, nint> Double;

    /// <summary>Clears the mantissa in the caller's block.</summary>
    public delegate* unmanaged<uint*, nint> Decimal;
    public delegate* unmanaged<long*, nint> DateTime;
    public delegate* unmanaged<long*, nint> DateTimeOffset;
    public delegate* unmanaged<long, nint> DateTimeDelta;
    public delegate* unmanaged<char*, int, long, nint> TimeZone;
    public delegate* unmanaged<byte*, nint> Guid;
    public delegate* unmanaged<int, nint> Char;
}

/// <summary>
/// Buffers that managed code holds itself; the block's size is asked, never assumed.
/// </summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyBufferCallbacks
{
    public delegate* unmanaged<int> SizeOf;
    public delegate* unmanaged<void*, int> Create;
    public delegate* unmanaged<nint, void*, PyBytesArg*, int> ReadView;
    public delegate* unmanaged<void*, void> Release;
}

/// <summary>Wrappers of exposed types.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyTpoCallbacks
{
    /// <summary>
    /// 1 done, 0 type not known (the handle is released), -1 with a Python error.
    /// </summary>
    public delegate* unmanaged<nint, long, nint*, int> TryWrite;
}

/// <summary>A Python iterator.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyIterCallbacks
{
    /// <summary>0 with the item's reference, 1 at the end, 2 on failure.</summary>
    public delegate* unmanaged<nint, nint*, VariantArg*, int> Next;
}

/// <summary>What lists, sequences and sized iterables have in common.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyCollectionCallbacks
{
    public delegate* unmanaged<nint, int> ListLength;
    public delegate* unmanaged<nint, long> ListLongLength;
    public delegate* unmanaged<nint, int, int> RemoveAt;
    public delegate* unmanaged<nint, int> Clear;
    public delegate* unmanaged<nint, int> SequenceLength;
    public delegate* unmanaged<nint, long> SequenceLongLength;

    /// <summary>A new reference to the iterator, or null with a Python error.</summary>
    public delegate* unmanaged<nint, nint> GetEnumerator;
    public delegate* unmanaged<nint, int> ObjectLength;

    /// <summary>Gives the address of the item array; the list goes to the out pointer.</summary>
    public delegate* unmanaged<int, nint*, nint*> CreateFastList;
    public delegate* unmanaged<long, nint*, nint*> CreateFastLongList;
    public delegate* unmanaged<nint, nint*, int*, char**, int> GetUnicodeBytes;
}

/// <summary>
/// A Python list; items that go in are new references, which the callee consumes.
/// </summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyListCallbacks
{
    public delegate* unmanaged<nint, int, VariantArg*, int> GetItem;
    public delegate* unmanaged<nint, int, nint, int> SetItem;
    public delegate* unmanaged<nint, nint, int> Add;
    public delegate* unmanaged<nint, int, nint, int> Insert;
    public delegate* unmanaged<nint, nint, int> Remove;
    public delegate* unmanaged<nint, nint, int> Contains;
    public delegate* unmanaged<nint, nint, int> IndexOf;
    public delegate* unmanaged<nint*, int, nint, void> SetFastItem;
    public delegate* unmanaged<nint, nint> WriteIList;
    public delegate* unmanaged<nint, nint> WriteArrayList;
    public delegate* unmanaged<nint, nint> WriteArray;
}

/// <summary>A Python sequence that is no list.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PySequenceCallbacks
{
    /// <summary>On success the item's reference stays with the value.</summary>
    public delegate* unmanaged<nint, int, VariantArg*, int> GetItem;
    public delegate* unmanaged<nint, nint, int> Contains;
    public delegate* unmanaged<nint, nint, int> IndexOf;
}

/// <summary>A Python raw or buffered stream.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyStreamCallbacks
{
    public delegate* unmanaged<nint, void*, int, int> Write;
    public delegate* unmanaged<nint, int, int> WriteByte;
    public delegate* unmanaged<nint, void*, int, int> Read;

    /// <summary>0 to 255, -1 at the end, -2 on failure.</summary>
    public delegate* unmanaged<nint, int> ReadByte;
    public delegate* unmanaged<nint, long, int, long> Seek;
    public delegate* unmanaged<nint, long, int> Truncate;
    public delegate* unmanaged<nint, int> Flush;
    public delegate* unmanaged<nint, void> Close;
    public delegate* unmanaged<nint, int> Readable;
    public delegate* unmanaged<nint, int> Writable;
    public delegate* unmanaged<nint, int> Seekable;
    public delegate* unmanaged<nint, long> Tell;

    /// <summary>-1 failure, -2 not seekable, -3 closed.</summary>
    public delegate* unmanaged<nint, long> Length;
}

/// <summary>
/// Where the native side's callbacks are kept once the exchange host has been given them.
/// </summary>
internal static unsafe class PyApi
{
    // The exception bridge and the builders, each handed over by a setter of its own.
    internal static delegate* unmanaged<nint, nint, void> OnException;
    internal static delegate* unmanaged<nint*, PyStringArg*, int> CatchAndClearError;
    internal static delegate* unmanaged<char*, int, nint> CreateU16;
    internal static delegate* unmanaged<char*, int, nint> CreateString;
    internal static delegate* unmanaged<char*, int, nint> CreateUnraisableString;
    internal static delegate* unmanaged<byte*, int, nint> CreateBytes;

    internal static PyObjectCallbacks* Object;
    internal static PyReadCallbacks* Read;
    internal static PyWriteCallbacks* Write;
    internal static PyBufferCallbacks* Buffer;
    internal static PyTpoCallbacks* Tpo;
    internal static PyIterCallbacks* Iter;
    internal static PyCollectionCallbacks* Collection;
    internal static PyListCallbacks* List;
    internal static PySequenceCallbacks* Sequence;
    internal static PyStreamCallbacks* Stream;

    /// <summary>Readers of typed list elements, then as many of sequence elements.</summary>
    internal static void*** Generic;

    /// <summary>Takes the table of tables, in its slot order.</summary>
    internal static void SetStatic(void** tables)
    {
        Read = (PyReadCallbacks*)tables[0];
        Write = (PyWriteCallbacks*)tables[1];
        Buffer = (PyBufferCallbacks*)tables[2];
        Tpo = (PyTpoCallbacks*)tables[3];
        Iter = (PyIterCallbacks*)tables[4];
        Collection = (PyCollectionCallbacks*)tables[5];
        List = (PyListCallbacks*)tables[6];
        Sequence = (PySequenceCallbacks*)tables[7];
        Stream = (PyStreamCallbacks*)tables[8];
    }

    /// <summary>Throws when the native side left something out.</summary>
    internal static void CheckComplete()
    {
        bool builders = OnException != null && CatchAndClearError != null && CreateU16 != null
            && CreateString != null && CreateUnraisableString != null && CreateBytes != null;
        bool tables = Object != null && Read != null && Write != null && Buffer != null
            && Tpo != null && Iter != null && Collection != null && List != null
            && Sequence != null && Stream != null;
        if (!builders || !tables)
        {
            throw new InvalidOperationException("The native side handed over too few callbacks.");
        }
    }

    /// <summary>A new reference to None.</summary>
    internal static nint NewNone()
    {
        nint none = Object->GetNone();
        Object->XIncRef(none);
        return none;
    }
}
