// Collection and stream arguments: managed ones as themselves, Python ones behind adapters.
using System.Collections;
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class ArgumentTests : TestBase
{
    private delegate object? Reader(VariantArg* argument);

    private static object? Read(Reader reader, int kind, nint value)
    {
        var argument = new VariantArg { Kind = kind, Value = value };
        return reader(&argument);
    }

    [Fact]
    public void A_managed_object_is_lent_as_itself_and_none_is_null()
    {
        (object Target, Reader Reader)[] cases =
        [
            (new ArrayList(), a => Args.List(a)),
            (new List<int>(), a => Args.List<int>(a)),
            (new Queue<int>(), a => Args.Collection(a)),
            (new Queue<int>(), a => Args.Enumerable(a)),
            (new Queue<int>(), a => Args.Enumerable<int>(a)),
            (new int[1].GetEnumerator(), a => Args.Enumerator(a)),
            (((IEnumerable<int>)new int[1]).GetEnumerator(), a => Args.Enumerator<int>(a)),
            (new int[1], a => Args.Array<int>(a)),
            (new int[1], a => Args.Array(a)),
            (new List<int>(), a => Args.GenericList<int>(a)),
            (new ArrayList(), a => Args.ArrayList(a)),
            (new PyCollectionBase([]), a => Args.CollectionBase(a)),
            (new PyReadOnlyCollectionBase([]), a => Args.ReadOnlyCollectionBase(a)),
            (new MemoryStream(), a => Args.Stream(a)),
        ];
        foreach ((object target, Reader reader) in cases)
        {
            Assert.Same(target, Read(reader, 0, Own(target)));
            Assert.Null(Read(reader, 0, 0));
        }
    }

    [Fact]
    public void An_object_of_another_class_is_refused()
    {
        nint text = Own(new Version());
        Reader[] readers = [a => Args.List(a), a => Args.Array<int>(a), a => Args.Stream(a)];
        foreach (Reader reader in readers)
        {
            Assert.Throws<InvalidCastException>(() => Read(reader, 0, text));
        }
    }

    [Fact]
    public void A_python_sequence_is_a_typed_list_that_cannot_be_changed()
    {
        nint python = FakePython.NewTuple(1, 2, 1);
        var list = (IList<short>)Read(a => Args.List<short>(a), 3, python)!;
        Assert.Equal([1, 2, 1], list.ToArray());
        Assert.Equal((3, 1, true, false), (list.Count, list.IndexOf(2), list.Contains(2),
            list.Contains(7)));
        short[] copy = new short[4];
        list.CopyTo(copy, 1);
        Assert.Equal([0, 1, 2, 1], copy);
        foreach (int outside in new[] { -1, 3 })
        {
            Assert.Throws<ArgumentOutOfRangeException>(() => list[outside]);
        }
        Assert.True(list.IsReadOnly);
        Assert.Throws<NotSupportedException>(() => list.Add(1));
        Assert.Throws<NotSupportedException>(() => list.Remove(1));
        Assert.Throws<NotSupportedException>(() => list.Insert(0, 1));
        Assert.Throws<NotSupportedException>(() => list[0] = 1);
        Assert.Throws<NotSupportedException>(list.Clear);
        FakePython.Release(python);
    }

    [Fact]
    public void An_untyped_sequence_refuses_every_change()
    {
        nint python = FakePython.NewTuple(1);
        var list = (IList)Read(a => Args.List(a), 3, python)!;
        Action[] changes =
        [
            () => list.Insert(0, 1), () => list.Remove(1), () => list.RemoveAt(0), list.Clear,
        ];
        Assert.All(changes, change => Assert.Throws<NotSupportedException>(change));
        Assert.Equal([1], FakePython.Items(python));
        FakePython.Release(python);
    }

    [Fact]
    public void An_enumerator_holds_the_iterator_until_it_is_disposed_of()
    {
        nint python = FakePython.NewTuple(1, 2.0);
        Reader[] readers = [a => Args.Enumerator(a), a => Args.Enumerator<double>(a)];
        foreach (Reader reader in readers)
        {
            FakePython.Retain(python);
            nint iterator = FakePython.New(new FakeIterator(python));
            var walk = (IEnumerator)Read(reader, 2, iterator)!;
            Assert.Equal(2, FakePython.Refs(iterator));
            Assert.True(walk.MoveNext());
            Assert.Equal(1, walk.Current);
            ((IDisposable)walk).Dispose();
            Assert.Equal(1, FakePython.Refs(iterator));
            Assert.Throws<InvalidOperationException>(() => walk.Current);
            Assert.False(walk.MoveNext());
            ((IDisposable)walk).Dispose();
            FakePython.Release(iterator);
        }
        FakePython.Release(python);
    }

    [Fact]
    public void A_typed_enumerator_fits_its_elements()
    {
        nint python = FakePython.NewTuple(1, "x");
        FakePython.Retain(python);
        nint iterator = FakePython.New(new FakeIterator(python));
        var walk = (IEnumerator<double>)Read(a => Args.Enumerator<double>(a), 2, iterator)!;
        Assert.True(walk.MoveNext());
        Assert.Equal(1.0, walk.Current);
        Assert.True(walk.MoveNext());
        Assert.Throws<InvalidCastException>(() => walk.Current);
        walk.Dispose();
        FakePython.Release(iterator);
        FakePython.Release(python);
    }

    [Theory]
    [InlineData(false)]
    [InlineData(true)]
    public void A_stream_argument_is_closed_by_its_owner_alone(bool owned)
    {
        var file = new FakeFile();
        nint python = FakePython.New(file);
        ((Stream)Read(a => Args.Stream(a, owned), 2, python)!).Dispose();
        Assert.Equal(owned, file.Closed);
        FakePython.Release(python);
    }

    [Fact]
    public void None_is_null_in_a_list_of_texts_and_no_value_in_one_of_structs()
    {
        nint python = FakePython.NewList("a", typeof(void), "");
        IEnumerable<string?> texts = ["a", null, ""];
        Assert.Equal(texts, (string?[])Read(a => Args.Array<string?>(a), 2, python)!);
        FakePython.Release(python);
        python = FakePython.NewList(new FakeWrapper(0, IsStruct: true));
        Assert.Throws<NullReferenceException>(() => Read(a => Args.Array<Spot>(a), 2, python));
        FakePython.Release(python);
    }

    [Theory]
    [InlineData(2)]
    [InlineData(3)]
    public void A_length_that_cannot_be_told_is_pythons_own_error(int kind)
    {
        nint python = FakePython.New("no length");
        Reader[] readers = [a => Args.Array<short>(a), a => Args.Array<double>(a)];
        foreach (Reader reader in readers)
        {
            PythonException error =
                Assert.Throws<PythonException>(() => Read(reader, kind, python));
            Assert.Equal("TypeError: no length", error.Message);
        }
        Reader list = a => Args.List(a);
        PythonException counted = Assert.Throws<PythonException>(
            () => ((IList)Read(list, kind, python)!).Count);
        Assert.Equal("TypeError: no length", counted.Message);
        FakePython.Release(python);
    }
}
