// Exceptions both ways: what is handed over, and that nothing ever escapes.
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class BridgeTests : TestBase
{
    private sealed class Speechless : Exception
    {
        public override string Message => null!;
    }

    private sealed class Malicious : Exception
    {
        public override string Message => throw new InvalidOperationException("no message");
    }

    [Fact]
    public void The_full_type_name_and_the_message_are_handed_over()
    {
        int alive = FakePython.Alive;
        Assert.Equal(0, Bridge.Raise<int>(new IOException("disk full")));
        Assert.Equal(("System.IO.IOException", "disk full"), Raised());
        Assert.Equal(alive, FakePython.Alive);
    }

    [Fact]
    public void A_null_message_is_handed_over_as_null()
    {
        Bridge.Raise(new Speechless());
        Assert.Equal((typeof(Speechless).FullName, null), Raised());
    }

    [Fact]
    public void An_exception_that_cannot_tell_its_message_is_raised_all_the_same()
    {
        Bridge.Raise(new Malicious());
        Assert.Equal((typeof(Malicious).FullName, null), Raised());
    }

    [Fact]
    public void Inner_exceptions_follow_the_outer_one()
    {
        var inner = new FormatException("deep", new IOException("deeper"));
        Bridge.Raise(new InvalidOperationException("outer", inner));
        Assert.Equal(
            "outer ---> System.FormatException: deep ---> System.IO.IOException: deeper",
            Raised().Message);
    }

    [Fact]
    public void Of_many_inner_exceptions_sixteen_are_told()
    {
        Exception error = new IOException("level 0");
        for (int i = 1; i < 40; i++)
        {
            error = new IOException($"level {i}", error);
        }
        Bridge.Raise(error);
        string[] told = Raised().Message!.Split(" ---> ");
        Assert.Equal(17, told.Length);
        Assert.Equal(("level 39", "System.IO.IOException: level 23"), (told[0], told[16]));
    }

    [Fact]
    public void A_failure_has_the_status_that_its_entry_names()
    {
        Assert.Equal(-1, Bridge.Fail(new IOException("one")));
        Assert.Equal("one", Raised().Message);
        Assert.Equal(7, Bridge.Fail(new IOException("two"), 7));
        Assert.Equal("two", Raised().Message);
    }

    [Fact]
    public void What_fails_before_the_callbacks_are_there_is_let_go()
    {
        var onException = PyApi.OnException;
        var createString = PyApi.CreateString;
        try
        {
            PyApi.CreateString = null;
            Bridge.Raise(new IOException("no builder yet"));
            Assert.Equal((null, null), Raised());
            PyApi.OnException = null;
            Bridge.Raise(new IOException("nobody to tell"));
        }
        finally
        {
            PyApi.OnException = onException;
            PyApi.CreateString = createString;
        }
    }

    [Fact]
    public void A_missing_callback_is_told_when_the_start_is_over()
    {
        PyStreamCallbacks* stream = PyApi.Stream;
        PyReadCallbacks* read = PyApi.Read;
        var createBytes = PyApi.CreateBytes;
        void Restore()
        {
            PyApi.Stream = stream;
            PyApi.Read = read;
            PyApi.CreateBytes = createBytes;
        }
        Action[] omissions =
        [
            () => PyApi.Stream = null, () => PyApi.Read = null, () => PyApi.CreateBytes = null,
        ];
        foreach (Action omission in omissions)
        {
            try
            {
                omission();
                Entry.Void("ExchangeHost", "InitServices");
            }
            finally
            {
                Restore();
            }
            Assert.Equal(
                ("System.InvalidOperationException",
                    "The native side handed over too few callbacks."),
                Raised());
        }
        Entry.Void("ExchangeHost", "InitServices");
    }

    [Fact]
    public void An_aggregate_tells_its_parts_itself()
    {
        var error = new AggregateException(new IOException("one"), new IOException("two"));
        Bridge.Raise(error);
        Assert.Equal(error.Message, Raised().Message);
    }

    [Fact]
    public void A_message_with_a_lone_surrogate_arrives_with_a_replacement()
    {
        Bridge.Raise(new IOException("bad \uD800 name \u4E2D \U0001F600"));
        Assert.Equal("bad \uFFFD name \u4E2D \U0001F600", Raised().Message);
    }

    [Fact]
    public void A_python_error_becomes_an_exception_with_its_text_and_is_no_longer_pending()
    {
        int alive = FakePython.Alive;
        FakePython.Fail("ValueError", "wrong");
        PythonException error = Bridge.PythonError();
        Assert.Equal("ValueError: wrong", error.Message);
        Assert.Null(FakePython.Error);
        Assert.Equal(alive, FakePython.Alive);
    }

    [Fact]
    public void A_failure_without_an_error_still_gives_an_exception() =>
        Assert.Equal(
            "A call into Python failed without an error.", Bridge.PythonError().Message);

    [Fact]
    public void A_python_error_that_managed_code_lets_escape_keeps_its_text()
    {
        FakePython.Fail("ValueError", "wrong");
        Bridge.Raise(Bridge.PythonError());
        Assert.Equal(
            ("Kelmor.WrpGen.Interop.PythonException", "ValueError: wrong"), Raised());
    }

    public static TheoryData<string, string> NullSelf => new()
    {
        { "ObjectHost", "GetHashOfObj" }, { "ObjectHost", "GetHashOfStc" },
        { "ObjectHost", "Dispose" }, { "SiApiCntCollection", "SqLength" },
        { "SiApiCntList", "SqLength" }, { "SiApiArray", "SqLength" },
        { "SiApiCntList", "Clear" }, { "SiApiArrayList", "Reverse" },
        { "SiApiStream", "CanRead" }, { "SiApiStream", "Length" }, { "SiApiStream", "Flush" },
    };

    [Theory]
    [MemberData(nameof(NullSelf))]
    public void An_entry_with_a_null_self_raises(string type, string method)
    {
        Entry.Int(type, method, 0);
        Assert.Equal("System.NullReferenceException", Raised().Type);
    }

    private sealed class Faulty : IComparable
    {
        public override int GetHashCode() => Number(0);

        public override string ToString() => Text(null);

        public override bool Equals(object? obj) => throw new DivideByZeroException();

        public int CompareTo(object? obj) => 1 / Number(1).CompareTo(1);

        private static int Number(int divisor) => 10 / divisor;

        private static string Text(object? source) => source!.ToString()!;
    }

    [Fact]
    public void A_null_reference_and_a_division_by_zero_inside_an_entry_are_raised()
    {
        nint handle = Own(new Faulty());
        Entry.Int("ObjectHost", "GetHashOfObj", handle);
        Assert.Equal("System.DivideByZeroException", Raised().Type);

        nint text = 7;
        int status = ((delegate* unmanaged<nint, nint*, int>)Entry.Address(
            "ObjectHost", "ToStringOfObj"))(handle, &text);
        Assert.Equal((0, (nint)0), (status, text));
        Assert.Equal("System.NullReferenceException", Raised().Type);
    }
}
