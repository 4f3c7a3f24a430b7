// Blend modes as files name them.
using Kelmor.PSD.FileFormats.Core.Blending;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

internal static class BlendModes
{
    /// <summary>The mode of a four-letter key; Absent for one that is not known.</summary>
    public static BlendMode Known(int key) =>
        Enum.IsDefined((BlendMode)key) ? (BlendMode)key : BlendMode.Absent;
}
