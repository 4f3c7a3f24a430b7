// Part that a layer record plays in a group.
namespace Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

/// <summary>
/// Part that a layer record plays in a group (Adobe Photoshop File Formats Specification, Section
/// divider setting).
/// </summary>
public enum LayerSectionType
{
    Other = 0,
    OpenFolder = 1,
    ClosedFolder = 2,

    /// <summary>Hidden record at the lower end of a group.</summary>
    BoundingSection = 3,
}
