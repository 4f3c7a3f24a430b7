// The bridge of exceptions: neither a native nor a managed one ever crosses the boundary.
//
// A managed exception becomes a pending RuntimeError before its delegate returns. A Python
// exception in a callback becomes text that managed code can throw again, and is not pending when
// the callback returns.
#pragma once

#include "marshal/records.h"

// Called by the managed side for what escaped a bound member. Takes both references over; either
// may be null.
void on_clr_exception(PyObject *type_name, PyObject *message);

// Turns the pending error into text: 0 with a new reference in `*owner` and its characters in
// `*text`; -1 when nothing was pending, or no text could be made. Nothing is pending afterwards.
int fn_catch_and_clear_py_error(PyObject **owner, PyStringArg *text);

// The same for an error that is no longer pending; the parts may be null, but for the type.
int fn_describe_py_error(PyObject *type, PyObject *value, PyObject *traceback, PyObject **owner,
                         PyStringArg *text);

// A new str for managed code that has no way to report a failure: it is reported as unraisable, and
// the result is null.
PyObject *fn_conv_clr_string_to_py_unraisable(const uint16_t *chars, int32_t length);
