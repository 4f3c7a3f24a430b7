// Adds an owned object to a module.
#pragma once

#include "shell/ref.h"

// PyModule_AddObject takes the reference over on success alone; this takes it in any case.
inline int add_object(PyObject *module, const char *name, Ref object) {
    if (PyModule_AddObject(module, name, object.get()) < 0) return -1;
    object.release();
    return 0;
}
