// Finds the native codec library among the builds of the repository.
using System.Reflection;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using Kelmor.PSD.Codecs.Native;

namespace Kelmor.PSD.Tests.Codecs;

internal static class NativeLibraryPath
{
    public const string Absence = "libkelmor.imaging.so is not built; KELMOR_IMAGING can name it.";

    public static string? Path { get; } = Find();

    [ModuleInitializer]
    internal static void Connect() =>
        NativeLibrary.SetDllImportResolver(typeof(Image).Assembly, Resolve);

    private static nint Resolve(string name, Assembly assembly, DllImportSearchPath? search) =>
        name == NativeImaging.Library && Path is not null ? NativeLibrary.Load(Path) : 0;

    private static string? Find()
    {
        if (Environment.GetEnvironmentVariable("KELMOR_IMAGING") is { Length: > 0 } named)
        {
            return named;
        }
        for (
            var folder = new DirectoryInfo(AppContext.BaseDirectory);
            folder is not null;
            folder = folder.Parent
        )
        {
            var build = System.IO.Path.Combine(folder.FullName, "build");
            if (
                Directory.Exists(System.IO.Path.Combine(folder.FullName, "managed"))
                && Directory.Exists(build)
            )
            {
                var parts = new[]
                {
                    "package",
                    "kelmor",
                    "assemblies",
                    "psd",
                    NativeImaging.Library,
                };
                return Directory
                    .GetDirectories(build)
                    .Where(one => System.IO.Path.GetFileName(one) != "asan")
                    .Select(one => System.IO.Path.Combine([one, .. parts]))
                    .Where(File.Exists)
                    .MaxBy(File.GetLastWriteTimeUtc);
            }
        }
        return null;
    }
}

/// <summary>A fact that needs the native codecs; skipped where they are not built.</summary>
public sealed class NativeFactAttribute : FactAttribute
{
    public NativeFactAttribute() =>
        Skip = NativeLibraryPath.Path is null ? NativeLibraryPath.Absence : null;
}

/// <summary>A theory that needs the native codecs; skipped where they are not built.</summary>
public sealed class NativeTheoryAttribute : TheoryAttribute
{
    public NativeTheoryAttribute() =>
        Skip = NativeLibraryPath.Path is null ? NativeLibraryPath.Absence : null;
}

/// <summary>A theory over the corpus that needs the native codecs.</summary>
public sealed class NativeCorpusTheoryAttribute : TheoryAttribute
{
    public NativeCorpusTheoryAttribute() =>
        Skip =
            NativeLibraryPath.Path is null ? NativeLibraryPath.Absence
            : Corpus.CorpusFiles.Folder is null ? Corpus.CorpusFiles.Absence
            : null;
}
