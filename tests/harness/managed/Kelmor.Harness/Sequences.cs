// Classes that are themselves an enumerable or an enumerator.
using System.Collections;

namespace Kelmor.Harness;

/// <summary>Three, two, one.</summary>
public sealed class Countdown : IEnumerator
{
    private int left = 4;

    /// <summary>The number at which it stands.</summary>
    public object Current => left;

    /// <summary>Goes on to the next number; false at the end.</summary>
    public bool MoveNext() => left > 1 && left-- > 1;

    /// <summary>Starts anew.</summary>
    public void Reset() => left = 4;
}

/// <summary>Counts down anew for each who asks.</summary>
public sealed class Launch : IEnumerable
{
    /// <summary>A new countdown.</summary>
    public IEnumerator GetEnumerator() => new Countdown();
}
