// Byte blocks: lent in place on the way in, copied once into a bytearray on the way back.
#pragma once

#include "marshal/records.h"

// Borrows the exporter's buffer. 1, or 0 with BufferError set; `held` tells whether the view was
// obtained and has to be released, also after a refusal.
int fn_read_py_buffer(PyObject *value, Py_buffer *view, PyBytesArg *arg);
int fn_read_py_buffer_view(PyObject *value, Py_buffer *view, PyBytesArg *arg);

// The same for a parameter: None is a null array, and what has no buffer is refused.
int fn_conv_py_bytes_to_clr_bytes_value(PyObject *value, Py_buffer *view, PyBytesArg *arg);

// "O&" unit over a PyBytesArgBuilder.
int fn_conv_py_bytes_to_clr_bytes(PyObject *value, void *builder);

// The managed side keeps a Py_buffer of its own through these, and asks for its size.
int32_t fn_get_sizeof_py_byffer();
int32_t fn_create_py_byffer(void *memory);
void fn_release_py_buffer(Py_buffer *view);
extern void *m_py_buffer_callbacks[];

// A new bytearray.
PyObject *fn_conv_clr_bytes_to_py_bytes(const char *bytes, int32_t length);

// A window on memory that the managed side has pinned, by which it serves Python's buffer protocol,
// for example to the `readinto` of a Python stream. It owns nothing: the memory outlives it.
struct PyShlBufferView {
    PyObject_HEAD void *data;
    int64_t length;
    int32_t readonly;
};
static_assert(sizeof(PyObject) == 16 && offsetof(PyShlBufferView, data) == 16 &&
              offsetof(PyShlBufferView, length) == 24 && offsetof(PyShlBufferView, readonly) == 32);

extern PyBufferProcs wrpPye_tybp_ShlBufferView;
extern PyTypeObject wrpPye_tyds_ShlBufferView; // `_ShlBufferView`; readied by the interop module

PyObject *fn_create_shlbuffer_view(void *data, int64_t length, int32_t readonly);
