// A Python list, sequence, iterator or other collection as the managed side drives it.
#include "binding/clr_object.h"
#include "binding/variant.h"
#include "collections/callbacks.h"
#include "collections/int32_range.h"
#include "collections/interop_wrappers.h"
#include "marshal/others.h"
#include "shell/identifiers.h"
#include "shell/ref.h"

namespace {

enum Status { done = 0, failed = -1, failed_index = -2 };

// Of an operation on an index, by the pending error.
int index_failure() { return PyErr_ExceptionMatches(PyExc_IndexError) ? failed_index : failed; }

std::int32_t int32_length(Py_ssize_t length) {
    if (length <= INT32_MAX) return static_cast<std::int32_t>(length);
    PyErr_Format(PyExc_OverflowError, "the value of 'length' (%zi) is out of the INT32 range",
                 length);
    return failed;
}

// True: ValueError was pending, and is cleared.
bool is_absent() {
    if (!PyErr_ExceptionMatches(PyExc_ValueError)) return false;
    PyErr_Clear();
    return true;
}

PyObject **create_list(Py_ssize_t size, PyObject **list) {
    *list = PyList_New(size);
    return *list != nullptr ? reinterpret_cast<PyListObject *>(*list)->ob_item : nullptr;
}

Ref sequence_item(PyObject *sequence, Py_ssize_t index) {
    Ref item = Ref::steal(PySequence_GetItem(sequence, index));
    if (!item && !PyErr_Occurred()) PyErr_SetString(PyExc_IndexError, "item is null");
    return item;
}

// Non-zero when equal, and also when the comparison failed: that ends a search too.
int item_matches(PyObject *item, PyObject *element) {
    return PyObject_RichCompareBool(item, element, Py_EQ);
}

} // namespace

int fn_clbk_iter_next(PyObject *iterator, PyObject **item, VariantArg *out) {
    Ref next = Ref::steal(PyIter_Next(iterator));
    if (!next) return PyErr_Occurred() ? 2 : 1;
    if (!fn_conv_py_variant_to_clr_variant(next.get(), out)) return 2;
    *item = next.release();
    return done;
}

std::int32_t fn_clbk_ucol_list_length(PyObject *list) { return int32_length(PyList_Size(list)); }

std::int64_t fn_clbk_ucol_list_longlength(PyObject *list) { return PyList_Size(list); }

std::int32_t fn_clbk_ucol_sequence_length(PyObject *sequence) {
    return int32_length(PySequence_Size(sequence));
}

std::int64_t fn_clbk_ucol_sequence_longlength(PyObject *sequence) {
    return PySequence_Size(sequence);
}

std::int32_t fn_clbk_ucol_object_length(PyObject *object) {
    return int32_length(PyObject_Size(object));
}

int fn_clbk_ucol_remove_at(PyObject *list, std::int32_t index) {
    const Ref place = Ref::steal(PyLong_FromLong(index));
    if (!place) return failed;
    const Ref result =
        Ref::steal(PyObject_CallMethodObjArgs(list, PyWrpIdList_Pop, place.get(), nullptr));
    return result ? done : index_failure();
}

int fn_clbk_ucol_clear(PyObject *list) {
    const Ref result = Ref::steal(PyObject_CallMethodObjArgs(list, PyWrpIdList_Clear, nullptr));
    return result ? done : failed;
}

PyObject *fn_clbk_ucol_get_enumerator(PyObject *object) {
    Ref iterator = Ref::steal(PyObject_GetIter(object));
    if (iterator && PyIter_Check(iterator.get())) return iterator.release();
    if (!PyErr_Occurred())
        PyErr_Format(PyExc_TypeError, "No iterator in '%s'", Py_TYPE(object)->tp_name);
    return nullptr;
}

PyObject **fn_clbk_ucol_create_fast_list(std::int32_t size, PyObject **list) {
    return create_list(size, list);
}

PyObject **fn_clbk_ucol_create_fast_longlist(std::int64_t size, PyObject **list) {
    return create_list(size, list);
}

int fn_clbk_olist_get_item(PyObject *list, std::int32_t index, VariantArg *out) {
    PyObject *const item = PyList_GetItem(list, index); // borrowed
    if (item == nullptr) return index_failure();
    return fn_conv_py_variant_to_clr_variant(item, out) ? done : failed;
}

int fn_clbk_olist_set_item(PyObject *list, std::int32_t index, PyObject *item) {
    return PyList_SetItem(list, index, item) == 0 ? done : index_failure(); // takes the item over
}

std::int32_t fn_clbk_olist_add(PyObject *list, PyObject *item) {
    const Ref owned = Ref::steal(item);
    if (PyList_Append(list, owned.get()) < 0) return failed;
    return static_cast<std::int32_t>(PyList_Size(list));
}

int fn_clbk_olist_insert(PyObject *list, std::int32_t index, PyObject *item) {
    const Ref owned = Ref::steal(item);
    return PyList_Insert(list, index, owned.get()) == 0 ? done : index_failure();
}

int fn_clbk_olist_remove(PyObject *list, PyObject *item) {
    const Ref owned = Ref::steal(item);
    const Ref result =
        Ref::steal(PyObject_CallMethodObjArgs(list, PyWrpIdList_Remove, owned.get(), nullptr));
    return result ? done : failed;
}

int fn_clbk_olist_contains(PyObject *list, PyObject *item) {
    const Ref owned = Ref::steal(item);
    const Ref result =
        Ref::steal(PyObject_CallMethodObjArgs(list, PyWrpIdList_Index, owned.get(), nullptr));
    if (result) return 1;
    return is_absent() ? 0 : failed;
}

// Here -1 tells that the item is absent, so every failure is -2.
std::int32_t fn_clbk_olist_index_of(PyObject *list, PyObject *item) {
    const Ref owned = Ref::steal(item);
    const Ref result =
        Ref::steal(PyObject_CallMethodObjArgs(list, PyWrpIdList_Index, owned.get(), nullptr));
    if (!result) return is_absent() ? -1 : failed_index;
    std::int64_t index = 0;
    if (!fn_conv_py_obj_to_ssize_t(result.get(), &index)) return failed_index;
    return check_index(index) ? static_cast<std::int32_t>(index) : failed_index;
}

void fn_clbk_olist_set_fast_item(PyObject **items, std::int32_t index, PyObject *item) {
    items[index] = item;
}

PyObject *fn_clbk_olist_write_clr_ilist(void *handle) {
    return fn_py_clr_type_generic_new(handle, &wrpPye_tyds_IListWrapper);
}

PyObject *fn_clbk_olist_write_clr_arrlist(void *handle) {
    return fn_py_clr_type_generic_new(handle, &wrpPye_tyds_ArrListWrapper);
}

PyObject *fn_clbk_olist_write_clr_array(void *handle) {
    return fn_py_clr_type_generic_new(handle, &wrpPye_tyds_ArrayWrapper);
}

// The fetch's reference stays with the value: the record may hold nothing but the item itself.
int fn_clbk_oseq_get_item(PyObject *sequence, std::int32_t index, VariantArg *out) {
    Ref item = Ref::steal(PySequence_GetItem(sequence, index));
    if (!item) return index_failure();
    if (!fn_conv_py_variant_to_clr_variant(item.get(), out)) return failed;
    item.release();
    return done;
}

// The size is asked on each pass: a comparison may run Python code that shrinks the sequence.
int fn_clbk_oseq_contains(PyObject *sequence, PyObject *item) {
    const Ref owned = Ref::steal(item);
    for (Py_ssize_t i = 0; i < PySequence_Size(sequence); ++i) {
        const Ref element = sequence_item(sequence, i);
        if (!element) return failed;
        if (item_matches(owned.get(), element.get()) != 0) return 1;
    }
    return 0;
}

// The size is asked once: a sequence that shrinks meanwhile fails the fetch.
std::int32_t fn_clbk_oseq_index_of(PyObject *sequence, PyObject *item) {
    const Ref owned = Ref::steal(item);
    const Py_ssize_t size = PySequence_Size(sequence);
    for (Py_ssize_t i = 0; i < size; ++i) {
        const Ref element = sequence_item(sequence, i);
        if (!element) return failed_index;
        if (item_matches(owned.get(), element.get()) == 0) continue;
        return check_index(i) ? static_cast<std::int32_t>(i) : failed_index;
    }
    return -1;
}

void *m_py_iter_callbacks[] = {reinterpret_cast<void *>(fn_clbk_iter_next)};

void *m_py_ucol_callbacks[] = {reinterpret_cast<void *>(fn_clbk_ucol_list_length),
                               reinterpret_cast<void *>(fn_clbk_ucol_list_longlength),
                               reinterpret_cast<void *>(fn_clbk_ucol_remove_at),
                               reinterpret_cast<void *>(fn_clbk_ucol_clear),
                               reinterpret_cast<void *>(fn_clbk_ucol_sequence_length),
                               reinterpret_cast<void *>(fn_clbk_ucol_sequence_longlength),
                               reinterpret_cast<void *>(fn_clbk_ucol_get_enumerator),
                               reinterpret_cast<void *>(fn_clbk_ucol_object_length),
                               reinterpret_cast<void *>(fn_clbk_ucol_create_fast_list),
                               reinterpret_cast<void *>(fn_clbk_ucol_create_fast_longlist),
                               reinterpret_cast<void *>(fn_clbk_ucol_get_unicode_bytes)};

void *m_py_olist_callbacks[] = {reinterpret_cast<void *>(fn_clbk_olist_get_item),
                                reinterpret_cast<void *>(fn_clbk_olist_set_item),
                                reinterpret_cast<void *>(fn_clbk_olist_add),
                                reinterpret_cast<void *>(fn_clbk_olist_insert),
                                reinterpret_cast<void *>(fn_clbk_olist_remove),
                                reinterpret_cast<void *>(fn_clbk_olist_contains),
                                reinterpret_cast<void *>(fn_clbk_olist_index_of),
                                reinterpret_cast<void *>(fn_clbk_olist_set_fast_item),
                                reinterpret_cast<void *>(fn_clbk_olist_write_clr_ilist),
                                reinterpret_cast<void *>(fn_clbk_olist_write_clr_arrlist),
                                reinterpret_cast<void *>(fn_clbk_olist_write_clr_array)};

void *m_py_oseq_callbacks[] = {reinterpret_cast<void *>(fn_clbk_oseq_get_item),
                               reinterpret_cast<void *>(fn_clbk_oseq_contains),
                               reinterpret_cast<void *>(fn_clbk_oseq_index_of)};
