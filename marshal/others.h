// GUIDs, characters, versions, nullables, by-reference parameters and indexes.
#pragma once

#include "marshal/records.h"

// 16 bytes in the order of uuid.UUID's `bytes_le`, which is the managed Guid's own.
int fn_conv_py_uuid_to_clr_guid(PyObject *value, void *target); // "O&" unit
int fn_conv_py_uuid_to_clr_guid_value(PyObject *value, uint8_t *target);
int fn_read_py_guid(PyObject *value, uint8_t *out);
PyObject *fn_conv_clr_guid_to_py_uuid(const void *source);
PyObject *fn_write_py_guid(const void *source);

// One UTF-16 code unit.
int fn_conv_py_string_to_clr_char(PyObject *value, void *target); // "O&" unit over a uint16
PyObject *fn_conv_clr_char_to_py_string(uint16_t unit);
PyObject *fn_write_py_char(int32_t unit); // the low 16 bits count

// A tuple of 2 to 4 ints, or None. "O&" unit over a PySysVersionArg.
int fn_conv_py_tuple_to_clr_version(PyObject *value, void *arg);
PyObject *fn_conv_clr_version_to_py_tuple(const PySysVersionArg &version);

// None, or what the record's converter takes. "O&" unit over a PyNullableArg.
int fn_conv_py_nullable_to_clr_nullable(PyObject *value, void *arg);

// A list whose first item, when there is one and it is not None, is the value to go in. "O&" unit
// over a PyParamByRef.
int fn_conv_py_parbyref_to_clr_parbyref(PyObject *value, void *arg);

// Puts the value that came out into the caller's list; takes the reference to it over. 0 or -1.
int fn_push_parbyref_outvalue(PyObject *list, PyObject *value);

// The values made for by-reference parameters, until all are made: only then do they go into the
// caller's lists, so that a failure changes none of them.
template <int capacity> class PyTrPyObjStack {
public:
    PyTrPyObjStack() noexcept = default;
    PyTrPyObjStack(const PyTrPyObjStack &) = delete;
    PyTrPyObjStack &operator=(const PyTrPyObjStack &) = delete;
    ~PyTrPyObjStack() {
        while (count_ > 0) Py_DECREF(items_[--count_]);
    }

    // Takes the reference over; false for a null.
    bool push(PyObject *fresh) noexcept {
        if (fresh != nullptr) items_[count_++] = fresh;
        return fresh != nullptr;
    }
    // Gives the reference of the last one back.
    PyObject *pop() noexcept { return items_[--count_]; }

private:
    PyObject *items_[capacity] = {};
    int count_ = 0;
};

// An object with __index__. "O&" unit over an int64.
int fn_conv_py_obj_to_ssize_t(PyObject *value, void *target);

// Item 0 of an argument tuple; None leaves the target as it is.
int fn_conv_py_optional_to_ssize_t(PyObject *args, void *target);
