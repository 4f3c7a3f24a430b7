// Text: a str is lent in place, managed text comes back as UTF-16.
#pragma once

#include "marshal/records.h"

// The record points into the str object: no copy, no transcoding, no reference. The managed side
// decodes by `char_size`.

// "O&" unit. None writes `length` -1 and nothing else.
int fn_conv_py_string_to_clr_string(PyObject *value, void *arg);

// Of an object known to be a str.
int fn_conv_py_string_to_clr_string_value(PyObject *value, PyStringArg *arg);
int fn_read_py_string(PyObject *value, PyStringArg *arg);

// "O&" unit over a PyEphStrArg: None, a str, bytes or an os.PathLike. What had to be decoded is
// the `owner`, which PyEphStrArgBuilder drops.
int fn_conv_py_strorpath_to_clr_string(PyObject *value, void *arg);

// A new str of `length` 16-bit units, little-endian. An unpaired surrogate fails.
PyObject *fn_conv_clr_string_to_py_string_value(const char *chars, long length);
PyObject *fn_conv_clr_string_to_py_string(const char *chars, int32_t length);

// The callback by which the managed side hands text to native code: a heap cell of 8 bytes that is
// a std::u16string. It is given back with `free` alone, so the characters stay allocated.
void *fn_create_u16_buffer(const uint16_t *chars, int32_t length);
