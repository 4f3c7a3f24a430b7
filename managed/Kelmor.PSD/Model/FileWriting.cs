// Writes a file by way of a neighbour, so that a failure leaves the old file whole.
using Kelmor.PSD.CoreExceptions;

namespace Kelmor.PSD;

internal static class FileWriting
{
    private static readonly FileStreamOptions NewFile = new()
    {
        Mode = FileMode.CreateNew,
        Access = FileAccess.Write,
        Share = FileShare.None,
        BufferSize = 1 << 16,
    };

    /// <summary>
    /// Runs a writer over a new file and puts that in place of the old one once it is complete.
    /// </summary>
    /// <exception cref="ImageSaveException">The file is there already and is not to be
    /// replaced.</exception>
    public static void Write(string filePath, bool overWrite, Action<Stream> write)
    {
        if (!overWrite && File.Exists(filePath))
        {
            throw new ImageSaveException($"The file '{filePath}' is there already.");
        }
        var target = ResolveLink(Path.GetFullPath(filePath));
        if (IsDevice(target))
        {
            using var device = new FileStream(target, FileMode.Open, FileAccess.Write);
            write(device);
            return;
        }
        Replace(target, write);
    }

    // The neighbour has a name of its own, so that the longest names can be written too.
    private static void Replace(string target, Action<Stream> write)
    {
        var neighbour = Path.Join(Path.GetDirectoryName(target), $".{Guid.NewGuid():N}.part");
        try
        {
            using (var file = new FileStream(neighbour, NewFile))
            {
                write(file);
            }
            if (!OperatingSystem.IsWindows() && File.Exists(target))
            {
                File.SetUnixFileMode(neighbour, File.GetUnixFileMode(target));
            }
            File.Move(neighbour, target, overwrite: true);
        }
        catch (Exception failure)
        {
            Remove(neighbour);
            if (Renamed(failure, neighbour, target) is { } renamed)
            {
                throw renamed;
            }
            throw;
        }
    }

    private static void Remove(string neighbour)
    {
        if (File.Exists(neighbour))
        {
            File.Delete(neighbour);
        }
    }

    // Nobody who asked for a file knows its neighbour: the words name the file instead.
    private static Exception? Renamed(Exception failure, string neighbour, string target)
    {
        if (!failure.Message.Contains(neighbour, StringComparison.Ordinal))
        {
            return null;
        }
        var words = failure.Message.Replace(neighbour, target, StringComparison.Ordinal);
        return failure switch
        {
            DirectoryNotFoundException => new DirectoryNotFoundException(words, failure),
            UnauthorizedAccessException => new UnauthorizedAccessException(words, failure),
            IOException => new IOException(words, failure),
            _ => null,
        };
    }

    // The name may be a link to the document proper: that one is replaced, not the link.
    private static string ResolveLink(string path) =>
        File.Exists(path)
            ? File.ResolveLinkTarget(path, returnFinalTarget: true)?.FullName ?? path
            : path;

    // Devices take bytes but cannot be replaced by a file.
    private static bool IsDevice(string path) => path.StartsWith("/dev/", StringComparison.Ordinal);
}
