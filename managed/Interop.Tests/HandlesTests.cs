// Handles: made, read, freed and counted.
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class HandlesTests : TestBase
{
    [Fact]
    public void The_count_of_live_handles_follows_every_handle()
    {
        long before = Handles.Live;
        nint first = Handles.Alloc("a");
        nint second = Handles.Alloc("a");
        Assert.NotEqual(first, second);
        Assert.Equal(before + 2, Handles.Live);
        Handles.Free(first);
        Handles.Free(second);
        Assert.Equal(before, Handles.Live);
    }

    [Fact]
    public void All_assemblies_of_a_process_count_in_one_place()
    {
        nint place = Assert.IsType<nint>(AppContext.GetData("Kelmor.Interop.LiveHandles"));
        Assert.Equal(Handles.Live, *(long*)place);
        Own("one more");
        Assert.Equal(Handles.Live, *(long*)place);
    }

    [Fact]
    public void Null_has_no_handle()
    {
        long before = Handles.Live;
        Assert.Equal(0, Handles.Alloc(null));
        Handles.Free(0);
        Assert.Equal(before, Handles.Live);
        Assert.Null(Handles.Optional<string>(0));
    }

    [Fact]
    public void A_null_self_raises_and_does_not_crash()
    {
        string words = "object has not been constructed: its handle is null.";
        Assert.Equal("The String " + words,
            Assert.Throws<NullReferenceException>(() => Handles.Target<string>(0)).Message);
        Assert.Equal("The Spot " + words,
            Assert.Throws<NullReferenceException>(() => Handles.Unbox<Spot>(0)).Message);
    }

    [Fact]
    public void An_object_of_another_type_is_refused()
    {
        nint handle = Own("text");
        Assert.Equal(
            "Unable to cast object of type 'System.String' to type 'System.IO.Stream'.",
            Assert.Throws<InvalidCastException>(() => Handles.Target<Stream>(handle)).Message);
        Assert.Throws<InvalidCastException>(() => Handles.Optional<Stream>(handle));
        Assert.Throws<InvalidCastException>(() => Handles.Unbox<Spot>(handle));
    }

    [Fact]
    public void A_struct_is_changed_in_its_box()
    {
        nint handle = Own(new Spot { X = 1 });
        Handles.Unbox<Spot>(handle).X = 5;
        Assert.Equal(5, Handles.Unbox<Spot>(handle).X);
    }

    [Fact]
    public void A_boxed_struct_has_its_handle_back_under_a_new_name()
    {
        nint handle = Handles.Alloc(new Spot { X = 3 });
        long live = Handles.Live;
        nint boxed = ((delegate* unmanaged<nint, nint>)Entry.Address(
            "ExchangeHost", "BoxStcTarget"))(handle);
        Assert.Equal(live, Handles.Live);
        Assert.Equal(3, Handles.Unbox<Spot>(boxed).X);
        Handles.Free(boxed);
    }

    [Fact]
    public void Pending_arguments_free_handles_and_leave_lent_objects()
    {
        nint lent = FakePython.New("lent");
        VariantArg* arguments = stackalloc VariantArg[3];
        arguments[0] = new VariantArg { Kind = 1, Value = Handles.Alloc("o") };
        arguments[1] = new VariantArg { Kind = 3, Value = lent };
        arguments[2] = new VariantArg { Kind = 2, Value = Handles.Alloc(new Spot()) };
        ((delegate* unmanaged<VariantArg*, int, void>)Entry.Address(
            "ExchangeHost", "FreePendingArgs"))(arguments, 3);
        Assert.Equal((0, (nint)0), (arguments[0].Kind, arguments[0].Value));
        Assert.Equal((3, lent), (arguments[1].Kind, arguments[1].Value));
        Assert.Equal((0, (nint)0), (arguments[2].Kind, arguments[2].Value));
        Assert.Equal(1, FakePython.Refs(lent));
        FakePython.Release(lent);
    }
}
