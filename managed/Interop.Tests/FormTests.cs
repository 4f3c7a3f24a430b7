// The typed forms of arguments and results.
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class FormTests : TestBase
{
    [Theory]
    [InlineData("0")]
    [InlineData("1")]
    [InlineData("-0.0000000000000000000000000001")]
    [InlineData("79228162514264337593543950335")]
    [InlineData("-12345678901234567890.12345678")]
    [InlineData("0.00")]
    public void A_decimal_goes_through_mantissa_words_and_flags(string text)
    {
        decimal number = decimal.Parse(text);
        uint* words = stackalloc uint[4];
        Results.Decimal(number, words);
        int[] bits = decimal.GetBits(number);
        for (int i = 0; i < 4; i++)
        {
            Assert.Equal(unchecked((uint)bits[i]), words[i]);
        }
        decimal back = Args.Decimal(words);
        Assert.Equal(bits, decimal.GetBits(back));
    }

    [Fact]
    public void Mantissa_words_stand_lowest_first_and_the_scale_in_the_flags()
    {
        uint* words = stackalloc uint[4];
        Results.Decimal(new decimal(1, 2, 3, true, 5), words);
        Assert.Equal((1u, 2u, 3u, 0x80050000u), (words[0], words[1], words[2], words[3]));
    }

    [Fact]
    public void A_guid_is_in_its_memory_order()
    {
        byte* bytes = stackalloc byte[16];
        var guid = Guid.Parse("00112233-4455-6677-8899-aabbccddeeff");
        Results.Guid(guid, bytes);
        Assert.Equal(0x33, bytes[0]);
        Assert.Equal(0x55, bytes[4]);
        Assert.Equal(0x88, bytes[8]);
        Assert.Equal(guid, Args.Guid(bytes));
    }

    [Theory]
    [InlineData(0L, DateTimeKind.Unspecified)]
    [InlineData(1L << 62, DateTimeKind.Utc)]
    [InlineData(long.MinValue, DateTimeKind.Local)]
    public void A_date_has_its_kind_in_the_top_bits(long bits, DateTimeKind kind)
    {
        long word = new DateTime(1999, 12, 31).Ticks | bits;
        DateTime moment = Args.DateTime(&word);
        Assert.Equal((new DateTime(1999, 12, 31), kind), (moment, moment.Kind));
    }

    [Fact]
    public void A_date_beyond_the_managed_range_is_refused()
    {
        long word = 3155378976000000000;
        Assert.Throws<ArgumentOutOfRangeException>(() => Args.DateTime(word));
    }

    [Fact]
    public void An_offset_date_before_the_first_year_in_utc_is_refused()
    {
        long* words = stackalloc long[2];
        words[0] = 0;
        words[1] = TimeSpan.FromHours(2).Ticks;
        nint address = (nint)words;
        Assert.Throws<ArgumentOutOfRangeException>(() => Args.DateTimeOffset((long*)address));
    }

    [Fact]
    public void An_offset_date_is_local_ticks_and_offset()
    {
        long* words = stackalloc long[2];
        var moment = new DateTimeOffset(2020, 5, 6, 7, 8, 9, TimeSpan.FromMinutes(330));
        Results.DateTimeOffset(moment, words);
        Assert.Equal((moment.Ticks, moment.Offset.Ticks), (words[0], words[1]));
        Assert.Equal(moment, Args.DateTimeOffset(words));
        Assert.Equal(moment.Offset, Args.DateTimeOffset(words).Offset);
        words[0] |= 1L << 62;
        Assert.Equal(moment, Args.DateTimeOffset(words));
    }

    [Theory]
    [InlineData("1.2")]
    [InlineData("1.2.3")]
    [InlineData("1.2.3.4")]
    [InlineData("0.0.0")]
    [InlineData("0.0.0.0")]
    [InlineData(null)]
    public void A_version_has_as_many_parts_as_it_was_given(string? text)
    {
        Version? version = text is null ? null : new Version(text);
        PySysVersionArg argument;
        Results.Version(version, &argument);
        Assert.Equal(text?.Split('.').Length ?? -1, argument.Count);
        Assert.Equal(version, Args.Version(&argument));
    }

    [Theory]
    [InlineData(1)]
    [InlineData(5)]
    public void A_version_of_another_count_is_refused(int count) =>
        Assert.Throws<ArgumentException>(() =>
        {
            var argument = new PySysVersionArg { Count = count };
            Args.Version(&argument);
        });

    [Fact]
    public void A_byte_array_of_none_is_null_and_of_nothing_is_empty()
    {
        var none = new PyBytesArg { Length = -1 };
        Assert.Null(Args.Bytes(&none));
        var empty = new PyBytesArg { Length = 0 };
        byte[]? bytes = Args.Bytes(&empty);
        Assert.NotNull(bytes);
        Assert.Empty(bytes);
    }

    [Fact]
    public void A_struct_argument_is_copied_and_none_is_refused()
    {
        var argument = new VariantArg { Kind = 1, Value = Own(new Spot { X = 4 }) };
        Spot spot = Args.Struct<Spot>(&argument);
        spot.X = 5;
        Assert.Equal(4, Args.Struct<Spot>(&argument).X);

        Assert.Throws<NullReferenceException>(() =>
        {
            var none = new VariantArg { Kind = 1 };
            Args.Struct<Spot>(&none);
        });
    }

    [Fact]
    public void An_interface_argument_of_none_is_told_by_its_value()
    {
        var none = new VariantArg { Kind = 77, Value = 0 };
        Assert.Null(Args.Interface<IDisposable>(&none));
        var stream = new MemoryStream();
        var argument = new VariantArg { Kind = 0, Value = Own(stream) };
        Assert.Same(stream, Args.Interface<IDisposable>(&argument));
    }

    [Fact]
    [Trait("behaviour", "marshal-records.collection-out.not-prepared")]
    public void A_null_result_writes_every_field()
    {
        var result = new PyCollectionArg { Kind = 9, Handle = 9, TypeToken = 9 };
        Results.Collection(null, &result);
        Assert.Equal((0, (nint)0, 0L), (result.Kind, result.Handle, result.TypeToken));
        var other = new PyObjectOutArg { Handle = 9, TypeToken = 9 };
        Results.Interface(null, &other);
        Assert.Equal(((nint)0, 0L), (other.Handle, other.TypeToken));
    }

    [Fact]
    public void A_result_has_the_identity_of_its_run_time_type()
    {
        long token = typeof(MemoryStream).TypeHandle.Value;
        PyObjectOutArg seen;
        Results.Interface(new MemoryStream(), &seen);
        Assert.Equal(token, seen.TypeToken);
        Handles.Free(seen.Handle);
        PyCollectionArg result;
        Results.Collection(new MemoryStream(), &result);
        Assert.Equal((0, token), (result.Kind, result.TypeToken));
        Handles.Free(result.Handle);
    }

    [Fact]
    public void An_adapter_that_has_let_go_of_its_object_cannot_go_back()
    {
        nint python = FakePython.NewTuple(1);
        var walk = new PyEnumerable(python).GetEnumerator();
        ((IDisposable)walk).Dispose();
        Assert.Throws<ObjectDisposedException>(() =>
        {
            PyCollectionArg result;
            Results.Collection(walk, &result);
        });
        FakePython.Release(python);
    }

    [Fact]
    public void No_bytes_are_none()
    {
        nint none = Results.Bytes(null);
        Assert.Equal(FakePython.None, none);
        FakePython.Release(none);
    }

    [Fact]
    public void A_struct_behind_an_interface_is_kind_1()
    {
        PyCollectionArg result;
        Results.Collection(new List<int>.Enumerator(), &result);
        Assert.Equal(1, result.Kind);
        Assert.Equal(typeof(List<int>.Enumerator).TypeHandle.Value, (nint)result.TypeToken);
        Handles.Free(result.Handle);
    }

    [Fact]
    public void A_derived_class_is_kind_1_and_an_array_never()
    {
        PyCollectionArg result;
        Results.Class<System.Collections.CollectionBase>(new PyCollectionBase([]), &result);
        Assert.Equal(1, result.Kind);
        Handles.Free(result.Handle);
        Results.Class<object[]>(new string[1], &result);
        Assert.Equal(0, result.Kind);
        Assert.Equal(typeof(string[]).TypeHandle.Value, (nint)result.TypeToken);
        Handles.Free(result.Handle);
        Results.Class(new System.Collections.ArrayList(), &result);
        Assert.Equal(0, result.Kind);
        Handles.Free(result.Handle);
        result.Kind = 9;
        Results.Class<System.Collections.ArrayList>(null, &result);
        Assert.Equal((0, (nint)0, 0L), (result.Kind, result.Handle, result.TypeToken));
    }

    [Fact]
    public void An_adapter_is_kind_2_with_the_object_lent()
    {
        nint file = FakePython.New(new FakeFile());
        var stream = new PyStream(file);
        long refs = FakePython.Refs(file);
        PyCollectionArg result;
        Results.Collection(stream, &result);
        Assert.Equal((2, file), (result.Kind, result.Handle));
        Assert.Equal(refs, FakePython.Refs(file));
        GC.KeepAlive(stream);
        FakePython.Release(file);
    }

    [Fact]
    public void A_string_that_python_cannot_hold_leaves_its_error_and_gives_nothing()
    {
        Assert.Equal(0, Results.String("\uD800"));
        Assert.Equal("LookupError", FakePython.Error?.Type);
        FakePython.Error = null;
    }
}
