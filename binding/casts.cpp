// The cast built-ins over the function table of a type.
#include "binding/casts.h"

#include "binding/clr_object.h"
#include "binding/markers.h"
#include "binding/sibling_types.h"
#include "shell/cast_result.h"
#include "shell/ref.h"

namespace {

// Ends a cast: an object is wrapped into the result and its own reference dropped.
PyObject *cast_result(int status, PyObject *converted) {
    const Ref value = Ref::steal(converted);
    if (!value && PyErr_Occurred()) return nullptr;
    return PyShCastOpResult_New(status, value.get());
}

using CastEntry = int (*)(const VariantArg *value, CastValue *out);

PyObject *cast(const CastOperations &casts, CastEntry entry, const VariantArg &argument) {
    CastValue out;
    const int status = entry(&argument, &out);
    if (PyErr_Occurred()) return nullptr;
    if (status == 0) return cast_from_nothing();
    return cast_result(status, casts.to_py(out));
}

PyObject *refuse_argument(const char *text, PyObject *argument) {
    PyErr_Format(PyExc_TypeError, text, Py_TYPE(argument)->tp_name);
    return nullptr;
}

} // namespace

int accept_class_wrapper(PyObject *object, VariantArg *out) {
    return fn_conv_py_obj_to_clr_refobj_not_null_handle(object, &out->value);
}

int accept_any_wrapper(PyObject *object, VariantArg *out) {
    return fn_conv_py_obj_to_clr_gen_not_null_handle(object, out);
}

PyObject *managed_type_result(void *handle) {
    if (PyErr_Occurred()) return nullptr;
    return wrpPyl_convcaps_clr_to_py_C08ECFAB_Type(handle);
}

PyObject *type_of(const CastOperations &casts) {
    if (casts.invalidate()) return nullptr;
    void *type = nullptr;
    casts.type_of(&type);
    return managed_type_result(type);
}

// A wrong argument is a failed cast and no error.
PyObject *cast_to(const CastOperations &casts, PyObject *object) {
    if (casts.invalidate()) return nullptr;
    VariantArg argument;
    if (!fn_conv_py_obj_to_clr_gen_handle(object, &argument)) return cast_from_nothing();
    return cast(casts, casts.cast_to, argument);
}

PyObject *cast_as(const CastOperations &casts, PyObject *object) {
    if (casts.invalidate()) return nullptr;
    VariantArg argument;
    if (!casts.accepts(object, &argument)) return cast_from_nothing();
    return cast(casts, casts.cast_as, argument);
}

PyObject *reinterpret_obj(const CastOperations &casts, PyObject *object) {
    if (casts.invalidate()) return nullptr;
    void *handle = nullptr;
    if (!wrpPyl_trancaps_py_to_clr_359C4ED8_Object(object, &handle))
        return refuse_argument("_reinterpret_obj() expects a .Net Object argument, got a %.100s "
                               "object",
                               object);
    CastValue out;
    casts.reinterpret(handle, &out);
    return PyErr_Occurred() ? nullptr : casts.to_py(out);
}

PyObject *is_assignable(const CastOperations &casts, PyObject *object) {
    if (casts.invalidate()) return nullptr;
    VariantArg argument;
    if (!casts.accepts(object, &argument)) Py_RETURN_FALSE;
    const bool assignable = casts.is_assignable(&argument);
    if (PyErr_Occurred()) return nullptr;
    return PyBool_FromLong(assignable);
}

PyObject *cast_from_nothing() { return PyShCastOpResult_New(0, nullptr); }

PyObject *cast_from(PyObject *self, PyObject *type,
                    int (*call)(void *self, void *type, void **out)) {
    void *type_handle = nullptr;
    if (!wrpPyl_trancaps_py_to_clr_C08ECFAB_Type(type, &type_handle))
        return refuse_argument("_cast_from() expects a .Net Type argument, got a %.100s object",
                               type);
    void *out = nullptr;
    const int status = call(handle_of(self), type_handle, &out);
    if (PyErr_Occurred()) return nullptr;
    if (status == 0) return cast_from_nothing();
    return cast_result(status, wrpPyl_convcaps_clr_to_py_359C4ED8_Object(out));
}

PyObject *refuse_reinterpretation(const PyTypeObject *interface, PyObject *object) {
    PyErr_Format(PyExc_TypeError, "cannot convert from  '%.100s' to '%.100s'",
                 Py_TYPE(object)->tp_name, interface->tp_name);
    return nullptr;
}
