// The probe: an extension module through which tests call functions of the runtime's layers.
#include "peer/probe.h"

#include "shell/cpython.h"

#include <cstring>

namespace {

const ProbeTable *&first_table() {
    static const ProbeTable *table = nullptr;
    return table;
}

PyObject *probe_address(PyObject *, PyObject *name) {
    const char *text = PyUnicode_AsUTF8(name);
    if (!text) return nullptr;
    for (const ProbeTable *table = ProbeTable::first(); table; table = table->next)
        for (std::size_t index = 0; index < table->size; ++index)
            if (std::strcmp(table->rows[index].name, text) == 0)
                return PyLong_FromVoidPtr(const_cast<void *>(table->rows[index].address));
    PyErr_SetObject(PyExc_KeyError, name);
    return nullptr;
}

PyObject *probe_names(PyObject *, PyObject *) {
    PyObject *names = PyList_New(0);
    if (!names) return nullptr;
    for (const ProbeTable *table = ProbeTable::first(); table; table = table->next) {
        for (std::size_t index = 0; index < table->size; ++index) {
            PyObject *name = PyUnicode_FromString(table->rows[index].name);
            const bool added = name && PyList_Append(names, name) == 0;
            Py_XDECREF(name);
            if (!added) {
                Py_DECREF(names);
                return nullptr;
            }
        }
    }
    return names;
}

PyMethodDef methods[] = {
    {"address", probe_address, METH_O, "Address of a function or datum of the runtime."},
    {"names", probe_names, METH_NOARGS, "All names that `address` knows."},
    {nullptr, nullptr, 0, nullptr},
};

PyModuleDef module = {
    PyModuleDef_HEAD_INIT, "kelmor_probe", nullptr, -1, methods, nullptr, nullptr, nullptr, nullptr,
};

} // namespace

ProbeTable::ProbeTable(const ProbeRow *rows, std::size_t size)
    : rows(rows), size(size), next(first_table()) {
    first_table() = this;
}

const ProbeTable *ProbeTable::first() { return first_table(); }

KELMOR_MODULE_ENTRY PyInit_kelmor_probe() { return PyModule_Create(&module); }
