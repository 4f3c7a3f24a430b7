// Every scalar width, in and out.
namespace Kelmor.Harness;

/// <summary>Gives each scalar back as it came, so that a test sees what crossed.</summary>
public static class Scalars
{
    /// <summary>The value itself.</summary>
    public static bool EchoBool(bool value) => value;

    /// <summary>The value itself.</summary>
    public static sbyte EchoInt8(sbyte value) => value;

    /// <summary>The value itself.</summary>
    public static byte EchoUInt8(byte value) => value;

    /// <summary>The value itself.</summary>
    public static short EchoInt16(short value) => value;

    /// <summary>The value itself.</summary>
    public static ushort EchoUInt16(ushort value) => value;

    /// <summary>The value itself.</summary>
    public static int EchoInt32(int value) => value;

    /// <summary>The value itself.</summary>
    public static uint EchoUInt32(uint value) => value;

    /// <summary>The value itself.</summary>
    public static long EchoInt64(long value) => value;

    /// <summary>The value itself.</summary>
    public static ulong EchoUInt64(ulong value) => value;

    /// <summary>The value itself.</summary>
    public static float EchoSingle(float value) => value;

    /// <summary>The value itself.</summary>
    public static double EchoDouble(double value) => value;

    /// <summary>The value itself.</summary>
    public static char EchoChar(char value) => value;

    /// <summary>The bits of a double, which tell one NaN from another and 0 from -0.</summary>
    public static ulong DoubleBits(double value) => BitConverter.DoubleToUInt64Bits(value);

    /// <summary>The double of these bits.</summary>
    public static double DoubleFromBits(ulong bits) => BitConverter.UInt64BitsToDouble(bits);

    /// <summary>The bits of a single.</summary>
    public static uint SingleBits(float value) => BitConverter.SingleToUInt32Bits(value);

    /// <summary>The single of these bits.</summary>
    public static float SingleFromBits(uint bits) => BitConverter.UInt32BitsToSingle(bits);

    /// <summary>The 16-bit unit of a character.</summary>
    public static ushort CharUnit(char value) => value;

    /// <summary>The character of a 16-bit unit.</summary>
    public static char CharFromUnit(ushort unit) => (char)unit;
}
