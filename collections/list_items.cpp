// Items and slices of a managed list: length, reading, writing, deleting, searching.
#include "binding/clr_object.h"
#include "binding/markers.h"
#include "collections/collection_types.h"
#include "collections/int32_range.h"
#include "collections/list_operations.h"
#include "collections/list_results.h"
#include "shell/ref.h"

namespace {

// A slice against the length that was asked for it.
struct Slice {
    Py_ssize_t start, stop, step, count;

    int index(Py_ssize_t place) const { return static_cast<int>(start + place * step); }
};

bool unpack_slice(PyObject *key, Py_ssize_t length, Slice *slice) {
    if (PySlice_Unpack(key, &slice->start, &slice->stop, &slice->step) < 0) return false;
    slice->count = PySlice_AdjustIndices(length, &slice->start, &slice->stop, slice->step);
    return true;
}

bool refuse_subscript(PyObject *key) {
    PyErr_Format(PyExc_TypeError, "list indices must be integers or slices, not %.200s",
                 Py_TYPE(key)->tp_name);
    return false;
}

int refuse_removing() {
    PyErr_SetString(PyExc_ValueError, "elements removing not supported");
    return -1;
}

bool is_fixed_length(const ListOperations &list) { return list.remove_at == nullptr; }

// A negative index counts from the end; beyond that the managed side judges.
bool read_index(PyObject *key, Py_ssize_t length, Py_ssize_t *index) {
    *index = PyNumber_AsSsize_t(key, PyExc_IndexError);
    if (*index == -1 && PyErr_Occurred()) return false;
    if (*index < 0) *index += length;
    return true;
}

// False: an error is set, by the managed side or here.
bool check_item_status(int status) {
    if (status == 2) PyErr_SetString(PyExc_IndexError, "list index out of range");
    return status == 0 && !PyErr_Occurred();
}

PyObject *read_slice(const ListOperations &list, PyObject *self, const Slice &slice) {
    if (slice.count < 1) return PyList_New(0);
    Ref result = Ref::steal(PyList_New(slice.count));
    for (Py_ssize_t i = 0; result && i < slice.count; ++i) {
        PyObject *const item = list.fetch(handle_of(self), slice.index(i));
        if (item == nullptr) return nullptr;
        PyList_SET_ITEM(result.get(), i, item);
    }
    return result.release();
}

// From the highest index down, so that no deletion moves what is still to be deleted.
int delete_slice(const ListOperations &list, PyObject *self, Slice slice) {
    if (is_fixed_length(list)) return refuse_removing();
    if (slice.step > 0) {
        slice.start += (slice.count - 1) * slice.step;
        slice.step = -slice.step;
    }
    if (slice.start < 0) slice.start = 0; // an empty slice
    list.remove_items(handle_of(self), static_cast<int>(slice.start), static_cast<int>(slice.count),
                      static_cast<int>(slice.step));
    return PyErr_Occurred() ? -1 : 0;
}

bool check_slice_size(Py_ssize_t given, const Slice &slice) {
    if (given == slice.count) return true;
    PyErr_Format(PyExc_ValueError,
                 "attempt to assign sequence of size %zd to extended slice of size %zd", given,
                 slice.count);
    return false;
}

bool write_element(const ListOperations &list, PyObject *self, int index, PyObject *value) {
    ElementArg element;
    if (!list.convert(value, &element)) return false;
    list.set_item_nocheck(handle_of(self), index, element);
    return !PyErr_Occurred();
}

int write_slice_of_sequence(const ListOperations &list, PyObject *self, const Slice &slice,
                            PyObject *values) {
    for (Py_ssize_t i = 0; i < slice.count; ++i) {
        const Ref item = Ref::steal(PySequence_GetItem(values, i));
        if (!item || !write_element(list, self, slice.index(i), item.get())) return -1;
    }
    return 0;
}

// Both lists are managed: one call moves the elements. False: go on one by one, or an error is set.
bool write_slice_at_once(const ListOperations &list, PyObject *self, const Slice &slice,
                         PyObject *values) {
    const VariantArg items = {static_cast<int>(CollectionKind::handle), handle_of(values)};
    const int done = list.set_items(handle_of(self), &items, static_cast<int>(slice.start),
                                    static_cast<int>(slice.count), static_cast<int>(slice.step));
    return done == 1 && !PyErr_Occurred();
}

// The slice keeps its size: a managed list neither grows nor shrinks by an assignment.
int write_slice(const ListOperations &list, PyObject *self, const Slice &slice, PyObject *values) {
    const bool plain = PyList_CheckExact(values) || PyTuple_CheckExact(values);
    if (!plain && !is_sequence_with_length(values)) {
        PyErr_SetString(PyExc_TypeError, "must assign iterable to extended slice");
        return -1;
    }
    const Py_ssize_t given = PySequence_Size(values);
    if (given < 0 || !check_slice_size(given, slice)) return -1;
    if (!plain && is_class_wrapper(values)) {
        if (write_slice_at_once(list, self, slice, values)) return 0;
        if (PyErr_Occurred()) return -1;
    }
    return write_slice_of_sequence(list, self, slice, values);
}

} // namespace

bool ask_length(const ListOperations &list, PyObject *self, Py_ssize_t *length) {
    *length = list.length(handle_of(self));
    return *length >= 0 || !PyErr_Occurred();
}

Py_ssize_t list_sq_length(const ListOperations &list, PyObject *self) {
    Py_ssize_t length;
    return ask_length(list, self, &length) ? length : -1;
}

PyObject *list_length(const ListOperations &list, PyObject *self) {
    Py_ssize_t length;
    return ask_length(list, self, &length) ? PyLong_FromSsize_t(length) : nullptr;
}

PyObject *list_sq_item(const ListOperations &list, PyObject *self, Py_ssize_t index) {
    if (!check_index(index)) return nullptr;
    PyObject *item = nullptr;
    const int status = list.get_item(handle_of(self), static_cast<int>(index), &item);
    if (status == 0) return item;
    check_item_status(status);
    return nullptr;
}

int list_sq_ass_item(const ListOperations &list, PyObject *self, Py_ssize_t index,
                     PyObject *value) {
    if (value == nullptr && is_fixed_length(list)) return refuse_removing();
    if (!check_index(index)) return -1;
    const int place = static_cast<int>(index);
    if (value == nullptr) return check_item_status(list.remove_at(handle_of(self), place)) ? 0 : -1;
    ElementArg element;
    if (!list.convert(value, &element)) return -1;
    return check_item_status(list.set_item(handle_of(self), place, element)) ? 0 : -1;
}

PyObject *list_mp_subscript(const ListOperations &list, PyObject *self, PyObject *key) {
    Py_ssize_t length, index;
    Slice slice;
    if (!ask_length(list, self, &length)) return nullptr;
    if (PyIndex_Check(key))
        return read_index(key, length, &index) ? list_sq_item(list, self, index) : nullptr;
    if (!PySlice_Check(key)) {
        refuse_subscript(key);
        return nullptr;
    }
    return unpack_slice(key, length, &slice) ? read_slice(list, self, slice) : nullptr;
}

int list_mp_ass_subscript(const ListOperations &list, PyObject *self, PyObject *key,
                          PyObject *value) {
    Py_ssize_t length, index;
    Slice slice;
    if (!ask_length(list, self, &length)) return -1;
    if (PyIndex_Check(key))
        return read_index(key, length, &index) ? list_sq_ass_item(list, self, index, value) : -1;
    if (!PySlice_Check(key)) {
        refuse_subscript(key);
        return -1;
    }
    if (!unpack_slice(key, length, &slice)) return -1;
    return value == nullptr ? delete_slice(list, self, slice)
                            : write_slice(list, self, slice, value);
}

int list_sq_contains(const ListOperations &list, PyObject *self, PyObject *value) {
    ElementArg element;
    if (!list.convert(value, &element)) return -1;
    const int found = list.contains(handle_of(self), element);
    return PyErr_Occurred() ? -1 : found != 0;
}

PyObject *list_contains(const ListOperations &list, PyObject *self, PyObject *value) {
    const int found = list_sq_contains(list, self, value);
    return found < 0 ? nullptr : PyBool_FromLong(found);
}

PyObject *list_count(const ListOperations &list, PyObject *self, PyObject *value) {
    ElementArg element;
    if (!list.convert(value, &element)) return nullptr;
    const int count = list.count_of(handle_of(self), element);
    return PyErr_Occurred() ? nullptr : PyLong_FromLong(count);
}

PyObject *list_index(const ListOperations &list, PyObject *self, PyObject *args) {
    ElementArg element;
    Py_ssize_t start = 0, stop = 0;
    if (!PyArg_ParseTuple(args, "O&|nn", list.convert, &element, &start, &stop)) return nullptr;
    if (!check_index(start) || !check_index(stop)) return nullptr;
    const Py_ssize_t given = PyTuple_GET_SIZE(args);
    const IndexRange range = {given > 1, static_cast<int>(start), given > 2,
                              static_cast<int>(stop)};
    const int index = list.index_by(handle_of(self), range, element);
    if (PyErr_Occurred()) return nullptr;
    if (index >= 0) return PyLong_FromLong(index);
    PyErr_SetString(PyExc_ValueError, "value is not in list");
    return nullptr;
}
