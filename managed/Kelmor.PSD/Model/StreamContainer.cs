// A stream with the part of it that belongs to one object.
namespace Kelmor.PSD;

/// <summary>A stream, and whether this object ends it.</summary>
public class StreamContainer : DisposableObject
{
    private readonly bool disposeStream;

    /// <summary>Holds a stream that somebody else ends.</summary>
    public StreamContainer(Stream stream)
        : this(stream, false) { }

    /// <summary>Holds a stream.</summary>
    /// <param name="stream">The stream; positions count from its present one.</param>
    /// <param name="disposeStream">True: the stream ends with this object.</param>
    public StreamContainer(Stream stream, bool disposeStream)
    {
        ArgumentNullException.ThrowIfNull(stream);
        Stream = stream;
        this.disposeStream = disposeStream;
        StartPosition = stream.CanSeek ? stream.Position : 0;
    }

    /// <summary>The stream itself.</summary>
    public Stream Stream { get; }

    /// <summary>True: the stream ends with this object.</summary>
    public bool IsStreamDisposedOnClose => disposeStream;

    /// <summary>True when the stream can be read.</summary>
    public bool CanRead => Stream.CanRead;

    /// <summary>True when the stream has a position that can be set.</summary>
    public bool CanSeek => Stream.CanSeek;

    /// <summary>True when the stream can be written.</summary>
    public bool CanWrite => Stream.CanWrite;

    /// <summary>Bytes from the starting point to the end of the stream.</summary>
    public long Length => Stream.Length - StartPosition;

    /// <summary>Position, counted from the starting point.</summary>
    public long Position
    {
        get => Stream.Position - StartPosition;
        set => Stream.Position = value + StartPosition;
    }

    private long StartPosition { get; }

    public static explicit operator Stream?(StreamContainer? container) => container?.Stream;

    /// <summary>Hands written bytes on to what lies below.</summary>
    public void Flush() => Stream.Flush();

    /// <inheritdoc/>
    protected override void ReleaseManagedResources()
    {
        if (disposeStream)
        {
            Stream.Dispose();
        }
    }
}
