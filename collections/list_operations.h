// A managed list as Python's list: the table of a host's operations, and the slots and methods
// that are written once over it.
//
// A host class of any element form becomes a table by array_operations or array_list_operations;
// a slot or method of an instance is then one line:
//
//     static constexpr ListOperations operations =
//         array_operations<PyHost_gn_Array_0D30925B>();
//     static PyObject *wrpPygn_bltp_0D30925B_array_sq_item(PyObject *self, Py_ssize_t index) {
//         return list_sq_item(operations, self, index);
//     }
//
// What comes back from slices, `+`, `*` and copy is a plain Python list. The length is asked once
// for each operation and stands for it; a managed exception is looked for after each delegate; a
// multi-element operation that fails undoes nothing.
#pragma once

#include "collections/collection_hosts.h"
#include "marshal/records.h"
#include "shell/cpython.h"

#include <new>

// Room for the converted form of one element.
struct ElementArg {
    alignas(8) unsigned char bytes[16];
};

struct IndexRange {
    int has_start, start, has_stop, stop;
};

// The operations over handles. Those below `index_by` are null for an array, all below `count_of`
// for a collection without items.
struct ListOperations {
    PyConverter convert; // into an ElementArg
    int (*length)(void *self);
    int (*contains)(void *self, const ElementArg &value);
    int (*count_of)(void *self, const ElementArg &value);

    PyObject *(*fetch)(void *self, int index); // without a status; null failed, also with no error
    int (*get_item)(void *self, int index, PyObject **item); // on 0 the item, null if it failed
    int (*set_item)(void *self, int index, const ElementArg &value);
    void (*set_item_nocheck)(void *self, int index, const ElementArg &value);
    int (*set_items)(void *self, const VariantArg *items, int start, int count, int step);
    void (*reverse)(void *self);
    void (*sort)(void *self, int reverse);
    int (*index_by)(void *self, const IndexRange &range, const ElementArg &value);

    void (*add)(void *self, const ElementArg &value);
    void (*insert)(void *self, int index, const ElementArg &value);
    int (*remove)(void *self, const ElementArg &value);
    int (*remove_at)(void *self, int index);
    int (*pop)(void *self, int has_index, int index, PyObject **item);
    void (*clear)(void *self);
    int (*inplace_concat)(void *self, const VariantArg *items);
    void (*inplace_repeat)(void *self, int count);
    void (*remove_items)(void *self, int start, int count, int step);
};

// Of every collection.
Py_ssize_t list_sq_length(const ListOperations &list, PyObject *self);
PyObject *list_length(const ListOperations &list, PyObject *self); // the attribute
int list_sq_contains(const ListOperations &list, PyObject *self, PyObject *value);
PyObject *list_contains(const ListOperations &list, PyObject *self, PyObject *value);
PyObject *list_count(const ListOperations &list, PyObject *self, PyObject *value);

// Of arrays and lists. Deletion from an array is refused.
PyObject *list_sq_item(const ListOperations &list, PyObject *self, Py_ssize_t index);
int list_sq_ass_item(const ListOperations &list, PyObject *self, Py_ssize_t index, PyObject *value);
PyObject *list_mp_subscript(const ListOperations &list, PyObject *self, PyObject *key);
int list_mp_ass_subscript(const ListOperations &list, PyObject *self, PyObject *key,
                          PyObject *value);
PyObject *list_sq_concat(const ListOperations &list, PyObject *self, PyObject *other);
PyObject *list_sq_repeat(const ListOperations &list, PyObject *self, Py_ssize_t count);
PyObject *list_copy(const ListOperations &list, PyObject *self);
PyObject *list_index(const ListOperations &list, PyObject *self, PyObject *args);
PyObject *list_sort(const ListOperations &list, PyObject *self, PyObject *args, PyObject *kwds);
PyObject *list_reverse(const ListOperations &list, PyObject *self);

// Of lists alone.
PyObject *list_append(const ListOperations &list, PyObject *self, PyObject *value);
PyObject *list_insert(const ListOperations &list, PyObject *self, PyObject *args);
PyObject *list_extend(const ListOperations &list, PyObject *self, PyObject *values);
PyObject *list_remove(const ListOperations &list, PyObject *self, PyObject *value);
PyObject *list_pop(const ListOperations &list, PyObject *self, PyObject *args);
PyObject *list_clear(const ListOperations &list, PyObject *self);
PyObject *list_sq_inplace_concat(const ListOperations &list, PyObject *self, PyObject *other);
PyObject *list_sq_inplace_repeat(const ListOperations &list, PyObject *self, Py_ssize_t count);

// The functions of a table, over a host whose forwards have the names of the array and the list.
template <class Host> struct HostOperations {
    using Element = typename Host::Element;
    using In = typename Element::In;
    using Out = typename Element::Out;
    static_assert(sizeof(In) <= sizeof(ElementArg) && alignof(In) <= alignof(ElementArg));

    static const Host &host() { return Host::get_instance(); }
    static typename Element::Pass pass(const ElementArg &value) {
        return Element::pass(*std::launder(reinterpret_cast<const In *>(value.bytes)));
    }
    static PyObject *to_py(const Out &item) {
        return PyErr_Occurred() ? nullptr : Element::to_py(item);
    }

    static int convert(PyObject *value, void *out) {
        return Element::from_py(value, new (out) In{});
    }
    static int length(void *self) { return host().sq_length(self); }
    static int contains(void *self, const ElementArg &value) {
        return host().sq_contains(self, pass(value));
    }
    static int count_of(void *self, const ElementArg &value) {
        return host().count_of(self, pass(value));
    }
    static PyObject *fetch(void *self, int index) {
        return to_py(host().sq_item_nocheck(self, index));
    }
    static int get_item(void *self, int index, PyObject **item) {
        Out out{};
        const int status = host().sq_item(self, index, &out);
        if (status == 0) *item = to_py(out);
        return status;
    }
    static int set_item(void *self, int index, const ElementArg &value) {
        return host().sq_ssitem(self, index, pass(value));
    }
    static void set_item_nocheck(void *self, int index, const ElementArg &value) {
        host().sq_ssitem_nocheck(self, index, pass(value));
    }
    static int set_items(void *self, const VariantArg *items, int start, int count, int step) {
        return host().mp_set_items(self, items, start, count, step);
    }
    static void reverse(void *self) { host().reverse(self); }
    static void sort(void *self, int reverse) { host().sort(self, reverse); }
    static int index_by(void *self, const IndexRange &range, const ElementArg &value) {
        return host().index_by(self, range.has_start, range.start, range.has_stop, range.stop,
                               pass(value));
    }
    static void add(void *self, const ElementArg &value) { host().add(self, pass(value)); }
    static void insert(void *self, int index, const ElementArg &value) {
        host().insert(self, index, pass(value));
    }
    static int remove(void *self, const ElementArg &value) {
        return host().remove(self, pass(value));
    }
    static int remove_at(void *self, int index) { return host().remove_at(self, index); }
    static int pop(void *self, int has_index, int index, PyObject **item) {
        Out out{};
        const int status = host().pop(self, has_index, index, &out);
        if (status == 0) *item = to_py(out);
        return status;
    }
    static void clear(void *self) { host().clear(self); }
    static int inplace_concat(void *self, const VariantArg *items) {
        return host().sq_inplaceconcat(self, items);
    }
    static void inplace_repeat(void *self, int count) { host().sq_inplacerepeat(self, count); }
    static void remove_items(void *self, int start, int count, int step) {
        host().mp_remove_items(self, start, count, step);
    }
};

// The tables over the functions of `O`, each beginning with the one before.
template <class O> constexpr ListOperations collection_table() {
    ListOperations list{};
    list.convert = O::convert;
    list.length = O::length;
    list.contains = O::contains;
    list.count_of = O::count_of;
    return list;
}

template <class O> constexpr ListOperations array_table() {
    ListOperations list = collection_table<O>();
    list.fetch = O::fetch;
    list.get_item = O::get_item;
    list.set_item = O::set_item;
    list.set_item_nocheck = O::set_item_nocheck;
    list.set_items = O::set_items;
    list.reverse = O::reverse;
    list.sort = O::sort;
    list.index_by = O::index_by;
    return list;
}

template <class O> constexpr ListOperations list_table() {
    ListOperations list = array_table<O>();
    list.add = O::add;
    list.insert = O::insert;
    list.remove = O::remove;
    list.remove_at = O::remove_at;
    list.pop = O::pop;
    list.clear = O::clear;
    list.inplace_concat = O::inplace_concat;
    list.inplace_repeat = O::inplace_repeat;
    list.remove_items = O::remove_items;
    return list;
}

template <class Host> constexpr ListOperations array_operations() {
    return array_table<HostOperations<Host>>();
}
template <class Host> constexpr ListOperations array_list_operations() {
    return list_table<HostOperations<Host>>();
}
