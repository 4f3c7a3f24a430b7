// Hands the callbacks over as the native side does at start-up.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop.Tests.Fakes;

internal static unsafe partial class FakePython
{
    private static bool s_connected;

    /// <summary>Connects the callbacks once, and clears what an earlier test left.</summary>
    public static void Start()
    {
        if (!s_connected)
        {
            s_connected = true;
            Connect();
        }
        Error = null;
        Raised = null;
        BuffersReleased = 0;
        StringsMade = 0;
    }

    private static void Connect()
    {
        Host("SetExceptionCallback", (delegate* unmanaged<nint, nint, void>)&OnException);
        Host("SetCatchAndClearErrorCallback",
            (delegate* unmanaged<nint*, PyStringArg*, int>)&CatchAndClear);
        Host("SetU16StrBuilderCallback", (delegate* unmanaged<char*, int, nint>)&CreateU16);
        Host("SetPyUnraisableStrBuilderCallback",
            (delegate* unmanaged<char*, int, nint>)&CreateString);
        Host("SetPyStrBuilderCallback", (delegate* unmanaged<char*, int, nint>)&CreateString);
        Host("SetPyBytesBuilderCallback", (delegate* unmanaged<byte*, int, nint>)&CreateBytes);
        Host("SetPyObjApiCallbacks", Table(
            (void*)NativeStubs.Return(None), (void*)NativeStubs.IncRef(),
            (delegate* unmanaged<nint, void>)&XDecRef));
        Host("SetPyStaticCallbacks", Table(
            Readers(), Writers(),
            Table((delegate* unmanaged<int>)&BufferSizeOf,
                (delegate* unmanaged<void*, int>)&CreateBuffer,
                (delegate* unmanaged<nint, void*, PyBytesArg*, int>)&ReadBuffer,
                (delegate* unmanaged<void*, void>)&ReleaseBuffer),
            Table((delegate* unmanaged<nint, long, nint*, int>)&TryWriteTpo, null),
            Table((delegate* unmanaged<nint, nint*, VariantArg*, int>)&IterNext),
            Sizes(), Lists(),
            Table((delegate* unmanaged<nint, int, VariantArg*, int>)&SequenceGetItem,
                (delegate* unmanaged<nint, nint, int>)&SequenceContains,
                (delegate* unmanaged<nint, nint, int>)&SequenceIndexOf),
            Streams(), null));
        Host("SetPyGenericCallbacks", TypedReaders());
        Entry.Void("ExchangeHost", "InitServices");
    }

    private static void* Readers() => Table(
        (delegate* unmanaged<nint, PyStringArg*, int>)&ReadString,
        (delegate* unmanaged<nint, int>)&ReadBool,
        (delegate* unmanaged<nint, ulong*, int>)&ReadVersLong,
        (delegate* unmanaged<nint, double*, int>)&ReadDouble,
        (delegate* unmanaged<nint, uint*, int>)&ReadDecimal,
        (delegate* unmanaged<nint, uint*, int>)&ReadDecimalTuple,
        (delegate* unmanaged<nint, long*, int>)&ReadDateTime,
        (delegate* unmanaged<nint, long*, int>)&ReadDate,
        (delegate* unmanaged<nint, long*, int>)&ReadTime,
        (delegate* unmanaged<nint, long*, int>)&ReadTimeDelta,
        (delegate* unmanaged<nint, byte*, int>)&ReadGuid);

    private static void* Writers() => Table(
        (delegate* unmanaged<nint, long, nint>)&WriteTpo,
        (delegate* unmanaged<int, nint>)&WriteBool,
        (delegate* unmanaged<int, nint>)&WriteLong,
        (delegate* unmanaged<uint, nint>)&WriteULong,
        (delegate* unmanaged<long, nint>)&WriteLongLong,
        (delegate* unmanaged<ulong, nint>)&WriteULongLong,
        (delegate* unmanaged<double, nint>)&WriteDouble,
        (delegate* unmanaged<uint*, nint>)&WriteDecimal,
        (delegate* unmanaged<long*, nint>)&WriteDateTime,
        (delegate* unmanaged<long*, nint>)&WriteDateTimeOffset,
        (delegate* unmanaged<long, nint>)&WriteTimeDelta,
        null,
        (delegate* unmanaged<byte*, nint>)&WriteGuid,
        (delegate* unmanaged<int, nint>)&WriteChar);

    private static void* Sizes() => Table(
        (delegate* unmanaged<nint, int>)&Length,
        (delegate* unmanaged<nint, long>)&LongLength,
        (delegate* unmanaged<nint, int, int>)&RemoveAt,
        (delegate* unmanaged<nint, int>)&Clear,
        (delegate* unmanaged<nint, int>)&Length,
        (delegate* unmanaged<nint, long>)&LongLength,
        (delegate* unmanaged<nint, nint>)&GetEnumerator,
        (delegate* unmanaged<nint, int>)&Length,
        (delegate* unmanaged<int, nint*, nint*>)&CreateFastList,
        null, null);

    private static void* Lists() => Table(
        (delegate* unmanaged<nint, int, VariantArg*, int>)&ListGetItem,
        (delegate* unmanaged<nint, int, nint, int>)&ListSetItem,
        (delegate* unmanaged<nint, nint, int>)&ListAdd,
        (delegate* unmanaged<nint, int, nint, int>)&ListInsert,
        (delegate* unmanaged<nint, nint, int>)&ListRemove,
        (delegate* unmanaged<nint, nint, int>)&Contains,
        (delegate* unmanaged<nint, nint, int>)&IndexOf,
        (delegate* unmanaged<nint*, int, nint, void>)&SetFastItem,
        (delegate* unmanaged<nint, nint>)&WriteList,
        (delegate* unmanaged<nint, nint>)&WriteList,
        (delegate* unmanaged<nint, nint>)&WriteList);

    private static void* Streams() => Table(
        (delegate* unmanaged<nint, void*, int, int>)&StreamWrite,
        (delegate* unmanaged<nint, int, int>)&StreamWriteByte,
        (delegate* unmanaged<nint, void*, int, int>)&StreamRead,
        (delegate* unmanaged<nint, int>)&StreamReadByte,
        (delegate* unmanaged<nint, long, int, long>)&StreamSeek,
        (delegate* unmanaged<nint, long, int>)&StreamTruncate,
        (delegate* unmanaged<nint, int>)&StreamFlush,
        (delegate* unmanaged<nint, void>)&StreamClose,
        (delegate* unmanaged<nint, int>)&StreamAble,
        (delegate* unmanaged<nint, int>)&StreamAble,
        (delegate* unmanaged<nint, int>)&StreamSeekable,
        (delegate* unmanaged<nint, long>)&StreamTell,
        (delegate* unmanaged<nint, long>)&StreamLength);

    private static void* Table(params void*[] slots)
    {
        void** table = (void**)NativeMemory.Alloc((nuint)slots.Length, (nuint)sizeof(void*));
        for (int i = 0; i < slots.Length; i++)
        {
            table[i] = slots[i];
        }
        return table;
    }

    private static void Host(string method, void* argument) =>
        ((delegate* unmanaged<void*, void>)Entry.Address("ExchangeHost", method))(argument);
}
