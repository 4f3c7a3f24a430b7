// Side on which a matrix is multiplied.
namespace Kelmor.PSD;

/// <summary>Side on which a matrix is multiplied.</summary>
public enum MatrixOrder
{
    Prepend = 0,
    Append = 1,
}
