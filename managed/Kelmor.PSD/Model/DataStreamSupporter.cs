// What is read from a stream and can be written to one.
namespace Kelmor.PSD;

/// <summary>An object whose data come from a stream.</summary>
public abstract class DataStreamSupporter : DisposableObject
{
    /// <summary>The stream that the data came from; null for what was made in memory.</summary>
    public StreamContainer? DataStreamContainer { get; internal set; }

    /// <summary>
    /// True when all data are decoded, so that the stream is not needed any more.
    /// </summary>
    public abstract bool IsCached { get; }

    /// <summary>Decodes all data now instead of at first use.</summary>
    public abstract void CacheData();

    /// <summary>Writes the data in their own format from the stream's position on.</summary>
    public virtual void Save(Stream stream)
    {
        ArgumentNullException.ThrowIfNull(stream);
        VerifyNotDisposed();
        SaveData(stream);
    }

    /// <summary>Writes the data to a file, in place of what the file held.</summary>
    public virtual void Save(string filePath) => Save(filePath, true);

    /// <summary>Writes the data to a file.</summary>
    /// <param name="filePath">Path of the file.</param>
    /// <param name="overWrite">False: a file that is there already is an exception.</param>
    /// <exception cref="CoreExceptions.ImageSaveException">The file is there already and is not to
    /// be replaced.</exception>
    public virtual void Save(string filePath, bool overWrite)
    {
        ArgumentException.ThrowIfNullOrEmpty(filePath);
        VerifyNotDisposed();
        FileWriting.Write(filePath, overWrite, SaveData);
    }

    /// <summary>Writes the data in their own format.</summary>
    protected abstract void SaveData(Stream stream);
}
