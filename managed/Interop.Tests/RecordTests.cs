// The wire records lie in memory as native code has them.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class RecordTests
{
    [Fact]
    public void Every_record_has_the_size_of_the_wire()
    {
        Assert.Equal(16, sizeof(PyStringArg));
        Assert.Equal(16, sizeof(PyBytesArg));
        Assert.Equal(16, sizeof(VariantArg));
        Assert.Equal(16, sizeof(PyObjectOutArg));
        Assert.Equal(24, sizeof(PyCollectionArg));
        Assert.Equal(20, sizeof(PySysVersionArg));
        Assert.Equal(24, sizeof(PyNullableArg));
    }

    [Theory]
    [InlineData(typeof(PyStringArg), "Length", 0)]
    [InlineData(typeof(PyStringArg), "CharSize", 4)]
    [InlineData(typeof(PyStringArg), "Data", 8)]
    [InlineData(typeof(PyBytesArg), "Held", 0)]
    [InlineData(typeof(PyBytesArg), "Length", 4)]
    [InlineData(typeof(PyBytesArg), "Data", 8)]
    [InlineData(typeof(VariantArg), "Kind", 0)]
    [InlineData(typeof(VariantArg), "Value", 8)]
    [InlineData(typeof(PyObjectOutArg), "Handle", 0)]
    [InlineData(typeof(PyObjectOutArg), "TypeToken", 8)]
    [InlineData(typeof(PyCollectionArg), "Kind", 0)]
    [InlineData(typeof(PyCollectionArg), "Handle", 8)]
    [InlineData(typeof(PyCollectionArg), "TypeToken", 16)]
    [InlineData(typeof(PyNullableArg), "HasValue", 0)]
    [InlineData(typeof(PyNullableArg), "Convert", 8)]
    [InlineData(typeof(PyNullableArg), "Target", 16)]
    [InlineData(typeof(PySysVersionArg), "Count", 0)]
    [InlineData(typeof(PySysVersionArg), "Components", 4)]
    public void Every_field_has_its_offset(Type record, string field, int offset) =>
        Assert.Equal(offset, (int)Marshal.OffsetOf(record, field));

    [Fact]
    public void Callback_tables_have_as_many_slots_as_native_code_fills()
    {
        Assert.Equal(3, sizeof(PyObjectCallbacks) / sizeof(void*));
        Assert.Equal(11, sizeof(PyReadCallbacks) / sizeof(void*));
        Assert.Equal(14, sizeof(PyWriteCallbacks) / sizeof(void*));
        Assert.Equal(4, sizeof(PyBufferCallbacks) / sizeof(void*));
        Assert.Equal(1, sizeof(PyTpoCallbacks) / sizeof(void*));
        Assert.Equal(1, sizeof(PyIterCallbacks) / sizeof(void*));
        Assert.Equal(11, sizeof(PyCollectionCallbacks) / sizeof(void*));
        Assert.Equal(11, sizeof(PyListCallbacks) / sizeof(void*));
        Assert.Equal(3, sizeof(PySequenceCallbacks) / sizeof(void*));
        Assert.Equal(13, sizeof(PyStreamCallbacks) / sizeof(void*));
    }
}
