// Offers capsules of a sibling to the rest of the family.
//
// kelmor.psd offers none and must not even import the interpreter's function for it, so this stands
// beside the siblings and not in the runtime.
#pragma once

#include "shell/cpython.h"

#include <span>

// One capsule: the attribute behind the last dot of the name, in the module before it, which is the
// root or one of its sub-modules. The table must live as long as the process.
struct CapsuleExport {
    const char *name; // "kelmor.gfxtypes.imaging._C_APIT_ColorMap"
    const void *table;
};

// 0, or -1 with an exception set. The modules named must stand in the tree already.
int fn_export_capsules(PyObject *root, const char *root_name,
                       std::span<const CapsuleExport> capsules);
