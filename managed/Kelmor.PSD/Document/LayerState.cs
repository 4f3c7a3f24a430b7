// The selected layer of a document (resource 1024, layer state information).
using System.Buffers.Binary;
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.FileFormats.Psd.Resources;

namespace Kelmor.PSD.FileFormats.Psd;

internal static class LayerState
{
    private const short Id = 1024;

    public static Layer? Selected(PsdFile file)
    {
        if (Find(file) is not { DataSize: >= 2 } state)
        {
            return file.Layers.Layers.LastOrDefault();
        }
        var index = BinaryPrimitives.ReadUInt16BigEndian(state.Data.Span);
        return index < file.Layers.Layers.Count ? file.Layers.Layers[index] : null;
    }

    public static void Select(PsdFile file, Layer? layer)
    {
        var index = layer is null ? -1 : file.Layers.Layers.IndexOf(layer);
        if (index < 0)
        {
            throw new PsdImageArgumentException("The layer does not belong to this document.");
        }
        if (Find(file) is { } state)
        {
            state.Data = Stored(index);
        }
        else
        {
            file.Resources.Add(
                new UnknownResource(ResourceBlock.DefaultSignature, Id, default, Stored(index))
            );
        }
    }

    /// <summary>
    /// Follows the selected layer to its new place; when it is gone, the top layer is selected.
    /// </summary>
    public static void Keep(PsdFile file, Layer? selected)
    {
        var layers = file.Layers.Layers;
        if (Find(file) is { } state && layers.Count > 0)
        {
            var index = selected is null ? -1 : layers.IndexOf(selected);
            state.Data = Stored(index < 0 ? layers.Count - 1 : index);
        }
    }

    private static ResourceBlock? Find(PsdFile file) =>
        file.Resources.Find(resource => resource.ID == Id);

    private static byte[] Stored(int index)
    {
        var data = new byte[2];
        BinaryPrimitives.WriteUInt16BigEndian(data, (ushort)index);
        return data;
    }
}
