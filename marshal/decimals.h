// Decimals, both ways. On the wire four words: see DecimalArgOutBuilder.
#pragma once

#include "shell/cpython.h"

#include <cstdint>

// "O&" unit over 16 bytes: a decimal.Decimal or a decimal.DecimalTuple.
int fn_conv_py_decimal_to_clr_decimal(PyObject *value, void *target);

// Of a Decimal, through its as_tuple(); of a DecimalTuple, by the attributes of that name.
int fn_conv_py_decimal_obj_to_clr_decimal(PyObject *value, uint32_t *target);
int fn_conv_py_decimal_tuple_to_clr_decimal(PyObject *value, uint32_t *target);

// Read callbacks.
int fn_read_py_decimal(PyObject *value, uint32_t *out);
int fn_read_py_decimal_tuple(PyObject *value, uint32_t *out);

// Result and write callback: a new reference. The block's mantissa is zero afterwards.
PyObject *fn_conv_clr_decimal_to_py_decimal(uint32_t *source);
PyObject *fn_write_py_decimal(uint32_t *source);
