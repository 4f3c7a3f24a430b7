// Dates, offsets and spans.
namespace Kelmor.Harness;

/// <summary>Dates, offsets and spans, as .NET sees them. Ticks are 100 ns from 0001-01-01.</summary>
public static class Times
{
    /// <summary>The date itself.</summary>
    public static DateTime EchoDate(DateTime value) => value;

    /// <summary>Ticks of the date.</summary>
    public static long DateTicks(DateTime value) => value.Ticks;

    /// <summary>Kind of the date: 0 unspecified, 1 UTC, 2 local.</summary>
    public static int DateKindOf(DateTime value) => (int)value.Kind;

    /// <summary>The date of these ticks and this kind.</summary>
    public static DateTime DateFrom(long ticks, int kind) => new(ticks, (DateTimeKind)kind);

    /// <summary>The date plus these days, by .NET's calendar.</summary>
    public static DateTime AddDays(DateTime value, int days) => value.AddDays(days);

    /// <summary>Whether .NET's calendar has a 29 February in this year.</summary>
    public static bool IsLeapYear(int year) => DateTime.IsLeapYear(year);

    /// <summary>The date with its offset itself.</summary>
    public static DateTimeOffset EchoOffset(DateTimeOffset value) => value;

    /// <summary>Local ticks of the date with an offset.</summary>
    public static long OffsetTicks(DateTimeOffset value) => value.Ticks;

    /// <summary>Ticks of the offset from UTC.</summary>
    public static long OffsetOf(DateTimeOffset value) => value.Offset.Ticks;

    /// <summary>The date of these local ticks at this offset in minutes.</summary>
    public static DateTimeOffset OffsetFrom(long ticks, int minutes) =>
        new(ticks, TimeSpan.FromMinutes(minutes));

    /// <summary>The span itself.</summary>
    public static TimeSpan EchoSpan(TimeSpan value) => value;

    /// <summary>Ticks of the span.</summary>
    public static long SpanTicks(TimeSpan value) => value.Ticks;

    /// <summary>The span of these ticks.</summary>
    public static TimeSpan SpanFrom(long ticks) => new(ticks);
}
