// Whether a resource of a document was touched.
namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>Whether a resource of a document was touched.</summary>
public enum ResourceBlockState
{
    Unchanged = 0,
    Changed = 1,
    Removed = 2,
}
