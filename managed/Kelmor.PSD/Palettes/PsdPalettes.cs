// The palette of an indexed document.
namespace Kelmor.PSD
{
    /// <summary>
    /// A palette of a layered document, which may have one entry that means transparent.
    /// </summary>
    public interface IPsdColorPalette : IColorPalette
    {
        /// <summary>Index of the transparent entry, or -1.</summary>
        short TransparentIndex { get; }

        /// <summary>True when one entry means transparent.</summary>
        bool HasTransparentColor { get; }

        /// <summary>The transparent entry.</summary>
        Color TransparentColor { get; }
    }
}

namespace Kelmor.PSD.FileFormats.Psd
{
    /// <summary>
    /// The palette of an indexed document (Adobe Photoshop File Formats Specification, Color Mode
    /// Data Section).
    /// </summary>
    public sealed class PsdColorPalette : ColorPalette, IPsdColorPalette
    {
        /// <summary>A palette from numbers.</summary>
        /// <param name="argb32Entries">0xAARRGGBB each; copied.</param>
        /// <param name="transparentIndex">Index of the transparent entry, or -1.</param>
        public PsdColorPalette(int[] argb32Entries, short transparentIndex)
            : base(argb32Entries) => TransparentIndex = transparentIndex;

        /// <inheritdoc/>
        public short TransparentIndex { get; }

        /// <inheritdoc/>
        public bool HasTransparentColor => TransparentIndex >= 0 && TransparentIndex < EntriesCount;

        /// <inheritdoc/>
        public Color TransparentColor =>
            HasTransparentColor ? GetColor(TransparentIndex) : Color.Empty;
    }
}
