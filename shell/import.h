// Imports modules of the family at a fitting version, and types by name.
#pragma once

#include "shell/cpython.h"

// The version of each sibling that the modules of this family are built against.
extern const int reference_version[4];

// Imports `module` and demands threshold <= reference <= found. A new reference, or null with
// ImportError set.
PyObject *PyShImport_ImportRefModule(const char *importer, const char *module,
                                     const int *reference);

// Attribute `name` of `module`, of whatever kind: a new reference, or null with ImportError set.
PyObject *PyShImport_ImportType(const char *module, PyObject *name);

// The same; the attribute must be a type.
PyObject *PyShImport_ImportTypeEx(const char *module, PyObject *name);

// Takes `count` names (PyObject *): the first as above, the others down its nested attributes,
// each of which must be a type. With a count below 2 it stops at the first.
PyObject *PyShImport_ImportTypeExV(const char *module, int count, ...);

// Readies the type and adds it with a new reference: 0, or -1 with ImportError set.
int PyShModule_AddType(PyObject *module, PyTypeObject *type, const char *name);
