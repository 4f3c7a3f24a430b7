// Descriptors that Python lacks: a getter for a static member, a name that is static and instance
// at once, and methods that can be put on an enumeration made at run time.
//
// All are non-data descriptors. The definitions are static records, never owned.
#pragma once

#include "shell/cpython.h"

extern PyTypeObject wrpPye_tyds_FieldDescrType;
extern PyTypeObject wrpPye_tyds_InstanceMethodDescrType;
extern PyTypeObject wrpPye_tyds_StaticMethodDescrType;
extern PyTypeObject wrpPye_tyds_MixMethodDescrType;

// New references, null on failure.
PyObject *PyShDescr_NewStaticField(PyTypeObject *owner, PyGetSetDef *definition);
PyObject *PyShDescr_NewInstanceMethod(PyTypeObject *owner, PyMethodDef *definition);
PyObject *PyShDescr_NewStaticMethod(PyTypeObject *owner, PyMethodDef *definition);
PyObject *PyShDescr_NewMixedMethod(PyTypeObject *owner, PyMethodDef *static_definition,
                                   PyMethodDef *instance_definition);

// Puts a fresh descriptor under `name` into the type's dictionary; null stands for one that could
// not be made. The constructor's reference stays with the process when it works. 0, or -1 with the
// numbered error set.
int install_descriptor(PyTypeObject *type, const char *name, PyObject *descriptor);
