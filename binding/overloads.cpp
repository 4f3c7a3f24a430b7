// Collects the failures of parse attempts and raises them together.
#include "binding/overloads.h"

#include "shell/ref.h"

#include <utility>

PyObject *keep_parse_failure(PyObject **slot) {
    PyObject *type = nullptr;
    PyObject *traceback = nullptr;
    PyErr_Fetch(&type, slot, &traceback);
    // An error raised as a bare type has no value yet, and an empty slot means success.
    if (*slot == nullptr) PyErr_NormalizeException(&type, slot, &traceback);
    Py_XDECREF(type);
    Py_XDECREF(traceback);
    return nullptr;
}

void drop_parse_failures(PyObject **failures, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) Py_XDECREF(std::exchange(failures[i], nullptr));
}

void raise_parse_failures(PyObject **failures, std::size_t count) {
    const Ref texts = Ref::steal(PyList_New(static_cast<Py_ssize_t>(count)));
    for (std::size_t i = 0; texts && i < count; ++i) {
        const Ref failure = Ref::steal(std::exchange(failures[i], nullptr));
        // A text that cannot be made leaves its place empty; the other ones still tell.
        PyList_SET_ITEM(texts.get(), static_cast<Py_ssize_t>(i), PyObject_Str(failure.get()));
    }
    if (texts) PyErr_SetObject(PyExc_TypeError, texts.get());
}
