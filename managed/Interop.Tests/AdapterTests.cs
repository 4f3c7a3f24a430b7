// Python lists, sequences and iterators as managed collections.
using System.Collections;
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class AdapterTests : TestBase
{
    private static VariantArg Argument(int kind, nint value) =>
        new() { Kind = kind, Value = value };

    // A list for kind 2, a tuple for kind 3.
    private static nint Items(int kind, params object[] items) =>
        kind == 2 ? FakePython.NewList(items) : FakePython.NewTuple(items);

    [Fact]
    [Trait("behaviour", "collections-reverse.rules.list-live-view")]
    public void A_python_list_is_a_live_view()
    {
        nint python = FakePython.NewList(1, 2);
        VariantArg argument = Argument(2, python);
        IList list = Args.List(&argument)!;
        Assert.Equal(2, list.Count);
        Assert.Equal(2, list.Add(3));
        list[0] = "one";
        list.Insert(1, 1.5);
        list.Remove(2);
        list.Remove("absent");
        list.RemoveAt(list.Count - 1);
        Assert.Equal(new object[] { "one", 1.5 }, FakePython.Items(python));
        Assert.Equal("one", list[0]);
        Assert.Equal((true, false), (list.Contains(1.5), list.Contains(7)));
        Assert.Equal((1, -1), (list.IndexOf(1.5), list.IndexOf(7)));
        ((List<nint>)FakePython.Value(python)).Reverse();
        Assert.Equal(1.5, list[0]);
        list.Clear();
        Assert.Empty(list);
        GC.KeepAlive(list);
        FakePython.Release(python);
    }

    [Theory]
    [InlineData(-1)]
    [InlineData(2)]
    public void An_index_outside_of_a_list_is_an_argument_out_of_range(int index)
    {
        nint python = FakePython.NewList(1, 2);
        var list = new PyList(python);
        Assert.Throws<ArgumentOutOfRangeException>(() => list[index]);
        Assert.Throws<ArgumentOutOfRangeException>(() => list[index] = 1);
        Assert.Throws<ArgumentOutOfRangeException>(() => list.RemoveAt(index));
        Assert.Throws<ArgumentOutOfRangeException>(() => list.Insert(index < 0 ? index : 3, 1));
        Assert.Null(FakePython.Error);
        Assert.Equal(new object[] { 1, 2 }, FakePython.Items(python));
        FakePython.Release(python);
    }

    [Fact]
    public void A_list_that_refuses_is_an_exception_with_its_text_each_time()
    {
        nint python = FakePython.NewList(1, new FakeError("ValueError", "no"));
        int alive = FakePython.Alive;
        var list = new PyList(python);
        IList<short> typed = new PyList<short>(python);
        Action[] uses =
        [
            () => list.Add(2), () => list.Insert(0, 2), () => list.RemoveAt(0), list.Clear,
            () => list.Contains(2), () => list.IndexOf(2), () => list.Remove(2), () => _ = list[1],
            () => typed.Add(2), () => typed.IndexOf(2), () => typed.Remove(2),
        ];
        foreach (Action use in uses)
        {
            Assert.Equal("ValueError: no", Assert.Throws<PythonException>(use).Message);
            Assert.Null(FakePython.Error);
        }
        Assert.Equal((2, alive), (list.Count, FakePython.Alive));
        FakePython.Release(python);
    }

    [Fact]
    public void A_sequence_that_refuses_is_an_exception_with_its_text_each_time()
    {
        nint python = FakePython.NewTuple(1, new FakeError("ValueError", "no"));
        var sequence = new PySequence(python);
        Action[] uses =
        [
            () => sequence.Contains(2), () => sequence.IndexOf(2), () => _ = sequence[1],
        ];
        foreach (Action use in uses)
        {
            Assert.Equal("ValueError: no", Assert.Throws<PythonException>(use).Message);
            Assert.Null(FakePython.Error);
        }
        FakePython.Release(python);
    }

    [Fact]
    public void A_typed_list_takes_no_index_outside()
    {
        nint python = FakePython.NewList(1, 2);
        IList<short> list = new PyList<short>(python);
        foreach (int outside in new[] { -1, 2 })
        {
            Assert.Throws<ArgumentOutOfRangeException>(() => list[outside]);
            Assert.Throws<ArgumentOutOfRangeException>(() => list[outside] = 1);
        }
        list.Insert(1, 9);
        Assert.Equal((1, true, false), (list.IndexOf(9), list.Contains(9), list.Contains(7)));
        Assert.Equal([1, 9, 2], list.AsEnumerable());
        Assert.Null(FakePython.Error);
        FakePython.Release(python);
    }

    [Fact]
    public void The_texts_of_python_stand_in_an_index_error()
    {
        nint python = FakePython.NewList(1);
        var list = new PyList(python);
        Assert.Contains(
            "list index out of range",
            Assert.Throws<ArgumentOutOfRangeException>(() => list[5]).Message);
        FakePython.Release(python);
    }

    [Fact]
    public void No_reference_is_lost_on_any_way_through_a_list()
    {
        nint python = FakePython.NewList(1, "two", 3.0, new byte[] { 4 });
        int alive = FakePython.Alive;
        var list = new PyList(python);
        for (int round = 0; round < 3; round++)
        {
            foreach (object? item in list)
            {
                Assert.NotNull(item);
            }
            _ = list[1];
            list.Contains("two");
            list.IndexOf(9);
            list[0] = round;
            list.Add("x");
            list.RemoveAt(4);
        }
        Assert.Equal(alive, FakePython.Alive);
        FakePython.Release(python);
    }

    [Fact]
    public void A_sequence_is_read_only()
    {
        nint python = FakePython.NewTuple(1, "two");
        VariantArg argument = Argument(3, python);
        IList list = Args.List(&argument)!;
        Assert.True(list.IsReadOnly && list.IsFixedSize);
        Assert.Equal((2, 1, "two"), (list.Count, list[0], list[1]));
        Assert.Equal((true, 1), (list.Contains("two"), list.IndexOf("two")));
        Assert.Throws<NotSupportedException>(() => list.Add(1));
        Assert.Throws<NotSupportedException>(() => list[0] = 1);
        Assert.Throws<ArgumentOutOfRangeException>(() => list[2]);
        Assert.Throws<ArgumentOutOfRangeException>(() => list[-1]);
        Assert.Equal(new object[] { 1, "two" }, list.Cast<object>());
        FakePython.Release(python);
    }

    [Fact]
    public void The_reference_that_an_indexed_read_leaves_with_the_value_is_given_back()
    {
        nint handle = Own(new Sample(3));
        nint wrapper = FakePython.New(new FakeWrapper(handle));
        nint python = FakePython.New(new[] { FakePython.New("text"), wrapper });
        var sequence = new PySequence(python);
        for (int i = 0; i < 5; i++)
        {
            Assert.Equal("text", sequence[0]);
            Assert.Equal(new Sample(3), sequence[1]);
        }
        Assert.Equal(1, FakePython.Refs(wrapper));
        Assert.Equal(1, FakePython.Refs(((nint[])FakePython.Value(python))[0]));
        FakePython.Release(python);
    }

    [Fact]
    public void Of_wrappers_over_one_object_each_gives_its_own_reference_back()
    {
        nint handle = Own(new Spot { X = 3 });
        nint[] wrappers =
        [
            FakePython.New(new FakeWrapper(handle, IsStruct: true)),
            FakePython.New(new FakeWrapper(handle, IsStruct: true)),
            FakePython.New(new FakeWrapper(handle, IsStruct: true)),
        ];
        nint python = FakePython.New(wrappers);
        var sequence = new PySequence(python);
        Assert.Equal(3, ((Spot)sequence[1]!).X);
        Assert.Equal([1, 1, 1], wrappers.Select(FakePython.Refs));
        Assert.Equal(3, ((Spot)sequence[2]!).X);
        Assert.Equal([1, 1, 1], wrappers.Select(FakePython.Refs));
        GC.KeepAlive(sequence);
        FakePython.Release(python);
    }

    [Fact]
    public void A_walk_gives_back_its_iterator_and_each_item()
    {
        nint python = FakePython.NewTuple("a", 1);
        int alive = FakePython.Alive;
        PyIteration.Each(python, item => Assert.NotNull(item));
        Assert.Throws<InvalidCastException>(
            () => PyIteration.Each(python, item => throw new InvalidCastException()));
        Assert.Equal((alive, 1), (FakePython.Alive, FakePython.Refs(python)));
        FakePython.Release(python);
    }

    [Fact]
    public void A_sized_iterable_is_a_collection()
    {
        nint python = FakePython.NewTuple(1, 2, 3);
        VariantArg argument = Argument(2, python);
        ICollection items = Args.Collection(&argument)!;
        Assert.Equal(3, items.Count);
        int[] numbers = new int[4];
        items.CopyTo(numbers, 1);
        Assert.Equal([0, 1, 2, 3], numbers);
        byte[] bytes = new byte[3];
        items.CopyTo(bytes, 0);
        Assert.Equal([1, 2, 3], bytes);
        FakePython.Release(python);
    }

    [Fact]
    public void An_iterable_can_be_walked_again_and_an_iterator_cannot()
    {
        nint python = FakePython.NewTuple(1, 2);
        VariantArg argument = Argument(2, python);
        IEnumerable<int> items = Args.Enumerable<int>(&argument)!;
        Assert.Equal([1, 2], items);
        Assert.Equal([1, 2], items);
        FakePython.Retain(python);
        nint iterator = FakePython.New(new FakeIterator(python));
        argument = Argument(2, iterator);
        IEnumerator walk = Args.Enumerator(&argument)!;
        Assert.Throws<InvalidOperationException>(() => walk.Current);
        Assert.True(walk.MoveNext());
        Assert.Equal(1, walk.Current);
        Assert.Throws<NotSupportedException>(walk.Reset);
        Assert.True(walk.MoveNext());
        Assert.False(walk.MoveNext());
        Assert.False(walk.MoveNext());
        ((IDisposable)walk).Dispose();
        Assert.Equal(1, FakePython.Refs(iterator));
        FakePython.Release(iterator);
        FakePython.Release(python);
    }

    [Fact]
    public void An_iterator_that_raises_is_not_at_its_end()
    {
        nint python = FakePython.NewTuple(1, new FakeError("KeyError", "k"));
        var items = new PyEnumerable(python).GetEnumerator();
        Assert.True(items.MoveNext());
        Assert.Equal(
            "KeyError: k", Assert.Throws<PythonException>(() => items.MoveNext()).Message);
        ((IDisposable)items).Dispose();
        FakePython.Release(python);
    }

    [Fact]
    public void Something_that_cannot_be_walked_raises_pythons_own_words()
    {
        nint python = FakePython.New(5);
        var items = new PyEnumerable(python);
        Assert.Equal(
            "TypeError: No iterator",
            Assert.Throws<PythonException>(() => items.GetEnumerator()).Message);
        FakePython.Release(python);
    }

    [Fact]
    public void A_typed_list_reads_its_elements_in_their_own_form()
    {
        nint python = FakePython.NewList(1, -2, 30000);
        VariantArg argument = Argument(2, python);
        IList<short> list = Args.List<short>(&argument)!;
        Assert.Equal(-2, list[1]);
        list[1] = 7;
        Assert.True(list.Remove(1));
        Assert.False(list.Remove(99));
        list.Add(5);
        Assert.Equal([7, 30000, 5], list.ToArray());
        FakePython.Release(python);
    }

    [Theory]
    [InlineData(2)]
    [InlineData(3)]
    public void An_array_argument_is_a_copy_read_by_the_typed_callbacks(int kind)
    {
        int alive = FakePython.Alive;
        nint python = Items(kind, 1, 2, 3);
        VariantArg argument = Argument(kind, python);
        Assert.Equal([1, 2, 3], Args.Array<short>(&argument)!);
        FakePython.Release(python);

        python = Items(kind, "a", "\U0001F600", "");
        argument = Argument(kind, python);
        Assert.Equal(["a", "\U0001F600", ""], Args.Array<string>(&argument)!);
        FakePython.Release(python);

        var wrapper = new FakeWrapper(Own(new Sample(8)));
        python = Items(kind, wrapper);
        argument = Argument(kind, python);
        Assert.Equal([new Sample(8)], Args.Array<Sample>(&argument)!);
        FakePython.Release(python);
        Assert.Equal(alive, FakePython.Alive);
    }

    [Theory]
    [InlineData(2)]
    [InlineData(3)]
    public void A_refused_element_keeps_the_words_of_its_converter(int kind)
    {
        nint python = Items(kind, 1, 70000);
        PythonException error = Assert.Throws<PythonException>(() => ShortArray(kind, python));
        Assert.Equal("OverflowError: value '70000' is out of the INT16 range", error.Message);
        foreach (nint item in (IList<nint>)FakePython.Value(python))
        {
            Assert.Equal(1, FakePython.Refs(item));
        }
        FakePython.Release(python);
    }

    private static short[]? ShortArray(int kind, nint python)
    {
        VariantArg argument = Argument(kind, python);
        return Args.Array<short>(&argument);
    }

    [Theory]
    [InlineData(2)]
    [InlineData(3)]
    public void Elements_without_a_reader_of_their_own_are_fitted(int kind)
    {
        nint python = Items(kind, 1, 2.5);
        VariantArg argument = Argument(kind, python);
        Assert.Equal([1.0, 2.5], Args.Array<double>(&argument)!);
        Assert.Equal([1, 2.5], Args.Array<object>(&argument)!);
        Assert.Equal([1.0, 2.5], Args.GenericList<double>(&argument)!);
        object[] expected = [1, 2.5];
        Assert.Equal(expected, Args.CollectionBase(&argument)!.Cast<object>());
        Assert.Equal(expected, Args.ReadOnlyCollectionBase(&argument)!.Cast<object>());
        FakePython.Release(python);
    }

    [Fact]
    public void Lists_within_a_list_become_arrays_within_an_array()
    {
        nint python = FakePython.New(
            new List<nint> { FakePython.NewList(1, 2.5), FakePython.NewTuple(3) });
        VariantArg argument = Argument(2, python);
        float[][] rows = Args.Array<float[]>(&argument)!;
        Assert.Equal([1f, 2.5f], rows[0]);
        Assert.Equal([3f], rows[1]);
        FakePython.Release(python);
    }

    [Fact]
    public void An_array_list_over_a_python_list_writes_through()
    {
        nint python = FakePython.NewList(1);
        VariantArg argument = Argument(2, python);
        ArrayList list = Args.ArrayList(&argument)!;
        list.Add("two");
        Assert.Equal(new object[] { 1, "two" }, FakePython.Items(python));
        FakePython.Release(python);
    }

    [Fact]
    public void Two_views_of_one_object_are_equal()
    {
        nint python = FakePython.NewList();
        var first = new PyList(python);
        var second = new PyList(python);
        Assert.Equal(first, second);
        Assert.Equal(first.GetHashCode(), second.GetHashCode());
        nint another = FakePython.NewList();
        Assert.False(first.Equals(new PyList(another)));
        FakePython.Release(another);
        FakePython.Release(python);
    }

    [Theory]
    [InlineData("SiApiCntList", "CreateInstanceFromPyList", typeof(PyList))]
    [InlineData("SiApiArrayList", "CreateInstanceFromPyList", typeof(ArrayList))]
    [InlineData("SiApiArray", "CreateInstanceFromPyList", typeof(object[]))]
    [InlineData("SiApiCollectionBase", "CreateInstanceFromPyList", typeof(CollectionBase))]
    [InlineData(
        "SiApiReadOnlyCollectionBase", "CreateInstanceFromPyList", typeof(ReadOnlyCollectionBase))]
    [InlineData("SiApiCntCollection", "CreateInstanceFromPyIterable", typeof(PyCollection))]
    [InlineData("SiApiEnumerable", "CreateInstanceFromPyIterable", typeof(PyEnumerable))]
    public void An_instance_is_made_of_a_python_object(string type, string method, Type expected)
    {
        nint python = FakePython.NewList(1, 2);
        nint handle = ((delegate* unmanaged<nint, nint>)Entry.Address(type, method))(python);
        object made = Handles.Target<object>(handle);
        Assert.IsAssignableFrom(expected, made);
        Assert.Equal([1, 2], ((IEnumerable)made).Cast<int>());
        Handles.Free(handle);
        FakePython.Release(python);
    }

    [Fact]
    public void Typed_collections_serve_their_elements_unboxed()
    {
        nint self = Own(new short[] { 5, 6, 5 });
        Assert.Equal(3, GenericArrayApi<short>.Length(self));
        Assert.Equal(0, GenericArrayApi<short>.TryGet(self, 1, out short item));
        Assert.Equal(6, item);
        Assert.Equal(2, GenericArrayApi<short>.TryGet(self, 3, out _));
        Assert.Equal(2, GenericArrayApi<short>.TrySet(self, -1, 1));
        Assert.Equal(2, GenericArrayApi<short>.CountOf(self, 5));
        Assert.Equal(2, GenericArrayApi<short>.IndexBy(self, 1, 1, 0, 0, 5));

        nint list = Own(new List<Sample> { new(2), new(1) });
        GenericListApi<Sample>.Add(list, new Sample(0));
        GenericArrayApi<Sample>.Sort(list, 0);
        Assert.Equal(0, GenericListApi<Sample>.Pop(list, 0, 0, out Sample? last));
        Assert.Equal(new Sample(2), last);
        Assert.Equal(1, GenericListApi<Sample>.Remove(list, new Sample(0)));
        Assert.True(GenericListApi<Sample>.EnsureCapacity(list, 50) >= 50);
    }

    [Fact]
    public void A_typed_enumerator_entry_takes_any_enumerator()
    {
        nint untyped = Own(new short[] { 4 }.GetEnumerator());
        Assert.Equal(0, GenericEnumeratorApi<short>.MoveNext(untyped, out short item));
        Assert.Equal(4, item);
        Assert.Equal(1, GenericEnumeratorApi<short>.MoveNext(untyped, out _));
        nint typed = Own(((IEnumerable<short>)[7]).GetEnumerator());
        Assert.Equal(0, GenericEnumeratorApi<short>.MoveNext(typed, out item));
        Assert.Equal(7, item);
    }
}
