// The separable blend modes: one channel of the layer and of what lies below, each 0 to 1.
using Kelmor.PSD.FileFormats.Core.Blending;

namespace Kelmor.PSD.Rendering;

/// <summary>
/// Blend modes as PDF 32000-1:2008, 11.3.5 has them, and those of layered documents beyond.
/// </summary>
internal static class BlendFunctions
{
    public delegate float Function(float below, float layer);

    private static readonly Dictionary<BlendMode, Function> Functions = new()
    {
        [BlendMode.Normal] = (below, layer) => layer,
        [BlendMode.Darken] = MathF.Min,
        [BlendMode.Lighten] = MathF.Max,
        [BlendMode.Multiply] = (below, layer) => below * layer,
        [BlendMode.Screen] = Screen,
        [BlendMode.Overlay] = (below, layer) => HardLight(layer, below),
        [BlendMode.HardLight] = HardLight,
        [BlendMode.SoftLight] = SoftLight,
        [BlendMode.ColorDodge] = Dodge,
        [BlendMode.ColorBurn] = Burn,
        [BlendMode.LinearDodge] = (below, layer) => MathF.Min(1, below + layer),
        [BlendMode.LinearBurn] = (below, layer) => MathF.Max(0, below + layer - 1),
        [BlendMode.LinearLight] = (below, layer) => Math.Clamp(below + 2 * layer - 1, 0, 1),
        [BlendMode.VividLight] = (below, layer) =>
            layer <= 0.5f ? Burn(below, 2 * layer) : Dodge(below, 2 * layer - 1),
        [BlendMode.PinLight] = (below, layer) =>
            layer <= 0.5f ? MathF.Min(below, 2 * layer) : MathF.Max(below, 2 * layer - 1),
        [BlendMode.HardMix] = (below, layer) => below + layer >= 1 ? 1 : 0,
        [BlendMode.Difference] = (below, layer) => MathF.Abs(below - layer),
        [BlendMode.Exclusion] = (below, layer) => below + layer - 2 * below * layer,
        [BlendMode.Subtract] = (below, layer) => MathF.Max(0, below - layer),
        [BlendMode.Divide] = (below, layer) => layer <= below ? 1 : below / layer,
    };

    public static bool Has(BlendMode mode) => Functions.ContainsKey(mode);

    /// <summary>The function of a mode; that of Normal for one that is not known.</summary>
    public static Function Of(BlendMode mode) =>
        Functions.GetValueOrDefault(mode, Functions[BlendMode.Normal]);

    private static float Screen(float below, float layer) => below + layer - below * layer;

    private static float HardLight(float below, float layer) =>
        layer <= 0.5f ? below * 2 * layer : Screen(below, 2 * layer - 1);

    private static float SoftLight(float below, float layer)
    {
        if (layer <= 0.5f)
        {
            return below - (1 - 2 * layer) * below * (1 - below);
        }
        return below + (2 * layer - 1) * (MathF.Sqrt(below) - below);
    }

    private static float Dodge(float below, float layer) =>
        below == 0 ? 0
        : layer >= 1 ? 1
        : MathF.Min(1, below / (1 - layer));

    private static float Burn(float below, float layer) =>
        below >= 1 ? 1
        : layer <= 0 ? 0
        : 1 - MathF.Min(1, (1 - below) / layer);
}
