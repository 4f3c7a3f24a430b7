// Aggregates and reports the validity of bound types.
#include "binding/host_state.h"

#include "binding/clr_object.h"
#include "shell/import_errors.h"

PyHostState aggregate_host_state(const ClassHost &own,
                                 std::initializer_list<NotValidQuery> references) {
    PyHostState state;
    if (own.is_not_valid()) {
        state.invalid = true;
        state.message = own.error_msg();
        return state;
    }
    for (const NotValidQuery reference_is_not_valid : references) {
        if (!reference_is_not_valid(state.message)) continue;
        state.invalid = true;
        state.from_reference = true;
        break;
    }
    return state;
}

bool is_not_valid(const PyHostState &state, std::string &message) {
    if (state.invalid) message = state.message;
    return state.invalid;
}

bool is_not_valid(const ClassHost &host, std::string &message) {
    if (host.is_not_valid()) message = host.error_msg();
    return host.is_not_valid();
}

bool raise_not_valid(const PyHostState &state) {
    PyErr_SetString(PyExc_TypeError, state.message.c_str());
    if (state.from_reference)
        PyShlErr_ChainFormat(PyExc_TypeError, "one or more refereced type is not initialized");
    return true;
}

PyObject *new_clr_object(const PyHostState &state, PyTypeObject *type, PyObject *args,
                         PyObject *kwds) {
    if (raise_if_not_valid(state)) return nullptr;
    PyObject *const self = PyType_GenericNew(type, args, kwds);
    if (self != nullptr) reinterpret_cast<PyClrObject *>(self)->handle = nullptr;
    return self;
}
