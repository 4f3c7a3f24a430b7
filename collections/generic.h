// What a generated instance of a managed collection is made of: element form, hosts, slots.
//
// An instance is generated for each tag (tests/golden/expected/ArrayOfSquare.cpp.txt is one): an
// element policy of element_forms.h, a host for each shape of collection_hosts.h, slots and methods
// of one line each over a table of list_operations.h, and the two callbacks below. For its validity
// an array or list refers to the untyped wrapper and, if the tag has one, to its own iterable. Its
// interfaces are
//     array, list: iterable, collection and list wrappers, and the tag's own iterable
//     iterator:    iterator and disposable wrappers
//     iterable:    iterable wrapper
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
