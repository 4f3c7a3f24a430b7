// A Python error as managed code sees it.
namespace Kelmor.WrpGen.Interop;

/// <summary>
/// Thrown when a call back into Python failed. The message is the text that Python itself would
/// print; the Python error is no longer pending.
/// </summary>
public sealed class PythonException : Exception
{
    /// <summary>Makes the exception with the text of the Python error.</summary>
    public PythonException(string message) : base(message)
    {
    }
}
