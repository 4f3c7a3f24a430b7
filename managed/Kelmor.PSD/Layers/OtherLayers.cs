// The kinds of layers that are more than pixels: fills, shapes, smart objects, end marks of groups.
namespace Kelmor.PSD.FileFormats.Psd.Layers
{
    /// <summary>The hidden record at the lower end of a group.</summary>
    public sealed class SectionDividerLayer : Layer
    {
        internal SectionDividerLayer(LayerRecord record, PsdHeader header)
            : base(record, header) { }

        /// <summary>The group that ends here.</summary>
        public LayerGroup? GetRelatedLayerGroup() => Group;

        internal LayerGroup? Group { get; set; }
    }

    /// <summary>A layer whose outline is a path.</summary>
    public interface IShapeLayer
    {
        /// <summary>The full name.</summary>
        string DisplayName { get; set; }
    }

    /// <summary>A shape: a fill with a vector mask.</summary>
    public sealed class ShapeLayer : Layer, IShapeLayer
    {
        internal ShapeLayer(LayerRecord record, PsdHeader header)
            : base(record, header) { }

        /// <summary>Renders the shape anew after changes.</summary>
        public void Update() => throw NotYet.Member();
    }

    /// <summary>A group with a page size of its own.</summary>
    public sealed class ArtboardLayer : LayerGroup
    {
        internal ArtboardLayer(LayerRecord record, PsdHeader header)
            : base(record, header) { }

        /// <summary>Width of the page in pixels.</summary>
        public override int Width => ArtboardPage.Of(Record).Width;

        /// <summary>Height of the page in pixels.</summary>
        public override int Height => ArtboardPage.Of(Record).Height;
    }
}

namespace Kelmor.PSD.FileFormats.Psd.Layers.FillLayers
{
    /// <summary>A layer filled with a colour, a gradient or a pattern.</summary>
    public sealed class FillLayer : Layer
    {
        internal FillLayer(LayerRecord record, PsdHeader header)
            : base(record, header) { }

        /// <summary>Renders the fill anew after changes.</summary>
        public void Update() => throw NotYet.Member();
    }
}

namespace Kelmor.PSD.FileFormats.Psd.Layers.SmartObjects
{
    /// <summary>A layer that shows another image, embedded or linked.</summary>
    public class SmartObjectLayer : Layer
    {
        internal SmartObjectLayer(LayerRecord record, PsdHeader header)
            : base(record, header) { }

        /// <summary>The image that the layer shows.</summary>
        public Image LoadContents(LoadOptions? options) => throw NotYet.Member();
    }
}
