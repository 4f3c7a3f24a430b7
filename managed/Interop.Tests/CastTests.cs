// The cast protocol of classes, structs and enumerations.
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class CastTests : TestBase
{
    private struct Celsius
    {
        public double Degrees { get; init; }

        public static explicit operator Fahrenheit(Celsius value) =>
            new() { Degrees = (value.Degrees * 9 / 5) + 32 };
    }

    private struct Fahrenheit
    {
        public double Degrees { get; init; }
    }

    [Fact]
    public void A_successful_cast_has_a_handle_of_its_own()
    {
        var stream = new MemoryStream();
        nint self = Own(stream);
        nint result;
        Assert.Equal(1, Casts.CastAs<Stream>(self, &result));
        Assert.NotEqual(self, result);
        Assert.Same(stream, Handles.Target<Stream>(result));
        Handles.Free(result);
        Assert.Equal(0, Casts.CastAs<FileStream>(self, &result));
        Assert.Equal(0, result);
    }

    [Fact]
    public void None_can_be_cast_to_a_class_but_not_to_a_struct()
    {
        var none = new VariantArg { Kind = 55 };
        nint result;
        Assert.Equal((1, (nint)0), (Casts.CastTo<Stream>(&none, &result), result));
        Assert.Equal((0, (nint)0), (Casts.CastToStruct<Spot>(&none, &result), result));
    }

    [Fact]
    public void A_struct_is_cast_to_a_copy()
    {
        nint self = Own(new Spot { X = 1 });
        var argument = new VariantArg { Kind = 1, Value = self };
        nint result;
        Assert.Equal(1, Casts.CastAsVariant<Spot>(&argument, &result));
        Handles.Unbox<Spot>(result).X = 2;
        Assert.Equal(1, Handles.Unbox<Spot>(self).X);
        Handles.Free(result);
    }

    [Fact]
    public void A_wrong_reinterpretation_raises()
    {
        nint result;
        Assert.Equal(0, Casts.ReInterpret<Stream>(Own("text"), &result));
        Assert.Equal("System.InvalidCastException", Raised().Type);
        Assert.Equal(1, Casts.ReInterpret<string>(Own("text"), &result));
        Handles.Free(result);
    }

    [Fact]
    public void An_enumeration_is_cast_to_its_number()
    {
        nint member = Own(DayOfWeek.Friday);
        var argument = new VariantArg { Kind = 1, Value = member };
        int number;
        Assert.Equal((1, 5), (Casts.EnumCastTo<DayOfWeek, int>(&argument, &number), number));
        Assert.Equal((1, 5), (Casts.EnumReInterpret<DayOfWeek, int>(member, &number), number));
        Assert.Equal((0, 0), (Casts.EnumCastAs<DayOfWeek, int>(Own(5), &number), number));
        Assert.Equal(0, Casts.EnumReInterpret<DayOfWeek, int>(Own(5), &number));
        Assert.Equal("System.InvalidCastException", Raised().Type);
        nint boxed;
        Assert.Equal(1, Casts.EnumAsUniEnum<DayOfWeek, int>(5, &boxed));
        Assert.Equal(DayOfWeek.Friday, Handles.Target<object>(boxed));
        Handles.Free(boxed);
        Assert.Equal(1, Casts.EnumGetType<DayOfWeek, int>(5, &boxed));
        Assert.Same(typeof(DayOfWeek), Handles.Target<Type>(boxed));
        Handles.Free(boxed);
    }

    [Fact]
    public void Nothing_is_an_instance_of_a_static_class()
    {
        nint result;
        Assert.Equal(0, Casts.CastAs<NoInstance>(Own("text"), &result));
        Assert.Equal(0, Casts.IsAssignable<NoInstance>(Own("text")));
    }

    [Fact]
    public void An_object_is_cast_from_itself_by_a_conversion_that_its_type_defines()
    {
        nint self = Own(new Celsius { Degrees = 100 });
        nint result;
        Assert.Equal(1, Casts.CastFrom(self, Own(typeof(Fahrenheit)), &result));
        Assert.Equal(212, Handles.Unbox<Fahrenheit>(result).Degrees);
        Handles.Free(result);
        Assert.Equal(1, Casts.CastFrom(self, Own(typeof(Celsius)), &result));
        Handles.Free(result);
        Assert.Equal((0, (nint)0), (Casts.CastFrom(self, Own(typeof(string)), &result), result));
        Assert.Equal(-1, Casts.CastFrom(self, 0, &result));
        Assert.Equal("System.NullReferenceException", Raised().Type);
    }
}
