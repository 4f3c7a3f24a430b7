// The part of a module initialiser that one bound class or struct is: a row, and what is done to
// it.
#pragma once

#include "shell/cpython.h"

#include <cstddef>

struct BoundType {
    PyTypeObject *type;
    const char *name;             // simple name, under which its module shows it
    const char16_t *managed_name; // full name, by which results find the type
    bool is_struct;
    PyTypeObject *const *additional; // interfaces; null when there are none
    std::size_t additional_count;
    PyTypeObject *const *implicit;
    std::size_t implicit_count;
    PyTypeObject *enclosing;  // of a nested type, which is no attribute of the module; else null
    int (*install_members)(); // static members and nested enumerations; null when there are none
};

// Registers, marks and publishes a type that is ready. 0, or -1 with the numbered error set.
int publish_bound_type(PyObject *module, const char *module_name, const BoundType &row);

// Marks a type with its interfaces, as host and as castable. 0, or -1 with the numbered error set.
int mark_bound_type(const BoundType &row);

// Readies types in order, bases before what derives from them. 0, or -1 with the error set.
int ready_bound_types(PyTypeObject *const *types, std::size_t count);
