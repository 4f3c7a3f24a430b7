// Attributes that every interop assembly carries.
using System.Runtime.CompilerServices;

// Entries pass bool and char as the bytes they are; with marshalling on, the first call would
// abort.
[assembly: DisableRuntimeMarshalling]
