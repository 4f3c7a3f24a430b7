// Concatenation and repetition: new Python lists, the managed side unchanged.
#include "collections/list_results.h"

#include "binding/clr_object.h"
#include "collections/collection_types.h"
#include "collections/interop_wrappers.h"
#include "shell/ref.h"

namespace {

struct ManagedPart {
    const ListOperations &list;
    PyObject *self;
    FillElements fill;
    Py_ssize_t length;

    // A list whose first places hold the managed elements, with room for more behind them.
    Ref list_with_room(Py_ssize_t more) const {
        Ref result = Ref::steal(PyList_New(length + more));
        if (result && !fill(list, self, result.get(), length)) return Ref();
        return result;
    }
};

PyObject *refuse_operand(const char *text) {
    if (!PyErr_Occurred()) PyErr_SetString(PyExc_ValueError, text);
    return nullptr;
}

// The other's objects go in first: asking for the managed ones may run Python code, which may
// change the other list.
PyObject *concat_plain(const ManagedPart &part, PyObject *other) {
    const Ref fast = Ref::steal(PySequence_Fast(other, "argument must be iterable"));
    if (!fast) return nullptr;
    const Py_ssize_t more = PySequence_Fast_GET_SIZE(fast.get());
    Ref result = Ref::steal(PyList_New(part.length + more));
    if (!result) return nullptr;
    for (Py_ssize_t i = 0; i < more; ++i) {
        PyObject *const item = PySequence_Fast_GET_ITEM(fast.get(), i);
        PyList_SET_ITEM(result.get(), part.length + i, Ref::borrow(item).release());
    }
    if (!part.fill(part.list, part.self, result.get(), part.length)) return nullptr;
    return result.release();
}

PyObject *concat_sequence(const ManagedPart &part, PyObject *other) {
    const Py_ssize_t more = PySequence_Size(other);
    if (more < 0) return nullptr;
    Ref result = part.list_with_room(more);
    for (Py_ssize_t i = 0; result && i < more; ++i) {
        PyObject *const item = PySequence_GetItem(other, i);
        if (item == nullptr) return nullptr;
        PyList_SET_ITEM(result.get(), part.length + i, item);
    }
    return result.release();
}

PyObject *concat_iterable(const ManagedPart &part, PyObject *other) {
    Ref result = part.list_with_room(0);
    if (!result) return nullptr;
    const Ref iterator = Ref::steal(PyObject_GetIter(other));
    if (!iterator) return refuse_operand("argument must be iterable");
    while (const Ref item = Ref::steal(PyIter_Next(iterator.get())))
        if (PyList_Append(result.get(), item.get()) < 0) return nullptr;
    return PyErr_Occurred() ? nullptr : result.release();
}

bool fetch_elements(const ListOperations &list, PyObject *self, PyObject *result,
                    Py_ssize_t length) {
    for (Py_ssize_t i = 0; i < length; ++i) {
        PyObject *const item = list.fetch(handle_of(self), static_cast<int>(i));
        if (item == nullptr) return false;
        PyList_SET_ITEM(result, i, item);
    }
    return true;
}

} // namespace

PyObject *concat_elements(const ListOperations &list, PyObject *self, PyObject *other,
                          FillElements fill) {
    Py_ssize_t length;
    if (!ask_length(list, self, &length)) return nullptr;
    const ManagedPart part = {list, self, fill, length};
    if (PyList_CheckExact(other) || PyTuple_CheckExact(other)) return concat_plain(part, other);
    if (is_sequence_with_length(other)) return concat_sequence(part, other);
    if (PyShlObject_HasIter(other)) return concat_iterable(part, other);
    return refuse_operand("argument must be iterable or sequence");
}

// Each element is fetched once, whatever the count.
PyObject *repeat_elements(const ListOperations &list, PyObject *self, Py_ssize_t count,
                          FillElements fill) {
    Py_ssize_t length;
    if (!ask_length(list, self, &length)) return nullptr;
    if (count <= 0) return PyList_New(0);
    if (length > PY_SSIZE_T_MAX / count) return PyErr_NoMemory();
    Ref result = Ref::steal(PyList_New(length * count));
    if (!result || !fill(list, self, result.get(), length)) return nullptr;
    for (Py_ssize_t i = length; i < length * count; ++i) {
        PyObject *const item = PyList_GET_ITEM(result.get(), i - length);
        PyList_SET_ITEM(result.get(), i, Ref::borrow(item).release());
    }
    return result.release();
}

PyObject *list_sq_concat(const ListOperations &list, PyObject *self, PyObject *other) {
    return concat_elements(list, self, other, fetch_elements);
}

PyObject *list_sq_repeat(const ListOperations &list, PyObject *self, Py_ssize_t count) {
    return repeat_elements(list, self, count, fetch_elements);
}

PyObject *list_copy(const ListOperations &list, PyObject *self) {
    return list_sq_repeat(list, self, 1);
}
