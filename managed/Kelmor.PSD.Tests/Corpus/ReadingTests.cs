// Real documents are read as independent programs read them.
using System.Security.Cryptography;
using System.Text.Json;
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.FileFormats.Psd;
using Kelmor.PSD.FileFormats.Psd.Layers;

namespace Kelmor.PSD.Tests.Corpus;

public class ReadingTests
{
    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void The_header_equals_the_truth(string file)
    {
        var header = CorpusFiles.Truth(file).GetProperty("header");
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        Assert.Equal(header.GetProperty("version").GetInt32(), image.Version);
        Assert.Equal(header.GetProperty("width").GetInt32(), image.Width);
        Assert.Equal(header.GetProperty("height").GetInt32(), image.Height);
        Assert.Equal(header.GetProperty("channels").GetInt32(), image.ChannelsCount);
        Assert.Equal(header.GetProperty("depth").GetInt32(), image.BitsPerChannel);
        Assert.Equal(
            header.GetProperty("color_mode").GetString(),
            image.ColorMode.ToString().ToLowerInvariant()
        );
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void The_resolution_equals_the_truth(string file)
    {
        var resolution = CorpusFiles.Truth(file).GetProperty("resolution");
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        if (
            resolution.ValueKind == JsonValueKind.Object
            && resolution.TryGetProperty("hres", out _)
        )
        {
            Assert.Equal(resolution.GetProperty("hres").GetDouble(), image.HorizontalResolution, 3);
            Assert.Equal(resolution.GetProperty("vres").GetDouble(), image.VerticalResolution, 3);
        }
        else
        {
            Assert.Equal(72, image.HorizontalResolution);
        }
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void The_resources_equal_the_truth(string file)
    {
        var ids = CorpusFiles
            .Truth(file)
            .GetProperty("image_resource_ids")
            .EnumerateArray()
            .Select(id => id.GetInt32());
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        Assert.Equal(
            ids.Order(),
            image.ImageResources.Select(resource => (int)(ushort)resource.ID).Distinct().Order()
        );
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void The_layer_tree_equals_the_truth(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        var truth = CorpusFiles.Truth(file);
        if (!truth.TryGetProperty("layers", out var layers))
        {
            Assert.Empty(image.Layers);
            return;
        }
        if (
            truth.GetProperty("layer_records_in_file") is
            { ValueKind: JsonValueKind.Number } records
        )
        {
            Assert.Equal(records.GetInt32(), image.Layers.Length);
        }
        var roots = image
            .Layers.Where(layer => layer is { Parent: null } and not SectionDividerLayer)
            .ToArray();
        TreeComparison.Equal(layers, roots, groupIsVisible: true);
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void The_samples_of_every_layer_equal_the_truth(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        if (CorpusFiles.Truth(file).TryGetProperty("layers", out var layers))
        {
            var roots = image
                .Layers.Where(layer => layer is { Parent: null } and not SectionDividerLayer)
                .ToArray();
            TreeComparison.SamplesEqual(layers, roots);
        }
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void The_samples_of_the_merged_image_equal_the_truth(string file)
    {
        using var image = (PsdImage)Image.Load(CorpusFiles.PathOf(file));
        var merged = CorpusFiles.Truth(file).GetProperty("merged");
        // Where a reference could not unpack the samples, the pixels are compared instead.
        if (
            merged.GetProperty("channel_raw_sha256") is { ValueKind: JsonValueKind.Array } hashes
            && !CorpusFiles
                .Truth(file)
                .GetProperty("reference_errors")
                .TryGetProperty("psd_tools_1_9_24.merged_raw_error", out _)
        )
        {
            var found = image.File.Merged.Decode().Select(Hash);
            Assert.Equal(hashes.EnumerateArray().Select(hash => hash.GetString()), found);
        }
    }

    [CorpusTheory]
    [ClassData(typeof(DamagedDocuments))]
    public void A_damaged_document_fails_cleanly_or_loads_in_part(string file)
    {
        foreach (var recovery in Enum.GetValues<DataRecoveryMode>())
        {
            try
            {
                using var image = (PsdImage)
                    Image.Load(
                        CorpusFiles.PathOf(file),
                        new LoadOptions { DataRecoveryMode = recovery }
                    );
                image.CacheData();
                Assert.Equal(
                    image.Width * image.Height,
                    image.LoadArgb32Pixels(image.Bounds).Length
                );
            }
            catch (FrameworkException failure)
            {
                Assert.NotEmpty(failure.Message);
            }
        }
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void Its_format_is_found_by_its_first_bytes(string file)
    {
        Assert.True(Image.CanLoad(CorpusFiles.PathOf(file)));
        Assert.Equal(FileFormat.Psd, Image.GetFileFormat(CorpusFiles.PathOf(file)));
    }

    internal static string Hash(byte[] data) => Convert.ToHexStringLower(SHA256.HashData(data));
}
