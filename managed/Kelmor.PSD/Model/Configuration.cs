// Settings of the whole process.
namespace Kelmor.PSD
{
    /// <summary>Where large data are kept.</summary>
    public static class Cache
    {
        /// <summary>Bytes that are kept on disk now.</summary>
        public static long AllocatedDiskBytesCount => 0;

        /// <summary>Bytes that are kept in memory now, the runtime's own included.</summary>
        public static long AllocatedMemoryBytesCount => GC.GetTotalMemory(false);

        /// <summary>Folder for data that do not fit into memory.</summary>
        public static string CacheFolder { get; set; } = Path.GetTempPath();

        /// <summary>Where data are kept.</summary>
        public static CacheType CacheType { get; set; } = CacheType.Auto;

        /// <summary>True: no more is allocated than is asked for.</summary>
        public static bool ExactReallocateOnly { get; set; }

        /// <summary>Most bytes on disk; 0 for no limit.</summary>
        public static long MaxDiskSpaceForCache { get; set; }

        /// <summary>Most bytes in memory; 0 for no limit.</summary>
        public static long MaxMemoryForCache { get; set; }

        /// <summary>Puts every setting back to its default.</summary>
        public static void SetDefaults()
        {
            CacheFolder = Path.GetTempPath();
            CacheType = CacheType.Auto;
            ExactReallocateOnly = false;
            MaxDiskSpaceForCache = 0;
            MaxMemoryForCache = 0;
        }
    }

    /// <summary>How fonts are found.</summary>
    public static class FontSettings
    {
        /// <summary>Font that stands in for fonts that are not there.</summary>
        public static string DefaultFontName { get; set; } = "Arial";

        /// <summary>True: the system may choose the font that stands in.</summary>
        public static bool GetSystemAlternativeFont { get; set; } = true;
    }
}

namespace Kelmor.PSD.MemoryManagement
{
    /// <summary>Limits of memory.</summary>
    public static class Configuration
    {
        /// <summary>Largest size of internal buffers in megabytes; 0 for no limit.</summary>
        public static int BufferSizeHint { get; set; }
    }
}
