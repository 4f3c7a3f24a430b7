// The typed element readers, for four element types of different forms.
using System.Runtime.InteropServices;
using Kelmor.WrpGen.Interop.Tests.Fakes;

namespace Kelmor.WrpGen.Interop.Tests.Fakes
{
    /// <summary>A bound class.</summary>
    internal sealed record Sample(int Number) : IComparable<Sample>
    {
        public int CompareTo(Sample? other) => Number.CompareTo(other?.Number ?? 0);
    }

    /// <summary>A bound struct.</summary>
    internal struct Spot
    {
        public int X { get; set; }
    }

    internal static unsafe partial class FakePython
    {
        // Positions as GenericTable has them: short, string, Sample, Spot; then those of sequences.
        private static void* TypedReaders() => Table(
            Table((delegate* unmanaged<nint, int, short*, int>)&ListShort),
            Table((delegate* unmanaged<nint, int, PyStringArg*, int>)&ListString),
            Table((delegate* unmanaged<nint, int, nint*, int>)&ListSample),
            Table((delegate* unmanaged<nint, int, VariantArg*, int>)&ListSpot),
            Table((delegate* unmanaged<nint, int, nint*, short*, int>)&SequenceShort),
            Table((delegate* unmanaged<nint, int, nint*, PyStringArg*, int>)&SequenceString),
            Table((delegate* unmanaged<nint, int, nint*, nint*, int>)&SequenceSample),
            Table((delegate* unmanaged<nint, int, nint*, VariantArg*, int>)&SequenceSpot),
            null);

        [UnmanagedCallersOnly]
        private static int ListShort(nint list, int index, short* result) =>
            Short(list, index, result);

        [UnmanagedCallersOnly]
        private static int ListString(nint list, int index, PyStringArg* result)
        {
            // None writes the length alone, which is as it was prepared.
            if (Value(List(list)[index]) is Type)
            {
                return result->Length == -1 ? 0 : Fail("SystemError", "the record is not prepared");
            }
            Lend((string)Value(List(list)[index]), result, List(list)[index]);
            return 0;
        }

        [UnmanagedCallersOnly]
        private static int ListSample(nint list, int index, nint* result)
        {
            *result = ((FakeWrapper)Value(List(list)[index])).Handle;
            return 0;
        }

        [UnmanagedCallersOnly]
        private static int ListSpot(nint list, int index, VariantArg* result)
        {
            *result = Variant(List(list)[index]);
            return 0;
        }

        [UnmanagedCallersOnly]
        private static int SequenceShort(nint sequence, int index, nint* keep, short* result)
        {
            *keep = Sequence(sequence)[index];
            Retain(*keep);
            return Short(sequence, index, result);
        }

        [UnmanagedCallersOnly]
        private static int SequenceString(
            nint sequence, int index, nint* keep, PyStringArg* result)
        {
            *keep = Sequence(sequence)[index];
            Retain(*keep);
            Lend((string)Value(*keep), result, *keep);
            return 0;
        }

        [UnmanagedCallersOnly]
        private static int SequenceSample(nint sequence, int index, nint* keep, nint* result)
        {
            *keep = Sequence(sequence)[index];
            Retain(*keep);
            *result = ((FakeWrapper)Value(*keep)).Handle;
            return 0;
        }

        [UnmanagedCallersOnly]
        private static int SequenceSpot(
            nint sequence, int index, nint* keep, VariantArg* result)
        {
            *keep = Sequence(sequence)[index];
            Retain(*keep);
            *result = Variant(*keep);
            return 0;
        }

        private static int Short(nint sequence, int index, short* result)
        {
            if (!Inside(sequence, index))
            {
                return IndexError("list index out of range");
            }
            if (Value(Sequence(sequence)[index]) is not int number || number != (short)number)
            {
                return Fail("OverflowError", "value '70000' is out of the INT16 range");
            }
            *result = (short)number;
            return 0;
        }
    }
}

namespace Kelmor.WrpGen.Interop
{
    // The half of the table that generated code writes in a real module.
    internal static partial class GenericTable
    {
        static partial void Fill(List<Type> types) =>
            types.AddRange([typeof(short), typeof(string), typeof(Sample), typeof(Spot)]);
    }
}
