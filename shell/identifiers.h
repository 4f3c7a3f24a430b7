// The attribute and method names that the runtime uses again and again, interned once.
#pragma once

#include "shell/cpython.h"

// Exported, never released. Only names are prepared: a class or function is looked up at each use,
// so that a module which the user replaced in `sys.modules` takes effect.
#define IDENTIFIER(variable, text)                                                                 \
    extern "C" __attribute__((visibility("default"))) PyObject *variable;
#include "shell/identifiers.inc"
#undef IDENTIFIER

// The first step of a module's entry. A text that cannot be interned leaves its variable null,
// which shows at its use.
void fn_intern_identifiers();
