// Kind of a group.
namespace Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

/// <summary>
/// Kind of a group (Adobe Photoshop File Formats Specification, Section divider setting).
/// </summary>
public enum LayerSectionSubtype
{
    Normal = 0,

    /// <summary>Scene group that affects the animation timeline.</summary>
    SceneGroup = 1,
}
