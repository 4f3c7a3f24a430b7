// The entries of lists and arrays behave as a Python list does.
using System.Collections;
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class ListEntryTests : TestBase
{
    // An argument of any type; the object is kept alive by the test's own reference.
    private static VariantArg Value(object value) => FakePython.Variant(FakePython.New(value));

    private static (int Status, object? Item) Get(string type, nint self, int index)
    {
        nint item = 7;
        int status = ((delegate* unmanaged<nint, int, nint*, int>)Entry.Address(type, "SqGetItem"))(
            self, index, &item);
        return (status, item == 0 ? null : FakePython.Take(item));
    }

    private static int Set(string type, nint self, int index, object value)
    {
        VariantArg argument = Value(value);
        return ((delegate* unmanaged<nint, int, VariantArg*, int>)Entry.Address(type, "SqSetItem"))(
            self, index, &argument);
    }

    private static int With(string type, string method, nint self, object value)
    {
        VariantArg argument = Value(value);
        return ((delegate* unmanaged<nint, VariantArg*, int>)Entry.Address(type, method))(
            self, &argument);
    }

    private static void Insert(nint self, int index, object value)
    {
        VariantArg argument = Value(value);
        ((delegate* unmanaged<nint, int, VariantArg*, void>)Entry.Address(
            "SiApiCntList", "Insert"))(self, index, &argument);
    }

    private static (int Status, object? Item) Pop(nint self, int? index = null)
    {
        nint item = 7;
        int status = ((delegate* unmanaged<nint, int, int, nint*, int>)Entry.Address(
            "SiApiArrayList", "Pop"))(self, index is null ? 0 : 1, index ?? 0, &item);
        return (status, item == 0 ? null : FakePython.Take(item));
    }

    private static int Index(
        string type, nint self, object value, int? start = null, int? stop = null)
    {
        VariantArg argument = Value(value);
        return ((delegate* unmanaged<nint, int, int, int, int, VariantArg*, int>)Entry.Address(
            type, "IndexBy"))(
            self, start is null ? 0 : 1, start ?? 0, stop is null ? 0 : 1, stop ?? 0, &argument);
    }

    private static void Sort(string type, nint self, bool reverse) =>
        ((delegate* unmanaged<nint, int, void>)Entry.Address(type, "Sort"))(self, reverse ? 1 : 0);

    [Theory]
    [InlineData("SiApiCntList")]
    [InlineData("SiApiArray")]
    [InlineData("SiApiArrayList")]
    public void An_index_outside_is_status_2_also_a_negative_one(string type)
    {
        nint self = Own(type == "SiApiArray" ? new object[] { 1, 2 } : new ArrayList { 1, 2 });
        Assert.Equal((0, 2), Get(type, self, 1));
        Assert.Equal((2, null), Get(type, self, 2));
        Assert.Equal((2, null), Get(type, self, -1));
        Assert.Equal(0, Set(type, self, 0, 9));
        Assert.Equal(2, Set(type, self, 2, 9));
        Assert.Equal(2, Set(type, self, -1, 9));
        Assert.Equal((0, 9), Get(type, self, 0));
    }

    [Fact]
    public void An_item_that_cannot_be_made_is_a_failure_with_its_python_error()
    {
        Assert.Equal((-1, null), Get("SiApiCntList", Own(new ArrayList { new MemoryStream() }), 0));
        Assert.Equal("TypeError", FakePython.Error?.Type);
        FakePython.Error = null;
    }

    [Fact]
    public void The_item_without_a_check_is_the_object_itself()
    {
        nint item = ((delegate* unmanaged<nint, int, nint>)Entry.Address(
            "SiApiArray", "SqGetItemNoCheck"))(Own(new[] { "a", "b" }), 1);
        Assert.Equal("b", FakePython.Take(item));
    }

    [Theory]
    [InlineData("SiApiCntList", "SqSetItemNoCheck")]
    [InlineData("SiApiArray", "SqSetItemNoChek")]
    [InlineData("SiApiArrayList", "SqSetItemNoChek")]
    public void The_unchecked_setter_has_two_spellings(string type, string method)
    {
        var items = new object[2];
        VariantArg argument = Value("x");
        nint self = Own(type == "SiApiArray" ? items : new ArrayList(items));
        ((delegate* unmanaged<nint, int, VariantArg*, void>)Entry.Address(type, method))(
            self, 1, &argument);
        Assert.Equal("x", Handles.Target<IList>(self)[1]);
    }

    [Fact]
    public void A_value_is_fitted_to_the_element_type_of_the_list()
    {
        var bytes = new byte[1];
        Assert.Equal(0, Set("SiApiArray", Own(bytes), 0, 200));
        Assert.Equal(200, bytes[0]);
        Assert.Equal(-1, Set("SiApiArray", Own(bytes), 0, 300));
        Assert.Equal("System.OverflowException", Raised().Type);
        Assert.Equal(-1, Set("SiApiArray", Own(bytes), 0, "x"));
        Assert.Equal("System.InvalidCastException", Raised().Type);
    }

    private sealed class Shorts : System.Collections.ObjectModel.Collection<short>;

    [Fact]
    public void A_value_is_fitted_to_the_elements_of_any_typed_list()
    {
        var shorts = new Shorts { 1 };
        Assert.Equal(0, Set("SiApiCntList", Own(shorts), 0, 200));
        Insert(Own(shorts), 0, 5);
        Assert.Equal([5, 200], shorts);
    }

    [Fact]
    public void Pop_takes_the_last_item_or_the_one_at_an_index()
    {
        var list = new ArrayList { 1, 2, 3, 4 };
        nint self = Own(list);
        Assert.Equal((0, 4), Pop(self));
        Assert.Equal((0, 1), Pop(self, 0));
        Assert.Equal((0, 3), Pop(self, -1));
        Assert.Equal((2, null), Pop(self, 1));
        Assert.Equal((2, null), Pop(self, -2));
        Assert.Equal((0, 2), Pop(self, -1));
        Assert.Equal((1, null), Pop(self, 5));
        Assert.Empty(list);
    }

    [Theory]
    [InlineData(0, new[] { 9, 1, 2 })]
    [InlineData(-1, new[] { 1, 9, 2 })]
    [InlineData(-9, new[] { 9, 1, 2 })]
    [InlineData(9, new[] { 1, 2, 9 })]
    public void Insert_takes_any_index(int index, int[] expected)
    {
        var list = new List<int> { 1, 2 };
        Insert(Own(list), index, 9);
        Assert.Equal(expected, list);
    }

    [Theory]
    [InlineData("SiApiCntList")]
    [InlineData("SiApiArray")]
    public void Index_counts_its_bounds_from_the_end_and_cuts_them(string type)
    {
        nint self = Own(new object[] { 1, 2, 1, 3 });
        Assert.Equal(0, Index(type, self, 1));
        Assert.Equal(2, Index(type, self, 1, 1));
        Assert.Equal(2, Index(type, self, 1, -3));
        Assert.Equal(-1, Index(type, self, 1, 1, 2));
        Assert.Equal(-1, Index(type, self, 3, 0, -1));
        Assert.Equal(3, Index(type, self, 3, -99, 99));
        Assert.Equal(-1, Index(type, self, 7));
    }

    [Fact]
    public void Numbers_are_found_whatever_their_width()
    {
        nint self = Own(new long[] { 5, 6, 5 });
        Assert.Equal(1, With("SiApiArray", "SqContains", self, 6));
        Assert.Equal(2, With("SiApiArray", "CountOf", self, 5.0));
        Assert.Equal(0, With("SiApiArray", "SqContains", self, "5"));
        Assert.Equal(1, With("SiApiCntCollection", "SqContains", self, 6));
        Assert.Equal(2, With("SiApiCntCollection", "CountOf", self, 5));
    }

    [Fact]
    public void Remove_takes_the_first_equal_item()
    {
        var list = new ArrayList { 1, 2, 1 };
        Assert.Equal(1, With("SiApiCntList", "Remove", Own(list), 1));
        Assert.Equal(new object[] { 2, 1 }, list.ToArray());
        Assert.Equal(0, With("SiApiCntList", "Remove", Own(list), 7));
    }

    [Fact]
    public void Removing_outside_is_status_2()
    {
        var list = new ArrayList { 1 };
        var remove = (delegate* unmanaged<nint, int, int>)Entry.Address("SiApiCntList", "RemoveAt");
        Assert.Equal(2, remove(Own(list), 1));
        Assert.Equal(2, remove(Own(list), -1));
        Assert.Equal(0, remove(Own(list), 0));
        Assert.Empty(list);
    }

    [Theory]
    [InlineData(4, 3, -2, new[] { 1, 3 })]
    [InlineData(3, 2, -1, new[] { 0, 1, 4 })]
    [InlineData(0, 3, 2, new[] { 1, 3 })]
    [InlineData(0, 0, -1, new[] { 0, 1, 2, 3, 4 })]
    public void A_slice_is_removed_from_its_highest_index_down(
        int start, int count, int step, int[] expected)
    {
        int[] items = [0, 1, 2, 3, 4];
        foreach (IList list in new IList[] { new List<int>(items), new ArrayList(items) })
        {
            ((delegate* unmanaged<nint, int, int, int, void>)Entry.Address(
                "SiApiCntList", "MpRemoveItems"))(Own(list), start, count, step);
            Assert.Equal(expected, list.Cast<int>());
        }
    }

    [Fact]
    public void A_slice_is_set_from_a_managed_collection_of_its_length_alone()
    {
        var set = (delegate* unmanaged<nint, VariantArg*, int, int, int, int>)Entry.Address(
            "SiApiArray", "MpSetItems");
        var items = new object[] { 0, 1, 2, 3 };
        nint self = Own(items);
        var source = new VariantArg { Value = Own(new[] { 8, 9 }) };
        Assert.Equal(1, set(self, &source, 3, 2, -2));
        Assert.Equal(new object[] { 0, 9, 2, 8 }, items);
        Assert.Equal(0, set(self, &source, 0, 3, 1));
        source.Value = Own("ab");
        Assert.Equal(0, set(self, &source, 0, 2, 1));
        source.Value = self;
        Assert.Equal(1, set(self, &source, 3, 4, -1));
        Assert.Equal(new object[] { 8, 2, 9, 0 }, items);
    }

    [Fact]
    public void A_list_is_extended_by_a_managed_collection_and_by_itself()
    {
        var concat = (delegate* unmanaged<nint, VariantArg*, int>)Entry.Address(
            "SiApiArrayList", "SqInplaceConcat");
        var list = new ArrayList { 1, 2 };
        nint self = Own(list);
        var source = new VariantArg { Value = self };
        Assert.Equal(1, concat(self, &source));
        Assert.Equal(new object[] { 1, 2, 1, 2 }, list.ToArray());
        source.Value = Own(new Sample(1));
        Assert.Equal(0, concat(self, &source));
    }

    [Theory]
    [InlineData(3, new[] { 1, 2, 1, 2, 1, 2 })]
    [InlineData(1, new[] { 1, 2 })]
    [InlineData(0, new int[0])]
    [InlineData(-5, new int[0])]
    public void A_list_is_repeated_in_place(int count, int[] expected)
    {
        var list = new ArrayList { 1, 2 };
        ((delegate* unmanaged<nint, int, void>)Entry.Address("SiApiCntList", "SqInplaceRepeat"))(
            Own(list), count);
        Assert.Equal(expected, list.Cast<int>());
    }

    // Samples of a number are equal in order, whatever their letter.
    private sealed record Tagged(int Number, char Letter) : IComparable
    {
        public int CompareTo(object? obj) => Number.CompareTo(((Tagged)obj!).Number);
    }

    [Theory]
    [InlineData(false, "1a 1b 2a 2b")]
    [InlineData(true, "2a 2b 1a 1b")]
    public void Sorting_keeps_the_order_of_equal_items_backwards_too(bool reverse, string expected)
    {
        Tagged[] items = [new(2, 'a'), new(1, 'a'), new(2, 'b'), new(1, 'b')];
        Sort("SiApiArray", Own(items), reverse);
        Assert.Equal(expected, string.Join(' ', items.Select(i => $"{i.Number}{i.Letter}")));
    }

    [Fact]
    public void Text_is_sorted_by_its_units_and_numbers_by_value()
    {
        var texts = new ArrayList { "b", "B", "a", "\u00E9", "Z" };
        Sort("SiApiArrayList", Own(texts), false);
        Assert.Equal(new object[] { "B", "Z", "a", "b", "\u00E9" }, texts.ToArray());
        var numbers = new ArrayList { 3, 1L, 2.5, (byte)2 };
        Sort("SiApiArrayList", Own(numbers), false);
        Assert.Equal(new object[] { 1L, (byte)2, 2.5, 3 }, numbers.ToArray());
    }

    [Fact]
    public void Items_without_an_order_raise_and_stay_as_they_were()
    {
        var list = new ArrayList { 2, "a", 1 };
        Sort("SiApiArrayList", Own(list), false);
        Assert.Equal("System.InvalidOperationException", Raised().Type);
        Assert.Equal(new object[] { 2, "a", 1 }, list.ToArray());
    }

    [Fact]
    public void An_array_refuses_to_grow()
    {
        Insert(Own(new int[1]), 0, 5);
        Assert.Equal("System.NotSupportedException", Raised().Type);
    }

    [Fact]
    public void Room_is_made_ahead()
    {
        var list = new ArrayList();
        int room = ((delegate* unmanaged<nint, int, int>)Entry.Address(
            "SiApiArrayList", "EnsureCapacity"))(Own(list), 100);
        Assert.True(room >= 100 && list.Capacity >= 100);
    }

    [Fact]
    public void An_enumerator_gives_items_until_its_end_and_then_the_end_again()
    {
        PyObjectOutArg made;
        int status = ((delegate* unmanaged<nint, PyObjectOutArg*, int>)Entry.Address(
            "SiApiEnumerable", "GetEnumerator"))(Own(new[] { 1, 2 }), &made);
        Assert.Equal(0, status);
        var next = (delegate* unmanaged<nint, nint*, int>)Entry.Address(
            "SiApiEnumerator", "MoveNext");
        nint item;
        Assert.Equal(0, next(made.Handle, &item));
        Assert.Equal(1, FakePython.Take(item));
        Assert.Equal(0, next(made.Handle, &item));
        Assert.Equal(2, FakePython.Take(item));
        Assert.Equal((1, (nint)0), (next(made.Handle, &item), item));
        Assert.Equal(1, next(made.Handle, &item));
        Handles.Free(made.Handle);
    }

    private static IEnumerable<int> Breaking()
    {
        yield return 1;
        throw new IOException("broken");
    }

    [Fact]
    public void An_enumerator_that_throws_is_neither_an_item_nor_the_end()
    {
        nint self = Own(Breaking().GetEnumerator());
        var next = (delegate* unmanaged<nint, nint*, int>)Entry.Address(
            "SiApiEnumerator", "MoveNext");
        nint item;
        Assert.Equal(0, next(self, &item));
        FakePython.Release(item);
        Assert.Equal(-1, next(self, &item));
        Assert.Equal(("System.IO.IOException", "broken"), Raised());
    }

    public static TheoryData<string, Type> Assignables => new()
    {
        { "SiApiDisposable", typeof(MemoryStream) },
        { "SiApiEnumerator", typeof(List<int>.Enumerator) },
        { "SiApiEnumerable", typeof(ArrayList) },
        { "SiApiCntCollection", typeof(ArrayList) },
        { "SiApiCntList", typeof(ArrayList) },
    };

    [Theory]
    [MemberData(nameof(Assignables))]
    public void An_interface_takes_what_implements_it(string type, Type implementer)
    {
        var test = (delegate* unmanaged<VariantArg*, byte>)Entry.Address(type, "btp_IsAssignable");
        var cast = (delegate* unmanaged<VariantArg*, nint*, int>)Entry.Address(type, "btp_CastAs");
        var argument = new VariantArg { Value = Own(Activator.CreateInstance(implementer)!) };
        nint result;
        Assert.Equal(1, test(&argument));
        Assert.Equal(1, cast(&argument, &result));
        Handles.Free(result);
        argument.Value = Own("no");
        bool isText = type is "SiApiEnumerable";
        Assert.Equal(isText ? 1 : 0, test(&argument));
        Assert.Equal(isText ? 1 : 0, cast(&argument, &result));
        Handles.Free(result);
    }

    [Theory]
    [InlineData("SiApiArray", typeof(Array))]
    [InlineData("SiApiArrayList", typeof(ArrayList))]
    [InlineData("SiApiCollectionBase", typeof(CollectionBase))]
    [InlineData("SiApiReadOnlyCollectionBase", typeof(ReadOnlyCollectionBase))]
    [InlineData("SiApiStream", typeof(Stream))]
    public void A_class_has_its_cast_protocol(string type, Type expected)
    {
        nint result;
        Assert.Equal(1, ((delegate* unmanaged<nint*, int>)Entry.Address(
            type, "btp_TypeOf"))(&result));
        Assert.Same(expected, Handles.Target<Type>(result));
        Handles.Free(result);

        var none = new VariantArg { Kind = 99 };
        Assert.Equal(1, ((delegate* unmanaged<VariantArg*, nint*, int>)Entry.Address(
            type, "btp_CastTo"))(&none, &result));
        Assert.Equal(0, result);

        nint other = Own(new Sample(1));
        Assert.Equal(0, ((delegate* unmanaged<nint, byte>)Entry.Address(
            type, "btp_IsAssignable"))(other));
        Assert.Equal(0, ((delegate* unmanaged<nint, nint*, int>)Entry.Address(
            type, "btp_CastAs"))(other, &result));
        Assert.Equal(0, ((delegate* unmanaged<nint, nint*, int>)Entry.Address(
            type, "btp_ReInterpretObj"))(other, &result));
        Assert.Equal("System.InvalidCastException", Raised().Type);
    }
}
