// Python lists made of managed elements, for `+`, `*` and copy of lists and of collections.
#pragma once

#include "collections/list_operations.h"
#include "shell/cpython.h"

// Writes `length` managed elements into the first places of `result`, a fresh list whose later
// places it leaves. False: an error is set.
using FillElements = bool (*)(const ListOperations &list, PyObject *self, PyObject *result,
                              Py_ssize_t length);

PyObject *concat_elements(const ListOperations &list, PyObject *self, PyObject *other,
                          FillElements fill);
PyObject *repeat_elements(const ListOperations &list, PyObject *self, Py_ssize_t count,
                          FillElements fill);

// The length of a managed list; false: an error is set.
bool ask_length(const ListOperations &list, PyObject *self, Py_ssize_t *length);
