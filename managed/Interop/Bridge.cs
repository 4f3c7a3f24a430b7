// Exceptions in both directions: managed ones to Python, Python ones into managed code.
using System.Text;

namespace Kelmor.WrpGen.Interop;

/// <summary>
/// The one funnel of errors. An entry catches everything and returns what <see cref="Raise{T}"/>
/// gives; a callback that reports failure is answered with <see cref="PythonError"/>.
/// </summary>
internal static unsafe class Bridge
{
    /// <summary>
    /// The first step of an entry: gives back the Python references that finalisers let go.
    /// </summary>
    public static void Enter() => PyReleases.Drain();

    /// <summary>
    /// Leaves the exception to Python as its error; gives the default of the result.
    /// </summary>
    public static T? Raise<T>(Exception exception)
    {
        Raise(exception);
        return default;
    }

    /// <summary>Leaves the exception to Python as its error; never throws.</summary>
    public static void Raise(Exception exception)
    {
        if (PyApi.OnException == null)
        {
            return;
        }
        nint typeName = 0;
        nint message = 0;
        try
        {
            typeName = Text(NameOf(exception));
            message = Text(MessageOf(exception));
        }
        catch (Exception)
        {
            // What could be made is handed over; the native side has words for what is missing.
        }
        PyApi.OnException(typeName, message);
    }

    /// <summary>As <see cref="Raise{T}"/>, with the status that stands for failure.</summary>
    public static int Fail(Exception exception, int status = -1)
    {
        Raise(exception);
        return status;
    }

    /// <summary>
    /// Takes the pending Python error away and gives it as an exception to throw.
    /// </summary>
    public static PythonException PythonError() =>
        PendingError() ?? new PythonException("A call into Python failed without an error.");

    /// <summary>As <see cref="PythonError"/>; null when no error is pending.</summary>
    public static PythonException? PendingError()
    {
        nint owner = 0;
        PyStringArg text;
        text.Length = -1;
        if (PyApi.CatchAndClearError(&owner, &text) != 0)
        {
            return null;
        }
        try
        {
            return new PythonException(PyStrings.Decode(&text) ?? "");
        }
        finally
        {
            PyApi.Object->XDecRef(owner);
        }
    }

    /// <summary>Throws when a callback gave no object.</summary>
    public static nint Checked(nint pyObject) => pyObject != 0 ? pyObject : throw PythonError();

    // A str for the error, or 0. Lone surrogates would make the builder fail and hide the message.
    private static nint Text(string? text)
    {
        if (text is null || PyApi.CreateString == null)
        {
            return 0;
        }
        string plain = PyStrings.WithoutLoneSurrogates(text);
        fixed (char* characters = plain)
        {
            return PyApi.CreateString(characters, plain.Length);
        }
    }

    private static string NameOf(Exception exception) =>
        exception.GetType().FullName ?? exception.GetType().Name;

    // The message, followed by those of the inner exceptions. An aggregate lists them itself.
    private static string? MessageOf(Exception exception)
    {
        string? message = exception.Message;
        if (exception.InnerException is null || exception is AggregateException)
        {
            return message;
        }
        var all = new StringBuilder(message);
        Exception? inner = exception.InnerException;
        for (int depth = 0; inner is not null && depth < 16; inner = inner.InnerException, depth++)
        {
            all.Append(" ---> ").Append(NameOf(inner)).Append(": ").Append(inner.Message);
        }
        return all.ToString();
    }
}
