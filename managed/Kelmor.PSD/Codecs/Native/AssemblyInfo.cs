// Native records cross as they are, without any conversion.
using System.Runtime.CompilerServices;

[assembly: DisableRuntimeMarshalling]
