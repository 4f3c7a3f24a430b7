// Numbers and booleans.
//
// Converters are strict: a bool is no integer and a float is no integer, because overloads are told
// apart by nothing but which of them refuses. Each returns 1, or 0 with an exception set and the
// target as it was.
#pragma once

#include "shell/cpython.h"

#include <cstdint>

// What counts as an integer: 1 for an exact int, 0 for a bool and for what is no int. For an
// instance of a subclass the answer of isinstance(value, enum.EnumType); -1 when that fails.
int PyShLong_Check(PyObject *value);

// "O&" units. The name tells what `target` points to.
int fn_conv_py_long_to_clr_int8(PyObject *value, void *target);
int fn_conv_py_long_to_clr_int16(PyObject *value, void *target);
int fn_conv_py_long_to_clr_int32(PyObject *value, void *target);
int fn_conv_py_long_to_clr_int64(PyObject *value, void *target);
int fn_conv_py_ulong_to_clr_uint8(PyObject *value, void *target);
int fn_conv_py_ulong_to_clr_uint16(PyObject *value, void *target);
int fn_conv_py_ulong_to_clr_uint32(PyObject *value, void *target);
int fn_conv_py_ulong_to_clr_uint64(PyObject *value, void *target);
int fn_conv_py_float_to_clr_double(PyObject *value, void *target);
int fn_conv_py_float_to_clr_float(PyObject *value, void *target);
int fn_conv_py_bool_to_clr_bool(PyObject *value, void *target); // one byte

// Read callbacks.
int fn_read_py_bool(PyObject *value); // the truth value
int fn_read_py_double(PyObject *value, double *out);

// The narrowest form that fits: 1 for int32, 2 for int64, 3 for uint64, all written as 64 bits;
// 0 with TypeError set when none does.
int fn_read_py_vers_long(PyObject *value, uint64_t *out);

// Write callbacks: a new reference.
PyObject *fn_write_py_bool(int32_t value); // only the low byte counts
PyObject *fn_write_py_long(int32_t value);
PyObject *fn_write_py_ulong(uint32_t value);
PyObject *fn_write_py_longlong(int64_t value);
PyObject *fn_write_py_ulonglong(uint64_t value);
PyObject *fn_write_py_double(double value);
