// From a file or stream to the sections of a document.
using Kelmor.PSD.FileFormats.Psd.Reading;

namespace Kelmor.PSD.FileFormats.Psd;

internal static class PsdLoading
{
    public static PsdFile Read(string filePath, LoadOptions? options)
    {
        ArgumentException.ThrowIfNullOrEmpty(filePath);
        using var file = new FileStream(
            filePath,
            FileMode.Open,
            FileAccess.Read,
            FileShare.Read,
            1
        );
        return Read(file, options, out _);
    }

    /// <summary>Reads a document.</summary>
    /// <param name="stream">Read from its present position to its end.</param>
    /// <param name="options">Options, or null for the defaults.</param>
    /// <param name="start">Position at which the document stood; 0 for a stream without
    /// positions.</param>
    public static PsdFile Read(Stream stream, LoadOptions? options, out long start)
    {
        ArgumentNullException.ThrowIfNull(stream);
        start = stream.CanSeek ? stream.Position : 0;
        return PsdReader.Read(
            StreamBytes.ReadToEnd(stream),
            options?.DataRecoveryMode ?? DataRecoveryMode.None
        );
    }
}
