// Text, hash, equality and type of any object.
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class ObjectHostTests : TestBase
{
    private static bool AreEqual(string entry, nint self, VariantArg other) =>
        ((delegate* unmanaged<nint, VariantArg*, byte>)Entry.Address("ObjectHost", entry))(
            self, &other) != 0;

    [Theory]
    [InlineData("ToStringOfObj")]
    [InlineData("ToStringOfStc")]
    public void Text_is_a_new_str(string entry)
    {
        nint text = 0;
        int status = ((delegate* unmanaged<nint, nint*, int>)Entry.Address("ObjectHost", entry))(
            Own(new Version(1, 2)), &text);
        Assert.Equal(1, status);
        Assert.Equal("1.2", FakePython.Take(text));
    }

    private sealed class Silent(string? text) : MemoryStream
    {
        public override string? ToString() => text;
    }

    [Fact]
    public void An_object_without_a_text_has_the_empty_one()
    {
        nint text = 0;
        Assert.Equal(1, ((delegate* unmanaged<nint, nint*, int>)Entry.Address(
            "ObjectHost", "ToStringOfObj"))(Own(new Silent(null)), &text));
        Assert.Equal("", FakePython.Take(text));
    }

    [Fact]
    public void A_text_that_python_refuses_leaves_its_error()
    {
        nint text = 7;
        Assert.Equal(0, ((delegate* unmanaged<nint, nint*, int>)Entry.Address(
            "ObjectHost", "ToStringOfObj"))(Own(new Silent("\uD800")), &text));
        Assert.Equal((0, "LookupError"), (text, FakePython.Error?.Type));
        FakePython.Error = null;
    }

    [Fact]
    public void The_name_of_a_type_is_a_str_for_python()
    {
        var entry = (delegate* unmanaged<VariantArg*, nint*, int>)Entry.Address(
            "ObjectHost", "GetTypeName");
        nint text = 7;
        var argument = new VariantArg { Kind = 0x5A5A, Value = Own(new Silent(null)) };
        Assert.Equal(1, entry(&argument, &text));
        Assert.Equal("System.IO.MemoryStream", FakePython.Take(text));
        argument.Value = 0;
        Assert.Equal((0, (nint)0), (entry(&argument, &text), text));
        Assert.Equal("System.NullReferenceException", Raised().Type);
    }

    [Theory]
    [InlineData("IsEqualsOfObj")]
    [InlineData("IsEqualsOfStc")]
    public void Equality_is_the_objects_own(string entry)
    {
        nint self = Own(new Sample(4));
        Assert.True(AreEqual(entry, self, new VariantArg { Value = Own(new Sample(4)) }));
        Assert.False(AreEqual(entry, self, new VariantArg { Value = Own(new Sample(5)) }));
    }

    [Fact]
    public void None_is_told_by_the_handle_since_its_kind_is_not_written() =>
        Assert.False(AreEqual(
            "IsEqualsOfObj", Own(new Sample(4)), new VariantArg { Kind = 0x5A5A, Value = 0 }));

    [Theory]
    [InlineData("GetHashOfObj")]
    [InlineData("GetHashOfStc")]
    public void The_hash_is_the_objects_own(string entry)
    {
        var sample = new Sample(9);
        Assert.Equal(sample.GetHashCode(), Entry.Int("ObjectHost", entry, Own(sample)));
    }

    [Theory]
    [InlineData("GetObjType")]
    [InlineData("GetStcType")]
    public void The_type_is_a_handle_of_its_own(string entry)
    {
        nint type = 0;
        int status = ((delegate* unmanaged<nint, nint*, int>)Entry.Address("ObjectHost", entry))(
            Own(new Sample(1)), &type);
        Assert.Equal(1, status);
        Assert.Same(typeof(Sample), Handles.Target<Type>(type));
        Handles.Free(type);
    }

    [Theory]
    [InlineData(typeof(Sample), true)]
    [InlineData(typeof(object), true)]
    [InlineData(typeof(Stream), false)]
    public void An_object_is_of_its_type_and_its_ancestors(Type type, bool expected)
    {
        var argument = new VariantArg { Kind = 1, Value = Own(type) };
        byte answer = ((delegate* unmanaged<nint, VariantArg*, byte>)Entry.Address(
            "ObjectHost", "IsTypeOf"))(Own(new Sample(1)), &argument);
        Assert.Equal(expected, answer != 0);
    }

    [Fact]
    public void Disposing_reaches_the_object()
    {
        var stream = new MemoryStream();
        Entry.Int("ObjectHost", "Dispose", Own(stream));
        Assert.False(stream.CanRead);
    }

    [Fact]
    public void An_object_without_an_end_of_life_is_left_alone() =>
        Entry.Int("ObjectHost", "Dispose", Own(new Sample(1)));

    private static string TypeName(object target)
    {
        nint handle = Handles.Alloc(target);
        nint cell = ((delegate* unmanaged<nint, nint>)Entry.Address(
            "ExchangeHost", "GetTypeName"))(handle);
        Handles.Free(handle);
        return (string)FakePython.Take(cell)!;
    }

    private sealed class Hidden : MemoryStream;

    [Fact]
    public void A_type_has_its_full_name() =>
        Assert.Equal("System.IO.MemoryStream", TypeName(new MemoryStream()));

    [Fact]
    public void A_nested_type_is_joined_to_its_outer_one() => Assert.Equal(
        "System.Environment+SpecialFolder", TypeName(Environment.SpecialFolder.Desktop));

    [Fact]
    public void A_private_type_shows_as_its_public_ancestor() =>
        Assert.Equal("System.IO.MemoryStream", TypeName(new Hidden()));

    [Fact]
    public void A_type_object_is_a_type() => Assert.Equal("System.Type", TypeName(typeof(int)));

    [Fact]
    public void The_name_of_no_object_is_an_error()
    {
        Assert.Equal(0, ((delegate* unmanaged<nint, nint>)Entry.Address(
            "ExchangeHost", "GetTypeName"))(0));
        Assert.Equal("System.NullReferenceException", Raised().Type);
    }
}
