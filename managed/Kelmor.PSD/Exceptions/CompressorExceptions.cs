// The failures of the compression methods.
namespace Kelmor.PSD.CoreExceptions.Compressors;

/// <summary>Data packed by deflate (RFC 1951) are damaged.</summary>
public class DeflateCompressorException : CompressorException
{
    /// <summary>A failure without words of its own.</summary>
    public DeflateCompressorException() { }

    /// <summary>A failure with its words.</summary>
    public DeflateCompressorException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public DeflateCompressorException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>Data packed by LZW are damaged.</summary>
public class LzwCompressorException : CompressorException
{
    /// <summary>A failure without words of its own.</summary>
    public LzwCompressorException() { }

    /// <summary>A failure with its words.</summary>
    public LzwCompressorException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public LzwCompressorException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>Run-length packed data (PackBits) are damaged.</summary>
public class RleCompressorException : CompressorException
{
    /// <summary>A failure without words of its own.</summary>
    public RleCompressorException() { }

    /// <summary>A failure with its words.</summary>
    public RleCompressorException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public RleCompressorException(string message, Exception innerException)
        : base(message, innerException) { }
}
