// The image resources that are understood, and the one that stands for all others.
using System.Buffers.Binary;
using System.Text;
using Kelmor.PSD.FileFormats.Psd.Resources.ResolutionEnums;
using Kelmor.PSD.Xmp;

namespace Kelmor.PSD.FileFormats.Psd.Resources;

/// <summary>A resource that is kept byte for byte without being understood.</summary>
public sealed class UnknownResource : ResourceBlock
{
    internal UnknownResource(
        int signature,
        short id,
        ReadOnlyMemory<byte> name,
        ReadOnlyMemory<byte> data
    )
        : base(signature, id, name, data) { }

    /// <summary>The content.</summary>
    public byte[] GetData() => Data.ToArray();
}

/// <summary>The resolution of a document: resource 1005, ResolutionInfo structure.</summary>
public sealed class ResolutionInfoResource : ResourceBlock
{
    internal const short Id = 1005;
    private const int Size = 16;

    /// <summary>72 pixels per inch both ways.</summary>
    public ResolutionInfoResource()
        : base(DefaultSignature, Id, default, Build(72, 72)) { }

    internal ResolutionInfoResource(
        int signature,
        ReadOnlyMemory<byte> name,
        ReadOnlyMemory<byte> data
    )
        : base(signature, Id, name, data) { }

    /// <summary>Pixels per inch across.</summary>
    public double HDpi
    {
        get => Fixed(0);
        set => SetFixed(0, value);
    }

    /// <summary>Unit in which the resolution across is shown.</summary>
    public ResolutionUnit HResDisplayUnit => (ResolutionUnit)Field(4);

    /// <summary>Unit in which the width is shown.</summary>
    public PhysicalUnit WidthDisplayUnit => (PhysicalUnit)Field(6);

    /// <summary>Pixels per inch downwards.</summary>
    public double VDpi
    {
        get => Fixed(8);
        set => SetFixed(8, value);
    }

    /// <summary>Unit in which the resolution downwards is shown.</summary>
    public ResolutionUnit VResDisplayUnit => (ResolutionUnit)Field(12);

    /// <summary>Unit in which the height is shown.</summary>
    public PhysicalUnit HeightDisplayUnit => (PhysicalUnit)Field(14);

    private static byte[] Build(double across, double down)
    {
        var bytes = new byte[Size];
        WriteFixed(bytes, across);
        WriteFixed(bytes.AsSpan(8), down);
        foreach (var at in (ReadOnlySpan<int>)[5, 7, 13, 15])
        {
            bytes[at] = 1;
        }
        return bytes;
    }

    // 16 bits before the point and 16 behind.
    private static void WriteFixed(Span<byte> target, double value) =>
        BinaryPrimitives.WriteInt32BigEndian(
            target,
            (int)Math.Clamp(Math.Round(value * 65536), 0, int.MaxValue)
        );

    private double Fixed(int at) =>
        Data.Length >= at + 4 ? BinaryPrimitives.ReadInt32BigEndian(Data.Span[at..]) / 65536.0 : 72;

    private short Field(int at) =>
        Data.Length >= at + 2 ? BinaryPrimitives.ReadInt16BigEndian(Data.Span[at..]) : (short)1;

    private void SetFixed(int at, double value)
    {
        if (value is not > 0 or > short.MaxValue)
        {
            throw new ArgumentOutOfRangeException(
                nameof(value),
                $"The resolution must lie between 0 and {short.MaxValue}, not {value}."
            );
        }
        var bytes = Data.Length >= Size ? Data.ToArray() : Build(72, 72);
        WriteFixed(bytes.AsSpan(at), value);
        Data = bytes;
    }
}

/// <summary>The ICC profile of a document: resource 1039.</summary>
public sealed class IccProfileResource : ResourceBlock
{
    internal const short Id = 1039;

    /// <summary>A profile.</summary>
    /// <param name="iccProfile">The bytes of the profile; copied.</param>
    public IccProfileResource(byte[] iccProfile)
        : base(DefaultSignature, Id, default, (byte[])iccProfile.Clone()) { }

    internal IccProfileResource(int signature, ReadOnlyMemory<byte> name, ReadOnlyMemory<byte> data)
        : base(signature, Id, name, data) { }

    /// <summary>The bytes of the profile.</summary>
    public byte[] IccProfile => Data.ToArray();
}

/// <summary>The global angle of light: resource 1037.</summary>
public sealed class GlobalAngleResource : ResourceBlock
{
    internal const short Id = 1037;

    /// <summary>An angle of 30 degrees.</summary>
    public GlobalAngleResource()
        : base(DefaultSignature, Id, default, new byte[] { 0, 0, 0, 30 }) { }

    internal GlobalAngleResource(
        int signature,
        ReadOnlyMemory<byte> name,
        ReadOnlyMemory<byte> data
    )
        : base(signature, Id, name, data) { }

    /// <summary>Degrees, -180 to 180.</summary>
    public int GlobalAngle
    {
        get => Data.Length >= 4 ? BinaryPrimitives.ReadInt32BigEndian(Data.Span) : 30;
        set
        {
            var bytes = new byte[4];
            BinaryPrimitives.WriteInt32BigEndian(bytes, value);
            Data = bytes;
        }
    }
}

/// <summary>The transparent entry of a palette: resource 1047.</summary>
public sealed class TransparencyIndexResource : ResourceBlock
{
    internal const short Id = 1047;

    internal TransparencyIndexResource(
        int signature,
        ReadOnlyMemory<byte> name,
        ReadOnlyMemory<byte> data
    )
        : base(signature, Id, name, data) { }

    /// <summary>Index of the entry.</summary>
    public short TransparencyIndex =>
        Data.Length >= 2 ? BinaryPrimitives.ReadInt16BigEndian(Data.Span) : (short)-1;
}

/// <summary>Who wrote a document, and whether its merged image is real: resource 1057.</summary>
public sealed class VersionInfoResource : ResourceBlock
{
    internal const short Id = 1057;

    internal VersionInfoResource(
        int signature,
        ReadOnlyMemory<byte> name,
        ReadOnlyMemory<byte> data
    )
        : base(signature, Id, name, data) { }

    /// <summary>Version of the structure.</summary>
    public int Version => Data.Length >= 4 ? BinaryPrimitives.ReadInt32BigEndian(Data.Span) : 0;

    /// <summary>True when the merged image shows the layers.</summary>
    public bool HasRealMergedData
    {
        get => Data.Length < 5 || Data.Span[4] != 0;
        set
        {
            if (Data.Length >= 5)
            {
                var bytes = Data.ToArray();
                bytes[4] = value ? (byte)1 : (byte)0;
                Data = bytes;
            }
        }
    }

    /// <summary>A copy that says that the merged image shows the layers.</summary>
    internal VersionInfoResource WithRealMergedData() =>
        new(Signature, NameBytes, Data) { HasRealMergedData = true };
}

/// <summary>The metadata of a document: resource 1060.</summary>
public sealed class XmpResource : ResourceBlock
{
    internal const short Id = 1060;

    /// <summary>Metadata.</summary>
    public XmpResource(XmpPacketWrapper xmpData)
        : base(DefaultSignature, Id, default, Encoding.UTF8.GetBytes(xmpData.GetXmlValue())) { }

    internal XmpResource(int signature, ReadOnlyMemory<byte> name, ReadOnlyMemory<byte> data)
        : base(signature, Id, name, data) { }

    /// <summary>The metadata.</summary>
    public XmpPacketWrapper XmpData
    {
        get => new(Encoding.UTF8.GetString(Data.Span));
        set
        {
            ArgumentNullException.ThrowIfNull(value);
            Data = Encoding.UTF8.GetBytes(value.GetXmlValue());
        }
    }
}
