// The sequence of a module's PyInit function, once for all modules of the family.
#pragma once

#include "shell/cpython.h"

// What a module is, beyond its tree. A null stands for a step that the module does not have.
struct ModuleDescription {
    const char *name; // "kelmor.psd"; its last part is the product name

    int (*import_capsules)();              // 0 or -1; code -1009
    bool uses_cast_results;                // takes the factory of kelmor.shellbase; code -1008
    const char *assembly;                  // the interop assembly; starts the runtime; code -1007
    PyObject *(*build_tree)();             // the root module, a new reference; code -1006
    PyObject *(*add_wrappers)(PyObject *); // the `_wrpgen` tree, owned by the root; code -1005
    int (*export_capsules)(PyObject *);    // 0 or -1; code -1006, the capsules are part of the tree
};

// A new reference to the root module, or null with the numbered ImportError set.
PyObject *module_entry(const ModuleDescription &module);
