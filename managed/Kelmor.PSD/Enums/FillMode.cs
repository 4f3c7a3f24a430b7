// Which areas of a path count as inside.
namespace Kelmor.PSD;

/// <summary>Which areas of a path count as inside.</summary>
public enum FillMode
{
    Alternate = 0,
    Winding = 1,
}
