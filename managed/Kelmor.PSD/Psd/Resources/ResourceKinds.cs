// Which class stands for which image resource.
namespace Kelmor.PSD.FileFormats.Psd.Resources;

internal static class ResourceKinds
{
    /// <summary>The resource as the class that understands it, else as an unknown one.</summary>
    public static ResourceBlock Create(
        int signature,
        short id,
        ReadOnlyMemory<byte> name,
        ReadOnlyMemory<byte> data,
        ReadOnlyMemory<byte> raw
    )
    {
        ResourceBlock block = id switch
        {
            ResolutionInfoResource.Id => new ResolutionInfoResource(signature, name, data),
            IccProfileResource.Id => new IccProfileResource(signature, name, data),
            GlobalAngleResource.Id => new GlobalAngleResource(signature, name, data),
            TransparencyIndexResource.Id => new TransparencyIndexResource(signature, name, data),
            VersionInfoResource.Id => new VersionInfoResource(signature, name, data),
            XmpResource.Id => new XmpResource(signature, name, data),
            _ => new UnknownResource(signature, id, name, data),
        };
        block.Raw = raw;
        return block;
    }
}
