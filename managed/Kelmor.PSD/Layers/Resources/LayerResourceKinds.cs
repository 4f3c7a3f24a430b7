// Which class stands for which tagged block.
using Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

internal static class LayerResourceKinds
{
    private delegate LayerResource Maker(uint signature, uint key, ReadOnlyMemory<byte> data);

    private static readonly Dictionary<uint, Maker> Makers = new()
    {
        [TaggedBlocks.Code("clbl")] = (signature, key, data) =>
            new ClblResource(signature, key, data),
        [TaggedBlocks.Code("infx")] = (signature, key, data) =>
            new InfxResource(signature, key, data),
        [TaggedBlocks.Code("iOpa")] = (signature, key, data) =>
            new IopaResource(signature, key, data),
        [TaggedBlocks.Code("knko")] = (signature, key, data) =>
            new KnkoResource(signature, key, data),
        [TaggedBlocks.Code("lclr")] = (signature, key, data) =>
            new LclrResource(signature, key, data),
        [TaggedBlocks.Code("lsct")] = (signature, key, data) =>
            new LayerSectionResource(signature, key, data),
        [TaggedBlocks.Code("lsdk")] = (signature, key, data) =>
            new LayerSectionResource(signature, key, data),
        [TaggedBlocks.Code("lspf")] = (signature, key, data) =>
            new LspfResource(signature, key, data),
        [TaggedBlocks.Code("luni")] = (signature, key, data) =>
            new LuniResource(signature, key, data),
        [TaggedBlocks.Code("lyid")] = (signature, key, data) =>
            new LyidResource(signature, key, data),
    };

    /// <summary>The block as the class that understands it, else as an unknown one.</summary>
    /// <param name="signature">"8BIM" or "8B64".</param>
    /// <param name="key">Four letters.</param>
    /// <param name="data">The content.</param>
    /// <param name="raw">The whole block as read.</param>
    public static LayerResource Create(
        uint signature,
        uint key,
        ReadOnlyMemory<byte> data,
        ReadOnlyMemory<byte> raw
    )
    {
        var block = Makers.TryGetValue(key, out var make)
            ? make(signature, key, data)
            : new UnknownResource(signature, key, data);
        block.Raw = raw;
        return block;
    }
}
