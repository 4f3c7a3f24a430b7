// Writes the results of an entry in their wire forms.

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// One method for each form. A result that is a Python object is a new reference, or null with a
/// Python error that the caller leaves pending; every field of an out record is written.
/// </summary>
internal static unsafe partial class Results
{
    private const int DateTimeKindShift = 62;

    /// <summary>A str; None for null.</summary>
    public static nint String(string? value)
    {
        if (value is null)
        {
            return PyApi.NewNone();
        }
        fixed (char* characters = value)
        {
            return PyApi.CreateString(characters, value.Length);
        }
    }

    /// <summary>A bytearray; None for null.</summary>
    public static nint Bytes(byte[]? value) =>
        value is null ? PyApi.NewNone() : Bytes(value.AsSpan());

    /// <summary>A bytearray.</summary>
    public static nint Bytes(ReadOnlySpan<byte> value)
    {
        fixed (byte* data = value)
        {
            return PyApi.CreateBytes(data, value.Length);
        }
    }

    /// <summary>The handle of an object; 0 for null.</summary>
    public static nint Object(object? value) => Handles.Alloc(value);

    /// <summary>The handle of a boxed copy of a struct.</summary>
    public static nint Struct<T>(T value) where T : struct => Handles.Alloc(value);

    /// <summary>An object of interface type, with the identity of its run-time type.</summary>
    public static void Interface(object? value, PyObjectOutArg* result)
    {
        result->Handle = Handles.Alloc(value);
        result->TypeToken = TypeNames.Token(value);
    }

    /// <summary>
    /// A stream, list or enumerable declared as an interface or as Stream. An adapter goes back as
    /// the Python object behind it, so that identity survives the way through managed code.
    /// </summary>
    public static void Collection(object? value, PyCollectionArg* result)
    {
        if (value is IPyAdapter adapter)
        {
            *result = new PyCollectionArg { Kind = 2, Handle = Lent(adapter) };
            return;
        }
        // Kind 1 tells the reader that it is a struct whose box it may have to ask for.
        result->Kind = value is ValueType ? 1 : 0;
        result->Handle = Handles.Alloc(value);
        result->TypeToken = TypeNames.Token(value);
    }

    /// <summary>
    /// An array or collection declared as the class <typeparamref name="T"/>: its reader knows
    /// handles only, and looks for a closer wrapper when the object is of a derived class.
    /// </summary>
    public static void Class<T>(T? value, PyCollectionArg* result) where T : class
    {
        result->Kind = value is null || value is Array || value.GetType() == typeof(T) ? 0 : 1;
        result->Handle = Handles.Alloc(value);
        result->TypeToken = TypeNames.Token(value);
    }

    /// <summary>A DateTime in two words; the second is the offset of a local time.</summary>
    public static void DateTime(DateTime value, long* result)
    {
        result[0] = value.Ticks | ((long)value.Kind << DateTimeKindShift);
        result[1] = value.Kind == DateTimeKind.Local
            ? TimeZoneInfo.Local.GetUtcOffset(value).Ticks
            : 0;
    }

    /// <summary>A DateTimeOffset: local ticks, then the offset in ticks.</summary>
    public static void DateTimeOffset(DateTimeOffset value, long* result)
    {
        result[0] = value.Ticks;
        result[1] = value.Offset.Ticks;
    }

    /// <summary>A TimeSpan in ticks.</summary>
    public static long TimeSpan(TimeSpan value) => value.Ticks;

    /// <summary>A decimal: three words of mantissa, then the flags.</summary>
    public static void Decimal(decimal value, uint* result) =>
        decimal.GetBits(value, new Span<int>(result, 4));

    /// <summary>A Guid in its own memory order.</summary>
    public static void Guid(Guid value, byte* result) =>
        value.TryWriteBytes(new Span<byte>(result, 16));

    /// <summary>A version; null gives a count of -1.</summary>
    public static void Version(Version? value, PySysVersionArg* result)
    {
        result->Count = value switch
        {
            null => -1,
            { Build: < 0 } => 2,
            { Revision: < 0 } => 3,
            _ => 4,
        };
        result->Components[0] = value?.Major ?? 0;
        result->Components[1] = value?.Minor ?? 0;
        result->Components[2] = value?.Build ?? 0;
        result->Components[3] = value?.Revision ?? 0;
    }
}
