// The nesting of layers: a flat list in file order, with groups linked to what they hold.
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// Groups stand in the flat list as an end mark, their layers, and above those their head.
/// </summary>
internal sealed class LayerTree(PsdImage image)
{
    private const int MostLayers = short.MaxValue;

    private List<Layer> Flat => image.File.Layers.Layers;

    /// <summary>
    /// Finds the parents of all layers; heads and end marks without a partner stand alone.
    /// </summary>
    public void Link()
    {
        var open = new Stack<(SectionDividerLayer End, List<Layer> Outer)>();
        var level = new List<Layer>();
        foreach (var layer in Flat)
        {
            layer.Document = image;
            layer.Parent = null;
            switch (layer)
            {
                case SectionDividerLayer end:
                    open.Push((end, level));
                    level = [];
                    continue;
                case LayerGroup group:
                    Close(group, open, ref level);
                    break;
            }
            level.Add(layer);
        }
    }

    /// <summary>
    /// Puts a layer that belongs to no document into a group, or on the lowest level.
    /// </summary>
    public void Insert(LayerGroup? parent, Layer layer, int index)
    {
        ArgumentNullException.ThrowIfNull(layer);
        VerifyFree(layer);
        VerifyRoom(2);
        var at = FlatIndex(parent, index);
        layer.AdaptTo(image.File.Header);
        if (layer is LayerGroup group)
        {
            Flat.Insert(at, CreateEnd(group));
            at++;
        }
        Flat.Insert(at, layer);
        Changed();
    }

    /// <summary>Puts a new empty group into another one, or on the lowest level.</summary>
    public LayerGroup InsertGroup(LayerGroup? parent, string name, int index, bool isOpen)
    {
        ArgumentNullException.ThrowIfNull(name);
        var type = isOpen ? LayerSectionType.OpenFolder : LayerSectionType.ClosedFolder;
        var group = (LayerGroup)CreateMark(type, BlendMode.PassThrough);
        group.Name = name;
        Insert(parent, group, index);
        return group;
    }

    /// <summary>Takes another list of layers, which must be nested rightly.</summary>
    public void ReplaceAll(Layer[] layers)
    {
        ArgumentNullException.ThrowIfNull(layers);
        Verify(layers);
        foreach (var gone in Flat.Except(layers).ToList())
        {
            Detach(gone);
        }
        Adopt(layers);
        Flat.Clear();
        Flat.AddRange(layers);
        Changed();
    }

    /// <summary>
    /// Takes other direct children of a group; groups among them bring their own layers.
    /// </summary>
    public void ReplaceChildren(LayerGroup group, Layer[] children)
    {
        ArgumentNullException.ThrowIfNull(children);
        if (group.End is not { } end)
        {
            throw new PsdImageArgumentException($"The group '{group.Name}' has no end mark.");
        }
        var first = Flat.IndexOf(end) + 1;
        var inside = children.SelectMany(WithContent).ToList();
        var rest = Flat.Take(first).Concat(inside).Concat(Flat.Skip(Flat.IndexOf(group)));
        ReplaceAll([.. rest]);
    }

    private static void Close(
        LayerGroup group,
        Stack<(SectionDividerLayer End, List<Layer> Outer)> open,
        ref List<Layer> level
    )
    {
        group.Children.Clear();
        group.End = null;
        if (!open.TryPop(out var frame))
        {
            return;
        }
        group.Children.AddRange(level);
        group.End = frame.End;
        frame.End.Group = group;
        frame.End.Parent = null;
        level.ForEach(child => child.Parent = group);
        level = frame.Outer;
    }

    // A group in the tree is its end mark, its content and its head; one without an end mark gets
    // one.
    private IEnumerable<Layer> WithContent(Layer layer)
    {
        if (layer is not LayerGroup group)
        {
            return [layer];
        }
        var end = group.End ?? CreateEnd(group);
        return [end, .. group.Children.SelectMany(WithContent), group];
    }

    private int FlatIndex(LayerGroup? parent, int index)
    {
        if (parent is { End: null })
        {
            throw new PsdImageArgumentException($"The group '{parent.Name}' has no end mark.");
        }
        var siblings =
            parent?.Children
            ?? Flat.Where(layer => layer is { Parent: null } and not SectionDividerLayer).ToList();
        if ((uint)index > (uint)siblings.Count)
        {
            throw new ArgumentOutOfRangeException(
                nameof(index),
                $"The index must lie between 0 and {siblings.Count}, not {index}."
            );
        }
        if (index < siblings.Count)
        {
            var above = siblings[index];
            return Flat.IndexOf(above is LayerGroup { End: { } end } ? end : above);
        }
        return parent is null ? Flat.Count : Flat.IndexOf(parent);
    }

    private void Verify(Layer[] layers)
    {
        if (layers.Length > MostLayers)
        {
            throw new PsdImageArgumentException(
                $"A document holds at most {MostLayers} layer records, not {layers.Length}."
            );
        }
        var seen = new HashSet<Layer>();
        var depth = 0;
        foreach (var layer in layers)
        {
            if (layer is null || !seen.Add(layer))
            {
                throw new PsdImageArgumentException(
                    "The layers contain an empty entry, or one layer twice."
                );
            }
            if (layer.Document != image)
            {
                VerifyFree(layer);
            }
            depth +=
                layer is SectionDividerLayer ? 1
                : layer is LayerGroup ? -1
                : 0;
            if (depth < 0)
            {
                throw new PsdImageArgumentException(
                    $"The group '{layer.Name}' has no end mark below it."
                );
            }
        }
        if (depth != 0)
        {
            throw new PsdImageArgumentException("An end mark of a group has no group above it.");
        }
    }

    private void VerifyFree(Layer layer)
    {
        ObjectDisposedException.ThrowIf(layer.Disposed, layer);
        if (layer.Document is not null)
        {
            throw new PsdImageArgumentException(
                $"The layer '{layer.Name}' belongs to a document already; add a copy of it."
            );
        }
    }

    private void VerifyRoom(int count)
    {
        if (Flat.Count + count > MostLayers)
        {
            throw new PsdImageArgumentException(
                $"A document holds at most {MostLayers} layer records."
            );
        }
    }

    private void Adopt(Layer[] layers)
    {
        foreach (var layer in layers.Where(layer => layer.Document is null))
        {
            layer.AdaptTo(image.File.Header);
        }
    }

    private static void Detach(Layer layer)
    {
        layer.Document = null;
        layer.Parent = null;
    }

    private SectionDividerLayer CreateEnd(LayerGroup group)
    {
        var end = (SectionDividerLayer)CreateMark(LayerSectionType.BoundingSection, null);
        end.Name = "</Layer group>";
        end.Group = group;
        return end;
    }

    private Layer CreateMark(LayerSectionType type, BlendMode? mode)
    {
        var record = new LayerRecord
        {
            IsChanged = true,
            BlendMode = (int)(mode ?? BlendMode.Normal),
        };
        // The pixels of a mark say nothing.
        record.Flags |= (byte)LayerFlags.PixelDataIrrelevantToAppearenceInDocument;
        record.Blocks.Add(
            new LayerSectionResource(
                TaggedBlocks.Signature,
                TaggedBlocks.Code("lsct"),
                LayerSectionResource.Build(type, mode)
            )
        );
        LayerPixels.AddEmptyChannels(record, image.File.Header);
        return LayerKinds.Create(record, image.File.Header);
    }

    private void Changed()
    {
        Link();
        image.OnStructureChanged();
    }
}
