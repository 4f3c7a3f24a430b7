// Documents with random damage give an exception of the library, or load in part; nothing else.
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.FileFormats.Psd;

namespace Kelmor.PSD.Tests.Corpus;

public class DamageTests
{
    private const int LargestFile = 200_000;
    private static readonly int Rounds = int.Parse(
        Environment.GetEnvironmentVariable("KELMOR_DAMAGE_ROUNDS") ?? "6"
    );

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void Altered_bytes_end_in_an_exception_of_the_library_or_in_a_document(string file)
    {
        var original = CorpusFiles.Bytes(file);
        for (var seed = 0; seed < Rounds && original.Length <= LargestFile; seed++)
        {
            var random = new Random(seed);
            var bytes = (byte[])original.Clone();
            // Lengths and counts stand in the first part of every section: most damage goes there.
            var reach = seed % 2 == 0 ? Math.Min(2000, bytes.Length) : bytes.Length;
            for (var i = 0; i < 1 + seed % 8; i++)
            {
                bytes[random.Next(reach)] = (byte)(random.Next(3) == 0 ? 255 : random.Next(256));
            }
            Try(bytes, (DataRecoveryMode)(seed % 3));
        }
    }

    [CorpusTheory]
    [ClassData(typeof(ReadableDocuments))]
    public void Cut_documents_end_in_an_exception_of_the_library_or_in_a_document(string file)
    {
        var original = CorpusFiles.Bytes(file);
        for (var seed = 0; seed < Rounds && original.Length <= LargestFile; seed++)
        {
            var length = new Random(seed).Next(original.Length);
            Try(original[..length], (DataRecoveryMode)(seed % 3));
        }
    }

    private static void Try(byte[] bytes, DataRecoveryMode recovery)
    {
        try
        {
            using var image = (PsdImage)
                Image.Load(
                    new MemoryStream(bytes),
                    new LoadOptions { DataRecoveryMode = recovery }
                );
            using var copy = new MemoryStream();
            image.Save(copy);
            Assert.NotEqual(0, copy.Length);
            image.Layers.ToList().ForEach(layer => Assert.NotNull(layer.Name));
            image.CacheData();
            _ = image.LoadArgb32Pixels(
                new Rectangle(0, 0, Math.Min(image.Width, 64), Math.Min(image.Height, 64))
            );
        }
        catch (FrameworkException failure)
        {
            Assert.NotEmpty(failure.Message);
        }
    }
}
