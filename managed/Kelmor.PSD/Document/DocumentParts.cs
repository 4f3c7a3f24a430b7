// Parts of a document whose own work is still to come.
namespace Kelmor.PSD.FileFormats.Psd
{
    /// <summary>Images that the smart objects of a document show.</summary>
    public sealed class SmartObjectProvider
    {
        internal SmartObjectProvider() { }
    }
}

namespace Kelmor.PSD.FileFormats.Psd.Layers
{
    /// <summary>Links between the layers of a document.</summary>
    public sealed class LinkedLayersManager
    {
        internal LinkedLayersManager() { }
    }

    /// <summary>
    /// Colour in which masks are shown (Adobe Photoshop File Formats Specification, Global layer
    /// mask info).
    /// </summary>
    public sealed class GlobalLayerMaskInfo
    {
        private readonly ReadOnlyMemory<byte> data;

        internal GlobalLayerMaskInfo(ReadOnlyMemory<byte> data) => this.data = data;

        /// <summary>Bytes in the file.</summary>
        public int Length => data.Length;

        /// <summary>0 transparent to 100 opaque.</summary>
        public short Opacity => Field(10);

        /// <summary>Colour space of the overlay colour.</summary>
        public short OverlayColorSpace => Field(0);

        /// <summary>0 colour selected, 1 colour protected, 128 as each layer says.</summary>
        public byte Kind => data.Length > 12 ? data.Span[12] : (byte)128;

        private short Field(int at) =>
            data.Length >= at + 2
                ? System.Buffers.Binary.BinaryPrimitives.ReadInt16BigEndian(data.Span[at..])
                : (short)0;
    }
}

namespace Kelmor.PSD.FileFormats.Psd.Layers.Animation
{
    /// <summary>Frames of an animated document.</summary>
    public sealed class Timeline
    {
        internal Timeline() { }
    }
}
