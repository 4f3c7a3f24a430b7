// Lines and curves as points with types.
namespace Kelmor.GfxTypes.Drawing2D;

/// <summary>What is inside of a path that crosses itself.</summary>
public enum FillMode
{
    /// <summary>What an odd number of lines surrounds.</summary>
    Alternate = 0,

    /// <summary>What the lines wind round.</summary>
    Winding = 1,
}

/// <summary>
/// A path: each point has a type, 0 for the start of a figure, 1 for the end of a line, 3 for the
/// points of a Bézier curve; 128 is added at the last point of a closed figure.
/// </summary>
public sealed class GraphicsPath : IDisposable
{
    private const byte StartType = 0;
    private const byte LineType = 1;
    private const byte BezierType = 3;
    private const byte CloseFlag = 0x80;

    // How far the control points of a quarter of a circle lie from its ends, in radii.
    private const float Quarter = 0.552284749f;

    private readonly List<PointF> _points = [];
    private readonly List<byte> _types = [];
    private bool _open;

    /// <summary>Makes an empty path.</summary>
    public GraphicsPath() : this(FillMode.Alternate)
    {
    }

    /// <summary>Makes an empty path with a fill mode.</summary>
    public GraphicsPath(FillMode fillMode) => FillMode = fillMode;

    /// <summary>Makes a path of points and their types.</summary>
    public GraphicsPath(PointF[] points, byte[] types)
    {
        ArgumentNullException.ThrowIfNull(points);
        ArgumentNullException.ThrowIfNull(types);
        if (points.Length != types.Length)
        {
            throw new ArgumentException("A path has a type for each of its points.");
        }
        _points.AddRange(points);
        _types.AddRange(types);
        _open = types.Length > 0 && (types[^1] & CloseFlag) == 0;
    }

    /// <summary>What is inside.</summary>
    public FillMode FillMode { get; set; }

    /// <summary>How many points there are.</summary>
    public int PointCount => _points.Count;

    /// <summary>The points.</summary>
    public PointF[] PathPoints => [.. _points];

    /// <summary>The types of the points.</summary>
    public byte[] PathTypes => [.. _types];

    /// <summary>Lets the next line begin a figure of its own.</summary>
    public void StartFigure() => _open = false;

    /// <summary>Joins the last point of the figure to its first.</summary>
    public void CloseFigure()
    {
        if (_open)
        {
            _types[^1] |= CloseFlag;
            _open = false;
        }
    }

    /// <summary>Adds a line; an open figure is first joined to its start.</summary>
    public void AddLine(PointF start, PointF end)
    {
        Begin(start);
        Append(end, LineType);
    }

    /// <summary>Adds lines from point to point.</summary>
    public void AddLines(PointF[] points)
    {
        ArgumentNullException.ThrowIfNull(points);
        for (int i = 0; i < points.Length; i++)
        {
            if (i == 0)
            {
                Begin(points[i]);
            }
            else
            {
                Append(points[i], LineType);
            }
        }
    }

    /// <summary>Adds a Bézier curve.</summary>
    public void AddBezier(PointF start, PointF control1, PointF control2, PointF end)
    {
        Begin(start);
        Append(control1, BezierType);
        Append(control2, BezierType);
        Append(end, BezierType);
    }

    /// <summary>Adds a closed figure of straight lines.</summary>
    public void AddPolygon(PointF[] points)
    {
        StartFigure();
        AddLines(points);
        CloseFigure();
    }

    /// <summary>Adds a rectangle.</summary>
    public void AddRectangle(RectangleF rectangle) => AddPolygon(
    [
        new PointF(rectangle.Left, rectangle.Top), new PointF(rectangle.Right, rectangle.Top),
        new PointF(rectangle.Right, rectangle.Bottom), new PointF(rectangle.Left, rectangle.Bottom),
    ]);

    /// <summary>Adds the ellipse within a rectangle, as four curves.</summary>
    public void AddEllipse(RectangleF rectangle)
    {
        float rx = rectangle.Width / 2f;
        float ry = rectangle.Height / 2f;
        float x = rectangle.X + rx;
        float y = rectangle.Y + ry;
        PointF At(float dx, float dy) => new(x + (dx * rx), y + (dy * ry));

        StartFigure();
        AddBezier(At(1f, 0f), At(1f, Quarter), At(Quarter, 1f), At(0f, 1f));
        AddBezier(At(0f, 1f), At(-Quarter, 1f), At(-1f, Quarter), At(-1f, 0f));
        AddBezier(At(-1f, 0f), At(-1f, -Quarter), At(-Quarter, -1f), At(0f, -1f));
        AddBezier(At(0f, -1f), At(Quarter, -1f), At(1f, -Quarter), At(1f, 0f));
        CloseFigure();
    }

    /// <summary>Moves the points.</summary>
    public void Transform(Matrix matrix)
    {
        ArgumentNullException.ThrowIfNull(matrix);
        PointF[] moved = matrix.TransformPoints(PathPoints);
        _points.Clear();
        _points.AddRange(moved);
    }

    /// <summary>The smallest rectangle round all points, those that steer curves too.</summary>
    public RectangleF GetBounds() => _points.Count == 0
        ? RectangleF.Empty
        : RectangleF.FromLTRB(
            _points.Min(p => p.X), _points.Min(p => p.Y),
            _points.Max(p => p.X), _points.Max(p => p.Y));

    /// <summary>Leaves an empty path.</summary>
    public void Reset()
    {
        _points.Clear();
        _types.Clear();
        _open = false;
        FillMode = FillMode.Alternate;
    }

    /// <summary>A path like this one.</summary>
    public GraphicsPath Clone() =>
        new(PathPoints, PathTypes) { FillMode = FillMode, _open = _open };

    /// <summary>Ends the use of the path, which holds nothing.</summary>
    public void Dispose()
    {
    }

    // An open figure goes on: a line leads to the new point, unless it is there already.
    private void Begin(PointF point)
    {
        if (!_open || _points[^1] != point)
        {
            Append(point, _open ? LineType : StartType);
        }
    }

    private void Append(PointF point, byte type)
    {
        _points.Add(point);
        _types.Add(type);
        _open = true;
    }
}
