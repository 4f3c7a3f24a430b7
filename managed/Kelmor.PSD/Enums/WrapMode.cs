// How a texture or gradient goes on beyond its edge.
namespace Kelmor.PSD;

/// <summary>How a texture or gradient goes on beyond its edge.</summary>
public enum WrapMode
{
    Tile = 0,
    TileFlipX = 1,
    TileFlipY = 2,
    TileFlipXY = 3,
    Clamp = 4,
}
