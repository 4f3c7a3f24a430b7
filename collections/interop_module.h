// The hidden modules of the hand-made wrappers, added to the root by the module's entry.
#pragma once

#include "shell/cpython.h"

// Adds `_wrpgen` with `_interop` and `_generic`. Borrowed from the root; null with an error set.
PyObject *wrpPye_mlit_FFFFFFFF_common_wrappers(PyObject *root);

PyObject *wrpPye_mlit_FFFFFFFF_interop_wrappers(); // a new reference
