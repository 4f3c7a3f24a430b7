// The methods of Python's list that change a managed list.
#include "binding/clr_object.h"
#include "collections/collection_types.h"
#include "collections/int32_range.h"
#include "collections/interop_wrappers.h"
#include "collections/list_operations.h"
#include "marshal/others.h"
#include "shell/arguments.h"
#include "shell/ref.h"

namespace {

// None when no error is pending.
PyObject *none_unless_raised() { return PyErr_Occurred() ? nullptr : fn_py_return_none(); }

PyObject *refuse(PyObject *exception, const char *text) {
    PyErr_SetString(exception, text);
    return nullptr;
}

bool append_one(const ListOperations &list, PyObject *self, PyObject *value) {
    ElementArg element;
    if (!list.convert(value, &element)) return false;
    list.add(handle_of(self), element);
    return !PyErr_Occurred();
}

bool append_sequence(const ListOperations &list, PyObject *self, PyObject *values) {
    const Py_ssize_t size = PySequence_Size(values);
    for (Py_ssize_t i = 0; i < size; ++i) {
        const Ref item = Ref::steal(PySequence_GetItem(values, i));
        if (!item || !append_one(list, self, item.get())) return false;
    }
    return size >= 0;
}

bool append_plain(const ListOperations &list, PyObject *self, PyObject *values) {
    const Ref fast = Ref::steal(PySequence_Fast(values, "argument must be iterable"));
    if (!fast) return false;
    // The size is asked on each pass: an append may run Python code that changes the list.
    for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(fast.get()); ++i) {
        const Ref item = Ref::borrow(PySequence_Fast_GET_ITEM(fast.get(), i));
        if (!append_one(list, self, item.get())) return false;
    }
    return true;
}

bool append_iterable(const ListOperations &list, PyObject *self, PyObject *values) {
    const Ref iterator = Ref::steal(PyObject_GetIter(values));
    if (!iterator) {
        if (!PyErr_Occurred()) refuse(PyExc_ValueError, "argument must be iterable");
        return false;
    }
    while (const Ref item = Ref::steal(PyIter_Next(iterator.get())))
        if (!append_one(list, self, item.get())) return false;
    return !PyErr_Occurred();
}

// Both are managed: one call moves the elements. False: go on one by one, or an error is set.
bool append_at_once(const ListOperations &list, PyObject *self, PyObject *values) {
    const VariantArg items = {static_cast<int>(CollectionKind::handle), handle_of(values)};
    return list.inplace_concat(handle_of(self), &items) == 1 && !PyErr_Occurred();
}

bool append_all(const ListOperations &list, PyObject *self, PyObject *values) {
    if (is_class_wrapper(values)) {
        if (append_at_once(list, self, values)) return true;
        if (PyErr_Occurred()) return false;
    }
    if (PyList_CheckExact(values) || PyTuple_CheckExact(values))
        return append_plain(list, self, values);
    if (is_sequence_with_length(values)) return append_sequence(list, self, values);
    if (PyShlObject_HasIter(values)) return append_iterable(list, self, values);
    refuse(PyExc_ValueError, "argument must be iterable or sequence");
    return false;
}

} // namespace

PyObject *list_append(const ListOperations &list, PyObject *self, PyObject *value) {
    return append_one(list, self, value) ? fn_py_return_none() : nullptr;
}

PyObject *list_insert(const ListOperations &list, PyObject *self, PyObject *args) {
    Py_ssize_t index;
    ElementArg element;
    if (!PyArg_ParseTuple(args, "nO&", &index, list.convert, &element)) return nullptr;
    if (!check_index(index)) return nullptr;
    list.insert(handle_of(self), static_cast<int>(index), element);
    return none_unless_raised();
}

PyObject *list_extend(const ListOperations &list, PyObject *self, PyObject *values) {
    return append_all(list, self, values) ? fn_py_return_none() : nullptr;
}

PyObject *list_remove(const ListOperations &list, PyObject *self, PyObject *value) {
    ElementArg element;
    if (!list.convert(value, &element)) return nullptr;
    const int removed = list.remove(handle_of(self), element);
    if (PyErr_Occurred()) return nullptr;
    if (removed != 0) return fn_py_return_none();
    return refuse(PyExc_ValueError, "list.remove(x): x not in list");
}

// The flag tells the managed side whether an index was given; None gives index 0.
PyObject *list_pop(const ListOperations &list, PyObject *self, PyObject *args) {
    const Py_ssize_t given = PyTuple_GET_SIZE(args);
    Py_ssize_t index = 0;
    if (fn_check_args_count_out_of_range(given, "pop", 0, 1)) return nullptr;
    if (given > 0 && !fn_conv_py_optional_to_ssize_t(args, &index)) return nullptr;
    if (!check_index(index)) return nullptr;
    PyObject *item = nullptr;
    const int status =
        list.pop(handle_of(self), static_cast<int>(given), static_cast<int>(index), &item);
    if (status == 0) return item;
    if (status == 1) return refuse(PyExc_IndexError, "pop from empty list");
    if (status == 2) return refuse(PyExc_IndexError, "pop index out of range");
    return nullptr;
}

PyObject *list_clear(const ListOperations &list, PyObject *self) {
    list.clear(handle_of(self));
    return none_unless_raised();
}

PyObject *list_reverse(const ListOperations &list, PyObject *self) {
    list.reverse(handle_of(self));
    return none_unless_raised();
}

PyObject *list_sort(const ListOperations &list, PyObject *self, PyObject *args, PyObject *kwds) {
    static const char *const keywords[] = {"key", "reverse", nullptr};
    PyObject *key = Py_None;
    int reverse = 0;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "|Op", const_cast<char **>(keywords), &key,
                                     &reverse))
        return nullptr;
    if (key != Py_None) return refuse(PyExc_ValueError, "custom sorting key is not supported");
    list.sort(handle_of(self), reverse);
    return none_unless_raised();
}

PyObject *list_sq_inplace_concat(const ListOperations &list, PyObject *self, PyObject *other) {
    return append_all(list, self, other) ? Ref::borrow(self).release() : nullptr;
}

PyObject *list_sq_inplace_repeat(const ListOperations &list, PyObject *self, Py_ssize_t count) {
    if (!fits_int32(count)) {
        PyErr_Format(PyExc_OverflowError, "the value of 'count' (%zi) is out of the INT32 range",
                     count);
        return nullptr;
    }
    list.inplace_repeat(handle_of(self), static_cast<int>(count));
    return PyErr_Occurred() ? nullptr : Ref::borrow(self).release();
}
