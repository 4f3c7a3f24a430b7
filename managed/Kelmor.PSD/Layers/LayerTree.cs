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

    // Ten times what Photoshop allows. Rendering takes room for each level.
    private const int DeepestLevel = 100;

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
        ObjectDisposedException.ThrowIf(image.Disposed, image);
        if (layer is SectionDividerLayer)
        {
            throw new PsdImageArgumentException("The end mark of a group comes with its group.");
        }
        var added = WithContent(layer).ToList();
        added.ForEach(VerifyFree);
        var layers = Flat.ToList();
        layers.InsertRange(FlatIndex(parent, index), added);
        if (BackgroundLayer.Of(image) is { } background)
        {
            layers.Insert(0, background);
        }
        Take(layers);
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
        ObjectDisposedException.ThrowIf(image.Disposed, image);
        Verify(layers);
        Take(layers);
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
        // Layers that have left a free group since then are elsewhere now.
        var children = group.Children.Where(child => child.Document == group.Document);
        return [end, .. children.SelectMany(WithContent), group];
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

    /// <summary>Refuses groups that are nested too deep to be worked on.</summary>
    public static void VerifyDepth(IEnumerable<Layer> layers)
    {
        var depth = 0;
        foreach (var layer in layers)
        {
            depth +=
                layer is SectionDividerLayer ? 1
                : layer is LayerGroup && depth > 0 ? -1
                : 0;
            if (depth > DeepestLevel)
            {
                throw new PsdImageException(
                    $"The groups of the document are nested more than {DeepestLevel} deep."
                );
            }
        }
    }

    // Everything that can fail comes before the first change.
    private void Take(IReadOnlyCollection<Layer> layers)
    {
        if (layers.Count > MostLayers)
        {
            throw new PsdImageArgumentException(
                $"A document holds at most {MostLayers} layer records, not {layers.Count}."
            );
        }
        VerifyDepth(layers);
        Adopt(layers.Where(layer => layer.Document is null));
        var selected = image.ActiveLayer;
        if (Flat.Count == 0 && layers.Count > 0)
        {
            image.File.Layers.ChoosePlace(image.File.Header.Depth);
        }
        var gone = Flat.Except(layers).ToHashSet();
        Flat.Clear();
        Flat.AddRange(layers);
        Detach(gone);
        Link();
        LayerState.Keep(image.File, selected);
        image.OnLayerChanged();
    }

    private void Adopt(IEnumerable<Layer> layers)
    {
        var header = image.File.Header;
        foreach (var layer in layers)
        {
            if (header.Mode is ColorModes.Bitmap or ColorModes.Indexed or ColorModes.Multichannel)
            {
                throw new PsdImageArgumentException(
                    $"A document of the mode {header.Mode} holds no layers."
                );
            }
            layer.AdaptTo(header);
        }
    }

    // What leaves the document stays together: a group keeps the layers that leave with it.
    private static void Detach(HashSet<Layer> gone)
    {
        foreach (var layer in gone)
        {
            layer.Document = null;
            layer.Parent = null;
            if (layer is LayerGroup group)
            {
                group.Children.RemoveAll(child => !gone.Contains(child));
                group.End = group.End is { } end && gone.Contains(end) ? end : null;
            }
        }
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
}
