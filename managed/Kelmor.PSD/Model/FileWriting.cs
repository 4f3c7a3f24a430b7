// Writes a file by way of a neighbour, so that a failure leaves the old file whole.
using Kelmor.PSD.CoreExceptions;

namespace Kelmor.PSD;

internal static class FileWriting
{
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

    private static void Replace(string target, Action<Stream> write)
    {
        var neighbour = $"{target}.{Environment.ProcessId}-{Guid.NewGuid():N}.part";
        try
        {
            using (
                var file = new FileStream(
                    neighbour,
                    FileMode.CreateNew,
                    FileAccess.Write,
                    FileShare.None,
                    1 << 16
                )
            )
            {
                write(file);
            }
            if (!OperatingSystem.IsWindows() && File.Exists(target))
            {
                File.SetUnixFileMode(neighbour, File.GetUnixFileMode(target));
            }
            File.Move(neighbour, target, overwrite: true);
        }
        catch
        {
            File.Delete(neighbour);
            throw;
        }
    }

    // The name may be a link to the document proper: that one is replaced, not the link.
    private static string ResolveLink(string path) =>
        File.Exists(path)
            ? File.ResolveLinkTarget(path, returnFinalTarget: true)?.FullName ?? path
            : path;

    // Devices take bytes but cannot be replaced by a file.
    private static bool IsDevice(string path) => path.StartsWith("/dev/", StringComparison.Ordinal);
}
