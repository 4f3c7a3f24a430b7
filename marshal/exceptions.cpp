// The bridge of exceptions.
#include "marshal/exceptions.h"

#include "marshal/strings.h"
#include "shell/identifiers.h"
#include "shell/import_errors.h"
#include "shell/ref.h"

namespace {

// An error that is set aside.
struct RaisedError {
    Ref type;
    Ref value;
    Ref traceback;
};

RaisedError fetch_error() {
    PyObject *type;
    PyObject *value;
    PyObject *traceback;
    PyErr_Fetch(&type, &value, &traceback);
    return {Ref::steal(type), Ref::steal(value), Ref::steal(traceback)};
}

void restore_error(RaisedError error) {
    PyErr_Restore(error.type.release(), error.value.release(), error.traceback.release());
}

// What the interpreter would print. Empty on a failure, with or without an exception set.
Ref format_full(const RaisedError &error) {
    const Ref module = Ref::steal(PyImport_ImportModule("traceback"));
    if (!module) {
        if (!PyErr_Occurred()) PyShlErr_UnableToImportModule("traceback");
        return Ref();
    }
    PyObject *const traceback = error.traceback.get();
    const Ref format = Ref::steal(PyObject_GetAttr(
        module.get(), traceback != nullptr ? PyWrpIdTraceBack_FormatException
                                           : PyWrpIdTraceBack_FormatExceptionOnly));
    if (!format || !PyCallable_Check(format.get())) return Ref();
    // A null traceback ends the arguments.
    const Ref lines = Ref::steal(PyObject_CallFunctionObjArgs(
        format.get(), error.type.get(), error.value.get(), traceback, nullptr));
    return lines ? Ref::steal(PyUnicode_Join(PyWrpIdStr_Empty, lines.get())) : Ref();
}

Ref name_of_class(PyObject *type) {
    Ref name = Ref::steal(PyObject_GetAttr(type, PyWrpIdType_Qualname));
    if (name && PyUnicode_Check(name.get())) return name;
    PyErr_Clear();
    return Ref::steal(PyObject_Str(type));
}

// The text without module "traceback". The error of a failing str() of the value is left pending.
//
// A traceback whose text is not empty is left out, and one whose text is empty is put in: readers
// of these texts rely on the forms as they are.
Ref format_fallback(const RaisedError &error) {
    const Ref name = name_of_class(error.type.get());
    if (!name) return Ref();
    const Ref value = error.value ? Ref::steal(PyObject_Str(error.value.get())) : Ref();
    // Set aside: Python code must not run with an error pending.
    RaisedError value_error = fetch_error();
    bool shows_traceback = false;
    if (error.traceback) {
        const Ref text = Ref::steal(PyObject_Str(error.traceback.get()));
        PyErr_Clear();
        shows_traceback = !text || PyUnicode_GetLength(text.get()) == 0;
    }
    Ref described;
    if (!value) {
        described = Ref::steal(PyUnicode_FromFormat("%U:", name.get()));
    } else if (!shows_traceback) {
        described = Ref::steal(PyUnicode_FromFormat("%U: %U", name.get(), value.get()));
    } else {
        described = Ref::steal(
            PyUnicode_FromFormat("%U: %U\n%U", name.get(), value.get(), PyWrpIdStr_Empty));
    }
    if (value_error.type) restore_error(std::move(value_error));
    return described;
}

int hand_over(Ref described, PyObject **owner, PyStringArg *text) {
    if (!described || !fn_conv_py_string_to_clr_string_value(described.get(), text)) return -1;
    *owner = described.release();
    return 0;
}

void report_unraisable() {
    if (PyErr_Occurred()) PyErr_WriteUnraisable(PyWrpIdTraceBack_FormatExceptionWarning);
}

int describe(RaisedError error, PyObject **owner, PyStringArg *text) {
    Ref described;
    RaisedError failure; // of the full form; reported when nothing worse comes
    if (error.value) {
        described = format_full(error);
        if (!described) failure = fetch_error();
    }
    if (!described) described = format_fallback(error);
    error = RaisedError();
    const int result = hand_over(std::move(described), owner, text);
    if (failure.type && !PyErr_Occurred()) restore_error(std::move(failure));
    report_unraisable();
    return result;
}

} // namespace

void on_clr_exception(PyObject *type_name, PyObject *message) {
    const Ref name = Ref::steal(type_name);
    const Ref text = Ref::steal(message);
    PyErr_Format(PyExc_RuntimeError, "Proxy error(%U): %U",
                 name ? name.get() : PyWrpIdTraceBack_Unknown,
                 text ? text.get() : PyWrpIdTraceBack_Unknown);
}

int fn_catch_and_clear_py_error(PyObject **owner, PyStringArg *text) {
    if (!PyErr_Occurred()) return -1;
    PyObject *type;
    PyObject *value;
    PyObject *traceback;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    return describe({Ref::steal(type), Ref::steal(value), Ref::steal(traceback)}, owner, text);
}

int fn_describe_py_error(PyObject *type, PyObject *value, PyObject *traceback, PyObject **owner,
                         PyStringArg *text) {
    return describe({Ref::borrow(type), Ref::borrow(value), Ref::borrow(traceback)}, owner, text);
}

PyObject *fn_conv_clr_string_to_py_unraisable(const uint16_t *chars, int32_t length) {
    PyObject *text =
        fn_conv_clr_string_to_py_string_value(reinterpret_cast<const char *>(chars), length);
    if (text == nullptr) report_unraisable();
    return text;
}
