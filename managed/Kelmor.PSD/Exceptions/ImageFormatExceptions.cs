// The failures of the single image formats.
namespace Kelmor.PSD.CoreExceptions.ImageFormats;

/// <summary>A failure of a BMP image.</summary>
public class BmpImageException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public BmpImageException() { }

    /// <summary>A failure with its words.</summary>
    public BmpImageException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public BmpImageException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A failure of a GIF image.</summary>
public class GifImageException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public GifImageException() { }

    /// <summary>A failure with its words.</summary>
    public GifImageException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public GifImageException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A failure of a JPEG 2000 image.</summary>
public class Jpeg2000Exception : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public Jpeg2000Exception() { }

    /// <summary>A failure with its words.</summary>
    public Jpeg2000Exception(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public Jpeg2000Exception(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A failure of a JPEG image.</summary>
public class JpegException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public JpegException() { }

    /// <summary>A failure with its words.</summary>
    public JpegException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public JpegException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A JPEG image cannot be loaded.</summary>
public class JpegLoadException : JpegException
{
    /// <summary>A failure without words of its own.</summary>
    public JpegLoadException() { }

    /// <summary>A failure with its words.</summary>
    public JpegLoadException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public JpegLoadException(string message, Exception innerException)
        : base(message, innerException) { }

    /// <summary>Why a JPEG stream was refused.</summary>
    public enum ErrorReason
    {
        /// <summary>Not told.</summary>
        Unknown = 0,

        /// <summary>The stream ends too early or its segments are damaged.</summary>
        DamagedData = 1,

        /// <summary>The stream uses a process that is not read.</summary>
        UnsupportedProcess = 2,

        /// <summary>The sides of the picture are zero or too large.</summary>
        InvalidSize = 3,
    }

    /// <summary>A failure with its reason.</summary>
    public JpegLoadException(string message, ErrorReason reason)
        : base(message) => Reason = reason;

    /// <summary>Why the stream was refused.</summary>
    public ErrorReason Reason { get; }
}

/// <summary>A failure of a PNG image.</summary>
public class PngImageException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public PngImageException() { }

    /// <summary>A failure with its words.</summary>
    public PngImageException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public PngImageException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A layered document is damaged, or cannot be made or written as asked for.</summary>
public class PsdImageException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public PsdImageException() { }

    /// <summary>A failure with its words.</summary>
    public PsdImageException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public PsdImageException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>An argument contradicts the document that it is meant for.</summary>
public class PsdImageArgumentException : PsdImageException
{
    /// <summary>A failure without words of its own.</summary>
    public PsdImageArgumentException() { }

    /// <summary>A failure with its words.</summary>
    public PsdImageArgumentException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public PsdImageArgumentException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A resource of a layered document is damaged.</summary>
public class PsdImageResourceException : PsdImageException
{
    /// <summary>A failure without words of its own.</summary>
    public PsdImageResourceException() { }

    /// <summary>A failure with its words.</summary>
    public PsdImageResourceException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public PsdImageResourceException(string message, Exception innerException)
        : base(message, innerException) { }
}

/// <summary>A failure of a TIFF image.</summary>
public class TiffImageException : ImageException
{
    /// <summary>A failure without words of its own.</summary>
    public TiffImageException() { }

    /// <summary>A failure with its words.</summary>
    public TiffImageException(string message)
        : base(message) { }

    /// <summary>A failure with its words and what caused it.</summary>
    public TiffImageException(string message, Exception innerException)
        : base(message, innerException) { }
}
