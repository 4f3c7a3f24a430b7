// A group of layers.
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>A group: the head of it, which stands above its layers in the document.</summary>
public class LayerGroup : Layer
{
    internal LayerGroup(LayerRecord record, PsdHeader header)
        : base(record, header) { }

    /// <summary>Puts a layer on top of this group; it must belong to no document yet.</summary>
    /// <exception cref="CoreExceptions.ImageFormats.PsdImageArgumentException">The layer belongs to
    /// a document.</exception>
    public void AddLayer(Layer layer) => Owner.Tree.Insert(this, layer, Layers.Length);

    /// <summary>Puts a new empty group into this one.</summary>
    /// <param name="groupName">Name.</param>
    /// <param name="index">Place among the direct children, 0 lowest.</param>
    public LayerGroup AddLayerGroup(string groupName, int index) =>
        Owner.Tree.InsertGroup(this, groupName, index, isOpen: true);

    /// <summary>True when the group is shown unfolded in the list of layers.</summary>
    public bool IsOpen
    {
        get => Section?.SectionType != LayerSectionType.ClosedFolder;
        set
        {
            VerifyNotDisposed();
            if (Section is { } section)
            {
                section.SectionType = value
                    ? LayerSectionType.OpenFolder
                    : LayerSectionType.ClosedFolder;
            }
        }
    }

    /// <summary>Blend mode; PassThrough: the layers blend with what lies below the group.</summary>
    public override BlendMode BlendModeKey
    {
        get =>
            Section is { BlendModeKey: not BlendMode.Absent } section
                ? section.BlendModeKey
                : base.BlendModeKey;
        set
        {
            // Readers look at either place, so both say the same.
            base.BlendModeKey = value;
            if (Section is { } section)
            {
                section.BlendModeKey = value;
            }
        }
    }

    /// <summary>
    /// The direct children, bottom to top, without end marks; assigning puts others in their place.
    /// </summary>
    public Layer[] Layers
    {
        get => [.. Children];
        set => Owner.Tree.ReplaceChildren(this, value);
    }

    /// <summary>Width of the rectangle that holds all children, in pixels.</summary>
    public override int Width => ChildrenBounds.Width;

    /// <summary>Height of the rectangle that holds all children, in pixels.</summary>
    public override int Height => ChildrenBounds.Height;

    internal List<Layer> Children { get; } = [];

    /// <summary>The record that ends this group.</summary>
    internal SectionDividerLayer? End { get; set; }

    private LayerSectionResource? Section =>
        Find<LayerSectionResource>("lsct") ?? Find<LayerSectionResource>("lsdk");

    private PsdImage Owner =>
        Document
        ?? throw new CoreExceptions.ImageFormats.PsdImageArgumentException(
            $"The group '{Name}' belongs to no document."
        );

    private Rectangle ChildrenBounds
    {
        get
        {
            var bounds = Rectangle.Empty;
            foreach (var child in Children)
            {
                var own = child is LayerGroup group
                    ? group.ChildrenBounds
                    : new Rectangle(child.Left, child.Top, child.Record.Width, child.Record.Height);
                if (own.Width > 0 && own.Height > 0)
                {
                    bounds = bounds.Width == 0 ? own : Rectangle.Union(bounds, own);
                }
            }
            return bounds;
        }
    }
}
