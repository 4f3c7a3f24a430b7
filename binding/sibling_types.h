// Converters of the sibling types that every module needs, filled at import from their capsules.
#pragma once

#include "shell/cpython.h"

using SiblingClassToPy = PyObject *(*)(void *handle);
using SiblingClassFromPy = int (*)(PyObject *value, void **out);
using SiblingStructToPy = PyObject *(*)(void *const *handle); // the address of the value
struct VariantArg;
using SiblingStructFromPy = int (*)(PyObject *value, VariantArg *out);
using SiblingEnumToPy = PyObject *(*)(int value);
using SiblingEnumFromPy = int (*)(PyObject *value, int *out);

extern SiblingClassToPy wrpPyl_convcaps_clr_to_py_C08ECFAB_Type;
extern SiblingClassFromPy wrpPyl_trancaps_py_to_clr_C08ECFAB_Type;
extern SiblingClassToPy wrpPyl_convcaps_clr_to_py_359C4ED8_Object;
extern SiblingClassFromPy wrpPyl_trancaps_py_to_clr_359C4ED8_Object;
extern SiblingClassToPy wrpPyl_convcaps_clr_to_py_738AFABA_Enum;
