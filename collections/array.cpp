// A managed array: Python's list without what changes its length.
#include "collections/collection_types.h"
#include "collections/interop_wrappers.h"
#include "collections/list_hosts.h"
#include "collections/list_operations.h"
#include "collections/wrapper_rows.h"
#include "shell/module_identity.h"

PyHost_ph_Array &PyHost_ph_Array::get_instance() {
    static PyHost_ph_Array host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_Array, wrpPye_bltp_iterable_is_not_valid,
                       wrpPye_bltp_icollection_is_not_valid, wrpPye_bltp_ilist_is_not_valid>;

constexpr ListOperations operations = array_operations<PyHost_ph_Array>();

Py_ssize_t wrpPye_bltp_array_sq_length(PyObject *self) { return list_sq_length(operations, self); }

PyObject *wrpPye_bltp_array_get_length(PyObject *self, void *) {
    return list_length(operations, self);
}

PyObject *wrpPye_bltp_array_sq_concat(PyObject *self, PyObject *other) {
    return list_sq_concat(operations, self, other);
}

PyObject *wrpPye_bltp_array_sq_repeat(PyObject *self, Py_ssize_t count) {
    return list_sq_repeat(operations, self, count);
}

PyObject *wrpPye_bltp_array_sq_item(PyObject *self, Py_ssize_t index) {
    return list_sq_item(operations, self, index);
}

int wrpPye_bltp_array_sq_ass_item(PyObject *self, Py_ssize_t index, PyObject *value) {
    return list_sq_ass_item(operations, self, index, value);
}

int wrpPye_bltp_array_sq_contains(PyObject *self, PyObject *value) {
    return list_sq_contains(operations, self, value);
}

PyObject *wrpPye_bltp_array_mp_subscript(PyObject *self, PyObject *key) {
    return list_mp_subscript(operations, self, key);
}

int wrpPye_bltp_array_mp_ass_subscript(PyObject *self, PyObject *key, PyObject *value) {
    return list_mp_ass_subscript(operations, self, key, value);
}

PyObject *wrpPye_bltp_array_index(PyObject *self, PyObject *args) {
    return list_index(operations, self, args);
}

PyObject *wrpPye_bltp_array_count(PyObject *self, PyObject *value) {
    return list_count(operations, self, value);
}

PyObject *wrpPye_bltp_array_contains(PyObject *self, PyObject *value) {
    return list_contains(operations, self, value);
}

PyObject *wrpPye_bltp_array_sort(PyObject *self, PyObject *args, PyObject *kwds) {
    return list_sort(operations, self, args, kwds);
}

PyObject *wrpPye_bltp_array_reverse(PyObject *self, PyObject *) {
    return list_reverse(operations, self);
}

PyObject *wrpPye_bltp_array_copy(PyObject *self, PyObject *) { return list_copy(operations, self); }

constexpr CastOperations casts =
    class_casts<PyHost_ph_Array, Valid::invalidate, wrap_handle_as<&wrpPye_tyds_ArrayWrapper>>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {
    {"index", wrpPye_bltp_array_index, METH_VARARGS, nullptr},
    {"count", wrpPye_bltp_array_count, METH_O, nullptr},
    {"contains", wrpPye_bltp_array_contains, METH_O, nullptr},
    {"sort", KELMOR_WITH_KEYWORDS(wrpPye_bltp_array_sort), METH_VARARGS | METH_KEYWORDS, nullptr},
    {"reverse", wrpPye_bltp_array_reverse, METH_NOARGS, nullptr},
    {"copy", wrpPye_bltp_array_copy, METH_NOARGS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    KELMOR_CAST_ROWS(Casts, Casts::reinterpret_obj)};

PyGetSetDef properties[] = {{"length", wrpPye_bltp_array_get_length, nullptr, nullptr, nullptr},
                            {nullptr, nullptr, nullptr, nullptr, nullptr}};

PySequenceMethods sequence = {wrpPye_bltp_array_sq_length,
                              wrpPye_bltp_array_sq_concat,
                              wrpPye_bltp_array_sq_repeat,
                              wrpPye_bltp_array_sq_item,
                              nullptr,
                              wrpPye_bltp_array_sq_ass_item,
                              nullptr,
                              wrpPye_bltp_array_sq_contains,
                              nullptr,
                              nullptr};

PyMappingMethods mapping = {wrpPye_bltp_array_sq_length, wrpPye_bltp_array_mp_subscript,
                            wrpPye_bltp_array_mp_ass_subscript};

} // namespace

constinit PyTypeObject wrpPye_tyds_ArrayWrapper = collection_wrapper_type(
    {.name = module_identity::array_wrapper,
     .create = Valid::create,
     .methods = methods,
     .properties = properties},
    {.sequence = &sequence, .mapping = &mapping, .iterate = wrpPye_bltp_iterable_iter});

bool wrpPye_bltp_array_is_not_valid(std::string &message) { return Valid::is_not_valid(message); }

int wrpPye_conv_py_to_clr_array(PyObject *value, VariantArg *out) {
    static constexpr ClassConversion conversion = {"Array", &wrpPye_tyds_ArrayWrapper,
                                                   Valid::invalidate,
                                                   class_is_assignable<PyHost_ph_Array>};
    return array_like_from_py(value, out, conversion);
}
