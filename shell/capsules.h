// Capsules: tables of converters by which the modules of the family serve each other.
#pragma once

#include "shell/cpython.h"

#include <span>

// One capsule to import, with the places that its words go to. A null place is a word that is not
// read: the table behind the capsule need not have it.
struct CapsuleImport {
    const char *name;   // dotted, "kelmor.gfxtypes._C_APITV1_PointF"
    void *py_to_clr;    // address of the function pointer that takes word 0
    void *clr_to_py;    // ... word 1
    void *pass_through; // ... word 2
};

// A sibling and its capsules, in the order of import.
struct CapsuleSource {
    const char *module;
    std::span<const CapsuleImport> capsules;
};

// Imports each module at the reference version and reads its capsules. 0, or -1 with ImportError
// set at the first failure. No reference to the modules is kept.
int import_capsules(const char *importer, std::span<const CapsuleSource> sources);
