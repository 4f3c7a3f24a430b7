// Where a new image will be written.
namespace Kelmor.PSD
{
    /// <summary>A place for the data of a new image.</summary>
    public abstract class Source
    {
        /// <summary>Opens the place.</summary>
        public abstract StreamContainer GetStreamContainer();
    }
}

namespace Kelmor.PSD.Sources
{
    /// <summary>A stream as the place.</summary>
    public sealed class StreamSource : Source
    {
        private readonly Stream stream;
        private readonly bool disposeStream;

        /// <summary>A new stream in memory.</summary>
        public StreamSource()
            : this(new MemoryStream(), true) { }

        /// <summary>A stream that somebody else ends.</summary>
        public StreamSource(Stream stream)
            : this(stream, false) { }

        /// <summary>A stream.</summary>
        /// <param name="stream">The stream.</param>
        /// <param name="disposeStream">True: the stream ends with the container.</param>
        public StreamSource(Stream stream, bool disposeStream)
        {
            ArgumentNullException.ThrowIfNull(stream);
            this.stream = stream;
            this.disposeStream = disposeStream;
        }

        /// <summary>The stream of this source.</summary>
        public Stream Stream => stream;

        /// <inheritdoc/>
        public override StreamContainer GetStreamContainer() => new(stream, disposeStream);
    }

    /// <summary>A file as the place.</summary>
    public abstract class FileSource : Source
    {
        /// <summary>A file by its path.</summary>
        protected FileSource(string filePath)
        {
            ArgumentException.ThrowIfNullOrEmpty(filePath);
            FilePath = filePath;
        }

        /// <summary>Path of the file.</summary>
        public string FilePath { get; }
    }

    /// <summary>A file that is made anew.</summary>
    public sealed class FileCreateSource(string filePath) : FileSource(filePath)
    {
        /// <inheritdoc/>
        public override StreamContainer GetStreamContainer() =>
            new(new FileStream(FilePath, FileMode.Create, FileAccess.ReadWrite), true);
    }

    /// <summary>A file that is there already.</summary>
    public sealed class FileOpenSource(string filePath) : FileSource(filePath)
    {
        /// <inheritdoc/>
        public override StreamContainer GetStreamContainer() => new FileStreamContainer(FilePath);
    }
}
