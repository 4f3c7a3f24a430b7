// Static fields and mixed methods of a class, put on its type after that is in its module.
//
//     int wrpPy_eypi_342A74C1_Color() {
//         static PyGetSetDef *const fields[] = {&wrpPy_sgsf_342A74C1_Color_000_EMPTY, ...};
//         return install_static_fields(&wrpPy_tyds_342A74C1_Color, fields);
//     }
//
// and one getter for each:
//
//     static PyObject *wrpPy_spvg_342A74C1_Color_000_get_EMPTY(PyObject *, void *) {
//         if (wrpPy_uafn_342A74C1_Color_invalidate()) return nullptr;
//         void *const result = PyHost_cs_342A74C1_Color::get_instance().getsa_Empty();
//         if (PyErr_Occurred()) return nullptr;
//         return wrpPy_conv_clr_to_py_342A74C1_Color(result);
//     }
//     static PyGetSetDef wrpPy_sgsf_342A74C1_Color_000_EMPTY = {
//         "EMPTY", wrpPy_spvg_342A74C1_Color_000_get_EMPTY, nullptr, nullptr, nullptr};
#pragma once

#include "shell/cpython.h"

#include <cstddef>

// 0, or -1 with the numbered error set.
int install_static_fields(PyTypeObject *type, PyGetSetDef *const *fields, std::size_t count);

template <std::size_t Count>
int install_static_fields(PyTypeObject *type, PyGetSetDef *const (&fields)[Count]) {
    return install_static_fields(type, fields, Count);
}

// A name that is static in some overloads and instance in others.
struct MixedMethod {
    PyMethodDef *static_definition;
    PyMethodDef *instance_definition; // its ml_name is the member's name
};
int install_mixed_method(PyTypeObject *type, const MixedMethod &method);
