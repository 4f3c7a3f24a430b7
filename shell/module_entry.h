// The sequence of a module's PyInit function, once for all modules of the family.
#pragma once

#include "shell/cpython.h"

// What a module is, beyond its tree. A null stands for a step that the module does not have.
struct ModuleDescription {
    const char *name; // "kelmor.psd"

    // Takes the converters of the siblings: 0, or -1; code -1009.
    int (*import_capsules)();
    // Takes the factory of kelmor.shellbase; code -1008.
    bool uses_cast_results;
    // start_clr_host, and the interop assembly that it is given: 0, or -1; code -1007. By pointer,
    // so that a module without a runtime does not link the road to one.
    int (*start_runtime)(const char *module_name, const char *assembly);
    const char *assembly;
    // The root module, a new reference; code -1006.
    PyObject *(*build_tree)();
    // The `_wrpgen` tree, owned by the root; code -1005.
    PyObject *(*add_wrappers)(PyObject *root);
    // 0, or -1. The capsules are part of the tree, hence the code -1006.
    int (*export_capsules)(PyObject *root);
};

// A new reference to the root module, or null with the numbered ImportError set.
PyObject *module_entry(const ModuleDescription &module);
