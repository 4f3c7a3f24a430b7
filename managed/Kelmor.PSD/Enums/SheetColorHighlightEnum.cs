// Colour mark of a layer in the list of layers.
namespace Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

/// <summary>Colour mark of a layer in the list of layers.</summary>
public enum SheetColorHighlightEnum : short
{
    NoColor = 0,
    Red = 1,
    Orange = 2,
    Yellow = 3,
    Green = 4,
    Blue = 5,
    Violet = 6,
    Gray = 7,
}
