// Converters from Python of classes, structs and interfaces.
#include "binding/class_convert.h"

#include "binding/clr_object.h"
#include "binding/markers.h"

namespace {

int answer(bool assignable) {
    if (PyErr_Occurred()) return 0;
    return assignable ? 1 : -1;
}

} // namespace

int refuse_value(const char *name, PyObject *value) {
    PyErr_Format(PyExc_TypeError, "can't build %s value from '%s'", name, Py_TYPE(value)->tp_name);
    return 0;
}

int ask_assignable(const ClassConversion &conversion, void *handle) {
    if (conversion.invalidate()) return 0;
    return answer(conversion.is_assignable(handle));
}

int ask_assignable(const VariantConversion &conversion, const VariantArg *value) {
    if (conversion.invalidate()) return 0;
    return answer(conversion.is_assignable(value));
}

int class_from_py(PyObject *value, void **out, const ClassConversion &conversion) {
    if (value == Py_None) {
        *out = nullptr;
        return 1;
    }
    if (PyObject_TypeCheck(value, conversion.type)) {
        *out = handle_of(value);
        return 1;
    }
    if (fn_conv_py_obj_to_clr_refobj_not_null_handle(value, out)) {
        const int assignable = ask_assignable(conversion, *out);
        if (assignable >= 0) return assignable;
    }
    return refuse_value(conversion.name, value);
}

int struct_from_py(PyObject *value, VariantArg *out, const VariantConversion &conversion) {
    if (Py_IS_TYPE(value, conversion.type)) {
        out->kind = static_cast<int>(HandleKind::struct_handle);
        out->value = handle_of(value);
        return 1;
    }
    if (fn_conv_py_obj_to_clr_gen_not_null_handle(value, out)) {
        const int assignable = ask_assignable(conversion, out);
        if (assignable >= 0) return assignable;
    }
    return refuse_value(conversion.name, value);
}

int interface_wrapper_from_py(PyObject *value, VariantArg *out,
                              const VariantConversion &conversion) {
    const bool none = value == Py_None;
    if (none || Py_IS_TYPE(value, conversion.type)) {
        out->kind = static_cast<int>(HandleKind::class_handle);
        out->value = none ? nullptr : handle_of(value);
        return 1;
    }
    int kind;
    if (fn_is_this_module_clr_instance(value, &kind) &&
        fn_contains_additional_ifc_markattr(value, conversion.type)) {
        out->kind = kind;
        out->value = handle_of(value);
        return 1;
    }
    if (!fn_conv_py_obj_to_clr_gen_not_null_handle(value, out)) return -1;
    const int assignable = ask_assignable(conversion, out);
    return assignable < 0 ? refuse_value(conversion.name, value) : assignable;
}

int interface_from_py(PyObject *value, VariantArg *out, const VariantConversion &conversion) {
    const int accepted = interface_wrapper_from_py(value, out, conversion);
    return accepted < 0 ? refuse_value(conversion.name, value) : accepted;
}
