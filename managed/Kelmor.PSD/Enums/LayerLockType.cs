// What of a layer is protected from changes.
namespace Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

/// <summary>
/// What of a layer is protected from changes (Adobe Photoshop File Formats Specification, Protected
/// setting).
/// </summary>
[Flags]
public enum LayerLockType : uint
{
    NotLocked = 0,
    LockTransparentPixels = 1,
    LockImagePixels = 2,
    LockPosition = 4,
    LockAll = 2147483648,
}
