// Exceptions in both directions.
using System.Collections;

namespace Kelmor.Harness;

/// <summary>Raises managed exceptions and reports those that come out of Python callbacks.</summary>
public static class Failures
{
    /// <summary>Throws an exception of this type with this message; null gives a null message.</summary>
    public static void Throw(string type, string? message) => throw Make(type, message);

    /// <summary>Throws an exception that wraps others, this many deep.</summary>
    public static void ThrowNested(int depth)
    {
        Exception inner = new InvalidOperationException("innermost");
        for (int i = 0; i < depth; i++) inner = new ApplicationException($"level {i}", inner);
        throw inner;
    }

    /// <summary>Reads a stream to its end and gives the message of what went wrong, or "".</summary>
    public static string MessageOfRead(Stream stream) => MessageOf(() => Streams.ReadAll(stream));

    /// <summary>Enumerates and gives the message of what went wrong, or "".</summary>
    public static string MessageOfEnumeration(IEnumerable items) =>
        MessageOf(() => Collections.JoinAll(items));

    /// <summary>Indexes a list and gives the message of what went wrong, or "".</summary>
    public static string MessageOfItem(IList items, int index) => MessageOf(() => _ = items[index]);

    /// <summary>Reads a variable whose reference is null.</summary>
    public static int LengthOfNull() => ((string?)Variants.Make("null"))!.Length;

    private static string MessageOf(Action action)
    {
        try
        {
            action();
            return "";
        }
        catch (Exception e)
        {
            return $"{e.GetType().Name}: {e.Message}";
        }
    }

    private static Exception Make(string type, string? message) => type switch
    {
        "argument" => new ArgumentException(message),
        "invalid" => new InvalidOperationException(message),
        "io" => new IOException(message),
        "unsupported" => new NotSupportedException(message),
        "memory" => new OutOfMemoryException(message),
        "null" => new NullMessageException(),
        _ => new Exception(message),
    };

    private sealed class NullMessageException : Exception
    {
        public override string Message => null!;
    }
}
