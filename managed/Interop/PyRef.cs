// One strong reference to a Python object, held by managed code.
namespace Kelmor.WrpGen.Interop;

/// <summary>
/// The owner of one Python reference. An adapter holds one; when the adapter is forgotten, the
/// finaliser here leaves the reference to the queue of late releases.
/// </summary>
internal sealed unsafe class PyRef
{
    /// <summary>What a stream weighs: behind it may stand a whole document in memory.</summary>
    public const int StreamWeight = 128;

    // The collector sees a few bytes where Python holds megabytes, so it is called when this much
    // has been adopted since the last time.
    private const int CollectAt = 4096;

    private static int s_adopted;

    private nint _pyObject;

    private PyRef(nint pyObject) => _pyObject = pyObject;

    /// <summary>Takes a reference of its own to a borrowed object.</summary>
    public static PyRef Borrow(nint pyObject, int weight = 1)
    {
        s_adopted += weight;
        if (s_adopted >= CollectAt)
        {
            s_adopted = 0;
            GC.Collect();
        }
        PyApi.Object->XIncRef(pyObject);
        return new PyRef(pyObject);
    }

    /// <summary>Takes over a reference that the caller owns.</summary>
    public static PyRef Steal(nint pyObject) => new(pyObject);

    ~PyRef()
    {
        if (_pyObject != 0)
        {
            PyReleases.Add(_pyObject);
        }
    }

    /// <summary>The object, borrowed; 0 once released.</summary>
    public nint Pointer => _pyObject;

    /// <summary>Gives the reference back now; only on the thread of a boundary call.</summary>
    public void Release()
    {
        nint pyObject = _pyObject;
        _pyObject = 0;
        GC.SuppressFinalize(this);
        if (pyObject != 0)
        {
            PyApi.Object->XDecRef(pyObject);
        }
    }
}

/// <summary>
/// An adapter over a Python object, which comes back to Python as that very object.
/// </summary>
internal interface IPyAdapter
{
    /// <summary>The object, borrowed.</summary>
    nint PyObject { get; }
}
