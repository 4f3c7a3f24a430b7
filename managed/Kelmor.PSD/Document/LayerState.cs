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
        var state = file.Resources.Find(resource => resource.ID == Id);
        if (state is not { DataSize: >= 2 })
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
        var data = new byte[2];
        BinaryPrimitives.WriteUInt16BigEndian(data, (ushort)index);
        var state = file.Resources.Find(resource => resource.ID == Id);
        if (state is null)
        {
            file.Resources.Add(
                new UnknownResource(ResourceBlock.DefaultSignature, Id, default, data)
            );
        }
        else
        {
            state.Data = data;
        }
    }
}
