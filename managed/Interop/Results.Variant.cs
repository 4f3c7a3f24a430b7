// Makes a Python value of a managed one whose form is known only at run time.
using System.Collections;
using System.Runtime.CompilerServices;

namespace Kelmor.WrpGen.Interop;

internal static unsafe partial class Results
{
    /// <summary>
    /// A value as Python has it: a new reference, or null with a Python error. Values that have a
    /// Python counterpart become that; other objects become the wrapper of their own type.
    /// </summary>
    public static nint Variant(object? value) => value switch
    {
        null => PyApi.NewNone(),
        string text => String(text),
        IPyAdapter adapter => NewReference(adapter),
        byte[] bytes => Bytes(bytes),
        Array array => PyApi.List->WriteArray(Handles.Alloc(array)),
        Enum member => Number(member),
        ValueType scalar => Scalar(scalar),
        _ => Wrapper(value),
    };

    /// <summary>
    /// A Python list of the items, filled without a Python call for each. An item that cannot be
    /// made leaves the list unusable, hence it is completed with None before it is given up.
    /// </summary>
    public static nint List(ICollection items)
    {
        object?[] all = new object?[items.Count];
        items.CopyTo(all, 0);
        nint list = 0;
        nint* slots = PyApi.Collection->CreateFastList(all.Length, &list);
        if (list == 0)
        {
            return 0;
        }
        int done = 0;
        try
        {
            for (nint item; done < all.Length && (item = Variant(all[done])) != 0; done++)
            {
                PyApi.List->SetFastItem(slots, done, item);
            }
            return done == all.Length ? list : 0;
        }
        finally
        {
            if (done < all.Length)
            {
                Abandon(list, slots, done, all.Length);
            }
        }
    }

    private static void Abandon(nint list, nint* slots, int done, int length)
    {
        for (; done < length; done++)
        {
            PyApi.List->SetFastItem(slots, done, PyApi.NewNone());
        }
        PyApi.Object->XDecRef(list);
    }

    private static nint NewReference(IPyAdapter adapter)
    {
        nint pyObject = Lent(adapter);
        PyApi.Object->XIncRef(pyObject);
        GC.KeepAlive(adapter);
        return pyObject;
    }

    // An iterator that has been disposed of has no object any more.
    private static nint Lent(IPyAdapter adapter)
    {
        nint pyObject = adapter.PyObject;
        ObjectDisposedException.ThrowIf(pyObject == 0, adapter);
        return pyObject;
    }

    private static nint Scalar(ValueType value)
    {
        PyWriteCallbacks* write = PyApi.Write;
        long* words = stackalloc long[2];
        switch (value)
        {
            case bool truth: return write->Bool(truth ? 1 : 0);
            case int number: return write->Long(number);
            case double number: return write->Double(number);
            case long number: return write->LongLong(number);
            case byte number: return write->ULong(number);
            case float number: return write->Double(number);
            case short number: return write->Long(number);
            case ushort number: return write->ULong(number);
            case uint number: return write->ULong(number);
            case ulong number: return write->ULongLong(number);
            case sbyte number: return write->Long(number);
            case char unit: return write->Char(unit);
            case TimeSpan span: return write->DateTimeDelta(span.Ticks);
            case DateTime moment:
                DateTime(moment, words);
                return write->DateTime(words);
            case DateTimeOffset moment:
                DateTimeOffset(moment, words);
                return write->DateTimeOffset(words);
            case decimal number:
                Decimal(number, (uint*)words);
                return write->Decimal((uint*)words);
            case Guid guid:
                Guid(guid, (byte*)words);
                return write->Guid((byte*)words);
            default:
                // A copy, as unboxing makes one: the wrapper must not change the managed value.
                nint copy = Handles.Alloc(RuntimeHelpers.GetObjectValue(value));
                return write->Tpo(copy, TypeNames.Token(value));
        }
    }

    // Enumerations are not known by their run-time type; their members equal their numbers.
    private static nint Number(Enum member) =>
        Scalar((ValueType)Convert.ChangeType(member, Enum.GetUnderlyingType(member.GetType())));

    // The exact exposed type first. A list of a type that is not exposed still has its interface,
    // and a collection that is no list goes over as a copy.
    private static nint Wrapper(object value)
    {
        long token = TypeNames.Token(value);
        if (value is not ICollection items)
        {
            return PyApi.Write->Tpo(Handles.Alloc(value), token);
        }
        nint wrapper = 0;
        int known = PyApi.Tpo->TryWrite(Handles.Alloc(value), token, &wrapper);
        if (known != 0)
        {
            return known > 0 ? wrapper : 0;
        }
        return items switch
        {
            ArrayList list => PyApi.List->WriteArrayList(Handles.Alloc(list)),
            IList list => PyApi.List->WriteIList(Handles.Alloc(list)),
            _ => List(items),
        };
    }
}
