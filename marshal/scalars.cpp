// Numbers and booleans, both ways.
#include "marshal/scalars.h"

#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/ref.h"

#include <limits>

namespace {

// An instance of an int subclass. The test is against the class of enumeration classes: bound
// enumerations have converters of their own and do not pass through here.
int is_enum_class(PyObject *value) {
    const Ref enum_type = Ref::steal(PyShImport_ImportType("enum", PyWrpIdTypeName_EnumType));
    return enum_type ? PyObject_IsInstance(value, enum_type.get()) : -1;
}

// True for an integer; otherwise an exception is set, TypeError with `refusal` among them.
bool check_integer(PyObject *value, const char *refusal) {
    const int answer = PyShLong_Check(value);
    if (answer == 0) PyErr_Format(PyExc_TypeError, refusal, Py_TYPE(value)->tp_name);
    // A failed look-up leaves its own error.
    return answer == 1;
}

constexpr char integer_refusal[] = "integer argument expected, got '%s'";

// One width of the table: `Wide` is what the interpreter reads, `out_of_range` the words for a
// value between the two.
template <class Width, class Wide, Wide (*read)(PyObject *)>
int convert_integer(PyObject *value, void *target, const char *out_of_range) {
    if (!PyLong_CheckExact(value) && !check_integer(value, integer_refusal)) return 0;
    const Wide number = read(value);
    if (number == static_cast<Wide>(-1) && PyErr_Occurred()) return 0;
    if constexpr (sizeof(Width) < sizeof(Wide)) {
        if (number < std::numeric_limits<Width>::min() ||
            number > std::numeric_limits<Width>::max()) {
            PyErr_Format(PyExc_OverflowError, out_of_range, number);
            return 0;
        }
    }
    *static_cast<Width *>(target) = static_cast<Width>(number);
    return 1;
}

// A number with the top bit set: halved, with the lost bit kept so that rounding stays right.
template <class Real> Real from_uint64(unsigned long long number) {
    if (number <= static_cast<unsigned long long>(std::numeric_limits<int64_t>::max())) {
        return static_cast<Real>(static_cast<int64_t>(number));
    }
    return static_cast<Real>(static_cast<int64_t>(number >> 1 | (number & 1))) * 2;
}

template <class Real> int convert_real(PyObject *value, void *target) {
    if (PyFloat_Check(value)) {
        const double real = PyFloat_AS_DOUBLE(value);
        // The error can only be one that an earlier argument has left.
        if (real == -1.0 && PyErr_Occurred()) return 0;
        *static_cast<Real *>(target) = static_cast<Real>(real);
        return 1;
    }
    if (!check_integer(value, "numeric argument expected, got '%s'")) return 0;
    const long long number = PyLong_AsLongLong(value);
    if (number != -1 || !PyErr_Occurred()) {
        *static_cast<Real *>(target) = static_cast<Real>(number);
        return 1;
    }
    PyErr_Clear();
    const unsigned long long large = PyLong_AsUnsignedLongLong(value);
    if (large == static_cast<unsigned long long>(-1) && PyErr_Occurred()) return 0;
    *static_cast<Real *>(target) = from_uint64<Real>(large);
    return 1;
}

} // namespace

int PyShLong_Check(PyObject *value) {
    if (PyLong_CheckExact(value)) return 1;
    if (PyBool_Check(value) || !PyLong_Check(value)) return 0;
    return is_enum_class(value);
}

int fn_conv_py_long_to_clr_int8(PyObject *value, void *target) {
    return convert_integer<int8_t, long, PyLong_AsLong>(value, target,
                                                        "value '%li' is out of the INT8 range");
}

int fn_conv_py_long_to_clr_int16(PyObject *value, void *target) {
    return convert_integer<int16_t, long, PyLong_AsLong>(value, target,
                                                         "value '%li' is out of the INT16 range");
}

int fn_conv_py_long_to_clr_int32(PyObject *value, void *target) {
    return convert_integer<int32_t, long, PyLong_AsLong>(value, target,
                                                         "value '%li' is out of the INT32 range");
}

int fn_conv_py_long_to_clr_int64(PyObject *value, void *target) {
    return convert_integer<int64_t, long long, PyLong_AsLongLong>(value, target, nullptr);
}

int fn_conv_py_ulong_to_clr_uint8(PyObject *value, void *target) {
    return convert_integer<uint8_t, unsigned long, PyLong_AsUnsignedLong>(
        value, target, "value '%lu' is out of the UINT8 range");
}

int fn_conv_py_ulong_to_clr_uint16(PyObject *value, void *target) {
    return convert_integer<uint16_t, unsigned long, PyLong_AsUnsignedLong>(
        value, target, "value '%lu' is out of the UINT16 range");
}

int fn_conv_py_ulong_to_clr_uint32(PyObject *value, void *target) {
    return convert_integer<uint32_t, unsigned long, PyLong_AsUnsignedLong>(
        value, target, "value '%lu' is out of the UINT32 range");
}

int fn_conv_py_ulong_to_clr_uint64(PyObject *value, void *target) {
    return convert_integer<uint64_t, unsigned long long, PyLong_AsUnsignedLongLong>(value, target,
                                                                                    nullptr);
}

int fn_conv_py_float_to_clr_double(PyObject *value, void *target) {
    return convert_real<double>(value, target);
}

int fn_conv_py_float_to_clr_float(PyObject *value, void *target) {
    return convert_real<float>(value, target);
}

int fn_conv_py_bool_to_clr_bool(PyObject *value, void *target) {
    if (!PyBool_Check(value)) {
        PyErr_Format(PyExc_TypeError, "can't build bool from '%s'", Py_TYPE(value)->tp_name);
        return 0;
    }
    *static_cast<uint8_t *>(target) = value == Py_True;
    return 1;
}

int fn_read_py_bool(PyObject *value) { return PyObject_IsTrue(value); }

int fn_read_py_double(PyObject *value, double *out) {
    const double number = PyFloat_AsDouble(value);
    if (number == -1.0 && PyErr_Occurred()) return 0;
    *out = number;
    return 1;
}

int fn_read_py_vers_long(PyObject *value, uint64_t *out) {
    const long number = PyLong_AsLong(value);
    const bool read = number != -1 || !PyErr_Occurred();
    if (read && number >= INT32_MIN && number <= INT32_MAX) {
        *out = static_cast<uint64_t>(number);
        return 1;
    }
    PyErr_Clear();
    const long long wide = PyLong_AsLongLong(value);
    if (wide != -1 || !PyErr_Occurred()) {
        *out = static_cast<uint64_t>(wide);
        return 2;
    }
    PyErr_Clear();
    const unsigned long long large = PyLong_AsUnsignedLongLong(value);
    if (large != static_cast<unsigned long long>(-1) || !PyErr_Occurred()) {
        *out = large;
        return 3;
    }
    PyErr_Format(PyExc_TypeError, "can't build integer value from '%s'", Py_TYPE(value)->tp_name);
    return 0;
}

PyObject *fn_write_py_bool(int32_t value) { return PyBool_FromLong(value & 0xff); }

PyObject *fn_write_py_long(int32_t value) { return PyLong_FromLong(value); }

PyObject *fn_write_py_ulong(uint32_t value) { return PyLong_FromUnsignedLong(value); }

PyObject *fn_write_py_longlong(int64_t value) { return PyLong_FromLongLong(value); }

PyObject *fn_write_py_ulonglong(uint64_t value) { return PyLong_FromUnsignedLongLong(value); }

PyObject *fn_write_py_double(double value) { return PyFloat_FromDouble(value); }
