// How a layer keeps its record, and tells its document of changes.
using Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

public partial class Layer
{
    internal Layer(LayerRecord record, PsdHeader header)
    {
        Record = record;
        Header = header;
        Watch();
    }

    internal LayerRecord Record { get; }

    /// <summary>Size and kind of the document that the layer was made for.</summary>
    internal PsdHeader Header { get; set; }

    /// <summary>The group that holds the layer directly, or null.</summary>
    internal LayerGroup? Parent { get; set; }

    /// <summary>The document that holds the layer, or null.</summary>
    internal PsdImage? Document
    {
        get => Container as PsdImage;
        set => Container = value;
    }

    /// <summary>Own format: a layer is saved as a document of one layer.</summary>
    public override FileFormat FileFormat => FileFormat.Psd;

    internal void Touch()
    {
        Record.IsChanged = true;
        Document?.OnLayerChanged();
    }

    internal T? Find<T>(string key)
        where T : LayerResource => Record.Find(TaggedBlocks.Code(key)) as T;

    internal T FindOrAdd<T>(string key, Func<T> make)
        where T : LayerResource
    {
        VerifyNotDisposed();
        if (Find<T>(key) is { } found)
        {
            return found;
        }
        var block = make();
        block.Changed = Touch;
        Record.Blocks.Add(block);
        Touch();
        return block;
    }

    protected override void SaveData(Stream stream) =>
        ImageSaving.Save(this, stream, null, Rectangle.Empty);

    private void Set<T>(T value, T present, Action<T> put)
        where T : struct
    {
        VerifyNotDisposed();
        if (!value.Equals(present))
        {
            put(value);
            Touch();
        }
    }

    private void Watch() => Record.Blocks.ForEach(block => block.Changed = Touch);

    private void Rename(string name)
    {
        VerifyNotDisposed();
        ArgumentNullException.ThrowIfNull(name);
        if (name == Name && Record.Has("luni"))
        {
            return;
        }
        Record.PascalName = MacRoman.EncodePascal(name);
        FindOrAdd("luni", () => new LuniResource(name)).Name = name;
        Touch();
    }

    private string PascalText()
    {
        var bytes = Record.PascalName.Span;
        return bytes.IsEmpty
            ? ""
            : MacRoman.Decode(bytes.Slice(1, Math.Min(bytes[0], bytes.Length - 1)));
    }

    private void MoveTo(int left, int top)
    {
        VerifyNotDisposed();
        if (left == Record.Left && top == Record.Top)
        {
            return;
        }
        var (width, height) = (Record.Width, Record.Height);
        (Record.Right, Record.Bottom) = (checked(left + width), checked(top + height));
        (Record.Left, Record.Top) = (left, top);
        Touch();
    }

    internal ChannelInformation? FindChannel(short id) =>
        Record.Channels.Find(channel => channel.ChannelID == id);
}
