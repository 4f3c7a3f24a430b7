// References that finalisers let go wait for the next boundary call.
using System.Runtime.CompilerServices;
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class PyReleasesTests : TestBase
{
    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void AdoptStreams(nint pyObject, int times)
    {
        for (int i = 0; i < times; i++)
        {
            _ = new PyStream(pyObject);
        }
    }

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void Adopt(nint pyObject, int times)
    {
        for (int i = 0; i < times; i++)
        {
            _ = new PyList(pyObject);
        }
    }

    private static void Collect()
    {
        for (int i = 0; i < 2; i++)
        {
            GC.Collect();
            GC.WaitForPendingFinalizers();
        }
    }

    [Fact]
    [Trait("behaviour", "marshal-records.variant.kept-object-pinned")]
    public void A_forgotten_adapter_gives_its_reference_back_at_the_next_boundary_call()
    {
        nint list = FakePython.NewList();
        Adopt(list, 3);
        Assert.Equal(4, FakePython.Refs(list));
        Collect();
        Assert.True(PyReleases.Count >= 3);
        Assert.Equal(4, FakePython.Refs(list));

        Handles.Free(0);
        Assert.Equal(4, FakePython.Refs(list));
        Entry.Int("ExchangeHost", "FreeInstance", 0);
        Assert.Equal(1, FakePython.Refs(list));
        Assert.Equal(0, PyReleases.Count);
        FakePython.Release(list);
    }

    [Fact]
    public void The_diagnostic_collection_leaves_nothing_waiting()
    {
        nint list = FakePython.NewList();
        Adopt(list, 5);
        Entry.Void("Diagnostics", "Collect");
        Assert.Equal(1, FakePython.Refs(list));
        Assert.Equal(0, Entry.Int("Diagnostics", "QueueLength", 0));
        FakePython.Release(list);
    }

    [Fact]
    public void Many_threads_may_let_go_at_once()
    {
        nint list = FakePython.New(new List<nint>());
        const int Threads = 8;
        const int Each = 5000;
        for (int i = 0; i < Threads * Each; i++)
        {
            FakePython.Retain(list);
        }
        Thread[] threads = [.. Enumerable.Range(0, Threads).Select(_ => new Thread(() =>
        {
            for (int i = 0; i < Each; i++)
            {
                PyReleases.Add(list);
            }
        }))];
        Array.ForEach(threads, thread => thread.Start());
        for (int i = 0; i < 100; i++)
        {
            Bridge.Enter();
        }
        Array.ForEach(threads, thread => thread.Join());
        Bridge.Enter();
        Assert.Equal(1, FakePython.Refs(list));
        Assert.Equal(0, PyReleases.Count);
        FakePython.Release(list);
    }

    [Fact]
    public void The_collector_is_called_when_much_was_adopted()
    {
        nint list = FakePython.NewList();
        int before = GC.CollectionCount(2);
        Adopt(list, 10_000);
        Assert.InRange(GC.CollectionCount(2) - before, 2, 50);

        // A stream weighs as much as many lists.
        nint file = FakePython.New(new FakeFile());
        before = GC.CollectionCount(2);
        AdoptStreams(file, 100);
        Assert.InRange(GC.CollectionCount(2) - before, 2, 50);
        Entry.Void("Diagnostics", "Collect");
        Assert.Equal((1, 1), (FakePython.Refs(list), FakePython.Refs(file)));
        FakePython.Release(list);
        FakePython.Release(file);
    }

    [Fact]
    public void A_released_reference_is_given_back_once()
    {
        nint list = FakePython.NewList();
        PyRef reference = PyRef.Borrow(list);
        reference.Release();
        reference.Release();
        Assert.Equal(1, FakePython.Refs(list));
        Assert.Equal(0, reference.Pointer);
        FakePython.Release(list);
    }
}
