// Classes, structs and interfaces: overloads, overrides, statics, mixed names.
namespace Kelmor.Harness;

public interface IShape
{
    double Area { get; }
    string Title { get; set; }
    double Scale(double factor);
    double Scale(double x, double y);
}

public abstract class ShapeBase : IShape, IDisposable
{
    public abstract double Area { get; }
    public string Title { get; set; } = "";
    public bool Disposed { get; private set; }
    public double Scale(double factor) => Area * factor * factor;
    public double Scale(double x, double y) => Area * x * y;
    public virtual string Describe(string text) => "base " + text;
    public virtual string Describe(int number) => $"base {number}";

    public void Dispose()
    {
        Disposed = true;
        GC.SuppressFinalize(this);
    }
}

public sealed class Square : ShapeBase
{
    public Square() { }

    public Square(double side) => Side = side;

    public Square(byte[] bytes, string name)
    {
        ArgumentNullException.ThrowIfNull(bytes);
        Side = bytes.Length;
        Title = name;
    }

    public const double Unit = 1;
    public static Square Default { get; set; } = new(2);

    public double Side { get; set; }
    public override double Area => Side * Side;
    public IShape? Neighbour { get; set; }
    public Square? Twin { get; set; }
    public override string Describe(int number) => $"square {number}";
    public string Describe(bool flag) => $"square {flag}";
    public static Square Parse(string text) => new(double.Parse(text, System.Globalization.CultureInfo.InvariantCulture));
    public static Square Parse(double side) => new(side);
    public void Fail(string? message) => throw new InvalidOperationException(message);
    public bool Equals(Square? other) => other is not null && other.Side == Side;
    public override bool Equals(object? obj) => Equals(obj as Square);
    public override int GetHashCode() => Side.GetHashCode();
    public override string ToString() => $"Square({Side})";
}

public struct Pair : IEquatable<Pair>
{
    public static readonly Pair Zero = new(0, 0);

    public Pair(int left, int right)
    {
        Left = left;
        Right = right;
    }

    public int Left { get; set; }
    public int Right { get; set; }
    public readonly int Sum() => Left + Right;
    public static Pair Swap(Pair pair) => new(pair.Right, pair.Left);
    public void Swap() => (Left, Right) = (Right, Left);
    public readonly bool Equals(Pair other) => Left == other.Left && Right == other.Right;
    public override readonly bool Equals(object? obj) => obj is Pair pair && Equals(pair);
    public override readonly int GetHashCode() => HashCode.Combine(Left, Right);
    public override readonly string ToString() => $"({Left}, {Right})";
    public static bool operator ==(Pair left, Pair right) => left.Equals(right);
    public static bool operator !=(Pair left, Pair right) => !left.Equals(right);
}
