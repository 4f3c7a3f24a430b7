// Direction of lines of text.
namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>Direction of lines of text.</summary>
public enum TextOrientation
{
    Horizontal = 0,
    Vertical = 1,
}
