// A file opened as a stream that ends with its holder.
namespace Kelmor.PSD;

/// <summary>The stream of a file.</summary>
public class FileStreamContainer : StreamContainer
{
    /// <summary>Opens a file for reading.</summary>
    public FileStreamContainer(string filePath)
        : base(new FileStream(filePath, FileMode.Open, FileAccess.Read, FileShare.Read), true) =>
        FilePath = filePath;

    /// <summary>Path of the file.</summary>
    public string FilePath { get; }
}
