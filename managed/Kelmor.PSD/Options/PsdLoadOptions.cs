// What may be said about loading a layered document.
namespace Kelmor.PSD.ImageLoadOptions;

/// <summary>How a layered document is loaded.</summary>
public class PsdLoadOptions : LoadOptions
{
    /// <summary>True: layer effects are read, so that they take part in rendering.</summary>
    public bool LoadEffectsResource { get; set; }

    /// <summary>True: data of effects may be kept on disk.</summary>
    public bool UseDiskForLoadEffectsResource { get; set; } = true;

    /// <summary>
    /// True: the document is for looking at, and its picture is the stored merged image whatever
    /// its layers are.
    /// </summary>
    public bool ReadOnlyMode { get; set; }

    /// <summary>True: the stored width of a text layer does not limit new text.</summary>
    public bool IgnoreTextLayerWidthOnUpdate { get; set; }

    /// <summary>True: the merged image is taken as opaque.</summary>
    public bool IgnoreAlphaChannel { get; set; }

    /// <summary>True: warped layers are rendered anew.</summary>
    public bool AllowWarpRepaint
    {
        get => false;
        set
        {
            if (value)
            {
                throw NotYet.Member();
            }
        }
    }
}
