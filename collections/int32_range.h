// Managed indexes, counts and lengths are 32-bit: what does not fit is refused before the call.
#pragma once

#include "shell/cpython.h"

#include <cstdint>

inline bool fits_int32(Py_ssize_t value) { return value >= INT32_MIN && value <= INT32_MAX; }

// False: OverflowError is set.
inline bool check_index(Py_ssize_t index) {
    if (fits_int32(index)) return true;
    PyErr_Format(PyExc_OverflowError, "the index (%zi) is out of the INT32 range", index);
    return false;
}
