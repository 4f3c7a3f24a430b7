// Stage of a long operation.
namespace Kelmor.PSD.ProgressManagement;

/// <summary>Stage of a long operation.</summary>
public enum EventType
{
    Unknown = 0,
    Initialization = 1,
    PreProcessing = 2,
    Processing = 3,
    PostProcessing = 4,
    Finalization = 5,
    RelativeProgress = 6,
}
