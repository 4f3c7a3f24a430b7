// Text from Python's canonical buffers.
using System.Text;

namespace Kelmor.WrpGen.Interop.Tests;

public unsafe class PyStringsTests
{
    private static string? Decode<T>(T[] characters) where T : unmanaged
    {
        fixed (T* data = characters.Length > 0 ? characters : new T[1])
        {
            var argument = new PyStringArg
            {
                Length = characters.Length,
                CharSize = sizeof(T),
                Data = data,
            };
            return PyStrings.Decode(&argument);
        }
    }

    [Fact]
    [Trait("behaviour", "marshal-records.string-arg.managed-tests-length-first")]
    public void None_is_null_whatever_else_the_record_holds()
    {
        var argument = new PyStringArg { Length = -1, CharSize = 7, Data = (void*)1 };
        Assert.Null(PyStrings.Decode(&argument));
    }

    [Fact]
    public void The_empty_str_is_the_empty_string() => Assert.Equal("", Decode<byte>([]));

    [Theory]
    [InlineData(1)]
    [InlineData(15)]
    [InlineData(16)]
    [InlineData(17)]
    [InlineData(1000)]
    public void Latin_1_is_widened(int length)
    {
        byte[] bytes = [.. Enumerable.Range(0, length).Select(i => (byte)(255 - (i % 256)))];
        Assert.Equal(new string([.. bytes.Select(b => (char)b)]), Decode(bytes));
    }

    [Fact]
    public void Ucs_2_keeps_lone_surrogates()
    {
        ushort[] units = [0x0041, 0xD800, 0x0042, 0xDFFF, 0x4E2D];
        Assert.Equal("A\uD800B\uDFFF\u4E2D", Decode(units));
    }

    [Fact]
    public void Ucs_4_becomes_surrogate_pairs() =>
        Assert.Equal("a\U0001F600z\U0010FFFF", Decode<uint>([0x61, 0x1F600, 0x7A, 0x10FFFF]));

    [Theory]
    [InlineData(1)]
    [InlineData(8)]
    [InlineData(21)]
    public void The_last_character_of_the_first_plane_is_one_unit(int count)
    {
        uint[] points = [.. Enumerable.Repeat(0xFFFFu, count), 0x10000];
        Assert.Equal(new string('\uFFFF', count) + "\U00010000", Decode(points));
    }

    [Fact]
    public void Ucs_4_keeps_lone_surrogates() =>
        Assert.Equal("\uDC00\uD801x\U00010000", Decode<uint>([0xDC00, 0xD801, 0x78, 0x10000]));

    [Fact]
    public void Ucs_4_of_any_length_and_mixture_is_what_the_framework_makes_of_it()
    {
        var random = new Random(4711);
        for (int round = 0; round < 2000; round++)
        {
            var text = new StringBuilder();
            int length = random.Next(0, 70);
            for (int i = 0; i < length; i++)
            {
                int point = random.Next(6) == 0
                    ? random.Next(0x10000, 0x110000)
                    : random.Next(0xD800);
                text.Append(char.ConvertFromUtf32(point));
            }
            uint[] points = [.. text.ToString().EnumerateRunes().Select(r => (uint)r.Value)];
            Assert.Equal(text.ToString(), Decode(points));
        }
    }

    [Fact]
    public void An_unknown_width_is_refused() =>
        Assert.Throws<ArgumentException>(() => Decode<Guid>([Guid.Empty]));

    // Texts of their own, since an attribute cannot hold a lone surrogate.
    [Fact]
    public void Lone_surrogates_are_replaced_where_text_must_pass()
    {
        Assert.Equal("plain", PyStrings.WithoutLoneSurrogates("plain"));
        Assert.Equal("a\U0001F600", PyStrings.WithoutLoneSurrogates("a\U0001F600"));
        Assert.Equal("a\uFFFDb", PyStrings.WithoutLoneSurrogates("a\uD83Db"));
        Assert.Equal("\uFFFD", PyStrings.WithoutLoneSurrogates("\uDE00"));
    }
}
