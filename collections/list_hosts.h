// Hosts of the managed collection and list interfaces and of the concrete untyped collections.
#pragma once

#include "collections/interop_hosts.h"

struct CollectionHead {
    using Element = VariantElement;

    int sq_length(void *self) const { return m_sq_length(self); }
    int sq_contains(void *self, const VariantArg *value) const {
        return m_sq_contains(self, value);
    }
    int count_of(void *self, const VariantArg *value) const { return m_count_of(self, value); }

protected:
    int (*m_sq_length)(void *) = nullptr;
    int (*m_sq_contains)(void *, const VariantArg *) = nullptr;
    int (*m_count_of)(void *, const VariantArg *) = nullptr;
    CreatorSlot m_create_instance_from_py_list = nullptr;
    CreatorSlot m_create_instance_from_py_iterable = nullptr;
};

struct CntCollectionSlots : InterfaceTail<CollectionHead> {
    static constexpr const char *methods[] = {"SqLength",
                                              "SqContains",
                                              "CountOf",
                                              "CreateInstanceFromPyList",
                                              "CreateInstanceFromPyIterable",
                                              "btp_IsAssignable",
                                              "btp_TypeOf",
                                              "btp_CastTo",
                                              "btp_CastAs"};
};

// The length of a list is always asked of the collection interface.
struct ListHead {
    using Element = VariantElement;
    using Pass = const VariantArg *;

    int sq_getitem(void *self, int index, PyObject **item) const {
        return m_sq_getitem(self, index, item);
    }
    PyObject *sq_getitem_nocheck(void *self, int index) const {
        return m_sq_getitem_nocheck(self, index);
    }
    int sq_setitem(void *self, int index, Pass value) const {
        return m_sq_setitem(self, index, value);
    }
    void sq_setitem_nocheck(void *self, int index, Pass value) const {
        m_sq_setitem_nocheck(self, index, value);
    }
    void add(void *self, Pass value) const { m_add(self, value); }
    void insert(void *self, int index, Pass value) const { m_insert(self, index, value); }
    int remove(void *self, Pass value) const { return m_remove(self, value); }
    int remove_at(void *self, int index) const { return m_remove_at(self, index); }
    int pop(void *self, int has_index, int index, PyObject **item) const {
        return m_pop(self, has_index, index, item);
    }
    void clear(void *self) const { m_clear(self); }
    int sq_inplaceconcat(void *self, const VariantArg *items) const {
        return m_sq_inplaceconcat(self, items);
    }
    void sq_inplacerepeat(void *self, int count) const { m_sq_inplacerepeat(self, count); }
    int mp_set_items(void *self, const VariantArg *items, int start, int count, int step) const {
        return m_mp_set_items(self, items, start, count, step);
    }
    void mp_remove_items(void *self, int start, int count, int step) const {
        m_mp_remove_items(self, start, count, step);
    }
    void reverse(void *self) const { m_reverse(self); }
    void sort(void *self, int reverse) const { m_sort(self, reverse); }
    int index_by(void *self, int has_start, int start, int has_stop, int stop, Pass value) const {
        return m_index_by(self, has_start, start, has_stop, stop, value);
    }
    int sq_contains(void *self, Pass value) const { return m_sq_contains(self, value); }
    int count_of(void *self, Pass value) const { return m_count_of(self, value); }

protected:
    int (*m_sq_getitem)(void *, int, PyObject **) = nullptr;
    PyObject *(*m_sq_getitem_nocheck)(void *, int) = nullptr;
    int (*m_sq_setitem)(void *, int, Pass) = nullptr;
    void (*m_sq_setitem_nocheck)(void *, int, Pass) = nullptr;
    void (*m_add)(void *, Pass) = nullptr;
    void (*m_insert)(void *, int, Pass) = nullptr;
    int (*m_remove)(void *, Pass) = nullptr;
    int (*m_remove_at)(void *, int) = nullptr;
    int (*m_pop)(void *, int, int, PyObject **) = nullptr;
    void (*m_clear)(void *) = nullptr;
    int (*m_sq_inplaceconcat)(void *, const VariantArg *) = nullptr;
    void (*m_sq_inplacerepeat)(void *, int) = nullptr;
    int (*m_mp_set_items)(void *, const VariantArg *, int, int, int) = nullptr;
    void (*m_mp_remove_items)(void *, int, int, int) = nullptr;
    void (*m_reverse)(void *) = nullptr;
    void (*m_sort)(void *, int) = nullptr;
    int (*m_index_by)(void *, int, int, int, int, Pass) = nullptr;
    int (*m_sq_contains)(void *, Pass) = nullptr;
    int (*m_count_of)(void *, Pass) = nullptr;
    CreatorSlot m_create_instance_from_py_list = nullptr;
    CreatorSlot m_create_instance_from_py_sequence = nullptr;
};

struct CntListSlots : InterfaceTail<ListHead> {
    static constexpr const char *methods[] = {"SqGetItem",
                                              "SqGetItemNoCheck",
                                              "SqSetItem",
                                              "SqSetItemNoCheck",
                                              "Add",
                                              "Insert",
                                              "Remove",
                                              "RemoveAt",
                                              "Pop",
                                              "Clear",
                                              "SqInplaceConcat",
                                              "SqInplaceRepeat",
                                              "MpSetItems",
                                              "MpRemoveItems",
                                              "Reverse",
                                              "Sort",
                                              "IndexBy",
                                              "SqContains",
                                              "CountOf",
                                              "CreateInstanceFromPyList",
                                              "CreateInstanceFromPySequence",
                                              "btp_IsAssignable",
                                              "btp_TypeOf",
                                              "btp_CastTo",
                                              "btp_CastAs"};
};

struct UntypedArraySlots : UntypedTail<ArraySlots<VariantElement>> {
    static constexpr const char *methods[] = {KELMOR_ARRAY_METHODS, KELMOR_UNTYPED_TAIL};
};
struct UntypedArrayListSlots : UntypedTail<ArrayListSlots<VariantElement>> {
    static constexpr const char *methods[] = {KELMOR_LIST_METHODS, KELMOR_UNTYPED_TAIL};
};
// The bases have no collection entries: their Python methods go through the interfaces.
struct CollectionBaseSlots : UntypedTail<NoSlots> {
    static constexpr const char *methods[] = {KELMOR_UNTYPED_TAIL};
};

class PyHost_ph_ICol : public SlotHost<CntCollectionSlots> {
public:
    static PyHost_ph_ICol &get_instance();

private:
    PyHost_ph_ICol() : SlotHost("Kelmor.WrpGen.Interop.SiApiCntCollection") {}
};

class PyHost_ph_IList : public SlotHost<CntListSlots> {
public:
    static PyHost_ph_IList &get_instance();

private:
    PyHost_ph_IList() : SlotHost("Kelmor.WrpGen.Interop.SiApiCntList") {}
};

class PyHost_ph_Array : public SlotHost<UntypedArraySlots> {
public:
    static PyHost_ph_Array &get_instance();

private:
    PyHost_ph_Array() : SlotHost("Kelmor.WrpGen.Interop.SiApiArray") {}
};

class PyHost_ph_ArrList : public SlotHost<UntypedArrayListSlots> {
public:
    static PyHost_ph_ArrList &get_instance();

private:
    PyHost_ph_ArrList() : SlotHost("Kelmor.WrpGen.Interop.SiApiArrayList") {}
};

class PyHost_ph_ColBase : public SlotHost<CollectionBaseSlots> {
public:
    static PyHost_ph_ColBase &get_instance();

private:
    PyHost_ph_ColBase() : SlotHost("Kelmor.WrpGen.Interop.SiApiCollectionBase") {}
};

class PyHost_ph_RoColBase : public SlotHost<CollectionBaseSlots> {
public:
    static PyHost_ph_RoColBase &get_instance();

private:
    PyHost_ph_RoColBase() : SlotHost("Kelmor.WrpGen.Interop.SiApiReadOnlyCollectionBase") {}
};
