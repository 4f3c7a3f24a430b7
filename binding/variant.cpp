// Sorts a Python value into the kind by which the managed side reads it.
#include "binding/variant.h"

#include "binding/clr_object.h"
#include "binding/markers.h"
#include "marshal/dates.h"
#include "marshal/scalars.h"
#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/ref.h"

namespace {

// The answers of a step: the kind, or one of these.
constexpr int no_hit = -1;
constexpr int failed = -2; // with an exception set

constexpr int code(VariantKind kind) { return static_cast<int>(kind); }

int instance_of(PyObject *value, const char *module, PyObject *name, VariantKind kind) {
    const Ref type = Ref::steal(PyShImport_ImportType(module, name));
    if (!type) return failed;
    const int answer = PyObject_IsInstance(value, type.get());
    if (answer < 0) return failed;
    return answer ? code(kind) : no_hit;
}

// What is told without a look-up. A bool is an int, so it stands first.
int number_kind(PyObject *value) {
    if (value == Py_None) return code(VariantKind::none);
    if (PyBool_Check(value)) return code(VariantKind::boolean);
    if (PyShLong_Check(value) != 0) return code(VariantKind::integer);
    if (PyFloat_Check(value)) return code(VariantKind::floating);
    return no_hit;
}

// A DecimalTuple is a tuple, so it is asked for long before that.
int imported_kind(PyObject *value) {
    int kind =
        instance_of(value, "decimal", PyWrpIdTypeName_DecimalTuple, VariantKind::decimal_tuple);
    if (kind == no_hit) {
        kind = instance_of(value, "decimal", PyWrpIdTypeName_Decimal, VariantKind::decimal);
    }
    if (kind == no_hit) {
        kind = instance_of(value, "uuid", PyWrpIdTypeName_Uuid, VariantKind::uuid);
    }
    return kind;
}

int date_kind(PyObject *value) {
    if (!import_py_datetime_api()) return failed;
    switch (get_py_date_form(value)) {
    case PyDateForm::timedelta:
        return code(VariantKind::timedelta);
    case PyDateForm::datetime:
        return code(VariantKind::datetime);
    case PyDateForm::date:
        return code(VariantKind::date);
    case PyDateForm::time:
        return code(VariantKind::time);
    default:
        return no_hit;
    }
}

bool is_bytes_like(PyObject *value) {
    return (PyBytes_Check(value) || PyByteArray_Check(value) || PyMemoryView_Check(value)) &&
           PyObject_CheckBuffer(value);
}

// Subclasses of list and tuple are no variants: the array converters take those.
int container_kind(PyObject *value) {
    if (PyUnicode_Check(value)) return code(VariantKind::str);
    if (is_bytes_like(value)) return code(VariantKind::buffer);
    if (PyList_CheckExact(value)) return code(VariantKind::list);
    if (PyTuple_CheckExact(value)) return code(VariantKind::tuple);
    return no_hit;
}

// Wrappers of this module and of its siblings.
bool is_wrapper(PyObject *value, int *flavour) {
    return fn_is_this_module_clr_instance(value, flavour) ||
           fn_is_instance_has_host_markattr(value, flavour);
}

} // namespace

int fn_conv_py_variant_to_clr_variant(PyObject *value, VariantArg *out) {
    out->value = value;
    int kind = number_kind(value);
    if (kind == no_hit) kind = imported_kind(value);
    if (kind == no_hit) kind = date_kind(value);
    if (kind == no_hit) kind = container_kind(value);
    if (kind == failed) return 0;
    if (kind != no_hit) {
        out->kind = kind;
        return 1;
    }
    int flavour;
    if (is_wrapper(value, &flavour) && handle_of(value) != nullptr) {
        out->kind = flavour + 1;
        out->value = handle_of(value);
        return 1;
    }
    PyErr_SetString(PyExc_TypeError, "unknown variant type");
    return 0;
}
