/* The same crossings as a C programmer would write them by hand, without a managed side. */
#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <datetime.h>

static PyObject *decimal_type;

static PyObject *echo_int(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"value", NULL};
    int value;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "i", names, &value)) return NULL;
    return PyLong_FromLong(value);
}

static PyObject *echo_float(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"value", NULL};
    double value;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "d", names, &value)) return NULL;
    return PyFloat_FromDouble(value);
}

static PyObject *echo_bool(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"value", NULL};
    int value;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "p", names, &value)) return NULL;
    return PyBool_FromLong(value);
}

/* Copies the text into the program's own memory, as any library on the other side would. */
static PyObject *echo_str(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"text", NULL};
    const char *text;
    Py_ssize_t length;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "s#", names, &text, &length)) return NULL;
    char *copy = PyMem_Malloc((size_t)length + 1);
    if (!copy) return PyErr_NoMemory();
    memcpy(copy, text, (size_t)length + 1);
    PyObject *result = PyUnicode_DecodeUTF8(copy, length, NULL);
    PyMem_Free(copy);
    return result;
}

static PyObject *echo_bytes(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"bytes", NULL};
    Py_buffer view;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "y*", names, &view)) return NULL;
    char *copy = PyMem_Malloc((size_t)view.len + 1);
    if (!copy) return PyErr_NoMemory();
    memcpy(copy, view.buf, (size_t)view.len);
    PyObject *result = PyByteArray_FromStringAndSize(copy, view.len);
    PyMem_Free(copy);
    PyBuffer_Release(&view);
    return result;
}

static PyObject *echo_date(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"value", NULL};
    PyObject *value;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O!", names, PyDateTimeAPI->DateTimeType, &value))
        return NULL;
    return PyDateTime_FromDateAndTime(
        PyDateTime_GET_YEAR(value), PyDateTime_GET_MONTH(value), PyDateTime_GET_DAY(value),
        PyDateTime_DATE_GET_HOUR(value), PyDateTime_DATE_GET_MINUTE(value),
        PyDateTime_DATE_GET_SECOND(value), PyDateTime_DATE_GET_MICROSECOND(value));
}

static PyObject *echo_decimal(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"value", NULL};
    PyObject *value;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O!", names, decimal_type, &value)) return NULL;
    PyObject *parts = PyObject_CallMethod(value, "as_tuple", NULL);
    if (!parts) return NULL;
    PyObject *result = PyObject_CallFunctionObjArgs(decimal_type, parts, NULL);
    Py_DECREF(parts);
    return result;
}

static PyObject *throw_error(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"type", "message", NULL};
    const char *type, *message;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "ss", names, &type, &message)) return NULL;
    return PyErr_Format(PyExc_RuntimeError, "Proxy error(%s): %s", type, message);
}

static PyMethodDef methods[] = {
    {"echo_int", (PyCFunction)(void (*)(void))echo_int, METH_VARARGS | METH_KEYWORDS, NULL},
    {"echo_float", (PyCFunction)(void (*)(void))echo_float, METH_VARARGS | METH_KEYWORDS, NULL},
    {"echo_bool", (PyCFunction)(void (*)(void))echo_bool, METH_VARARGS | METH_KEYWORDS, NULL},
    {"echo_str", (PyCFunction)(void (*)(void))echo_str, METH_VARARGS | METH_KEYWORDS, NULL},
    {"echo_bytes", (PyCFunction)(void (*)(void))echo_bytes, METH_VARARGS | METH_KEYWORDS, NULL},
    {"echo_date", (PyCFunction)(void (*)(void))echo_date, METH_VARARGS | METH_KEYWORDS, NULL},
    {"echo_decimal", (PyCFunction)(void (*)(void))echo_decimal, METH_VARARGS | METH_KEYWORDS, NULL},
    {"throw_error", (PyCFunction)(void (*)(void))throw_error, METH_VARARGS | METH_KEYWORDS, NULL},
    {NULL, NULL, 0, NULL},
};

static PyModuleDef definition = {
    PyModuleDef_HEAD_INIT, "raw_values", NULL, -1, methods, NULL, NULL, NULL, NULL};

PyMODINIT_FUNC PyInit_raw_values(void) {
    PyDateTime_IMPORT;
    PyObject *module = PyImport_ImportModule("decimal");
    if (!module) return NULL;
    decimal_type = PyObject_GetAttrString(module, "Decimal");
    Py_DECREF(module);
    return decimal_type ? PyModule_Create(&definition) : NULL;
}
