// Placeholder until next step
using Kelmor.PSD.ImageOptions;
namespace Kelmor.PSD.Codecs;
internal static class PngExport
{
    public static void Save(RasterImage image, Stream stream, PngOptions options, Rectangle area) => throw NotYet.Member();
}
