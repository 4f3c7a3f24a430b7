// From fractional to whole pixels; what fits no whole number ends at the nearest one that does.
namespace Kelmor.PSD;

internal static class Rounding
{
    public static int Up(float value) => Cut(MathF.Ceiling(value));

    public static int Nearest(float value) => Cut(MathF.Round(value));

    public static int Cut(float value) =>
        value >= int.MaxValue ? int.MaxValue
        : value <= int.MinValue ? int.MinValue
        : float.IsNaN(value) ? 0
        : (int)value;
}
