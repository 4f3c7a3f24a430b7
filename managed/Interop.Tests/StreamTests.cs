// Managed streams for Python, and Python file objects as managed streams.
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class StreamTests : TestBase
{
    private static long SetLength(nint self, int flag, long length) =>
        ((delegate* unmanaged<nint, int, long, long>)Entry.Address("SiApiStream", "SetLength"))(
            self, flag, length);

    [Fact]
    public void Bytes_move_straight_between_a_stream_and_the_callers_memory()
    {
        var stream = new MemoryStream();
        nint self = Own(stream);
        byte* data = stackalloc byte[] { 1, 2, 3 };
        ((delegate* unmanaged<nint, byte*, int, void>)Entry.Address("SiApiStream", "Write"))(
            self, data, 3);
        Assert.Equal([1, 2, 3], stream.ToArray());
        var seek = (delegate* unmanaged<nint, long, int, long>)Entry.Address("SiApiStream", "Seek");
        Assert.Equal(1, seek(self, -2, 2));
        byte* target = stackalloc byte[4];
        var read = (delegate* unmanaged<nint, byte*, int, int>)Entry.Address("SiApiStream", "Read");
        Assert.Equal(2, read(self, target, 4));
        Assert.Equal((2, 3), (target[0], target[1]));
        Assert.Equal(0, read(self, target, 4));
        Assert.Equal(0, read(self, null, 0));
    }

    [Fact]
    public void Truncating_without_a_size_cuts_at_the_position()
    {
        var stream = new MemoryStream([.. new byte[10]]) { Position = 4 };
        var growing = new MemoryStream();
        stream.CopyTo(growing);
        growing.Position = 4;
        nint self = Own(growing);
        Assert.Equal(4, SetLength(self, 1, 0));
        Assert.Equal(4, growing.Length);
        Assert.Equal(0, SetLength(self, 0, 0));
        Assert.Equal(0, growing.Length);
        Assert.Equal(-1, SetLength(self, 0, -5));
        Assert.Equal("System.ArgumentOutOfRangeException", Raised().Type);
    }

    [Fact]
    public void A_closed_stream_raises()
    {
        var stream = new MemoryStream();
        nint self = Own(stream);
        Entry.Int("SiApiStream", "Close", self);
        Assert.Equal(-1, Entry.Int("SiApiStream", "Position", self));
        Assert.Equal("System.ObjectDisposedException", Raised().Type);
        Assert.Equal(0, Entry.Int("SiApiStream", "CanRead", self) & 0xFF);
    }

    private static (PyStream Stream, FakeFile File, nint PyObject) Open(FakeFile? file = null)
    {
        file ??= new FakeFile();
        nint pyObject = FakePython.New(file);
        return (new PyStream(pyObject), file, pyObject);
    }

    [Fact]
    public void A_python_file_is_read_and_written_through_its_callbacks()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open();
        stream.Write([1, 2, 3, 4]);
        stream.WriteByte(5);
        Assert.Equal([1, 2, 3, 4, 5], file.Content.ToArray());
        Assert.Equal((5, 5), (stream.Length, stream.Position));
        stream.Position = 1;
        Assert.Equal(2, stream.ReadByte());
        byte[] rest = new byte[10];
        Assert.Equal(3, stream.Read(rest, 0, 10));
        Assert.Equal(-1, stream.ReadByte());
        Assert.Equal(2, stream.Seek(-3, SeekOrigin.End));
        stream.SetLength(3);
        Assert.Equal(3, stream.Length);
        stream.Flush();
        Assert.Equal(1, file.Flushed);
        Assert.True(stream.CanRead && stream.CanWrite && stream.CanSeek);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_write_goes_on_until_all_is_taken()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open(new FakeFile { Most = 3 });
        stream.Write([1, 2, 3, 4, 5, 6, 7, 8]);
        Assert.Equal([1, 2, 3, 4, 5, 6, 7, 8], file.Content.ToArray());
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_file_that_takes_nothing_ends_the_write_with_an_error()
    {
        (PyStream stream, _, nint pyObject) = Open(new FakeFile { Most = 0 });
        Assert.Throws<IOException>(() => stream.Write([1]));
        Assert.Throws<IOException>(() => stream.WriteByte(1));
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_read_may_come_back_short()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open(new FakeFile { Most = 3 });
        file.Content.Write([1, 2, 3, 4, 5]);
        file.Content.Position = 0;
        byte[] all = new byte[5];
        Assert.Equal(3, stream.Read(all));
        file.Content.Position = 0;
        stream.ReadExactly(all);
        Assert.Equal([1, 2, 3, 4, 5], all);
        FakePython.Release(pyObject);
    }

    public static TheoryData<string> Operations =>
    [
        "read", "readbyte", "write", "writebyte", "seek", "tell", "length", "truncate", "flush",
        "readable",
    ];

    [Theory]
    [MemberData(nameof(Operations))]
    public void An_error_of_the_file_becomes_an_exception_with_its_text(string operation)
    {
        (PyStream stream, _, nint pyObject) =
            Open(new FakeFile { Error = new FakeError("OSError", "disk gone") });
        Action action = operation switch
        {
            "read" => () => Assert.Equal(1, stream.Read(new byte[1])),
            "readbyte" => () => stream.ReadByte(),
            "write" => () => stream.Write([1]),
            "writebyte" => () => stream.WriteByte(1),
            "seek" => () => stream.Seek(0, SeekOrigin.Begin),
            "tell" => () => _ = stream.Position,
            "length" => () => _ = stream.Length,
            "truncate" => () => stream.SetLength(0),
            "flush" => stream.Flush,
            _ => () => _ = stream.CanRead,
        };
        Assert.Equal("OSError: disk gone", Assert.Throws<PythonException>(action).Message);
        Assert.Null(FakePython.Error);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_file_that_cannot_seek_has_no_length()
    {
        (PyStream stream, _, nint pyObject) = Open(new FakeFile { Seekable = false });
        Assert.False(stream.CanSeek);
        Assert.Throws<NotSupportedException>(() => stream.Length);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_closed_file_has_no_length()
    {
        (PyStream stream, _, nint pyObject) = Open(new FakeFile { Closed = true });
        Assert.Throws<ObjectDisposedException>(() => stream.Length);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_lent_file_stays_open_and_is_flushed_when_it_was_written()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open();
        stream.WriteByte(1);
        stream.Dispose();
        stream.Dispose();
        Assert.False(file.Closed);
        Assert.Equal(1, file.Flushed);
        Assert.False(stream.CanWrite);
        Assert.Throws<ObjectDisposedException>(() => stream.WriteByte(1));
        Assert.Equal(pyObject, stream.PyObject);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_lent_file_that_was_only_read_is_left_alone()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open();
        stream.ReadByte();
        stream.Dispose();
        Assert.Equal((false, 0), (file.Closed, file.Flushed));
        FakePython.Release(pyObject);
    }

    [Fact]
    public void What_was_flushed_already_is_not_flushed_again()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open();
        stream.Write([1, 2]);
        stream.Flush();
        stream.Dispose();
        Assert.Equal(1, file.Flushed);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_block_that_was_written_is_flushed_at_the_end()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open();
        stream.Write([1, 2]);
        stream.Dispose();
        Assert.Equal(1, file.Flushed);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_file_that_python_has_closed_meanwhile_is_left_alone()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open();
        stream.WriteByte(1);
        file.Closed = true;
        stream.Dispose();
        Assert.Equal(0, file.Flushed);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_flush_that_fails_ends_the_stream_all_the_same()
    {
        (PyStream stream, FakeFile file, nint pyObject) =
            Open(new FakeFile { FlushError = new FakeError("OSError", "disk full") });
        stream.WriteByte(1);
        Assert.Equal(
            "OSError: disk full", Assert.Throws<PythonException>(stream.Dispose).Message);
        Assert.Throws<ObjectDisposedException>(() => stream.ReadByte());
        stream.Dispose();
        Assert.Equal(1, file.Flushed);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void After_its_end_a_stream_can_do_nothing()
    {
        (PyStream stream, _, nint pyObject) = Open();
        stream.Dispose();
        Assert.Equal((false, false, false), (stream.CanRead, stream.CanWrite, stream.CanSeek));
        Assert.Throws<ObjectDisposedException>(() => stream.Length);
        Assert.Throws<ObjectDisposedException>(() => stream.Seek(0, SeekOrigin.Begin));
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_file_that_reports_more_than_it_was_given_is_not_believed()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open(new FakeFile { Excess = 5 });
        file.Content.Write([1, 2, 3]);
        file.Content.Position = 0;
        const string Words = "The Python stream reports more bytes than it was given.";
        Assert.Equal(
            Words, Assert.Throws<IOException>(() => stream.ReadExactly(new byte[3])).Message);
        Assert.Equal(Words, Assert.Throws<IOException>(() => stream.Write([1, 2])).Message);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void Arguments_are_looked_at_before_the_file_is_asked()
    {
        (PyStream stream, FakeFile file, nint pyObject) = Open();
        Assert.Throws<ArgumentOutOfRangeException>(() => stream.Write(new byte[2], 1, 2));
        Assert.ThrowsAny<ArgumentException>(() => stream.ReadExactly(new byte[2], 1, 2));
        Assert.Equal(0, file.Content.Length);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void Two_streams_over_one_file_are_equal()
    {
        (PyStream stream, _, nint pyObject) = Open();
        var second = new PyStream(pyObject);
        Assert.Equal(stream, second);
        Assert.Equal(stream.GetHashCode(), second.GetHashCode());
        Assert.False(stream.Equals(new MemoryStream()));
        FakePython.Release(pyObject);
    }

    [Fact]
    public void The_abilities_of_a_managed_stream_are_told_one_by_one()
    {
        nint self = Own(new MemoryStream([1], writable: false));
        string[] entries = ["CanRead", "CanSeek", "CanWrite"];
        Assert.Equal([1, 1, 0], entries.Select(e => Entry.Int("SiApiStream", e, self) & 0xFF));
        nint forward = Own(new System.IO.Compression.GZipStream(new MemoryStream(),
            System.IO.Compression.CompressionMode.Compress));
        Assert.Equal([0, 0, 1], entries.Select(e => Entry.Int("SiApiStream", e, forward) & 0xFF));
    }

    [Fact]
    public void A_flush_reaches_the_managed_stream()
    {
        var target = new MemoryStream();
        var buffered = new BufferedStream(target);
        buffered.WriteByte(7);
        Assert.Equal(0, target.Length);
        Entry.Int("SiApiStream", "Flush", Own(buffered));
        Assert.Equal([7], target.ToArray());
    }

    [Fact]
    public void An_owned_file_is_closed()
    {
        var file = new FakeFile();
        nint pyObject = FakePython.New(file);
        new PyStream(pyObject, owned: true).Dispose();
        Assert.True(file.Closed);
        FakePython.Release(pyObject);
    }

    [Fact]
    public void A_stream_argument_is_the_managed_stream_or_an_adapter()
    {
        var managed = new MemoryStream();
        var argument = new VariantArg { Kind = 0, Value = Own(managed) };
        Assert.Same(managed, Args.Stream(&argument));
        argument.Value = 0;
        Assert.Null(Args.Stream(&argument));
        nint pyObject = FakePython.New(new FakeFile());
        argument = new VariantArg { Kind = 2, Value = pyObject };
        Assert.Equal(pyObject, Assert.IsType<PyStream>(Args.Stream(&argument)).PyObject);
        FakePython.Release(pyObject);
    }
}
