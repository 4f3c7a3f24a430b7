// The hand-made wrappers of managed interfaces and collections, as generated code refers to them.
//
// As members of interface sets and bases: the type objects. As referenced types of a class's
// validity: the `wrpPye_bltp_*_is_not_valid` queries. As "O&" units of parameters: the converters,
// which fill a VariantArg of the collection kinds. As rows of the method table of a class that
// implements the interface: enter and exit of a disposable, and as its slots tp_iter and
// tp_iternext.
#pragma once

#include "marshal/records.h"
#include "shell/cpython.h"

#include <string>

extern PyTypeObject wrpPye_tyds_IDisposableWrapper;
extern PyTypeObject wrpPye_tyds_IterWrapper;
extern PyTypeObject wrpPye_tyds_IterableWrapper;
extern PyTypeObject wrpPye_tyds_IColWrapper;
extern PyTypeObject wrpPye_tyds_IListWrapper;
extern PyTypeObject wrpPye_tyds_RoColBaseWrapper;
extern PyTypeObject wrpPye_tyds_ColBaseWrapper;
extern PyTypeObject wrpPye_tyds_ArrayWrapper;
extern PyTypeObject wrpPye_tyds_ArrListWrapper;
extern PyTypeObject wrpPye_tyds_StreamWrapper;

bool wrpPye_bltp_idisposable_is_not_valid(std::string &message);
bool wrpPye_bltp_iter_is_not_valid(std::string &message);
bool wrpPye_bltp_iterable_is_not_valid(std::string &message);
bool wrpPye_bltp_icollection_is_not_valid(std::string &message);
bool wrpPye_bltp_ilist_is_not_valid(std::string &message);
bool wrpPye_bltp_array_is_not_valid(std::string &message);
bool wrpPye_bltp_arrlist_is_not_valid(std::string &message);
bool wrpPye_bltp_colbase_is_not_valid(std::string &message);
bool wrpPye_bltp_rocolbase_is_not_valid(std::string &message);
bool wrpPye_bltp_stream_is_not_valid(std::string &message);

int wrpPye_conv_py_to_clr_idisposable(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_iter(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_iterable(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_icollection(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_ilist(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_array(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_arrlist(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_colbase(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_rocolbase(PyObject *value, VariantArg *out);
int wrpPye_conv_py_to_clr_stream(PyObject *value, VariantArg *out);

// __enter__ (METH_NOARGS) and __exit__ (METH_VARARGS): the managed object is disposed of, the
// wrapper and its handle stay.
PyObject *wrpPye_bltp_idisposable_enter(PyObject *self, PyObject *);
PyObject *wrpPye_bltp_idisposable_exit(PyObject *self, PyObject *args);

PyObject *wrpPye_bltp_iter_iter(PyObject *self);
PyObject *wrpPye_bltp_iter_iternext(PyObject *self);
PyObject *wrpPye_bltp_iterable_iter(PyObject *self);

bool PyShlObject_HasLength(PyObject *object); // the type has sq_length or mp_length
bool PyShlObject_HasIter(PyObject *object);   // the type has tp_iter, or it is a sequence
