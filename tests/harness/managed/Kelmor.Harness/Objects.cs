// Classes with state, casts, statics, and results of every kind of declared type.
namespace Kelmor.Harness;

/// <summary>What has an area.</summary>
public interface IFigure
{
    /// <summary>Area in square units.</summary>
    double Area { get; }

    /// <summary>Name of the figure.</summary>
    string Describe();

    /// <summary>The figure scaled by a factor.</summary>
    IFigure Scale(double factor);
}

/// <summary>A figure that shows the interface on its own surface.</summary>
public class Circle(double radius) : IFigure
{
    /// <summary>Radius in units.</summary>
    public double Radius { get; set; } = radius;

    /// <inheritdoc/>
    public double Area => Math.PI * Radius * Radius;

    /// <inheritdoc/>
    public string Describe() => "circle";

    /// <inheritdoc/>
    public IFigure Scale(double factor) => new Circle(Radius * factor);
}

/// <summary>A figure that implements the interface explicitly.</summary>
public class Plate(double side) : IFigure
{
    /// <summary>Length of a side in units.</summary>
    public double Side { get; } = side;

    double IFigure.Area => Side * Side;

    string IFigure.Describe() => "plate";

    IFigure IFigure.Scale(double factor) => new Plate(Side * factor);
}

/// <summary>A base class with state.</summary>
public class Counter : IDisposable
{
    private static int s_made;

    /// <summary>A counter at 0.</summary>
    public Counter() : this(0) { }

    /// <summary>A counter at <paramref name="start"/>.</summary>
    public Counter(int start)
    {
        Value = start;
        s_made++;
    }

    /// <summary>A counter with a name.</summary>
    public Counter(string name) : this(0) => Name = name;

    /// <summary>A counter over the bytes of a block.</summary>
    public Counter(byte[] block, string name) : this(block.Length) => Name = name;

    /// <summary>How a counter moves.</summary>
    public enum Direction { Up = 1, Down = -1 }

    /// <summary>How many counters were ever made.</summary>
    public static int Made => s_made;

    /// <summary>Step of every counter; can be written.</summary>
    public static int Step { get; set; } = 1;

    /// <summary>The greatest value that a counter takes.</summary>
    public const int Limit = 1_000_000;

    /// <summary>The count.</summary>
    public int Value { get; set; }

    /// <summary>The name, or null.</summary>
    public string? Name { get; set; }

    /// <summary>Whether <see cref="Dispose"/> has run.</summary>
    public bool Disposed { get; private set; }

    /// <summary>The counter that this one was made from.</summary>
    public Counter? Parent { get; private set; }

    /// <summary>Moves by the step.</summary>
    public void Increment() => Value += Step;

    /// <summary>Moves by <paramref name="amount"/>.</summary>
    public int Add(int amount) => Value += amount;

    /// <summary>Moves by the value of another counter.</summary>
    public int Add(Counter other) => Value += other.Value;

    /// <summary>Moves by both numbers of a pair.</summary>
    public int Add(Pair pair) => Value += pair.Sum();

    /// <summary>Moves in a direction.</summary>
    public int Move(Direction direction) => Value += (int)direction * Step;

    /// <summary>A new counter at the same value whose parent is this one.</summary>
    public virtual Counter Fork() => new(Value) { Parent = this };

    /// <summary>Marks the counter as disposed.</summary>
    public void Dispose()
    {
        Disposed = true;
        GC.SuppressFinalize(this);
    }

    /// <inheritdoc/>
    public override string ToString() => $"Counter {Name ?? "?"} at {Value}";
}

/// <summary>A derived class, to be reached by a cast.</summary>
public class LoudCounter : Counter
{
    /// <summary>A counter at <paramref name="start"/> that shouts.</summary>
    public LoudCounter(int start) : base(start) { }

    /// <summary>Moves by a text's length.</summary>
    public int Add(string text) => Value += text.Length;

    /// <summary>The count in capitals.</summary>
    public string Shout() => $"COUNTER AT {Value}!";

    /// <inheritdoc/>
    public override Counter Fork() => new LoudCounter(Value);

    /// <summary>A loud counter, declared as its base.</summary>
    public static Counter MakeAsBase(int start) => new LoudCounter(start);
}

/// <summary>Gives and takes objects by every kind of declared type.</summary>
public static class Objects
{
    /// <summary>A class, also null.</summary>
    public static Counter? EchoCounter(Counter? counter) => counter;

    /// <summary>A struct.</summary>
    public static Pair EchoPair(Pair pair) => pair;

    /// <summary>An interface, also null.</summary>
    public static IFigure? EchoFigure(IFigure? figure) => figure;

    /// <summary>A figure that shows its interface.</summary>
    public static IFigure MakeCircle(double radius) => new Circle(radius);

    /// <summary>A figure that hides its interface.</summary>
    public static IFigure MakePlate(double side) => new Plate(side);

    /// <summary>A figure of a type that is not public.</summary>
    public static IFigure MakeHidden() => new HiddenFigure();

    private sealed class HiddenFigure : IFigure
    {
        public double Area => 1;

        public string Describe() => "hidden";

        public IFigure Scale(double factor) => this;
    }
}
