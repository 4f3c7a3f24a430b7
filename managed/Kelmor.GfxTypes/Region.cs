// An area made of rectangles.
namespace Kelmor.GfxTypes;

/// <summary>An area, kept as rectangles that do not overlap.</summary>
public sealed class Region : IDisposable
{
    private List<RectangleF> _parts = [];

    /// <summary>Makes an empty region.</summary>
    public Region()
    {
    }

    /// <summary>Makes a region of one rectangle.</summary>
    public Region(RectangleF rectangle) => Union(rectangle);

    /// <summary>Whether there is no area.</summary>
    public bool IsEmpty => _parts.Count == 0;

    /// <summary>Adds a rectangle.</summary>
    public void Union(RectangleF rectangle)
    {
        if (!rectangle.IsEmpty)
        {
            Exclude(rectangle);
            _parts.Add(rectangle);
        }
    }

    /// <summary>Takes a rectangle away.</summary>
    public void Exclude(RectangleF rectangle) =>
        _parts = [.. _parts.SelectMany(part => Without(part, rectangle))];

    /// <summary>Keeps what a rectangle covers.</summary>
    public void Intersect(RectangleF rectangle) =>
        _parts = [.. _parts.Select(part => RectangleF.Intersect(part, rectangle))
            .Where(part => !part.IsEmpty)];

    /// <summary>Moves the region.</summary>
    public void Translate(float x, float y)
    {
        for (int i = 0; i < _parts.Count; i++)
        {
            RectangleF part = _parts[i];
            part.Offset(x, y);
            _parts[i] = part;
        }
    }

    /// <summary>Leaves nothing.</summary>
    public void MakeEmpty() => _parts.Clear();

    /// <summary>Whether a point is inside.</summary>
    public bool IsVisible(PointF point) => _parts.Exists(part => part.Contains(point));

    /// <summary>The smallest rectangle round the region.</summary>
    public RectangleF GetBounds() =>
        _parts.Count == 0 ? RectangleF.Empty : _parts.Aggregate(RectangleF.Union);

    /// <summary>The rectangles, which do not overlap.</summary>
    public RectangleF[] GetRegionScans() => [.. _parts];

    /// <summary>A region like this one.</summary>
    public Region Clone() => new() { _parts = [.. _parts] };

    /// <summary>Ends the use of the region, which holds nothing.</summary>
    public void Dispose()
    {
    }

    // The up to four bands of a rectangle that lie outside another.
    private static IEnumerable<RectangleF> Without(RectangleF part, RectangleF hole)
    {
        if (!part.IntersectsWith(hole))
        {
            return [part];
        }
        float top = Math.Max(part.Top, hole.Top);
        float bottom = Math.Min(part.Bottom, hole.Bottom);
        RectangleF[] bands =
        [
            RectangleF.FromLTRB(part.Left, part.Top, part.Right, top),
            RectangleF.FromLTRB(part.Left, bottom, part.Right, part.Bottom),
            RectangleF.FromLTRB(part.Left, top, Math.Max(part.Left, hole.Left), bottom),
            RectangleF.FromLTRB(Math.Min(part.Right, hole.Right), top, part.Right, bottom),
        ];
        return bands.Where(band => !band.IsEmpty);
    }
}
