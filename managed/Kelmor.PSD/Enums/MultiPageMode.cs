// How pages are chosen.
namespace Kelmor.PSD.ImageOptions;

/// <summary>How pages are chosen.</summary>
public enum MultiPageMode
{
    Pages = 0,
    Titles = 1,
    Range = 2,
    TimeInterval = 3,
    AllPages = 4,
}
