// A few bound types made by hand, as the generator would make them: what the binding is tested on.
#pragma once

#include "shell/cpython.h"

extern PyTypeObject sample_class;      // kelmor.psd.Sample, IShape among its interfaces
extern PyTypeObject sample_derived;    // kelmor.psd.Derived, refers to Sample, has no interfaces
extern PyTypeObject sample_struct;     // kelmor.psd.Value
extern PyTypeObject sample_interface;  // kelmor.psd.IShape
extern PyTypeObject *sample_enum;      // Shade, an IntEnum over int32
extern PyTypeObject *sample_byte_enum; // Flags, an IntFlag over uint8

// Readies, marks and adds all of them to a module. 0 or -1.
int publish_samples(PyObject *module);
