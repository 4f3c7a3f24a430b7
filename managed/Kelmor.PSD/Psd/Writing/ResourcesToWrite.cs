// Chooses the image resources of a document that is being saved.
using Kelmor.PSD.FileFormats.Psd.Resources;
using Kelmor.PSD.ImageOptions;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD.FileFormats.Psd.Writing;

/// <summary>
/// The options may bring metadata and a resolution of their own; the document keeps its own.
/// </summary>
internal static class ResourcesToWrite
{
    public static List<ResourceBlock> Of(PsdImage image, PsdOptions options, MergedImage picture)
    {
        var resources = new List<ResourceBlock>(options.Resources ?? [.. image.File.Resources]);
        if (options.XmpData is { } xmp)
        {
            Put(resources, new XmpResource(xmp));
        }
        if (
            (options.UpdateMetadata || image.UpdateXmpData)
            && resources.OfType<XmpResource>().FirstOrDefault() is { } metadata
        )
        {
            Put(resources, new XmpResource(XmpDates.Renewed(metadata.XmpData)));
        }
        if (options.ResolutionSettings is { } resolution)
        {
            Put(
                resources,
                new ResolutionInfoResource
                {
                    HDpi = resolution.HorizontalResolution,
                    VDpi = resolution.VerticalResolution,
                }
            );
        }
        if (picture != image.File.Merged)
        {
            TellRealPicture(resources);
        }
        return resources;
    }

    // A reader that goes by the mark would not look at the picture.
    private static void TellRealPicture(List<ResourceBlock> resources)
    {
        var version = resources.OfType<VersionInfoResource>().FirstOrDefault();
        if (version is { HasRealMergedData: false })
        {
            Put(resources, version.WithRealMergedData());
        }
    }

    private static void Put<T>(List<ResourceBlock> resources, T resource)
        where T : ResourceBlock
    {
        var at = resources.FindIndex(candidate => candidate is T);
        if (at < 0)
        {
            resources.Add(resource);
        }
        else
        {
            resources[at] = resource;
        }
    }
}
