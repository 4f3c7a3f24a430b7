// The two variants of the format.
namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>The two variants of the format: PSB has longer fields and larger sides.</summary>
public enum PsdVersion : byte
{
    Psd = 1,
    Psb = 2,
}
