// A Python file object as a managed stream.
namespace Kelmor.WrpGen.Interop;

/// <summary>
/// Drives a Python raw or buffered stream. Nothing is buffered here: each call is one call of the
/// Python object. The object belongs to the Python program, so disposing of the adapter flushes
/// what was written and leaves it open, unless the adapter was made as its owner.
/// </summary>
internal sealed unsafe class PyStream : Stream, IPyAdapter
{
    private readonly PyRef _python;
    private readonly bool _owned;
    private bool _disposed;
    private bool _written;

    public PyStream(nint pyObject, bool owned = false)
    {
        _python = PyRef.Borrow(pyObject, PyRef.StreamWeight);
        _owned = owned;
    }

    public nint PyObject => _python.Pointer;

    public override bool CanRead => !_disposed && Answer(PyApi.Stream->Readable(PyObject));

    public override bool CanWrite => !_disposed && Answer(PyApi.Stream->Writable(PyObject));

    public override bool CanSeek => !_disposed && Answer(PyApi.Stream->Seekable(PyObject));

    public override long Length => PyApi.Stream->Length(Open()) switch
    {
        -1 => throw Bridge.PythonError(),
        -2 => throw new NotSupportedException("The Python stream is not seekable."),
        -3 => throw new ObjectDisposedException("stream", "The Python stream is closed."),
        long length => length,
    };

    public override long Position
    {
        get => Checked(PyApi.Stream->Tell(Open()));
        set => Seek(value, SeekOrigin.Begin);
    }

    public override int Read(Span<byte> buffer)
    {
        fixed (byte* data = buffer)
        {
            int count = Checked(PyApi.Stream->Read(Open(), data, buffer.Length));
            return count <= buffer.Length ? count : throw TooMany();
        }
    }

    public override int Read(byte[] buffer, int offset, int count)
    {
        ValidateBufferArguments(buffer, offset, count);
        return Read(buffer.AsSpan(offset, count));
    }

    public override int ReadByte()
    {
        int value = PyApi.Stream->ReadByte(Open());
        return value >= -1 ? value : throw Bridge.PythonError();
    }

    // A raw stream may take less than it is given; a managed Write is done when all is taken.
    public override void Write(ReadOnlySpan<byte> buffer)
    {
        _written = true;
        fixed (byte* data = buffer)
        {
            int done = 0;
            while (done < buffer.Length)
            {
                int left = buffer.Length - done;
                int count = Checked(PyApi.Stream->Write(Open(), data + done, left));
                if (count == 0 || count > left)
                {
                    throw count == 0 ? NothingTaken() : TooMany();
                }
                done += count;
            }
        }
    }

    public override void Write(byte[] buffer, int offset, int count)
    {
        ValidateBufferArguments(buffer, offset, count);
        Write(buffer.AsSpan(offset, count));
    }

    public override void WriteByte(byte value)
    {
        _written = true;
        if (Checked(PyApi.Stream->WriteByte(Open(), value)) == 0)
        {
            throw NothingTaken();
        }
    }

    public override long Seek(long offset, SeekOrigin origin) =>
        Checked(PyApi.Stream->Seek(Open(), offset, (int)origin));

    public override void SetLength(long value) => Checked(PyApi.Stream->Truncate(Open(), value));

    public override void Flush()
    {
        Checked(PyApi.Stream->Flush(Open()));
        _written = false;
    }

    public override bool Equals(object? obj) =>
        obj is IPyAdapter other && other.PyObject == PyObject;

    public override int GetHashCode() => PyObject.GetHashCode();

    protected override void Dispose(bool disposing)
    {
        // Without the interpreter lock nothing can be done; the reference has a finaliser of its
        // own.
        if (disposing && !_disposed)
        {
            try
            {
                Finish();
            }
            finally
            {
                _disposed = true;
            }
        }
        base.Dispose(disposing);
    }

    private void Finish()
    {
        if (_owned)
        {
            PyApi.Stream->Close(PyObject);
        }
        else if (_written && Answer(PyApi.Stream->Writable(PyObject)))
        {
            Flush();
        }
    }

    // The reference outlives disposal, for the adapter may still be given back to Python.
    private nint Open()
    {
        ObjectDisposedException.ThrowIf(_disposed, this);
        return PyObject;
    }

    private static bool Answer(int answer) => Checked(answer) != 0;

    private static int Checked(int count) => count >= 0 ? count : throw Bridge.PythonError();

    private static long Checked(long position) =>
        position >= 0 ? position : throw Bridge.PythonError();

    private static IOException TooMany() =>
        new("The Python stream reports more bytes than it was given.");

    private static IOException NothingTaken() => new("The Python stream takes no bytes.");
}
