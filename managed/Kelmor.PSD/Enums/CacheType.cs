// Where large data are kept.
namespace Kelmor.PSD;

/// <summary>Where large data are kept.</summary>
public enum CacheType
{
    /// <summary>Memory first, then the disk.</summary>
    Auto = 0,

    /// <summary>Files in the cache folder.</summary>
    CacheOnDiskOnly = 1,

    /// <summary>Memory alone.</summary>
    CacheInMemoryOnly = 2,
}
