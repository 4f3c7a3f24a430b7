// The Python methods of the collection and list interfaces, which the collection bases share.
#pragma once

#include "shell/cpython.h"

PyObject *wrpPye_bltp_icol_count(PyObject *self, PyObject *value);
PyObject *wrpPye_bltp_icol_copy(PyObject *self, PyObject *);
PyObject *wrpPye_bltp_icol_contains(PyObject *self, PyObject *value);
extern PySequenceMethods wrpPye_tysd_icol;
extern PyGetSetDef wrpPye_typd_icol[]; // `length`

PyObject *wrpPye_bltp_ilist_append(PyObject *self, PyObject *value);
PyObject *wrpPye_bltp_ilist_insert(PyObject *self, PyObject *args);
PyObject *wrpPye_bltp_ilist_extend(PyObject *self, PyObject *values);
PyObject *wrpPye_bltp_ilist_remove(PyObject *self, PyObject *value);
PyObject *wrpPye_bltp_ilist_pop(PyObject *self, PyObject *args);
PyObject *wrpPye_bltp_ilist_clear(PyObject *self, PyObject *);
PyObject *wrpPye_bltp_ilist_index(PyObject *self, PyObject *args);
PyObject *wrpPye_bltp_ilist_count(PyObject *self, PyObject *value);
PyObject *wrpPye_bltp_ilist_contains(PyObject *self, PyObject *value);
PyObject *wrpPye_bltp_ilist_sort(PyObject *self, PyObject *args, PyObject *kwds);
PyObject *wrpPye_bltp_ilist_reverse(PyObject *self, PyObject *);
PyObject *wrpPye_bltp_ilist_copy(PyObject *self, PyObject *);
extern PySequenceMethods wrpPye_tysd_ilist;
extern PyMappingMethods wrpPye_tygd_ilist;
extern PyGetSetDef wrpPye_typd_ilist[]; // `length`
