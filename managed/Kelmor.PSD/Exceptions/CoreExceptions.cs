// The failures that have nothing to do with one format.
namespace Kelmor.PSD.CoreExceptions;

/// <summary>Any failure that this library reports on its own account.</summary>
public class FrameworkException : Exception
{
    /// <summary>A failure without words of its own.</summary>
    public FrameworkException() { }

    /// <summary>A failure with its words.</summary>
    public FrameworkException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public FrameworkException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>Two pieces of data that belong together contradict each other.</summary>
public class DataMissmatchError : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public DataMissmatchError() { }

    /// <summary>A failure with its words.</summary>
    public DataMissmatchError(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public DataMissmatchError(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>An index lies outside of what it counts.</summary>
public class IndexOutOFRangeException : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public IndexOutOFRangeException() { }

    /// <summary>A failure with its words.</summary>
    public IndexOutOFRangeException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public IndexOutOFRangeException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>The work would need more memory than is allowed.</summary>
public class LimitMemoryException : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public LimitMemoryException() { }

    /// <summary>A failure with its words.</summary>
    public LimitMemoryException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public LimitMemoryException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>The work was interrupted from outside.</summary>
public class OperationInterruptedException : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public OperationInterruptedException() { }

    /// <summary>A failure with its words.</summary>
    public OperationInterruptedException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public OperationInterruptedException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>The search for the best trade of size against quality failed.</summary>
public class RdOptimizationError : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public RdOptimizationError() { }

    /// <summary>A failure with its words.</summary>
    public RdOptimizationError(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public RdOptimizationError(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A stream ended before what it should hold, or failed.</summary>
public class StreamReadException : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public StreamReadException() { }

    /// <summary>A failure with its words.</summary>
    public StreamReadException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public StreamReadException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>Metadata in XMP form are damaged or cannot be written.</summary>
public class XmpException : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public XmpException() { }

    /// <summary>A failure with its words.</summary>
    public XmpException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public XmpException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A failure of an image as a whole.</summary>
public class ImageException : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public ImageException() { }

    /// <summary>A failure with its words.</summary>
    public ImageException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public ImageException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>An image cannot be made as asked for.</summary>
public class ImageCreateException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public ImageCreateException() { }

    /// <summary>A failure with its words.</summary>
    public ImageCreateException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public ImageCreateException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>An image cannot be loaded.</summary>
public class ImageLoadException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public ImageLoadException() { }

    /// <summary>A failure with its words.</summary>
    public ImageLoadException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public ImageLoadException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>An image cannot be saved as asked for.</summary>
public class ImageSaveException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public ImageSaveException() { }

    /// <summary>A failure with its words.</summary>
    public ImageSaveException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public ImageSaveException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>Packed data cannot be unpacked, or data cannot be packed.</summary>
public class CompressorException : FrameworkException
{
    /// <summary>A failure without words of its own.</summary>
    public CompressorException() { }

    /// <summary>A failure with its words.</summary>
    public CompressorException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public CompressorException(string message, Exception innerException)
        : base(message, innerException) { }
}
