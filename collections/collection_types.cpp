// Converters that several collection types share, and the publishing of wrapper types.
#include "collections/collection_types.h"

#include "binding/markers.h"
#include "binding/publish.h"
#include "collections/interop_wrappers.h"
#include "shell/module_tree.h"

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

int pass_handle(void *handle, VariantArg *out) {
    out->kind = static_cast<int>(CollectionKind::handle);
    out->value = handle;
    return 1;
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

int publish_wrapper_type(PyObject *module, const char *module_name, PyTypeObject *type,
                         const char *name, std::initializer_list<PyTypeObject *> interfaces) {
    const BoundType row = {.type = type,
                           .name = name,
                           .additional = interfaces.begin(),
                           .additional_count = interfaces.size(),
                           .implicit = interfaces.begin(),
                           .implicit_count = interfaces.size()};
    if (fn_ready_type(type) < 0 || mark_bound_type(row) < 0) return -1;
    return fn_add_type(module, module_name, type, name);
}
