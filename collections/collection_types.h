// What all collection wrapper types share: their type objects, their converters, their publishing.
#pragma once

#include "binding/class_convert.h"
#include "binding/clr_object.h"
#include "binding/results.h"

#include <initializer_list>

struct CollectionSlots {
    PySequenceMethods *sequence = nullptr;
    PyMappingMethods *mapping = nullptr;
    getiterfunc iterate = nullptr;
    iternextfunc next = nullptr;
};

// Class flavour with Python's own text, and tp_init that refuses.
constexpr PyTypeObject collection_wrapper_type(const WrapperType &row,
                                               const CollectionSlots &slots) {
    PyTypeObject type = textless_wrapper_type(row);
    type.tp_as_sequence = slots.sequence;
    type.tp_as_mapping = slots.mapping;
    type.tp_iter = slots.iterate;
    type.tp_iternext = slots.next;
    return type;
}

// The converter of concrete collections, which Python sequences may stand for: None; the type or a
// subtype; a class wrapper that is asked about; a list (kind 2); a sequence with a length (kind 3).
int array_like_from_py(PyObject *value, VariantArg *out, const ClassConversion &conversion);

// A managed object by its handle, null for None. Gives 1.
int pass_handle(void *handle, VariantArg *out);

// The kind tells the managed side that `value` is the Python object itself, borrowed. Gives 1.
int pass_python_object(PyObject *value, CollectionKind kind, VariantArg *out);

bool is_class_wrapper(PyObject *value);        // of this module, or with the host mark
bool is_sequence_with_length(PyObject *value); // PySequence_Check, and sq_length

// Readies a wrapper type, marks it with its interfaces as both sets, as host and as castable, and
// adds it to the module under `name`. 0, or -1 with the numbered error set.
int publish_wrapper_type(PyObject *module, const char *module_name, PyTypeObject *type,
                         const char *name, std::initializer_list<PyTypeObject *> interfaces);

// A new wrapper of the type over the handle; None for a null one. For class_casts of wrapper types.
template <PyTypeObject *Type> PyObject *wrap_handle_as(void *handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, Type);
}
