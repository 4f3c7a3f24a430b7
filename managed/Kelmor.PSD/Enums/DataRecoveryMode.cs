// What loading does with damaged data.
namespace Kelmor.PSD;

/// <summary>What loading does with damaged data.</summary>
public enum DataRecoveryMode
{
    /// <summary>Any damage is an exception.</summary>
    None = 0,

    /// <summary>Whole pieces that can be read are kept, damaged ones are left out.</summary>
    ConsistentRecover = 1,

    /// <summary>As much as can be read is kept; missing pixels become zero.</summary>
    MaximalRecover = 2,
}
