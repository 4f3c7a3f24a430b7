// Streams of all tempers are read and written: short reads, no seeking, failures in the middle.
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd;

namespace Kelmor.PSD.Tests.Psd;

public class StreamTests
{
    [Theory]
    [InlineData(1)]
    [InlineData(7)]
    [InlineData(4096)]
    public void Short_reads_and_streams_without_seeking_are_read(int most)
    {
        var bytes = Document();
        using var image = Image.Load(new Trickle(bytes, most));
        Assert.Equal(5, image.Width);
        using var written = new MemoryStream();
        image.Save(written);
        Assert.Equal(bytes, written.ToArray());
    }

    [Fact]
    public void A_document_in_the_middle_of_a_stream_is_read_from_its_position()
    {
        var stream = new MemoryStream();
        stream.Write([1, 2, 3]);
        stream.Write(Document());
        stream.Position = 3;
        Assert.True(Image.CanLoad(stream));
        Assert.Equal(3, stream.Position);
        using var image = Image.Load(stream);
        Assert.Equal(4, image.Height);
    }

    [Fact]
    public void Saving_without_a_name_goes_back_to_the_stream()
    {
        var stream = new MemoryStream();
        stream.Write(Document());
        stream.Position = 0;
        using (var image = (PsdImage)Image.Load(stream))
        {
            image.Layers[0].Name = "changed";
            image.Save();
        }
        stream.Position = 0;
        using var again = (PsdImage)Image.Load(stream);
        Assert.Equal("changed", again.Layers[0].Name);
    }

    [Fact]
    public void Saving_over_its_own_file_keeps_the_file_whole_when_it_fails()
    {
        var folder = Directory.CreateTempSubdirectory();
        try
        {
            var path = Path.Combine(folder.FullName, "a.psd");
            File.WriteAllBytes(path, Document());
            using var image = (PsdImage)Image.Load(path);
            image.Layers[0].Name = "changed";
            image.Save(path);
            Assert.Single(folder.GetFiles());
            var whole = File.ReadAllBytes(path);
            var options = new ImageOptions.PsdOptions(image) { ColorMode = ColorModes.Lab };
            Assert.Throws<NotSupportedException>(() => image.Save(path, options));
            Assert.Equal(whole, File.ReadAllBytes(path));
            Assert.Throws<ImageSaveException>(() => image.Save(path, false));
            Assert.Single(folder.GetFiles());
        }
        finally
        {
            folder.Delete(true);
        }
    }

    [Fact]
    public void A_missing_file_and_an_unknown_format_have_their_own_exceptions()
    {
        Assert.Throws<FileNotFoundException>(() => Image.Load("nowhere.psd"));
        Assert.False(Image.CanLoad("nowhere.psd"));
        var failure = Assert.Throws<ImageLoadException>(() =>
            Image.Load(new MemoryStream([1, 2, 3]))
        );
        Assert.Equal("The stream cannot be loaded: its format is not known.", failure.Message);
        failure = Assert.Throws<ImageLoadException>(() =>
            Image.Load(new MemoryStream("GIF89a......"u8.ToArray()))
        );
        Assert.Equal(
            "The stream cannot be loaded: images of the format Gif are not read.",
            failure.Message
        );
    }

    [Theory]
    [InlineData(14, 0x7FFFFFFF, "the height 2147483647 is not between 1 and 30000")]
    [InlineData(18, 0, "the width 0 is not between 1 and 30000")]
    public void A_wrong_header_is_named(int at, int value, string words)
    {
        var bytes = Document();
        System.Buffers.Binary.BinaryPrimitives.WriteInt32BigEndian(bytes.AsSpan(at), value);
        var failure = Assert.Throws<PsdImageException>(() => Image.Load(new MemoryStream(bytes)));
        Assert.Equal($"The file header is damaged: {words}.", failure.Message);
    }

    private static byte[] Document()
    {
        using var image = new PsdImage(5, 4);
        image.AddRegularLayer();
        var stream = new MemoryStream();
        image.Save(stream);
        return stream.ToArray();
    }

    private sealed class Trickle(byte[] bytes, int most) : Stream
    {
        private int at;

        public override bool CanRead => true;

        public override bool CanSeek => false;

        public override bool CanWrite => false;

        public override long Length => throw new NotSupportedException();

        public override long Position
        {
            get => throw new NotSupportedException();
            set => throw new NotSupportedException();
        }

        public override int Read(byte[] buffer, int offset, int count)
        {
            count = Math.Min(Math.Min(count, most), bytes.Length - at);
            Array.Copy(bytes, at, buffer, offset, count);
            at += count;
            return count;
        }

        public override void Flush() { }

        public override long Seek(long offset, SeekOrigin origin) =>
            throw new NotSupportedException();

        public override void SetLength(long value) => throw new NotSupportedException();

        public override void Write(byte[] buffer, int offset, int count) =>
            throw new NotSupportedException();
    }
}
