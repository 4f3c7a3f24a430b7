// What may be said about loading in any format.
namespace Kelmor.PSD;

/// <summary>How an image is loaded.</summary>
public class LoadOptions
{
    /// <summary>What is done with damaged data; by default any damage is an exception.</summary>
    public DataRecoveryMode DataRecoveryMode { get; set; }

    /// <summary>Colour for pixels that cannot be read.</summary>
    public Color DataBackgroundColor { get; set; }

    /// <summary>True: colours are converted by the embedded profile.</summary>
    public bool UseIccProfileConversion
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

    /// <summary>Largest size of internal buffers in megabytes; 0 for no limit.</summary>
    public int BufferSizeHint { get; set; }
}
