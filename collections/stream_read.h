// Reading loops over a managed stream, straight into the storage of a bytes object.
#pragma once

#include "shell/cpython.h"

// Reads until the limit or the end of the stream; a negative limit is none.
PyObject *fn_stream_read_bytes_impl(void *stream, Py_ssize_t limit);

// One line, line feed included. Reads ahead and seeks back. A negative limit is none.
PyObject *fn_stream_read_line_impl(void *stream, Py_ssize_t limit);

// One read of `size` bytes, which may come back short.
PyObject *read_once(void *stream, int size);
