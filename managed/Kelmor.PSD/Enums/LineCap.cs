// Forms of the ends of lines.
namespace Kelmor.PSD;

/// <summary>Form of the end of a line.</summary>
public enum LineCap
{
    Flat = 0,
    Square = 1,
    Round = 2,
    Triangle = 3,
    NoAnchor = 16,
    SquareAnchor = 17,
    RoundAnchor = 18,
    DiamondAnchor = 19,
    ArrowAnchor = 20,

    /// <summary>The bits in which anchors differ from other forms.</summary>
    AnchorMask = 240,

    /// <summary>A form of its own: a <see cref="CustomLineCap"/>.</summary>
    Custom = 255,
}
