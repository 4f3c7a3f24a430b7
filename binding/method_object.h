// A method as an object: what the descriptors of descriptors.h hand out.
#pragma once

#include "shell/cpython.h"

extern PyTypeObject wrpPye_tyds_MethodObjectType;

// With a self, or with METH_STATIC in the definition, the object is linked; else it is unbound and
// takes its self from the first argument.
PyObject *PyShCMethod_New(PyTypeObject *owner, PyMethodDef *definition, PyObject *self);
