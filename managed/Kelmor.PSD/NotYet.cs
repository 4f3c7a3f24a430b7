// What a member throws whose work is not done: the documentation lists every caller by this name.
using System.Diagnostics;
using System.Runtime.CompilerServices;

namespace Kelmor.PSD;

internal static class NotYet
{
    /// <summary>The exception that names the calling type and member.</summary>
    /// <remarks>Not inlined on either side of the call, so that the frame above is the member
    /// itself.</remarks>
    [MethodImpl(MethodImplOptions.NoInlining)]
    public static NotSupportedException Member([CallerMemberName] string member = "")
    {
        var type = new StackTrace(1, false).GetFrame(0)?.GetMethod()?.DeclaringType;
        return new NotSupportedException(
            $"'{type?.FullName ?? "Kelmor.PSD"}.{member}' is not supported yet."
        );
    }
}
