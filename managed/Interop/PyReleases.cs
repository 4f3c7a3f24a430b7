// Python references that managed finalisers let go, kept until a thread may touch Python again.
namespace Kelmor.WrpGen.Interop;

/// <summary>
/// The queue of late releases. A finaliser runs on a thread without the interpreter lock, so it
/// only puts its pointer here; the next boundary call, which holds the lock, gives the references
/// back.
/// </summary>
internal static unsafe class PyReleases
{
    private sealed class Node(nint pyObject)
    {
        public readonly nint PyObject = pyObject;
        public Node? Next;
    }

    private static Node? s_head;
    private static int s_count;

    /// <summary>References that wait.</summary>
    public static int Count => Volatile.Read(ref s_count);

    /// <summary>Queues one reference; callable on any thread.</summary>
    public static void Add(nint pyObject)
    {
        var node = new Node(pyObject);
        Interlocked.Increment(ref s_count);
        do
        {
            node.Next = Volatile.Read(ref s_head);
        }
        while (Interlocked.CompareExchange(ref s_head, node, node.Next) != node.Next);
    }

    /// <summary>
    /// Gives back what waits. The test for nothing is all that a usual call pays.
    /// </summary>
    public static void Drain()
    {
        if (s_head is not null)
        {
            DrainAll();
        }
    }

    private static void DrainAll()
    {
        // The whole chain is taken first: a release runs Python code, which may come back here.
        Node? node = Interlocked.Exchange(ref s_head, null);
        for (; node is not null; node = node.Next)
        {
            Interlocked.Decrement(ref s_count);
            PyApi.Object->XDecRef(node.PyObject);
        }
    }
}
