// What every test stands on: a connected fake Python, and nothing left over at the end.
using Kelmor.WrpGen.Interop.Tests.Fakes;

[assembly: CollectionBehavior(DisableTestParallelization = true)]

namespace Kelmor.WrpGen.Interop.Tests;

/// <summary>
/// Counts handles before and after a test, and looks that no error is left pending.
/// </summary>
public abstract class TestBase : IDisposable
{
    private readonly long _handles;
    private readonly List<nint> _owned = [];

    protected TestBase()
    {
        FakePython.Start();
        _handles = Handles.Live;
    }

    /// <summary>A handle that the test gives back at its end.</summary>
    protected nint Own(object target)
    {
        _owned.Add(Handles.Alloc(target));
        return _owned[^1];
    }

    /// <summary>What the last entry raised.</summary>
    protected static (string? Type, string? Message) Raised()
    {
        Assert.NotNull(FakePython.Raised);
        (string? Type, string? Message) raised = FakePython.Raised.Value;
        FakePython.Raised = null;
        FakePython.Error = null;
        return raised;
    }

    public void Dispose()
    {
        _owned.ForEach(Handles.Free);
        Assert.Null(FakePython.Raised);
        Assert.Null(FakePython.Error);
        Assert.Equal(_handles, Handles.Live);
        GC.SuppressFinalize(this);
    }
}
