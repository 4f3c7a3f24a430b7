// The cast protocol that every bound type carries, written once for all of them.
using System.Reflection;
using System.Runtime.CompilerServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// Bodies of the "btp_" entries. A status is 1 when the cast succeeded, 0 when it did not, and -1
/// with a Python error; each catches for itself, so that an entry is one call.
/// </summary>
internal static unsafe class Casts
{
    /// <summary>The Type object of a bound type.</summary>
    public static int TypeOf<T>(nint* result) => TypeOf(typeof(T), result);

    /// <summary>The Type object of a bound type that cannot be a type argument.</summary>
    public static int TypeOf(Type type, nint* result)
    {
        *result = 0;
        try
        {
            *result = Handles.Alloc(type);
            return 1;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e, 0);
        }
    }

    /// <summary>A cast; null can be cast to any class.</summary>
    public static int CastTo<T>(VariantArg* value, nint* result) where T : class =>
        value->Value == 0 ? Null(result) : CastAs<T>(value->Value, result);

    /// <summary>A cast to a struct, which null is not.</summary>
    public static int CastToStruct<T>(VariantArg* value, nint* result) where T : struct =>
        CastAsVariant<T>(value, result);

    /// <summary>The "as" of a class: a handle of its own when the object is one.</summary>
    public static int CastAs<T>(nint value, nint* result) where T : class
    {
        *result = 0;
        try
        {
            if (Handles.Optional<object>(value) is not T target)
            {
                return 0;
            }
            *result = Handles.Alloc(target);
            return 1;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    /// <summary>The "as" of an interface or struct; a struct is copied.</summary>
    public static int CastAsVariant<T>(VariantArg* value, nint* result)
    {
        *result = 0;
        try
        {
            if (Handles.Optional<object>(value->Value) is not T target)
            {
                return 0;
            }
            *result = Handles.Alloc(RuntimeHelpers.GetObjectValue(target));
            return 1;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    /// <summary>
    /// An object as another type: itself when it is one, else through a conversion operator that
    /// one of the two types defines.
    /// </summary>
    public static int CastFrom(nint self, nint type, nint* result)
    {
        *result = 0;
        try
        {
            Bridge.Enter();
            object target = Handles.Target<object>(self);
            Type wanted = Handles.Target<Type>(type);
            object? converted = wanted.IsInstanceOfType(target)
                ? RuntimeHelpers.GetObjectValue(target)
                : Conversion(target.GetType(), wanted)?.Invoke(null, [target]);
            *result = Handles.Alloc(converted);
            return converted is null ? 0 : 1;
        }
        catch (TargetInvocationException e)
        {
            return Bridge.Fail(e.InnerException ?? e);
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    /// <summary>The same object as another class; here a wrong one is an error.</summary>
    public static int ReInterpret<T>(nint value, nint* result)
    {
        *result = 0;
        try
        {
            object? target = Handles.Optional<object>(value);
            *result = target is null or T
                ? Handles.Alloc(RuntimeHelpers.GetObjectValue(target))
                : throw NotA(target, typeof(T));
            return 1;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e, 0);
        }
    }

    /// <summary>Whether a class parameter takes the object.</summary>
    public static byte IsAssignable<T>(nint value)
    {
        try
        {
            return Handles.Optional<object>(value) is T ? (byte)1 : (byte)0;
        }
        catch (Exception e)
        {
            return Bridge.Raise<byte>(e);
        }
    }

    /// <summary>Whether an interface or struct parameter takes the object.</summary>
    public static byte IsAssignableVariant<T>(VariantArg* value) => IsAssignable<T>(value->Value);

    /// <summary>A cast to an enumeration, whose result is its number.</summary>
    public static int EnumCastTo<T, TNumber>(VariantArg* value, TNumber* result)
        where T : struct, Enum where TNumber : unmanaged =>
        EnumCastAs<T, TNumber>(value->Value, result);

    /// <summary>The "as" of an enumeration.</summary>
    public static int EnumCastAs<T, TNumber>(nint value, TNumber* result)
        where T : struct, Enum where TNumber : unmanaged
    {
        *result = default;
        try
        {
            if (Handles.Optional<object>(value) is not T member)
            {
                return 0;
            }
            *result = Unsafe.BitCast<T, TNumber>(member);
            return 1;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    /// <summary>The number of a boxed member; here another object is an error.</summary>
    public static int EnumReInterpret<T, TNumber>(nint value, TNumber* result)
        where T : struct, Enum where TNumber : unmanaged
    {
        *result = default;
        try
        {
            object? target = Handles.Optional<object>(value);
            *result = target is T member
                ? Unsafe.BitCast<T, TNumber>(member)
                : throw NotA(target, typeof(T));
            return 1;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e, 0);
        }
    }

    /// <summary>A member boxed as System.Enum.</summary>
    public static int EnumAsUniEnum<T, TNumber>(TNumber value, nint* result)
        where T : struct, Enum where TNumber : unmanaged
    {
        *result = 0;
        try
        {
            *result = Handles.Alloc(Unsafe.BitCast<TNumber, T>(value));
            return 1;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e, 0);
        }
    }

    /// <summary>The Type object of a member's enumeration.</summary>
    public static int EnumGetType<T, TNumber>(TNumber value, nint* result)
        where T : struct, Enum where TNumber : unmanaged
    {
        _ = value;
        return TypeOf<T>(result);
    }

    private static MethodInfo? Conversion(Type from, Type to) =>
        Operators(from).Concat(Operators(to)).FirstOrDefault(method => method.ReturnType == to
            && method.GetParameters() is [{ } parameter]
            && parameter.ParameterType.IsAssignableFrom(from));

    private static IEnumerable<MethodInfo> Operators(Type type) =>
        type.GetMethods(BindingFlags.Public | BindingFlags.Static | BindingFlags.FlattenHierarchy)
            .Where(method => method.Name is "op_Implicit" or "op_Explicit");

    private static int Null(nint* result)
    {
        *result = 0;
        return 1;
    }

    private static InvalidCastException NotA(object? target, Type type) =>
        new($"Unable to cast object of type '{target?.GetType()}' to type '{type}'.");
}

/// <summary>
/// Stands for a static class where a type of objects is asked for: nothing is one.
/// </summary>
internal sealed class NoInstance
{
    private NoInstance()
    {
    }
}
