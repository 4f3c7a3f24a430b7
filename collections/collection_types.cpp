// Converters that several collection types share, and the publishing of wrapper types.
#include "collections/collection_types.h"

#include "binding/markers.h"
#include "collections/interop_wrappers.h"
#include "shell/import_errors.h"
#include "shell/module_tree.h"
#include "shell/ref.h"

#include <cstring>

namespace {

int pass_handle(void *handle, VariantArg *out) {
    out->kind = static_cast<int>(CollectionKind::handle);
    out->value = handle;
    return 1;
}

bool fail(int code, const PyTypeObject *type) {
    PyShlErr_TypeInitializationInternalError(code, type->tp_name);
    return false;
}

// Variadic as its callees: the set of interfaces is at most four long.
template <class Setter>
bool set_interfaces(Setter set, PyTypeObject *type,
                    std::initializer_list<PyTypeObject *> interfaces) {
    PyTypeObject *const *const row = interfaces.begin();
    const std::size_t count = interfaces.size();
    const auto at = [&](std::size_t i) { return i < count ? row[i] : nullptr; };
    return set(type, static_cast<int>(count), at(0), at(1), at(2), at(3));
}

bool set_markers(PyTypeObject *type, std::initializer_list<PyTypeObject *> interfaces) {
    if (interfaces.size() > 0) {
        if (!set_interfaces(fn_set_additional_ifcs_markattr, type, interfaces))
            return fail(-1017, type);
        if (!set_interfaces(fn_set_implicit_ifcs_markattr, type, interfaces))
            return fail(-1018, type);
    }
    if (!fn_set_obj_type_host_markattr(type)) return fail(-1016, type);
    if (!fn_set_castable_type_markattr(type, Py_None)) return fail(-1021, type);
    return true;
}

} // namespace

bool PyShlObject_HasLength(PyObject *object) {
    const PyTypeObject *const type = Py_TYPE(object);
    return (type->tp_as_sequence != nullptr && type->tp_as_sequence->sq_length != nullptr) ||
           (type->tp_as_mapping != nullptr && type->tp_as_mapping->mp_length != nullptr);
}

bool PyShlObject_HasIter(PyObject *object) {
    return Py_TYPE(object)->tp_iter != nullptr || PySequence_Check(object);
}

bool is_class_wrapper(PyObject *value) {
    return fn_is_this_module_clr_object(value) || fn_is_refobj_has_host_markattr(value);
}

bool is_sequence_with_length(PyObject *value) {
    const PySequenceMethods *const sequence = Py_TYPE(value)->tp_as_sequence;
    return PySequence_Check(value) && sequence != nullptr && sequence->sq_length != nullptr;
}

int pass_python_object(PyObject *value, CollectionKind kind, VariantArg *out) {
    out->kind = static_cast<int>(kind);
    out->value = value;
    return 1;
}

int array_like_from_py(PyObject *value, VariantArg *out, const ClassConversion &conversion) {
    if (value == Py_None) return pass_handle(nullptr, out);
    if (PyObject_TypeCheck(value, conversion.type)) return pass_handle(handle_of(value), out);
    void *handle;
    if (fn_conv_py_obj_to_clr_refobj_not_null_handle(value, &handle)) {
        const int assignable = ask_assignable(conversion, handle);
        if (assignable < 0) return refuse_value(conversion.name, value);
        return assignable != 0 ? pass_handle(handle, out) : 0;
    }
    if (PyList_Check(value)) return pass_python_object(value, CollectionKind::object, out);
    if (is_sequence_with_length(value))
        return pass_python_object(value, CollectionKind::sequence, out);
    return refuse_value(conversion.name, value);
}

int interface_wrapper_from_py(PyObject *value, VariantArg *out,
                              const VariantConversion &conversion) {
    if (value == Py_None) return pass_handle(nullptr, out);
    if (Py_IS_TYPE(value, conversion.type)) return pass_handle(handle_of(value), out);
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

int publish_wrapper_type(PyObject *module, const char *module_name, PyTypeObject *type,
                         const char *name, std::initializer_list<PyTypeObject *> interfaces) {
    if (fn_ready_type(type) < 0 || !set_markers(type, interfaces)) return -1;
    return fn_add_type(module, module_name, type, name);
}
