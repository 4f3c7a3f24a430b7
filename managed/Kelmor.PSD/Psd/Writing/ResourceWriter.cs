// Writes image resources (Photoshop File Formats Specification, Image Resource Blocks).
namespace Kelmor.PSD.FileFormats.Psd.Writing;

internal static class ResourceWriter
{
    /// <summary>One resource: as it was read while its content is the old one.</summary>
    public static void Write(SectionWriter writer, ResourceBlock resource)
    {
        if (!resource.Raw.IsEmpty)
        {
            writer.Block(resource.Raw);
            return;
        }
        writer.Int32(resource.Signature);
        writer.Int16(resource.ID);
        writer.Byte((byte)resource.NameBytes.Length);
        writer.Block(resource.NameBytes);
        writer.Zeros(1 - (resource.NameBytes.Length & 1));
        writer.ShortLength(resource.Data.Length);
        writer.Block(resource.Data);
        writer.Zeros(resource.Data.Length & 1);
    }
}
