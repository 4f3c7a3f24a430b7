// What the hand-made wrapper types are put together from: validity, creation, cast built-ins.
#pragma once

#include "binding/casts.h"
#include "binding/clr_object.h"
#include "binding/host_state.h"

#include <string>

// The validity of a type over its host and the types that it refers to.
template <class Host, NotValidQuery... References> struct Validity {
    static const PyHostState &state() {
        static const PyHostState state =
            aggregate_host_state(Host::get_instance(), {References...});
        return state;
    }
    static bool invalidate() { return raise_if_not_valid(state()); }
    static bool is_not_valid(std::string &message) { return ::is_not_valid(state(), message); }
    static PyObject *create(PyTypeObject *type, PyObject *args, PyObject *kwds) {
        return new_clr_object(state(), type, args, kwds);
    }
};

template <const CastOperations &casts> struct CastBuiltIns {
    static PyObject *type_of(PyObject *, PyObject *) { return ::type_of(casts); }
    static PyObject *cast_to(PyObject *, PyObject *object) { return ::cast_to(casts, object); }
    static PyObject *cast_from(PyObject *, PyObject *) { return cast_from_nothing(); }
    static PyObject *cast_as(PyObject *, PyObject *object) { return ::cast_as(casts, object); }
    static PyObject *is_assignable(PyObject *, PyObject *object) {
        return ::is_assignable(casts, object);
    }
    static PyObject *reinterpret_obj(PyObject *, PyObject *object) {
        return ::reinterpret_obj(casts, object);
    }
};

template <const PyTypeObject &type> PyObject *refuse_reinterpret_obj(PyObject *, PyObject *object) {
    return refuse_reinterpretation(&type, object);
}

// The tail of a method table, in the order that all hand-made wrappers have.
#define KELMOR_CAST_ROWS(BuiltIns, reinterpret)                                                    \
    {"_type_of", BuiltIns::type_of, METH_NOARGS | METH_STATIC, nullptr},                           \
        {"_cast_to", BuiltIns::cast_to, METH_O | METH_STATIC, nullptr},                            \
        {"_cast_from", BuiltIns::cast_from, METH_O, nullptr},                                      \
        {"_is_assignable", BuiltIns::is_assignable, METH_O | METH_STATIC, nullptr},                \
        {"_reinterpret_obj", reinterpret, METH_O | METH_STATIC, nullptr},                          \
        {"_cast_as", BuiltIns::cast_as, METH_O | METH_STATIC, nullptr}, {                          \
        nullptr, nullptr, 0, nullptr                                                               \
    }

// A function that takes keywords as a method table holds it.
#define KELMOR_WITH_KEYWORDS(function)                                                             \
    reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function))
