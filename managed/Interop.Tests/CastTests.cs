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

    private struct Kelvin
    {
        public double Degrees { get; init; }

        public static implicit operator Kelvin(Celsius value) => value.Degrees < -273.15
            ? throw new ArgumentOutOfRangeException(nameof(value), "too cold")
            : new Kelvin { Degrees = value.Degrees + 273.15 };
    }

    private class Animal;

    private sealed class Dog : Animal;

    private sealed class Label
    {
        public static explicit operator Label(Animal _) => new();
    }

    [Fact]
    public void A_conversion_may_stand_in_the_target_and_take_a_base_class()
    {
        nint result;
        nint cold = Own(new Celsius { Degrees = 0 });
        Assert.Equal(1, Casts.CastFrom(cold, Own(typeof(Kelvin)), &result));
        Assert.Equal(273.15, Handles.Unbox<Kelvin>(result).Degrees);
        Handles.Free(result);
        Assert.Equal(1, Casts.CastFrom(Own(new Dog()), Own(typeof(Label)), &result));
        Assert.IsType<Label>(Handles.Target<object>(result));
        Handles.Free(result);
    }

    [Fact]
    public void What_a_conversion_throws_is_raised_as_it_is()
    {
        nint result = 9;
        nint colder = Own(new Celsius { Degrees = -300 });
        Assert.Equal(-1, Casts.CastFrom(colder, Own(typeof(Kelvin)), &result));
        Assert.Equal(0, result);
        (string? type, string? message) = Raised();
        Assert.Equal("System.ArgumentOutOfRangeException", type);
        Assert.StartsWith("too cold", message);
    }

    [Fact]
    public void A_struct_that_is_cast_to_its_own_type_is_copied()
    {
        nint self = Own(new Spot { X = 1 });
        nint result;
        Assert.Equal(1, Casts.CastFrom(self, Own(typeof(Spot)), &result));
        Handles.Unbox<Spot>(result).X = 2;
        Handles.Free(result);
        Assert.Equal(1, Casts.ReInterpret<Spot>(self, &result));
        Handles.Unbox<Spot>(result).X = 3;
        Handles.Free(result);
        Assert.Equal(1, Handles.Unbox<Spot>(self).X);
    }

    [Fact]
    public void None_is_no_instance_and_is_no_error()
    {
        var none = new VariantArg { Kind = 55 };
        nint result = 9;
        int number = 9;
        Assert.Equal((0, (nint)0), (Casts.CastAs<Stream>(0, &result), result));
        Assert.Equal((0, (nint)0), (Casts.CastAsVariant<Spot>(&none, &result), result));
        Assert.Equal((0, 0), (Casts.EnumCastAs<DayOfWeek, int>(0, &number), number));
        Assert.Equal((0, 0), (Casts.IsAssignable<Stream>(0), Casts.IsAssignable<Spot>(0)));
        result = 9;
        Assert.Equal((1, (nint)0), (Casts.ReInterpret<Stream>(0, &result), result));
        result = 9;
        Assert.Equal((1, (nint)0), (Casts.CastTo<Stream>(&none, &result), result));
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
