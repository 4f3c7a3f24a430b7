// Values of any type, in both directions.
using System.Collections;
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class VariantTests : TestBase
{
    // What a Python object is to managed code; the object is given back.
    private static object? Read(nint pyObject)
    {
        object? value = Read(FakePython.Variant(pyObject));
        FakePython.Release(pyObject);
        return value;
    }

    private static object? Read(VariantArg argument) => Args.Variant(&argument);

    public static TheoryData<object> Values => [.. new object[]
    {
        "text", "", "\u4E2D", "\U0001F600", true, false, 0, -1, int.MinValue,
        (long)int.MaxValue + 1, long.MinValue, (ulong)long.MaxValue + 1, ulong.MaxValue, 1.5,
        double.NaN, 0.1m, -79228162514264337593543950335m, new DateTime(2020, 2, 29, 1, 2, 3),
        new DateTimeOffset(2020, 1, 1, 0, 0, 0, TimeSpan.FromHours(2)),
        TimeSpan.FromDays(-3), Guid.Parse("00112233-4455-6677-8899-aabbccddeeff"),
    }];

    [Theory]
    [MemberData(nameof(Values))]
    public void A_python_value_becomes_the_managed_value_of_its_kind(object value)
    {
        int alive = FakePython.Alive;
        object? read = Read(FakePython.New(value));
        Assert.Equal(value, read);
        Assert.Equal(value.GetType(), read!.GetType());
        Assert.Equal(alive, FakePython.Alive);
    }

    [Fact]
    [Trait("behaviour", "marshal-records.variant.general-none")]
    public void None_is_null_and_nothing_is_read_through_its_pointer() =>
        Assert.Null(Read(new VariantArg { Kind = 0, Value = 1 }));

    public static TheoryData<object, int, object> Kinds => new()
    {
        { "text", 3, "text" }, { true, 5, true }, { 7, 6, 7 }, { 1.5, 7, 1.5 }, { 2.5m, 8, 2.5m },
        { "tuple", 9, 9.09m }, { new DateTime(2020, 1, 2), 10, new DateTime(2020, 1, 2) },
        { "date", 11, new DateTime(2011, 11, 11) },
        { "time", 12, new DateTime(1, 1, 1, 12, 12, 12, DateTimeKind.Utc) },
        { TimeSpan.FromDays(1), 13, TimeSpan.FromDays(1) },
        { new Guid(1, 2, 3, new byte[8]), 14, new Guid(1, 2, 3, new byte[8]) },
    };

    [Theory]
    [MemberData(nameof(Kinds))]
    [Trait("behaviour", "marshal-records.variant.managed-reads-by-kind")]
    public void Every_kind_is_read_with_its_own_callback(object value, int kind, object expected)
    {
        nint pyObject = FakePython.New(value);
        Assert.Equal(expected, Read(new VariantArg { Kind = kind, Value = pyObject }));
        FakePython.Release(pyObject);
    }

    [Fact]
    [Trait("behaviour", "marshal-records.variant.managed-reads-by-kind")]
    public void Bytes_lists_and_tuples_are_read_by_kind_too()
    {
        nint list = FakePython.NewList(1);
        nint tuple = FakePython.NewTuple(2);
        nint bytes = FakePython.New(new byte[] { 3 });
        Assert.Equal([3], (byte[])Read(new VariantArg { Kind = 4, Value = bytes })!);
        Assert.Equal(new object[] { 1 }, ((IList)Read(FakePython.Variant(list))!).Cast<object>());
        Assert.Equal(new object[] { 2 }, ((IList)Read(FakePython.Variant(tuple))!).Cast<object>());
        Assert.False(((IList)Read(FakePython.Variant(list))!).IsReadOnly);
        Assert.True(((IList)Read(FakePython.Variant(tuple))!).IsReadOnly);
        Array.ForEach([list, tuple, bytes], FakePython.Release);
    }

    [Fact]
    public void Only_the_low_byte_of_a_truth_value_counts()
    {
        Assert.Equal(false, Read(FakePython.New(false)));
        Assert.Equal(true, Read(FakePython.New(true)));
    }

    [Fact]
    [Trait("behaviour", "marshal-bytes.table.managed-own-view")]
    [Trait("behaviour", "marshal-bytes.table.managed-asks-size")]
    public void Bytes_are_copied_through_a_view_of_the_size_that_was_asked_and_released()
    {
        byte[] source = [1, 2, 3];
        nint pyObject = FakePython.New(source);
        var read = (byte[])Read(FakePython.Variant(pyObject))!;
        Assert.Equal(source, read);
        Assert.NotSame(source, read);
        Assert.Equal(1, FakePython.BuffersReleased);
        Assert.Equal(1, FakePython.Refs(pyObject));
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_refused_view_that_is_held_is_released_too()
    {
        nint bad = FakePython.New(new byte[] { 0xBA, 0xD0 });
        VariantArg argument = FakePython.Variant(bad);
        PythonException error = Assert.Throws<PythonException>(() => Read(argument));
        Assert.Equal("BufferError: buffer is not contiguous", error.Message);
        Assert.Equal(1, FakePython.BuffersReleased);
        FakePython.Release(bad);
    }

    [Fact]
    public void A_failed_reader_becomes_an_exception_and_leaves_nothing_pending()
    {
        nint large = FakePython.New("1E+40");
        var argument = new VariantArg { Kind = (int)VariantKind.Decimal, Value = large };
        PythonException error = Assert.Throws<PythonException>(() => Read(argument));
        Assert.Equal("OverflowError: value too large for .Net decimal", error.Message);
        Assert.Null(FakePython.Error);
        FakePython.Release(large);
    }

    [Theory]
    [InlineData(VariantKind.String)]
    [InlineData(VariantKind.Int)]
    [InlineData(VariantKind.Float)]
    [InlineData(VariantKind.DecimalTuple)]
    [InlineData(VariantKind.DateTime)]
    [InlineData(VariantKind.Date)]
    [InlineData(VariantKind.Time)]
    [InlineData(VariantKind.TimeDelta)]
    [InlineData(VariantKind.Guid)]
    public void Every_failed_reader_is_told_in_its_own_words(object kind)
    {
        nint unreadable = FakePython.New(new FakeError("ValueError", "unreadable"));
        var argument = new VariantArg { Kind = (int)kind, Value = unreadable };
        PythonException error = Assert.Throws<PythonException>(() => Read(argument));
        Assert.Equal("ValueError: unreadable", error.Message);
        Assert.Null(FakePython.Error);
        FakePython.Release(unreadable);
    }

    [Fact]
    public void A_wrapper_is_its_object_and_a_struct_a_copy_of_its_value()
    {
        var sample = new Sample(1);
        Assert.Same(sample, Read(FakePython.New(new FakeWrapper(Own(sample)))));

        nint handle = Own(new Spot { X = 1 });
        object? spot = Read(FakePython.New(new FakeWrapper(handle, IsStruct: true)));
        Handles.Unbox<Spot>(handle).X = 2;
        Assert.Equal(1, ((Spot)spot!).X);
    }

    [Fact]
    public void An_unknown_kind_is_refused()
    {
        var argument = new VariantArg { Kind = 17, Value = 1 };
        Assert.Throws<ArgumentException>(() => Read(argument));
    }

    public static TheoryData<object, object> Results_ => new()
    {
        { (sbyte)-5, -5 }, { (short)-300, -300 }, { 7, 7 }, { (byte)200, 200L },
        { (ushort)60000, 60000L }, { 4000000000u, 4000000000L }, { long.MaxValue, long.MaxValue },
        { ulong.MaxValue, ulong.MaxValue }, { 1.5f, 1.5 }, { 2.5, 2.5 }, { true, true },
        { 'x', "x" }, { "text", "text" }, { DayOfWeek.Friday, 5 }, { 12.50m, 12.50m },
        { TimeSpan.FromTicks(5), TimeSpan.FromTicks(5) },
        { new Guid(1, 2, 3, new byte[8]), new Guid(1, 2, 3, new byte[8]) },
        { new DateTimeOffset(2020, 1, 1, 0, 0, 0, TimeSpan.FromHours(-2)),
            new DateTimeOffset(2020, 1, 1, 0, 0, 0, TimeSpan.FromHours(-2)) },
    };

    [Theory]
    [MemberData(nameof(Results_))]
    public void A_managed_value_becomes_its_python_counterpart(object value, object expected)
    {
        int alive = FakePython.Alive;
        Assert.Equal(expected, FakePython.Take(Results.Variant(value)));
        Assert.Equal(alive, FakePython.Alive);
    }

    [Fact]
    [Trait("behaviour", "marshal-scalars.from-clr.null-string")]
    public void A_null_string_becomes_none_without_the_builder()
    {
        Assert.Null(FakePython.Take(Results.String(null)));
        Assert.Null(FakePython.Take(Results.Variant(null)));
        Assert.Equal(0, FakePython.StringsMade);
    }

    [Fact]
    public void A_byte_array_becomes_one_block() =>
        Assert.Equal(new byte[] { 1, 2 }, FakePython.Take(Results.Variant(new byte[] { 1, 2 })));

    [Theory]
    [InlineData(DateTimeKind.Unspecified, 0)]
    [InlineData(DateTimeKind.Utc, 1)]
    [InlineData(DateTimeKind.Local, 2)]
    public void A_date_carries_its_kind_in_the_top_bits(DateTimeKind kind, long bits)
    {
        var moment = new DateTime(2021, 3, 4, 5, 6, 7, kind);
        (long word, long offset) = ((long, long))FakePython.Take(Results.Variant(moment))!;
        Assert.Equal(bits, (long)((ulong)word >> 62));
        Assert.Equal(moment.Ticks, word & 0x3FFFFFFFFFFFFFFF);
        Assert.Equal(
            kind == DateTimeKind.Local ? TimeZoneInfo.Local.GetUtcOffset(moment).Ticks : 0, offset);
    }

    [Fact]
    public void An_object_becomes_the_wrapper_of_its_own_type()
    {
        var wrapper = (FakeWrapper)FakePython.Take(Results.Variant(new Sample(3)))!;
        Assert.Equal(3, Handles.Target<Sample>(wrapper.Handle).Number);
        Handles.Free(wrapper.Handle);
    }

    [Fact]
    public void A_struct_becomes_the_wrapper_of_a_copy()
    {
        object box = new Spot { X = 1 };
        var wrapper = (FakeWrapper)FakePython.Take(Results.Variant(box))!;
        Handles.Unbox<Spot>(wrapper.Handle).X = 9;
        Assert.Equal(1, ((Spot)box).X);
        Handles.Free(wrapper.Handle);
    }

    [Fact]
    public void An_object_of_an_unknown_type_is_a_python_error_and_no_handle_is_lost()
    {
        Assert.Equal(0, Results.Variant(new MemoryStream()));
        Assert.Equal(new FakeError("TypeError", "unknown wrapper type"), FakePython.Error);
        FakePython.Error = null;
    }

    [Fact]
    public void Lists_and_arrays_become_wrappers_over_the_live_object()
    {
        foreach (IList list in new IList[] { new int[1], new ArrayList { 1 }, new List<int> { 1 } })
        {
            var wrapper = (FakeWrapper)FakePython.Take(Results.Variant(list))!;
            Assert.Same(list, Handles.Target<IList>(wrapper.Handle));
            Handles.Free(wrapper.Handle);
        }
    }

    [Fact]
    public void A_collection_that_is_no_list_becomes_a_python_list()
    {
        int alive = FakePython.Alive;
        nint list = Results.Variant(new Queue<int>([1, 2, 3]));
        Assert.Equal([1, 2, 3], FakePython.Items(list));
        FakePython.Release(list);
        Assert.Equal(alive, FakePython.Alive);
    }

    [Fact]
    public void A_list_with_an_item_that_cannot_be_made_is_given_up_whole()
    {
        int alive = FakePython.Alive;
        long noneRefs = FakePython.Refs(FakePython.None);
        Assert.Equal(0, Results.List(new object[] { 1, new MemoryStream(), "x" }));
        Assert.Equal("TypeError", FakePython.Error?.Type);
        FakePython.Error = null;
        Assert.Equal(alive, FakePython.Alive);
        Assert.Equal(noneRefs, FakePython.Refs(FakePython.None));
    }

    private sealed class Unspeakable : ICollection
    {
        public int Count => throw new NotSupportedException();

        public bool IsSynchronized => false;

        public object SyncRoot => this;

        public void CopyTo(Array array, int index) => throw new NotSupportedException();

        public IEnumerator GetEnumerator() => throw new NotSupportedException();
    }

    private sealed class Disposed : IPyAdapter
    {
        public nint PyObject => 0;
    }

    [Fact]
    public void A_list_is_given_up_when_an_item_throws()
    {
        int alive = FakePython.Alive;
        Assert.Throws<ObjectDisposedException>(
            () => Results.List(new object[] { 1, new Disposed(), 2 }));
        Assert.Throws<NotSupportedException>(() => Results.List(new Unspeakable()));
        Assert.Equal(alive, FakePython.Alive);
    }

    [Fact]
    public void An_adapter_becomes_the_object_behind_it()
    {
        nint list = FakePython.NewList();
        var adapter = new PyList(list);
        long refs = FakePython.Refs(list);
        nint result = Results.Variant(adapter);
        Assert.Equal(list, result);
        Assert.Equal(refs + 1, FakePython.Refs(list));
        FakePython.Release(result);
        FakePython.Release(list);
    }

    [Theory]
    [InlineData(5, typeof(byte), (byte)5)]
    [InlineData(5, typeof(long), 5L)]
    [InlineData(5, typeof(double), 5.0)]
    [InlineData(1.5, typeof(float), 1.5f)]
    [InlineData(5, typeof(DayOfWeek), DayOfWeek.Friday)]
    [InlineData("x", typeof(char), 'x')]
    [InlineData(null, typeof(string), null)]
    [InlineData(null, typeof(int?), null)]
    [InlineData(5, typeof(byte?), (byte)5)]
    [InlineData(5, typeof(DayOfWeek?), DayOfWeek.Friday)]
    public void A_value_is_fitted_to_an_element_type(object? value, Type type, object? expected) =>
        Assert.Equal(expected, Variants.Fit(value, type));

    [Theory]
    [InlineData(300, typeof(byte), typeof(OverflowException))]
    [InlineData(-1, typeof(ulong), typeof(OverflowException))]
    [InlineData(1.5, typeof(int), typeof(InvalidCastException))]
    [InlineData(true, typeof(int), typeof(InvalidCastException))]
    [InlineData(1, typeof(bool), typeof(InvalidCastException))]
    [InlineData(65, typeof(char), typeof(InvalidCastException))]
    [InlineData(1.0, typeof(DayOfWeek), typeof(InvalidCastException))]
    [InlineData(null, typeof(int), typeof(InvalidCastException))]
    [InlineData("xy", typeof(char), typeof(InvalidCastException))]
    [InlineData("5", typeof(int), typeof(InvalidCastException))]
    public void A_value_that_does_not_fit_is_refused(object? value, Type type, Type error) =>
        Assert.Throws(error, () => Variants.Fit(value, type));

    [Theory]
    [InlineData(1, 1L, true)]
    [InlineData(1, 1.0, true)]
    [InlineData((byte)1, (ulong)1, true)]
    [InlineData(1, "1", false)]
    [InlineData(1, 2L, false)]
    [InlineData(null, null, true)]
    [InlineData(null, 0, false)]
    [InlineData(5, DayOfWeek.Friday, true)]
    public void Numbers_are_equal_by_value(object? left, object? right, bool expected)
    {
        Assert.Equal(expected, Variants.AreEqual(left, right));
        Assert.Equal(expected, Variants.AreEqual(right, left));
    }

    [Fact]
    public void Decimals_are_numbers_among_numbers()
    {
        Assert.True(Variants.AreEqual(1m, 1));
        Assert.True(Variants.AreEqual(1.5m, 1.5));
        Assert.False(Variants.AreEqual(1.5m, 1));
        Assert.True(Variants.Compare(0.1m, 1L) < 0 && Variants.Compare(2.5, 1m) > 0);
        Assert.True(Variants.Compare(null, 0) < 0 && Variants.Compare("a", null) > 0);
        Assert.True(Variants.Compare(7, 7) == 0 && Variants.Compare(ulong.MaxValue, -1) > 0);
    }
}
