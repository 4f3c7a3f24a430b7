// Takes and gives back the pending exception.
#include "shell/raised.h"

Ref take_raised() noexcept {
    PyObject *type = nullptr;
    PyObject *value = nullptr;
    PyObject *traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    if (!type) return Ref();
    PyErr_NormalizeException(&type, &value, &traceback);
    if (traceback) PyException_SetTraceback(value, traceback);
    Py_XDECREF(traceback);
    Py_DECREF(type);
    return Ref::steal(value);
}

void raise_again(Ref exception) noexcept {
    PyObject *const type = reinterpret_cast<PyObject *>(Py_TYPE(exception.get()));
    PyObject *const traceback = PyException_GetTraceback(exception.get());
    // Not PyErr_SetObject: that would put the exception that is being handled into __context__.
    PyErr_Restore(Py_NewRef(type), exception.release(), traceback);
}
