// Markers of bound types: entries of their own dictionaries, written once and read on each test.
#include "binding/markers.h"

#include "binding/clr_object.h"
#include "shell/identifiers.h"
#include "shell/ref.h"

namespace {

bool set_marker(PyTypeObject *type, PyObject *key, PyObject *value) {
    return set_type_entry(type, key, value) == 0;
}

PyObject *as_object(PyTypeObject *type) { return reinterpret_cast<PyObject *>(type); }

// Borrowed; null, and no error, when the type's own dictionary has no such entry.
PyObject *marker_of(PyTypeObject *type, PyObject *key) {
    PyObject *const entries = type_dict(type);
    PyObject *const marker = entries != nullptr ? PyDict_GetItemWithError(entries, key) : nullptr;
    // A key of the user's own kind may have refused to be compared.
    if (marker == nullptr) PyErr_Clear();
    return marker;
}

} // namespace

int set_type_entry(PyTypeObject *type, PyObject *key, PyObject *value) {
    const int result = PyDict_SetItem(type_dict(type), key, value);
    if (result == 0) PyType_Modified(type);
    return result;
}

int set_type_entry(PyTypeObject *type, const char *key, PyObject *value) {
    const int result = PyDict_SetItemString(type_dict(type), key, value);
    if (result == 0) PyType_Modified(type);
    return result;
}

bool fn_set_obj_type_host_markattr(PyTypeObject *type) {
    return set_marker(type, PyWrpIdMarkattr_KelmorClrHost, Py_None);
}

bool fn_set_stc_type_host_markattr(PyTypeObject *type) {
    return set_marker(type, PyWrpIdMarkattr_KelmorClrHost, Py_Ellipsis);
}

bool fn_set_castable_type_markattr(PyTypeObject *type, PyObject *value) {
    return set_marker(type, PyWrpIdMarkattr_KelmorClrCastableObj, value);
}

bool fn_set_external_ancestor_markattr(PyTypeObject *type, PyTypeObject *ancestor) {
    return set_marker(type, PyWrpIdMarkattr_ExternalAncestor, as_object(ancestor));
}

bool fn_set_any_ifcs_markattr(PyTypeObject *type, PyObject *key, int count, va_list interfaces) {
    Ref set = Ref::steal(PySet_New(nullptr));
    if (!set) return false;
    for (int i = 0; i < count; ++i) {
        if (PySet_Add(set.get(), as_object(va_arg(interfaces, PyTypeObject *))) == 0) continue;
        set.release(); // stays alive: the import has failed, and nobody looks at it again
        return false;
    }
    return set_marker(type, key, set.get());
}

bool fn_set_additional_ifcs_markattr(PyTypeObject *type, int count, ...) {
    va_list interfaces;
    va_start(interfaces, count);
    const bool done =
        fn_set_any_ifcs_markattr(type, PyWrpIdMarkattr_AdditionalInterfaces, count, interfaces);
    va_end(interfaces);
    return done;
}

bool fn_set_implicit_ifcs_markattr(PyTypeObject *type, int count, ...) {
    va_list interfaces;
    va_start(interfaces, count);
    const bool done =
        fn_set_any_ifcs_markattr(type, PyWrpIdMarkattr_ImplicitInterfaces, count, interfaces);
    va_end(interfaces);
    return done;
}

bool fn_is_refobj_has_host_markattr(PyObject *object) {
    return marker_of(Py_TYPE(object), PyWrpIdMarkattr_KelmorClrHost) == Py_None;
}

bool fn_is_instance_has_host_markattr(PyObject *object, int *kind) {
    PyObject *const marker = marker_of(Py_TYPE(object), PyWrpIdMarkattr_KelmorClrHost);
    if (marker != Py_None && marker != Py_Ellipsis) return false;
    *kind =
        static_cast<int>(marker == Py_None ? HandleKind::class_handle : HandleKind::struct_handle);
    return true;
}

bool fn_has_external_ancestor_markattr(PyObject *object, PyTypeObject *ancestor) {
    return marker_of(Py_TYPE(object), PyWrpIdMarkattr_ExternalAncestor) == as_object(ancestor);
}

bool fn_contains_any_ifc_markattr(PyTypeObject *type, PyObject *key, PyTypeObject *interface) {
    PyObject *const set = marker_of(type, key);
    if (set == nullptr || !PySet_Check(set)) return false;
    const int found = PySet_Contains(set, as_object(interface));
    if (found < 0) PyErr_Clear();
    return found > 0;
}

bool fn_contains_additional_ifc_markattr(PyObject *object, PyTypeObject *interface) {
    return fn_contains_any_ifc_markattr(Py_TYPE(object), PyWrpIdMarkattr_AdditionalInterfaces,
                                        interface);
}

bool fn_contains_implicit_ifc_markattr(PyTypeObject *type, PyTypeObject *interface) {
    return fn_contains_any_ifc_markattr(type, PyWrpIdMarkattr_ImplicitInterfaces, interface);
}

int fn_conv_py_obj_to_clr_refobj_not_null_handle(PyObject *object, void **out) {
    if (!fn_is_refobj_has_host_markattr(object)) return 0;
    *out = handle_of(object);
    return 1;
}

int fn_conv_py_obj_to_clr_gen_not_null_handle(PyObject *object, VariantArg *out) {
    int kind;
    if (!fn_is_instance_has_host_markattr(object, &kind)) return 0;
    out->kind = kind;
    out->value = handle_of(object);
    return 1;
}

int fn_conv_py_obj_to_clr_gen_handle(PyObject *object, VariantArg *out) {
    if (object != Py_None) return fn_conv_py_obj_to_clr_gen_not_null_handle(object, out);
    out->value = nullptr;
    return 1;
}
