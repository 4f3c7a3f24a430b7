// Enumerations of every width.
namespace Kelmor.Harness;

public enum WidthInt32 { Lowest = int.MinValue, Zero = 0, Highest = int.MaxValue }

public enum WidthUInt8 : byte { Zero = 0, Highest = byte.MaxValue }

public enum WidthInt8 : sbyte { Lowest = sbyte.MinValue, Highest = sbyte.MaxValue }

public enum WidthInt16 : short { Lowest = short.MinValue, Highest = short.MaxValue }

public enum WidthUInt16 : ushort { Zero = 0, Highest = ushort.MaxValue }

public enum WidthUInt32 : uint { Zero = 0, Highest = uint.MaxValue }

public enum WidthInt64 : long { Lowest = long.MinValue, Highest = long.MaxValue }

[Flags]
public enum WidthUInt64 : ulong { None = 0, First = 1, Second = 2, Highest = 0x8000000000000000 }

public class Enumerations
{
    /// <summary>An enumeration inside a class.</summary>
    public enum Nested { None, Some }

    public Nested Choice { get; set; }

    public WidthInt32 EchoInt32(WidthInt32 value) => value;
    public WidthUInt8 EchoUInt8(WidthUInt8 value) => value;
    public WidthInt8 EchoInt8(WidthInt8 value) => value;
    public WidthInt16 EchoInt16(WidthInt16 value) => value;
    public WidthUInt16 EchoUInt16(WidthUInt16 value) => value;
    public WidthUInt32 EchoUInt32(WidthUInt32 value) => value;
    public WidthInt64 EchoInt64(WidthInt64 value) => value;
    public WidthUInt64 EchoUInt64(WidthUInt64 value) => value;
}
