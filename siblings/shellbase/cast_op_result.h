// The result of a managed cast.
#pragma once

#include "shell/cpython.h"

extern PyTypeObject CastOpResult_Type;

// A new result. `status` is the managed status as it came: 0 failed, any other value succeeded.
// `value` is borrowed and may be null.
PyObject *cast_op_result_new(int status, PyObject *value);
