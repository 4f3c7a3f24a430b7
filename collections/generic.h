// What a generated instance of a managed collection is made of: element form, hosts, slots.
//
// Generated for the tag 0D30925B, an array and an iterator of Layer:
//
//     using Element_0D30925B = ClassElement<wrpPy_conv_py_to_clr_8D6FBABB_Layer,
//                                           wrpPy_conv_clr_to_py_8D6FBABB_Layer>;
//
//     class PyHost_gn_Array_0D30925B : public GenericArrayHost<Element_0D30925B> {
//     public:
//         static PyHost_gn_Array_0D30925B &get_instance() {
//             static PyHost_gn_Array_0D30925B host;
//             return host;
//         }
//     private:
//         PyHost_gn_Array_0D30925B()
//             : SlotHost("Kelmor.WrpGen.Generic.SiApiArray_0D30925B") {}
//     };
//     // likewise PyHost_gn_Iter_0D30925B : GenericIterHost<Element_0D30925B>, and where the tag
//     has
//     // them GenericIterableHost ("...SiApiEnumerable_<tag>") and GenericListHost ("SiApiList_")
//
//     static const PyHostState &array_state_0D30925B() {
//         static const PyHostState state = aggregate_host_state(
//             PyHost_gn_Array_0D30925B::get_instance(),
//             {wrpPye_bltp_array_is_not_valid});     // and the tag's own iterable, if any
//         return state;
//     }
//
//     static constexpr ListOperations array_0D30925B =
//         array_operations<PyHost_gn_Array_0D30925B>();       // list: array_list_operations
//     static PyObject *wrpPygn_bltp_0D30925B_array_mp_subscript(PyObject *self, PyObject *key) {
//         return list_mp_subscript(array_0D30925B, self, key); // one line each, list_operations.h
//     }
//     static PyObject *wrpPygn_bltp_0D30925B_array_iter(PyObject *self) {
//         // of a tag with an iterable: iterate<PyHost_gn_Iterable_<tag>>
//         return iterate<PyHost_ph_Iterable>(self, &wrpPygn_tyds_IterWrapper_0D30925B);
//     }
//     static PyObject *wrpPygn_bltp_0D30925B_iter_iternext(PyObject *self) {
//         return next_item<PyHost_gn_Iter_0D30925B>(self);
//     }
//     int wrpPygn_conv_py_to_clr_array_0D30925B(PyObject *value, VariantArg *out) {
//         static constexpr ClassConversion conversion = {
//             "Array", &wrpPygn_tyds_ArrayWrapper_0D30925B, invalidate_array_0D30925B,
//             class_is_assignable<PyHost_gn_Array_0D30925B>};
//         return array_like_from_py(value, out, conversion);
//     }
//     int fn_clbk_pylist_0D30925B_get_item(PyObject *list, int index, void **out) {
//         return pylist_get_item<Element_0D30925B>(list, index, out);
//     }
//     int fn_clbk_pyseq_0D30925B_get_item(PyObject *sequence, int index, PyObject **keep,
//                                         void **out) {
//         return pyseq_get_item<Element_0D30925B>(sequence, index, keep, out);
//     }
//     static void *m_pygn_pylist_0D30925B_callbacks[] = {
//         reinterpret_cast<void *>(fn_clbk_pylist_0D30925B_get_item)};
//
//     constinit PyTypeObject wrpPygn_tyds_ArrayWrapper_0D30925B = collection_wrapper_type(
//         {.name = "kelmor.psd._wrpgen._generic._ArrayWrapper_0D30925B", .create = ...,
//          .methods = ..., .properties = ..., .base = &wrpPye_tyds_ArrayWrapper},
//         {.sequence = &..., .mapping = &..., .iterate = wrpPygn_bltp_0D30925B_array_iter});
//
// Casts: of arrays and lists class_casts<Host, invalidate, wrap_handle_as<&type>>, of iterators and
// iterables interface_casts<Host, invalidate, &type> with refuse_reinterpretation. An iterator has
// __enter__ and __exit__ of the disposable. Publishing: publish_wrapper_type, with the interfaces
//     array, list: iterable, collection, list wrappers, and the tag's own iterable, if any
//     iterator:    &wrpPye_tyds_IterWrapper, &wrpPye_tyds_IDisposableWrapper
//     iterable:    &wrpPye_tyds_IterableWrapper
#pragma once

#include "binding/casts.h"
#include "binding/clr_object.h"
#include "binding/host_state.h"
#include "binding/results.h"
#include "collections/collection_hosts.h"
#include "collections/collection_types.h"
#include "collections/element_forms.h"
#include "collections/interop_hosts.h"
#include "collections/interop_wrappers.h"
#include "collections/list_operations.h"
#include "shell/ref.h"

// Defined by generated code, each module its own. The table: one pointer per list table, then one
// per sequence table in the same order of tags, then nulls.
void ***get_all_pygn_generic_callbacks();
PyObject *wrpPygn_mlit_FFFFFFFF_generic_wrappers(); // a new reference to the `_generic` module

// tp_iternext. The end is not remembered: each call asks the managed side.
template <class Host> PyObject *next_item(PyObject *self) {
    typename Host::Element::Out item{};
    const int status = Host::get_instance().move_next(handle_of(self), &item);
    if (status == 1) PyErr_SetNone(PyExc_StopIteration);
    return status == 0 ? Host::Element::to_py(item) : nullptr;
}

// tp_iter of an iterable: its enumerator, shown as `iterator` unless its own class shows more.
template <class Host> PyObject *iterate(PyObject *self, PyTypeObject *iterator) {
    PyObjectOutArg enumerator{};
    if (Host::get_instance().get_enumerator(handle_of(self), &enumerator) < 0) return nullptr;
    return fn_conv_clr_ifcimpl_to_py_ifcimpl(enumerator, iterator);
}

// The managed side reads a Python list or sequence that stands for a typed collection: 0, -2 for
// an IndexError of the fetch, -1 for anything else, with the error pending.
inline int failed_fetch() { return PyErr_ExceptionMatches(PyExc_IndexError) ? -2 : -1; }

template <class E> int pylist_get_item(PyObject *list, int index, typename E::In *out) {
    PyObject *const item = PyList_GetItem(list, index); // borrowed
    if (item == nullptr) return failed_fetch();
    return E::from_py(item, out) ? 0 : -1;
}

// `keep` takes the item's new reference: what was written may point into the item.
template <class E>
int pyseq_get_item(PyObject *sequence, int index, PyObject **keep, typename E::In *out) {
    Ref item = Ref::steal(PySequence_GetItem(sequence, index));
    if (!item) return failed_fetch();
    if (!E::from_py(item.get(), out)) return -1;
    *keep = item.release();
    return 0;
}
