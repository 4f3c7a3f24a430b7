// The steps that module initialisers share. Each raises its numbered error.
//
// An initialiser owns its module in a Ref: on a failure the module goes, and with it the children
// and types that it was given; types stay ready.
#pragma once

#include "shell/cpython.h"

#include <string_view>

// A new module; -1003.
PyObject *fn_create_module(PyModuleDef *definition);

// Adds `child`, whose reference it takes over. A null child is the failure of its initialiser,
// whose error stands: -1 at once. Failing to add: -1002.
int fn_add_submodule(PyObject *parent, const char *parent_name, const char *leaf, PyObject *child);

// PyType_Ready; -1015.
int fn_ready_type(PyTypeObject *type);

// Publishes the type with a new reference; -1014.
int fn_add_type(PyObject *module, const char *module_name, PyTypeObject *type, const char *name);

// Tells an enumeration made at run time where it stands, the names by which pickling finds it: its
// base class took the frame that imports us for its home. One that refuses stays as it is.
void fn_set_home(PyObject *enumeration, std::string_view module_name,
                 std::string_view qualified_name);

// Publishes an enumeration made at run time, whose reference it takes over. Null: -1013 with the
// full name. Failing to add: -1014.
int fn_add_enum(PyObject *module, const char *module_name, const char *full_name, const char *name,
                PyObject *created);

// `__package__` of a module without sub-modules: the name of its parent; -1022.
int fn_set_leaf_package(PyObject *module, const char *module_name);

// `__package__` of a module with sub-modules: its own name; `__path__`: an empty list, so that it
// looks like a package without any file; -1022.
int fn_set_branch_package(PyObject *module, const char *module_name);
