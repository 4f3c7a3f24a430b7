// An enumeration with a gap, and flags.
namespace Kelmor.Harness;

/// <summary>Underlying type int.</summary>
public enum Shade { Dark = -2, Middle = 0, Light = 7 }

/// <summary>Flags of underlying type int.</summary>
[Flags]
public enum Marks { None = 0, Bold = 1, Italic = 2, Both = 3, Underlined = 4 }

/// <summary>Enumeration values, in and out.</summary>
public static class Enums
{
    /// <summary>The member itself.</summary>
    public static Shade EchoShade(Shade value) => value;

    /// <summary>The combination itself.</summary>
    public static Marks EchoMarks(Marks value) => value;

    /// <summary>A value that has no member of its own.</summary>
    public static Shade UnknownShade() => (Shade)99;
}
