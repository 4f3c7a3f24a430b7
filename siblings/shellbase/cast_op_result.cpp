// The result of a managed cast: whether it succeeded, and the object that it gave.
#include "cast_op_result.h"

#include "shell/ref.h"

namespace {

struct CastOpResult {
    PyObject_HEAD int status; // as the managed side gave it
    PyObject *value;          // owned; null when the cast gave nothing, which Python sees as None
};

CastOpResult *as_result(PyObject *object) { return reinterpret_cast<CastOpResult *>(object); }

bool is_success(PyObject *self) { return as_result(self)->status != 0; }

PyObject *value_of(PyObject *self) {
    PyObject *const value = as_result(self)->value;
    return Py_NewRef(value ? value : Py_None);
}

PyObject *get_is_success(PyObject *self, void *) { return PyBool_FromLong(is_success(self)); }
PyObject *get_status(PyObject *self, void *) { return PyLong_FromLong(as_result(self)->status); }
PyObject *get_value(PyObject *self, void *) { return value_of(self); }

PyObject *result_repr(PyObject *self) {
    const Ref value = Ref::steal(value_of(self));
    return PyUnicode_FromFormat("%s(is_success=%s, value=%R)", "CastOpResult",
                                is_success(self) ? "True" : "False", value.get());
}

int result_bool(PyObject *self) { return is_success(self); }

Py_ssize_t result_length(PyObject *) { return 2; }

// `ok, value = X._cast_as(y)` goes through here.
PyObject *result_item(PyObject *self, Py_ssize_t index) {
    switch (index) {
    case 0:
        return get_is_success(self, nullptr);
    case 1:
        return value_of(self);
    default:
        PyErr_SetString(PyExc_IndexError, "CastOpResult index out of range");
        return nullptr;
    }
}

int result_traverse(PyObject *self, visitproc visit, void *arg) {
    Py_VISIT(as_result(self)->value);
    return 0;
}

void result_dealloc(PyObject *self) {
    PyObject_GC_UnTrack(self);
    Py_XDECREF(as_result(self)->value);
    PyObject_GC_Del(self);
}

PyGetSetDef result_getset[] = {
    {"is_success", get_is_success, nullptr, "Whether the cast succeeded.", nullptr},
    {"status", get_status, nullptr, "The managed status: 0 failed, anything else succeeded.",
     nullptr},
    {"value", get_value, nullptr, "The object that the cast gave, or None.", nullptr},
    {},
};

PyNumberMethods result_number = {.nb_bool = result_bool};

PySequenceMethods result_sequence = {.sq_length = result_length, .sq_item = result_item};

} // namespace

PyTypeObject CastOpResult_Type = {
    .ob_base = {PyObject_HEAD_INIT(nullptr) 0},
    .tp_name = "kelmor.shellbase.CastOpResult",
    .tp_basicsize = sizeof(CastOpResult),
    .tp_dealloc = result_dealloc,
    .tp_repr = result_repr,
    .tp_as_number = &result_number,
    .tp_as_sequence = &result_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC,
    .tp_doc = "Result of a cast of a managed object.\n\n"
              "True when the cast succeeded; unpacks as (is_success, value).",
    .tp_traverse = result_traverse,
    .tp_getset = result_getset,
};

PyObject *cast_op_result_new(int status, PyObject *value) {
    CastOpResult *result = PyObject_GC_New(CastOpResult, &CastOpResult_Type);
    if (!result) return nullptr;
    result->status = status;
    result->value = Py_XNewRef(value);
    PyObject_GC_Track(result);
    return reinterpret_cast<PyObject *>(result);
}
