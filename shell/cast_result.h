// The factory of cast results, borrowed from kelmor.shellbase.
#pragma once

#include "shell/cpython.h"

// Makes the result of a cast: `status` is the managed status as it came (0 failed, any other value
// succeeded), `value` may be null and stays the caller's. Filled by the module's entry.
extern "C" __attribute__((visibility("default")))
PyObject *(*PyShCastOpResult_New)(int status, PyObject *value);
