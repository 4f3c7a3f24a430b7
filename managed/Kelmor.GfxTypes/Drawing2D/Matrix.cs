// An affine transformation of the plane.
namespace Kelmor.GfxTypes.Drawing2D;

/// <summary>On which side a further transformation is applied.</summary>
public enum MatrixOrder
{
    /// <summary>Before what the matrix does.</summary>
    Prepend = 0,

    /// <summary>After what the matrix does.</summary>
    Append = 1,
}

/// <summary>
/// An affine transformation: x' = m11 x + m21 y + dx, y' = m12 x + m22 y + dy.
/// </summary>
public sealed class Matrix : IDisposable, IEquatable<Matrix>
{
    private float[] _elements;

    /// <summary>Makes the transformation that changes nothing.</summary>
    public Matrix() : this(1f, 0f, 0f, 1f, 0f, 0f)
    {
    }

    /// <summary>Makes a transformation of its six elements.</summary>
    public Matrix(float m11, float m12, float m21, float m22, float dx, float dy) =>
        _elements = [m11, m12, m21, m22, dx, dy];

    /// <summary>The six elements.</summary>
    public float[] Elements => [.. _elements];

    /// <summary>Movement to the right.</summary>
    public float OffsetX => _elements[4];

    /// <summary>Movement downwards.</summary>
    public float OffsetY => _elements[5];

    /// <summary>Whether nothing is changed.</summary>
    public bool IsIdentity => _elements.AsSpan().SequenceEqual([1f, 0f, 0f, 1f, 0f, 0f]);

    /// <summary>Whether the transformation can be undone.</summary>
    public bool IsInvertible => Determinant is var value && value != 0f && float.IsFinite(value);

    private float Determinant => (_elements[0] * _elements[3]) - (_elements[1] * _elements[2]);

    /// <summary>Makes it the transformation that changes nothing.</summary>
    public void Reset() => _elements = [1f, 0f, 0f, 1f, 0f, 0f];

    /// <summary>Applies another transformation first.</summary>
    public void Multiply(Matrix matrix) => Multiply(matrix, MatrixOrder.Prepend);

    /// <summary>Applies another transformation first or last.</summary>
    public void Multiply(Matrix matrix, MatrixOrder order)
    {
        ArgumentNullException.ThrowIfNull(matrix);
        _elements = order == MatrixOrder.Prepend
            ? Product(matrix._elements, _elements)
            : Product(_elements, matrix._elements);
    }

    /// <summary>Moves first.</summary>
    public void Translate(float offsetX, float offsetY) =>
        Multiply(new Matrix(1f, 0f, 0f, 1f, offsetX, offsetY));

    /// <summary>Scales first.</summary>
    public void Scale(float scaleX, float scaleY) =>
        Multiply(new Matrix(scaleX, 0f, 0f, scaleY, 0f, 0f));

    /// <summary>Shears first.</summary>
    public void Shear(float shearX, float shearY) =>
        Multiply(new Matrix(1f, shearY, shearX, 1f, 0f, 0f));

    /// <summary>Turns first, by degrees, from the x axis to the y axis.</summary>
    public void Rotate(float angle)
    {
        (float sin, float cos) = MathF.SinCos(angle * MathF.PI / 180f);
        Multiply(new Matrix(cos, sin, -sin, cos, 0f, 0f));
    }

    /// <summary>Makes it the transformation that undoes this one.</summary>
    public void Invert()
    {
        if (!IsInvertible)
        {
            throw new ArgumentException("The matrix cannot be inverted.");
        }
        float[] e = _elements;
        float d = Determinant;
        _elements =
        [
            e[3] / d, -e[1] / d, -e[2] / d, e[0] / d,
            ((e[2] * e[5]) - (e[3] * e[4])) / d, ((e[1] * e[4]) - (e[0] * e[5])) / d,
        ];
    }

    /// <summary>Where points come to lie.</summary>
    public PointF[] TransformPoints(PointF[] points)
    {
        ArgumentNullException.ThrowIfNull(points);
        return Array.ConvertAll(points, Transform);
    }

    /// <summary>A matrix like this one.</summary>
    public Matrix Clone() => new() { _elements = [.. _elements] };

    /// <inheritdoc/>
    public bool Equals(Matrix? other) =>
        other is not null && _elements.AsSpan().SequenceEqual(other._elements);

    /// <inheritdoc/>
    public override bool Equals(object? obj) => Equals(obj as Matrix);

    /// <inheritdoc/>
    public override int GetHashCode() => HashCode.Combine(
        _elements[0], _elements[1], _elements[2], _elements[3], _elements[4], _elements[5]);

    /// <summary>Ends the use of the matrix, which holds nothing.</summary>
    public void Dispose()
    {
    }

    private PointF Transform(PointF point) => new(
        (_elements[0] * point.X) + (_elements[2] * point.Y) + _elements[4],
        (_elements[1] * point.X) + (_elements[3] * point.Y) + _elements[5]);

    // First a, then b.
    private static float[] Product(float[] a, float[] b) =>
    [
        (a[0] * b[0]) + (a[1] * b[2]), (a[0] * b[1]) + (a[1] * b[3]),
        (a[2] * b[0]) + (a[3] * b[2]), (a[2] * b[1]) + (a[3] * b[3]),
        (a[4] * b[0]) + (a[5] * b[2]) + b[4], (a[4] * b[1]) + (a[5] * b[3]) + b[5],
    ];
}
