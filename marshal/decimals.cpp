// Decimals, both ways.
#include "marshal/decimals.h"

#include "marshal/decimal_arg_in_builder.h"
#include "marshal/decimal_arg_out_builder.h"
#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/ref.h"

#include <algorithm>

namespace {

constexpr int group_length = 9;
constexpr int most_digits = 29; // of a managed decimal
constexpr int least_exponent = -28;

int refuse_too_large() {
    PyErr_SetString(PyExc_OverflowError, "value too large for .Net decimal");
    return 0;
}

// Infinities and NaNs have a letter for an exponent. True with an exception set for what is no
// number.
bool is_non_convertable_py_decimal(PyObject *exponent, const char *target) {
    if (PyLong_Check(exponent)) return false;
    if (!PyUnicode_Check(exponent)) {
        PyErr_Format(PyExc_TypeError, "unknown exponent type '%s'", Py_TYPE(exponent)->tp_name);
    } else if (PyUnicode_CompareWithASCIIString(exponent, "F") == 0) {
        PyErr_Format(PyExc_OverflowError, "value too large for .Net '%s'", target);
    } else if (PyUnicode_CompareWithASCIIString(exponent, "n") == 0 ||
               PyUnicode_CompareWithASCIIString(exponent, "N") == 0) {
        PyErr_SetString(PyExc_OverflowError, "value is not a number");
    } else {
        PyErr_Format(PyExc_TypeError, "can't build '%s' from exponent value '%U'", target,
                     exponent);
    }
    return true;
}

// How many digits to read, at which count to round, and the exponent that then stands.
struct DigitPlan {
    int64_t exponent;
    Py_ssize_t count; // to read
    int round_at;     // -1 for none
};

// False when the number is too large for any rounding to help.
bool plan_digits(int64_t exponent, Py_ssize_t count, DigitPlan &plan) {
    // A single digit is let through: the end test catches it, and zero has to pass.
    if (exponent > most_digits - count && count >= 2) return false;
    Py_ssize_t round_at = -1;
    if (exponent < least_exponent) {
        const int64_t below = least_exponent - exponent; // digits under the managed scale
        exponent = least_exponent;
        if (count < below) {
            count = 0;
        } else {
            count -= static_cast<Py_ssize_t>(below);
            round_at = count + 1; // one digit more than stays is read, to round on
        }
    }
    if (count > most_digits) {
        exponent += count - most_digits;
        round_at = most_digits + 1;
        count = round_at;
    }
    plan = {exponent, std::max(round_at, count), static_cast<int>(round_at)};
    return true;
}

bool get_mantissa_group(PyObject *digits, Py_ssize_t from, Py_ssize_t to, uint64_t &group) {
    group = 0;
    for (Py_ssize_t i = from; i < to; i++) {
        const unsigned long digit = PyLong_AsUnsignedLong(PyTuple_GET_ITEM(digits, i));
        if (digit == static_cast<unsigned long>(-1) && PyErr_Occurred()) return false;
        group = group * 10 + digit;
    }
    return true;
}

int build_decimal(PyObject *digits, int sign, const DigitPlan &plan, uint32_t *target) {
    DecimalArgOutBuilder builder(target);
    builder.begin_accept_decimal(sign, plan.exponent, plan.round_at);
    for (Py_ssize_t from = 0; from < plan.count; from += group_length) {
        const Py_ssize_t to = std::min(from + group_length, plan.count);
        uint64_t group;
        if (!get_mantissa_group(digits, from, to, group)) return 0;
        builder.accept_decimal_mantissa(group, static_cast<int>(to - from));
    }
    return builder.end_accept_decimal() ? 1 : refuse_too_large();
}

Ref import_decimal_type(PyObject *name) {
    return Ref::steal(PyShImport_ImportType("decimal", name));
}

} // namespace

int fn_conv_py_decimal_tuple_to_clr_decimal(PyObject *value, uint32_t *target) {
    const Ref exponent = Ref::steal(PyObject_GetAttr(value, PyWrpIdDecimal_Exponent));
    if (!exponent) return 0;
    const Ref sign = Ref::steal(PyObject_GetAttr(value, PyWrpIdDecimal_Sign));
    if (!sign) return 0;
    const Ref given = Ref::steal(PyObject_GetAttr(value, PyWrpIdDecimal_Digits));
    if (!given) return 0;
    if (is_non_convertable_py_decimal(exponent.get(), "Decimal")) return 0;

    const long long exponent_number = PyLong_AsLongLong(exponent.get());
    if (exponent_number == -1 && PyErr_Occurred()) return 0;
    const long sign_number = PyLong_AsLong(sign.get());
    if (sign_number == -1 && PyErr_Occurred()) return 0;
    const Ref digits = Ref::steal(PySequence_Tuple(given.get()));
    if (!digits) return 0;
    DigitPlan plan;
    if (!plan_digits(exponent_number, PyTuple_GET_SIZE(digits.get()), plan)) {
        return refuse_too_large();
    }
    return build_decimal(digits.get(), static_cast<int>(sign_number), plan, target);
}

int fn_conv_py_decimal_obj_to_clr_decimal(PyObject *value, uint32_t *target) {
    const Ref tuple = Ref::steal(PyObject_CallMethodNoArgs(value, PyWrpIdDecimal_AsTuple));
    return tuple ? fn_conv_py_decimal_tuple_to_clr_decimal(tuple.get(), target) : 0;
}

int fn_conv_py_decimal_to_clr_decimal(PyObject *value, void *target) {
    auto *out = static_cast<uint32_t *>(target);
    const Ref tuple_type = import_decimal_type(PyWrpIdTypeName_DecimalTuple);
    if (!tuple_type) return 0;
    const int is_tuple = PyObject_IsInstance(value, tuple_type.get());
    if (is_tuple < 0) return 0;
    if (is_tuple) return fn_conv_py_decimal_tuple_to_clr_decimal(value, out);
    const Ref decimal_type = import_decimal_type(PyWrpIdTypeName_Decimal);
    if (!decimal_type) return 0;
    const int is_decimal = PyObject_IsInstance(value, decimal_type.get());
    if (is_decimal < 0) return 0;
    if (is_decimal) return fn_conv_py_decimal_obj_to_clr_decimal(value, out);
    PyErr_Format(PyExc_TypeError, "can't build Decimal from '%s'", Py_TYPE(value)->tp_name);
    return 0;
}

int fn_read_py_decimal(PyObject *value, uint32_t *out) {
    return fn_conv_py_decimal_obj_to_clr_decimal(value, out);
}

int fn_read_py_decimal_tuple(PyObject *value, uint32_t *out) {
    return fn_conv_py_decimal_tuple_to_clr_decimal(value, out);
}

PyObject *fn_conv_clr_decimal_to_py_decimal(uint32_t *source) {
    const Ref decimal_type = import_decimal_type(PyWrpIdTypeName_Decimal);
    if (!decimal_type) return nullptr;
    const DecimalArgInBuilder builder(source);
    const Ref digits = Ref::steal(PyTuple_New(builder.mantissa_length()));
    if (!digits) return nullptr;
    for (int32_t i = 0; i < builder.mantissa_length(); i++) {
        PyObject *digit = PyLong_FromLong(builder.mantissa_cbegin()[i]);
        if (digit == nullptr) return nullptr;
        PyTuple_SET_ITEM(digits.get(), i, digit);
    }
    const Ref parts =
        Ref::steal(Py_BuildValue("(iOi)", builder.sign(), digits.get(), -builder.exponent()));
    // PyObject_CallOneArg would ask 3.9 and 3.10 for the state of the thread.
    return parts ? PyObject_CallFunctionObjArgs(decimal_type.get(), parts.get(), nullptr) : nullptr;
}

PyObject *fn_write_py_decimal(uint32_t *source) {
    return fn_conv_clr_decimal_to_py_decimal(source);
}
