// A Python value for a managed parameter that takes any: sorted into a kind, not converted.
#pragma once

#include "marshal/records.h"

// "O&" unit. The object itself is lent, and the managed side reads it by the callbacks of its kind;
// of a wrapper the handle goes. 1, or 0 with an exception set.
//
// For an instance of an int subclass whose check fails it gives 1 with kind 6 and leaves the error
// pending: the caller's test of PyErr_Occurred after the call catches it.
int fn_conv_py_variant_to_clr_variant(PyObject *value, VariantArg *out);
