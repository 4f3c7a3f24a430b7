// A managed array list as Python's list, over its own entries.
#include "collections/collection_types.h"
#include "collections/interop_wrappers.h"
#include "collections/list_hosts.h"
#include "collections/list_operations.h"
#include "collections/wrapper_rows.h"
#include "shell/module_identity.h"

PyHost_ph_ArrList &PyHost_ph_ArrList::get_instance() {
    static PyHost_ph_ArrList host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_ArrList, wrpPye_bltp_iterable_is_not_valid,
                       wrpPye_bltp_icollection_is_not_valid, wrpPye_bltp_ilist_is_not_valid>;

constexpr ListOperations operations = array_list_operations<PyHost_ph_ArrList>();

Py_ssize_t wrpPye_bltp_arrlist_sq_length(PyObject *self) {
    return list_sq_length(operations, self);
}

PyObject *wrpPye_bltp_arrlist_get_length(PyObject *self, void *) {
    return list_length(operations, self);
}

PyObject *wrpPye_bltp_arrlist_sq_concat(PyObject *self, PyObject *other) {
    return list_sq_concat(operations, self, other);
}

PyObject *wrpPye_bltp_arrlist_sq_repeat(PyObject *self, Py_ssize_t count) {
    return list_sq_repeat(operations, self, count);
}

PyObject *wrpPye_bltp_arrlist_sq_item(PyObject *self, Py_ssize_t index) {
    return list_sq_item(operations, self, index);
}

int wrpPye_bltp_arrlist_sq_ass_item(PyObject *self, Py_ssize_t index, PyObject *value) {
    return list_sq_ass_item(operations, self, index, value);
}

int wrpPye_bltp_arrlist_sq_contains(PyObject *self, PyObject *value) {
    return list_sq_contains(operations, self, value);
}

PyObject *wrpPye_bltp_arrlist_sq_inplace_concat(PyObject *self, PyObject *other) {
    return list_sq_inplace_concat(operations, self, other);
}

PyObject *wrpPye_bltp_arrlist_sq_inplace_repeat(PyObject *self, Py_ssize_t count) {
    return list_sq_inplace_repeat(operations, self, count);
}

PyObject *wrpPye_bltp_arrlist_mp_subscript(PyObject *self, PyObject *key) {
    return list_mp_subscript(operations, self, key);
}

int wrpPye_bltp_arrlist_mp_ass_subscript(PyObject *self, PyObject *key, PyObject *value) {
    return list_mp_ass_subscript(operations, self, key, value);
}

PyObject *wrpPye_bltp_arrlist_append(PyObject *self, PyObject *value) {
    return list_append(operations, self, value);
}

PyObject *wrpPye_bltp_arrlist_insert(PyObject *self, PyObject *args) {
    return list_insert(operations, self, args);
}

PyObject *wrpPye_bltp_arrlist_extend(PyObject *self, PyObject *value) {
    return list_extend(operations, self, value);
}

PyObject *wrpPye_bltp_arrlist_remove(PyObject *self, PyObject *value) {
    return list_remove(operations, self, value);
}

PyObject *wrpPye_bltp_arrlist_pop(PyObject *self, PyObject *args) {
    return list_pop(operations, self, args);
}

PyObject *wrpPye_bltp_arrlist_clear(PyObject *self, PyObject *) {
    return list_clear(operations, self);
}

PyObject *wrpPye_bltp_arrlist_index(PyObject *self, PyObject *args) {
    return list_index(operations, self, args);
}

PyObject *wrpPye_bltp_arrlist_count(PyObject *self, PyObject *value) {
    return list_count(operations, self, value);
}

PyObject *wrpPye_bltp_arrlist_contains(PyObject *self, PyObject *value) {
    return list_contains(operations, self, value);
}

PyObject *wrpPye_bltp_arrlist_sort(PyObject *self, PyObject *args, PyObject *kwds) {
    return list_sort(operations, self, args, kwds);
}

PyObject *wrpPye_bltp_arrlist_reverse(PyObject *self, PyObject *) {
    return list_reverse(operations, self);
}

PyObject *wrpPye_bltp_arrlist_copy(PyObject *self, PyObject *) {
    return list_copy(operations, self);
}

constexpr CastOperations casts = class_casts<PyHost_ph_ArrList, Valid::invalidate,
                                             wrap_handle_as<&wrpPye_tyds_ArrListWrapper>>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {
    {"append", wrpPye_bltp_arrlist_append, METH_O, nullptr},
    {"insert", wrpPye_bltp_arrlist_insert, METH_VARARGS, nullptr},
    {"extend", wrpPye_bltp_arrlist_extend, METH_O, nullptr},
    {"remove", wrpPye_bltp_arrlist_remove, METH_O, nullptr},
    {"pop", wrpPye_bltp_arrlist_pop, METH_VARARGS, nullptr},
    {"clear", wrpPye_bltp_arrlist_clear, METH_NOARGS, nullptr},
    {"index", wrpPye_bltp_arrlist_index, METH_VARARGS, nullptr},
    {"count", wrpPye_bltp_arrlist_count, METH_O, nullptr},
    {"contains", wrpPye_bltp_arrlist_contains, METH_O, nullptr},
    {"sort", KELMOR_WITH_KEYWORDS(wrpPye_bltp_arrlist_sort), METH_VARARGS | METH_KEYWORDS, nullptr},
    {"reverse", wrpPye_bltp_arrlist_reverse, METH_NOARGS, nullptr},
    {"copy", wrpPye_bltp_arrlist_copy, METH_NOARGS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    KELMOR_CAST_ROWS(Casts, Casts::reinterpret_obj)};

PyGetSetDef properties[] = {{"length", wrpPye_bltp_arrlist_get_length, nullptr, nullptr, nullptr},
                            {nullptr, nullptr, nullptr, nullptr, nullptr}};

PySequenceMethods sequence = {wrpPye_bltp_arrlist_sq_length,
                              wrpPye_bltp_arrlist_sq_concat,
                              wrpPye_bltp_arrlist_sq_repeat,
                              wrpPye_bltp_arrlist_sq_item,
                              nullptr,
                              wrpPye_bltp_arrlist_sq_ass_item,
                              nullptr,
                              wrpPye_bltp_arrlist_sq_contains,
                              wrpPye_bltp_arrlist_sq_inplace_concat,
                              wrpPye_bltp_arrlist_sq_inplace_repeat};

PyMappingMethods mapping = {wrpPye_bltp_arrlist_sq_length, wrpPye_bltp_arrlist_mp_subscript,
                            wrpPye_bltp_arrlist_mp_ass_subscript};

} // namespace

constinit PyTypeObject wrpPye_tyds_ArrListWrapper = collection_wrapper_type(
    {.name = module_identity::arrlist_wrapper,
     .create = Valid::create,
     .methods = methods,
     .properties = properties},
    {.sequence = &sequence, .mapping = &mapping, .iterate = wrpPye_bltp_iterable_iter});

bool wrpPye_bltp_arrlist_is_not_valid(std::string &message) { return Valid::is_not_valid(message); }

int wrpPye_conv_py_to_clr_arrlist(PyObject *value, VariantArg *out) {
    static constexpr ClassConversion conversion = {"ArrayList", &wrpPye_tyds_ArrListWrapper,
                                                   Valid::invalidate,
                                                   class_is_assignable<PyHost_ph_ArrList>};
    return array_like_from_py(value, out, conversion);
}
