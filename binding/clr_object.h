// The wrapper of a managed object: its record, its two flavours and the slots that all share.
//
// A wrapper holds one handle and nothing else; every attribute, comparison and text is asked of
// the managed side. The handle is null between tp_new and a successful constructor; from then on
// the wrapper owns exactly one release of it. Disposal leaves the handle in place.
//
// A generated class names its type object so:
//
//     constinit PyTypeObject wrpPy_tyds_D91BAC5C_XmpHeaderPi = class_wrapper_type({
//         .name = "kelmor.psd.xmp.XmpHeaderPi",
//         .create = wrpPy_tpsb_D91BAC5C_XmpHeaderPi_tp_new,
//         .init = wrpPy_tpsb_D91BAC5C_XmpHeaderPi_tp_init, // left out: no public constructor
//         .methods = wrpPy_tymd_D91BAC5C_XmpHeaderPi,
//         .properties = wrpPy_typd_D91BAC5C_XmpHeaderPi,
//         .base = nullptr,                                 // or the wrapper type of the base class
//     });
#pragma once

#include "shell/cpython.h"

#include <cstddef>

// All modules of the family share this layout: they read each other's handles in place.
struct PyClrObject {
    PyObject_HEAD void *handle;
};
static_assert(sizeof(PyClrObject) == sizeof(PyObject) + sizeof(void *) &&
              offsetof(PyClrObject, handle) == sizeof(PyObject));

inline void *handle_of(PyObject *wrapper) noexcept {
    return reinterpret_cast<PyClrObject *>(wrapper)->handle;
}

// The only way in which a managed object enters Python. Takes the handle over: what cannot be
// wrapped is released at once.
PyObject *fn_py_clr_type_generic_new(void *handle, PyTypeObject *type);

// The flavour is told by the deallocator alone, the cheapest exact test of a wrapper of this
// module.
bool fn_is_this_module_clr_object(PyObject *object);
bool fn_is_this_module_clr_instance(PyObject *object, int *kind); // 0 class, 1 struct

int fn_py_unknown_to_clr_unknown(PyObject *wrapper, void **out);
PyObject *fn_py_return_none();

void wrapClrObject_tp_dealloc(PyObject *self);
PyObject *wrapClrObject_str(PyObject *self);
Py_hash_t wrapClrObject_hash(PyObject *self);
PyObject *wrapClrObject_tp_richcompare(PyObject *self, PyObject *other, int operation);
PyObject *wrapClrObject_get_type(PyObject *self, PyObject *);

void wrapClrStruct_tp_dealloc(PyObject *self);
PyObject *wrapClrStruct_str(PyObject *self);
Py_hash_t wrapClrStruct_hash(PyObject *self);
PyObject *wrapClrStruct_tp_richcompare(PyObject *self, PyObject *other, int operation);
PyObject *wrapClrStruct_get_type(PyObject *self, PyObject *);

// What a setter does with the null by which Python asks to delete: -1 with AttributeError.
int refuse_deletion(const char *property);

// tp_init of interfaces, abstract and static classes.
int wrapClrObject_tp_init_fault(PyObject *self, PyObject *args, PyObject *kwds);

struct WrapperType {
    const char *name;
    newfunc create;
    initproc init = wrapClrObject_tp_init_fault;
    PyMethodDef *methods = nullptr;
    PyGetSetDef *properties = nullptr;
    PyTypeObject *base = nullptr;
};

// A type object that is complete at link time: hundreds of them must not cost start-up code.
constexpr PyTypeObject empty_type(const char *name) {
    const PyVarObject head[] = {PyVarObject_HEAD_INIT(nullptr, 0)};
    PyTypeObject type{};
    type.ob_base = head[0];
    type.tp_name = name;
    return type;
}

// No flags: a wrapper type is no base for Python classes and takes no part in cycle collection.
constexpr PyTypeObject wrapper_type(const WrapperType &row) {
    PyTypeObject type = empty_type(row.name);
    type.tp_basicsize = sizeof(PyClrObject);
    type.tp_methods = row.methods;
    type.tp_getset = row.properties;
    type.tp_base = row.base;
    type.tp_init = row.init;
    type.tp_new = row.create;
    return type;
}

constexpr PyTypeObject class_wrapper_type(const WrapperType &row) {
    PyTypeObject type = wrapper_type(row);
    type.tp_dealloc = wrapClrObject_tp_dealloc;
    type.tp_repr = wrapClrObject_str;
    type.tp_hash = wrapClrObject_hash;
    type.tp_richcompare = wrapClrObject_tp_richcompare;
    return type;
}

constexpr PyTypeObject struct_wrapper_type(const WrapperType &row) {
    PyTypeObject type = wrapper_type(row);
    type.tp_dealloc = wrapClrStruct_tp_dealloc;
    type.tp_repr = wrapClrStruct_str;
    type.tp_hash = wrapClrStruct_hash;
    type.tp_richcompare = wrapClrStruct_tp_richcompare;
    return type;
}

// The collection and stream wrappers: class flavour, with Python's own text.
constexpr PyTypeObject textless_wrapper_type(const WrapperType &row) {
    PyTypeObject type = class_wrapper_type(row);
    type.tp_repr = nullptr;
    return type;
}
