// A managed list behind its interface, as Python's list.
#include "collections/collection_types.h"
#include "collections/interface_methods.h"
#include "collections/interop_wrappers.h"
#include "collections/list_hosts.h"
#include "collections/list_operations.h"
#include "collections/wrapper_rows.h"
#include "shell/module_identity.h"

PyHost_ph_IList &PyHost_ph_IList::get_instance() {
    static PyHost_ph_IList host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_IList, wrpPye_bltp_icollection_is_not_valid,
                       wrpPye_bltp_iterable_is_not_valid>;

// The interface's forwards differ in names from those of the concrete lists, and it has no length.
struct InterfaceOperations : HostOperations<PyHost_ph_IList> {
    static int length(void *self) { return PyHost_ph_ICol::get_instance().sq_length(self); }
    static PyObject *fetch(void *self, int index) {
        return to_py(host().sq_getitem_nocheck(self, index));
    }
    static int get_item(void *self, int index, PyObject **item) {
        PyObject *out = nullptr;
        const int status = host().sq_getitem(self, index, &out);
        if (status == 0) *item = to_py(out);
        return status;
    }
    static int set_item(void *self, int index, const ElementArg &value) {
        return host().sq_setitem(self, index, pass(value));
    }
    static void set_item_nocheck(void *self, int index, const ElementArg &value) {
        host().sq_setitem_nocheck(self, index, pass(value));
    }
};

constexpr ListOperations operations = list_table<InterfaceOperations>();

Py_ssize_t wrpPye_bltp_ilist_sq_length(PyObject *self) { return list_sq_length(operations, self); }

PyObject *wrpPye_bltp_ilist_get_length(PyObject *self, void *) {
    return list_length(operations, self);
}

PyObject *wrpPye_bltp_ilist_sq_concat(PyObject *self, PyObject *other) {
    return list_sq_concat(operations, self, other);
}

PyObject *wrpPye_bltp_ilist_sq_repeat(PyObject *self, Py_ssize_t count) {
    return list_sq_repeat(operations, self, count);
}

PyObject *wrpPye_bltp_ilist_sq_item(PyObject *self, Py_ssize_t index) {
    return list_sq_item(operations, self, index);
}

int wrpPye_bltp_ilist_sq_ass_item(PyObject *self, Py_ssize_t index, PyObject *value) {
    return list_sq_ass_item(operations, self, index, value);
}

int wrpPye_bltp_ilist_sq_contains(PyObject *self, PyObject *value) {
    return list_sq_contains(operations, self, value);
}

PyObject *wrpPye_bltp_ilist_sq_inplace_concat(PyObject *self, PyObject *other) {
    return list_sq_inplace_concat(operations, self, other);
}

PyObject *wrpPye_bltp_ilist_sq_inplace_repeat(PyObject *self, Py_ssize_t count) {
    return list_sq_inplace_repeat(operations, self, count);
}

PyObject *wrpPye_bltp_ilist_mp_subscript(PyObject *self, PyObject *key) {
    return list_mp_subscript(operations, self, key);
}

int wrpPye_bltp_ilist_mp_ass_subscript(PyObject *self, PyObject *key, PyObject *value) {
    return list_mp_ass_subscript(operations, self, key, value);
}

constexpr CastOperations casts =
    interface_casts<PyHost_ph_IList, Valid::invalidate, &wrpPye_tyds_IListWrapper>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {
    {"append", wrpPye_bltp_ilist_append, METH_O, nullptr},
    {"insert", wrpPye_bltp_ilist_insert, METH_VARARGS, nullptr},
    {"extend", wrpPye_bltp_ilist_extend, METH_O, nullptr},
    {"remove", wrpPye_bltp_ilist_remove, METH_O, nullptr},
    {"pop", wrpPye_bltp_ilist_pop, METH_VARARGS, nullptr},
    {"clear", wrpPye_bltp_ilist_clear, METH_NOARGS, nullptr},
    {"index", wrpPye_bltp_ilist_index, METH_VARARGS, nullptr},
    {"count", wrpPye_bltp_ilist_count, METH_O, nullptr},
    {"contains", wrpPye_bltp_ilist_contains, METH_O, nullptr},
    {"sort", KELMOR_WITH_KEYWORDS(wrpPye_bltp_ilist_sort), METH_VARARGS | METH_KEYWORDS, nullptr},
    {"reverse", wrpPye_bltp_ilist_reverse, METH_NOARGS, nullptr},
    {"copy", wrpPye_bltp_ilist_copy, METH_NOARGS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    KELMOR_CAST_ROWS(Casts, refuse_reinterpret_obj<wrpPye_tyds_IListWrapper>)};

} // namespace

PyObject *wrpPye_bltp_ilist_append(PyObject *self, PyObject *value) {
    return list_append(operations, self, value);
}

PyObject *wrpPye_bltp_ilist_insert(PyObject *self, PyObject *args) {
    return list_insert(operations, self, args);
}

PyObject *wrpPye_bltp_ilist_extend(PyObject *self, PyObject *values) {
    return list_extend(operations, self, values);
}

PyObject *wrpPye_bltp_ilist_remove(PyObject *self, PyObject *value) {
    return list_remove(operations, self, value);
}

PyObject *wrpPye_bltp_ilist_pop(PyObject *self, PyObject *args) {
    return list_pop(operations, self, args);
}

PyObject *wrpPye_bltp_ilist_clear(PyObject *self, PyObject *) {
    return list_clear(operations, self);
}

PyObject *wrpPye_bltp_ilist_index(PyObject *self, PyObject *args) {
    return list_index(operations, self, args);
}

PyObject *wrpPye_bltp_ilist_count(PyObject *self, PyObject *value) {
    return list_count(operations, self, value);
}

PyObject *wrpPye_bltp_ilist_contains(PyObject *self, PyObject *value) {
    return list_contains(operations, self, value);
}

PyObject *wrpPye_bltp_ilist_sort(PyObject *self, PyObject *args, PyObject *kwds) {
    return list_sort(operations, self, args, kwds);
}

PyObject *wrpPye_bltp_ilist_reverse(PyObject *self, PyObject *) {
    return list_reverse(operations, self);
}

PyObject *wrpPye_bltp_ilist_copy(PyObject *self, PyObject *) { return list_copy(operations, self); }

PySequenceMethods wrpPye_tysd_ilist = {wrpPye_bltp_ilist_sq_length,
                                       wrpPye_bltp_ilist_sq_concat,
                                       wrpPye_bltp_ilist_sq_repeat,
                                       wrpPye_bltp_ilist_sq_item,
                                       nullptr,
                                       wrpPye_bltp_ilist_sq_ass_item,
                                       nullptr,
                                       wrpPye_bltp_ilist_sq_contains,
                                       wrpPye_bltp_ilist_sq_inplace_concat,
                                       wrpPye_bltp_ilist_sq_inplace_repeat};

PyMappingMethods wrpPye_tygd_ilist = {wrpPye_bltp_ilist_sq_length, wrpPye_bltp_ilist_mp_subscript,
                                      wrpPye_bltp_ilist_mp_ass_subscript};

PyGetSetDef wrpPye_typd_ilist[] = {
    {"length", wrpPye_bltp_ilist_get_length, nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};

constinit PyTypeObject wrpPye_tyds_IListWrapper =
    collection_wrapper_type({.name = module_identity::ilist_wrapper,
                             .create = Valid::create,
                             .methods = methods,
                             .properties = wrpPye_typd_ilist},
                            {.sequence = &wrpPye_tysd_ilist,
                             .mapping = &wrpPye_tygd_ilist,
                             .iterate = wrpPye_bltp_iterable_iter});

bool wrpPye_bltp_ilist_is_not_valid(std::string &message) { return Valid::is_not_valid(message); }

int wrpPye_conv_py_to_clr_ilist(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {"List", &wrpPye_tyds_IListWrapper,
                                                     Valid::invalidate,
                                                     variant_is_assignable<PyHost_ph_IList>};
    const int accepted = interface_wrapper_from_py(value, out, conversion);
    if (accepted >= 0) return accepted;
    if (PyList_Check(value)) return pass_python_object(value, CollectionKind::object, out);
    if (is_sequence_with_length(value))
        return pass_python_object(value, CollectionKind::sequence, out);
    return refuse_value(conversion.name, value);
}
