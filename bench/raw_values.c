/* The same crossings as a C programmer would write them by hand, without a managed side: what is
 * taken is kept in a form of C's own, what is given is made of that. */
#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <datetime.h>

static PyObject *decimal_type;
static int kept_int, kept_bool;
static double kept_double;
static char *kept_text, *kept_block;
static Py_ssize_t text_length, block_length;
static struct { int year, month, day, hour, minute, second, microsecond; } kept_date;
static char kept_decimal[64];

/* Parses the one argument of a call. */
#define PARSE(format, ...)                                                                         \
    static char *names[] = {"value", NULL};                                                        \
    (void)self;                                                                                    \
    if (!PyArg_ParseTupleAndKeywords(args, kwds, format, names, __VA_ARGS__)) return NULL

static PyObject *nothing(PyObject *self, PyObject *unused) {
    (void)self, (void)unused;
    Py_RETURN_NONE;
}

static PyObject *take_int(PyObject *self, PyObject *args, PyObject *kwds) {
    PARSE("i", &kept_int);
    Py_RETURN_NONE;
}

static PyObject *give_int(PyObject *self, PyObject *unused) {
    (void)self, (void)unused;
    return PyLong_FromLong(kept_int);
}

static PyObject *take_float(PyObject *self, PyObject *args, PyObject *kwds) {
    PARSE("d", &kept_double);
    Py_RETURN_NONE;
}

static PyObject *give_float(PyObject *self, PyObject *unused) {
    (void)self, (void)unused;
    return PyFloat_FromDouble(kept_double);
}

static PyObject *take_bool(PyObject *self, PyObject *args, PyObject *kwds) {
    PARSE("p", &kept_bool);
    Py_RETURN_NONE;
}

static PyObject *give_bool(PyObject *self, PyObject *unused) {
    (void)self, (void)unused;
    return PyBool_FromLong(kept_bool);
}

/* A copy in the program's own memory, as any library on the other side would make. */
static PyObject *keep(char **kept, Py_ssize_t *kept_length, const void *bytes, Py_ssize_t length) {
    char *copy = PyMem_Malloc((size_t)length + 1);
    if (!copy) return PyErr_NoMemory();
    memcpy(copy, bytes, (size_t)length);
    PyMem_Free(*kept);
    *kept = copy;
    *kept_length = length;
    Py_RETURN_NONE;
}

static PyObject *take_text(PyObject *self, PyObject *args, PyObject *kwds) {
    const char *text;
    Py_ssize_t length;
    PARSE("s#", &text, &length);
    return keep(&kept_text, &text_length, text, length);
}

static PyObject *give_text(PyObject *self, PyObject *unused) {
    (void)self, (void)unused;
    return PyUnicode_DecodeUTF8(kept_text, text_length, NULL);
}

static PyObject *take_bytes(PyObject *self, PyObject *args, PyObject *kwds) {
    Py_buffer view;
    PARSE("y*", &view);
    PyObject *result = keep(&kept_block, &block_length, view.buf, view.len);
    PyBuffer_Release(&view);
    return result;
}

static PyObject *give_bytes(PyObject *self, PyObject *unused) {
    (void)self, (void)unused;
    return PyByteArray_FromStringAndSize(kept_block, block_length);
}

static PyObject *take_date(PyObject *self, PyObject *args, PyObject *kwds) {
    PyObject *value;
    PARSE("O!", PyDateTimeAPI->DateTimeType, &value);
    kept_date.year = PyDateTime_GET_YEAR(value);
    kept_date.month = PyDateTime_GET_MONTH(value);
    kept_date.day = PyDateTime_GET_DAY(value);
    kept_date.hour = PyDateTime_DATE_GET_HOUR(value);
    kept_date.minute = PyDateTime_DATE_GET_MINUTE(value);
    kept_date.second = PyDateTime_DATE_GET_SECOND(value);
    kept_date.microsecond = PyDateTime_DATE_GET_MICROSECOND(value);
    Py_RETURN_NONE;
}

static PyObject *give_date(PyObject *self, PyObject *unused) {
    (void)self, (void)unused;
    return PyDateTime_FromDateAndTime(kept_date.year, kept_date.month, kept_date.day,
                                      kept_date.hour, kept_date.minute, kept_date.second,
                                      kept_date.microsecond);
}

/* C has no decimal: its text is what a program would keep. */
static PyObject *take_decimal(PyObject *self, PyObject *args, PyObject *kwds) {
    PyObject *value;
    PARSE("O!", decimal_type, &value);
    PyObject *text = PyObject_Str(value);
    const char *utf8 = text ? PyUnicode_AsUTF8(text) : NULL;
    if (utf8) PyOS_snprintf(kept_decimal, sizeof kept_decimal, "%s", utf8);
    Py_XDECREF(text);
    if (!utf8) return NULL;
    Py_RETURN_NONE;
}

static PyObject *give_decimal(PyObject *self, PyObject *unused) {
    (void)self, (void)unused;
    return PyObject_CallFunction(decimal_type, "s", kept_decimal);
}

static PyObject *throw_error(PyObject *self, PyObject *args, PyObject *kwds) {
    static char *names[] = {"type", "message", NULL};
    const char *type, *message;
    (void)self;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "ss", names, &type, &message)) return NULL;
    return PyErr_Format(PyExc_RuntimeError, "Proxy error(%s): %s", type, message);
}

#define WITH_ARGUMENTS(name)                                                                       \
    { #name, (PyCFunction)(void (*)(void))name, METH_VARARGS | METH_KEYWORDS, NULL }
#define WITHOUT_ARGUMENTS(name)                                                                    \
    { #name, name, METH_NOARGS, NULL }

static PyMethodDef methods[] = {
    WITHOUT_ARGUMENTS(nothing),   WITH_ARGUMENTS(take_int),      WITHOUT_ARGUMENTS(give_int),
    WITH_ARGUMENTS(take_float),   WITHOUT_ARGUMENTS(give_float), WITH_ARGUMENTS(take_bool),
    WITHOUT_ARGUMENTS(give_bool), WITH_ARGUMENTS(take_text),     WITHOUT_ARGUMENTS(give_text),
    WITH_ARGUMENTS(take_bytes),   WITHOUT_ARGUMENTS(give_bytes), WITH_ARGUMENTS(take_date),
    WITHOUT_ARGUMENTS(give_date), WITH_ARGUMENTS(take_decimal),  WITHOUT_ARGUMENTS(give_decimal),
    WITH_ARGUMENTS(throw_error),  {NULL, NULL, 0, NULL},
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
