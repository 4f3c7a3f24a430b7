// The interpreter's C interface, and everything in which CPython 3.8 to 3.13 differ for us.
//
// All code includes this header and never Python.h, so that a version that changes something is
// answered in one place. Code that needs the date-and-time capsule includes <datetime.h> after it.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

// The entry of a module. The headers of 3.8 leave it hidden under -fvisibility=hidden.
#define KELMOR_MODULE_ENTRY extern "C" __attribute__((visibility("default"))) PyObject *

#if PY_VERSION_HEX < 0x03090000

static inline int Py_IS_TYPE(const PyObject *object, const PyTypeObject *type) {
    return Py_TYPE(object) == type;
}

static inline PyObject *PyObject_CallMethodNoArgs(PyObject *object, PyObject *name) {
    return PyObject_CallMethodObjArgs(object, name, nullptr);
}

#endif

#if PY_VERSION_HEX < 0x030A0000

static inline PyObject *Py_NewRef(PyObject *object) {
    Py_INCREF(object);
    return object;
}

static inline PyObject *Py_XNewRef(PyObject *object) {
    Py_XINCREF(object);
    return object;
}

#endif

// Before 3.12 a str may still be in the form that it was created in, and has to be made ready
// before its characters are looked at. Later versions know ready strings alone.
static inline bool unicode_is_ready(PyObject *text) {
#if PY_VERSION_HEX < 0x030C0000
    return PyUnicode_IS_READY(text);
#else
    (void)text;
    return true;
#endif
}

// 0, or -1 with an exception set.
static inline int unicode_make_ready(PyObject *text) {
#if PY_VERSION_HEX < 0x030C0000
    return PyUnicode_READY(text);
#else
    (void)text;
    return 0;
#endif
}

// The dictionary of a type, borrowed; null for the interpreter's own static types from 3.12 on,
// which carry nothing of ours.
static inline PyObject *type_dict(const PyTypeObject *type) { return type->tp_dict; }

// Little-endian two's complement of an int. 0, or -1 with OverflowError set.
static inline int long_as_bytes(PyObject *number, unsigned char *bytes, size_t size,
                                bool is_signed) {
#if PY_VERSION_HEX < 0x030D0000
    return _PyLong_AsByteArray(reinterpret_cast<PyLongObject *>(number), bytes, size, 1, is_signed);
#else
    return _PyLong_AsByteArray(reinterpret_cast<PyLongObject *>(number), bytes, size, 1, is_signed,
                               1);
#endif
}
