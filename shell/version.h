// The version object of a module of the family.
#pragma once

#include "shell/cpython.h"

#include <cstddef>

// All modules of the family lay it out alike: each reads the others' numbers straight from here,
// since each has a type object of its own.
struct PyShVersionObject {
    PyObject_HEAD int major;
    int minor;
    int patch;
    int sub;
    PyObject *view; // owned str
};
static_assert(offsetof(PyShVersionObject, major) == 16 && offsetof(PyShVersionObject, minor) == 20);
static_assert(offsetof(PyShVersionObject, patch) == 24 && offsetof(PyShVersionObject, sub) == 28);
static_assert(offsetof(PyShVersionObject, view) == 32 && sizeof(PyShVersionObject) == 40);

// `_ModuleVersionType` of this module.
extern PyTypeObject PyShModuleVersion_Type;

// A new version object.
PyObject *PyShVersionAttr_Create(int major, int minor, int patch, int sub, const char *view);

// -1, 0 or 1 as the four numbers of `reference` are lower than, equal to or higher than `version`,
// which may be the version object of any module of the family.
int PyShVersionAttr_Compare(const int *reference, PyObject *version);

// Borrowed.
PyObject *PyShVersionAttr_GetView(PyObject *version);
