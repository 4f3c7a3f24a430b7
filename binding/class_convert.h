// The bodies of the converters from Python of all bound classes, structs and interfaces.
//
//     int wrpPy_conv_py_to_clr_D91BAC5C_XmpHeaderPi(PyObject *value, void **out) {
//         static constexpr ClassConversion conversion = {
//             "XmpHeaderPi", &wrpPy_tyds_D91BAC5C_XmpHeaderPi,
//             wrpPy_uafn_D91BAC5C_XmpHeaderPi_invalidate,
//             class_is_assignable<PyHost_cs_D91BAC5C_XmpHeaderPi>};
//         return class_from_py(value, out, conversion);
//     }
//
// A struct (`VariantConversion`, `variant_is_assignable`, `struct_from_py`) and an interface (the
// same with `interface_from_py`) write a VariantArg. As "O&" units they give 1, or 0 with an error.
#pragma once

#include "marshal/records.h"
#include "shell/cpython.h"

struct ClassConversion {
    const char *name; // simple managed name, for the message
    PyTypeObject *type;
    bool (*invalidate)();
    bool (*is_assignable)(void *handle);
};

struct VariantConversion {
    const char *name;
    PyTypeObject *type;
    bool (*invalidate)();
    bool (*is_assignable)(const VariantArg *value);
};

template <class Host> bool class_is_assignable(void *handle) {
    return Host::get_instance().btp_IsAssignable(handle);
}
template <class Host> bool variant_is_assignable(const VariantArg *value) {
    return Host::get_instance().btp_IsAssignable(value);
}

// None is a null handle; a subtype passes; any other class wrapper is asked about.
int class_from_py(PyObject *value, void **out, const ClassConversion &conversion);

// The exact type, or a wrapper that is asked about. None fails: a struct is never null.
int struct_from_py(PyObject *value, VariantArg *out, const VariantConversion &conversion);

// None; the exact type; a type that declares the interface; or a wrapper that is asked about.
int interface_from_py(PyObject *value, VariantArg *out, const VariantConversion &conversion);

// The same for an interface that Python objects may stand for: -1 when the value is neither None
// nor a wrapper, without an error.
int interface_wrapper_from_py(PyObject *value, VariantArg *out,
                              const VariantConversion &conversion);

// TypeError "can't build <name> value from '<type>'"; gives 0.
int refuse_value(const char *name, PyObject *value);

// The last question of the converters: 1 when the managed side says yes, 0 with an error pending,
// -1 when it says no.
int ask_assignable(const ClassConversion &conversion, void *handle);
int ask_assignable(const VariantConversion &conversion, const VariantArg *value);
