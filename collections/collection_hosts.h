// The slots of the hosts of managed collections, and their binding.
//
// A struct of slots holds function pointers alone, in the order of its list of methods. The array
// and the list exist untyped (over variants, Kelmor.WrpGen.Interop) and per element type
// (Kelmor.WrpGen.Generic); only the tail of casts and creators differs between the two.
//
// Statuses: 0 done, 2 index out of range (Pop: 1 empty, 2 out of range), other failure.
#pragma once

#include "binding/class_host.h"
#include "collections/element_forms.h"
#include "marshal/records.h"

template <class Slots> class SlotHost : public Slots, public ClassHost {
protected:
    explicit SlotHost(const char *type) {
        static_assert(sizeof(Slots) == sizeof(Slots::methods) / sizeof(char *) * sizeof(void *));
        bind(type, Slots::methods, reinterpret_cast<void **>(static_cast<Slots *>(this)));
    }
};

using TypeOfSlot = int (*)(void **out);
using CastToSlot = int (*)(const VariantArg *value, void **out);
using ReInterpretSlot = int (*)(void *object, void **out);
using HandleCastSlot = int (*)(void *object, void **out);
using VariantCastSlot = int (*)(const VariantArg *value, void **out);
using HandleTestSlot = unsigned char (*)(void *object);
using VariantTestSlot = unsigned char (*)(const VariantArg *value);
using CreatorSlot = void *(*)(PyObject *object); // bound, and called by nobody here

#define KELMOR_ARRAY_METHODS                                                                       \
    "SqLength", "SqContains", "SqGetItem", "SqGetItemNoCheck", "SqSetItem", "SqSetItemNoChek",     \
        "MpSetItems", "Reverse", "Sort", "IndexBy", "CountOf"
#define KELMOR_LIST_METHODS                                                                        \
    "SqLength", "Add", "Remove", "Clear", "SqContains", "SqGetItem", "SqGetItemNoCheck",           \
        "SqSetItem", "SqSetItemNoChek", "Insert", "RemoveAt", "Pop", "SqInplaceConcat",            \
        "SqInplaceRepeat", "MpSetItems", "MpRemoveItems", "Reverse", "Sort", "IndexBy", "CountOf", \
        "EnsureCapacity"

template <class E> struct ArraySlots {
    using Element = E;
    using Pass = typename E::Pass;
    using Out = typename E::Out;

    int sq_length(void *self) const { return m_sq_length(self); }
    int sq_contains(void *self, Pass value) const { return m_sq_contains(self, value); }
    int sq_item(void *self, int index, Out *out) const { return m_sq_item(self, index, out); }
    Out sq_item_nocheck(void *self, int index) const { return m_sq_item_nocheck(self, index); }
    int sq_ssitem(void *self, int index, Pass value) const {
        return m_sq_ssitem(self, index, value);
    }
    void sq_ssitem_nocheck(void *self, int index, Pass value) const {
        m_sq_ssitem_nocheck(self, index, value);
    }
    int mp_set_items(void *self, const VariantArg *items, int start, int count, int step) const {
        return m_mp_set_items(self, items, start, count, step);
    }
    void reverse(void *self) const { m_reverse(self); }
    void sort(void *self, int reverse) const { m_sort(self, reverse); }
    int index_by(void *self, int has_start, int start, int has_stop, int stop, Pass value) const {
        return m_index_by(self, has_start, start, has_stop, stop, value);
    }
    int count_of(void *self, Pass value) const { return m_count_of(self, value); }

protected:
    int (*m_sq_length)(void *) = nullptr;
    int (*m_sq_contains)(void *, Pass) = nullptr;
    int (*m_sq_item)(void *, int, Out *) = nullptr;
    Out (*m_sq_item_nocheck)(void *, int) = nullptr;
    int (*m_sq_ssitem)(void *, int, Pass) = nullptr;
    void (*m_sq_ssitem_nocheck)(void *, int, Pass) = nullptr;
    int (*m_mp_set_items)(void *, const VariantArg *, int, int, int) = nullptr;
    void (*m_reverse)(void *) = nullptr;
    void (*m_sort)(void *, int) = nullptr;
    int (*m_index_by)(void *, int, int, int, int, Pass) = nullptr;
    int (*m_count_of)(void *, Pass) = nullptr;
};

template <class E> struct ArrayListSlots {
    using Element = E;
    using Pass = typename E::Pass;
    using Out = typename E::Out;

    int sq_length(void *self) const { return m_sq_length(self); }
    void add(void *self, Pass value) const { m_add(self, value); }
    int remove(void *self, Pass value) const { return m_remove(self, value); }
    void clear(void *self) const { m_clear(self); }
    int sq_contains(void *self, Pass value) const { return m_sq_contains(self, value); }
    int sq_item(void *self, int index, Out *out) const { return m_sq_item(self, index, out); }
    Out sq_item_nocheck(void *self, int index) const { return m_sq_item_nocheck(self, index); }
    int sq_ssitem(void *self, int index, Pass value) const {
        return m_sq_ssitem(self, index, value);
    }
    void sq_ssitem_nocheck(void *self, int index, Pass value) const {
        m_sq_ssitem_nocheck(self, index, value);
    }
    void insert(void *self, int index, Pass value) const { m_insert(self, index, value); }
    int remove_at(void *self, int index) const { return m_remove_at(self, index); }
    int pop(void *self, int has_index, int index, Out *out) const {
        return m_pop(self, has_index, index, out);
    }
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
    int count_of(void *self, Pass value) const { return m_count_of(self, value); }
    void ensure_capacity(void *self, int capacity) const { m_ensure_capacity(self, capacity); }

protected:
    int (*m_sq_length)(void *) = nullptr;
    void (*m_add)(void *, Pass) = nullptr;
    int (*m_remove)(void *, Pass) = nullptr;
    void (*m_clear)(void *) = nullptr;
    int (*m_sq_contains)(void *, Pass) = nullptr;
    int (*m_sq_item)(void *, int, Out *) = nullptr;
    Out (*m_sq_item_nocheck)(void *, int) = nullptr;
    int (*m_sq_ssitem)(void *, int, Pass) = nullptr;
    void (*m_sq_ssitem_nocheck)(void *, int, Pass) = nullptr;
    void (*m_insert)(void *, int, Pass) = nullptr;
    int (*m_remove_at)(void *, int) = nullptr;
    int (*m_pop)(void *, int, int, Out *) = nullptr;
    int (*m_sq_inplaceconcat)(void *, const VariantArg *) = nullptr;
    void (*m_sq_inplacerepeat)(void *, int) = nullptr;
    int (*m_mp_set_items)(void *, const VariantArg *, int, int, int) = nullptr;
    void (*m_mp_remove_items)(void *, int, int, int) = nullptr;
    void (*m_reverse)(void *) = nullptr;
    void (*m_sort)(void *, int) = nullptr;
    int (*m_index_by)(void *, int, int, int, int, Pass) = nullptr;
    int (*m_count_of)(void *, Pass) = nullptr;
    void (*m_ensure_capacity)(void *, int) = nullptr;
};

// The tail of the untyped concrete classes, and that of the typed ones.
template <class Head> struct UntypedTail : Head {
    bool btp_IsAssignable(void *object) const { return m_btp_IsAssignable(object); }
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_ReInterpretObj(void *object, void **out) const {
        return m_btp_ReInterpretObj(object, out);
    }
    int btp_CastAs(void *object, void **out) const { return m_btp_CastAs(object, out); }

protected:
    HandleTestSlot m_btp_IsAssignable = nullptr;
    CreatorSlot m_create_instance_from_py_list = nullptr;
    CreatorSlot m_create_instance_from_py_sequence = nullptr;
    TypeOfSlot m_btp_TypeOf = nullptr;
    CastToSlot m_btp_CastTo = nullptr;
    ReInterpretSlot m_btp_ReInterpretObj = nullptr;
    HandleCastSlot m_btp_CastAs = nullptr;
};
#define KELMOR_UNTYPED_TAIL                                                                        \
    "btp_IsAssignable", "CreateInstanceFromPyList", "CreateInstanceFromPySequence", "btp_TypeOf",  \
        "btp_CastTo", "btp_ReInterpretObj", "btp_CastAs"

template <class Head> struct TypedTail : Head {
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_ReInterpretObj(void *object, void **out) const {
        return m_btp_ReInterpretObj(object, out);
    }
    int btp_CastAs(void *object, void **out) const { return m_btp_CastAs(object, out); }
    bool btp_IsAssignable(void *object) const { return m_btp_IsAssignable(object); }

protected:
    TypeOfSlot m_btp_TypeOf = nullptr;
    CastToSlot m_btp_CastTo = nullptr;
    ReInterpretSlot m_btp_ReInterpretObj = nullptr;
    HandleCastSlot m_btp_CastAs = nullptr;
    HandleTestSlot m_btp_IsAssignable = nullptr;
};
#define KELMOR_TYPED_TAIL                                                                          \
    "btp_TypeOf", "btp_CastTo", "btp_ReInterpretObj", "btp_CastAs", "btp_IsAssignable"

template <class E> struct TypedArraySlots : TypedTail<ArraySlots<E>> {
    static constexpr const char *methods[] = {KELMOR_ARRAY_METHODS, KELMOR_TYPED_TAIL};
};
template <class E> struct TypedListSlots : TypedTail<ArrayListSlots<E>> {
    static constexpr const char *methods[] = {KELMOR_LIST_METHODS, KELMOR_TYPED_TAIL};
};

// Iterators and iterables are interfaces: no reinterpretation, casts over variants.
template <class Head> struct TypedInterfaceTail : Head {
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_CastAs(const VariantArg *value, void **out) const { return m_btp_CastAs(value, out); }
    bool btp_IsAssignable(const VariantArg *value) const { return m_btp_IsAssignable(value); }

protected:
    TypeOfSlot m_btp_TypeOf = nullptr;
    CastToSlot m_btp_CastTo = nullptr;
    VariantCastSlot m_btp_CastAs = nullptr;
    VariantTestSlot m_btp_IsAssignable = nullptr;
};

template <class E> struct MoveNextSlot {
    using Element = E;
    int move_next(void *self, typename E::Out *item) const { return m_move_next(self, item); }

protected:
    int (*m_move_next)(void *, typename E::Out *) = nullptr;
};
struct GetEnumeratorSlot {
    int get_enumerator(void *self, PyObjectOutArg *out) const {
        return m_get_enumerator(self, out);
    }

protected:
    int (*m_get_enumerator)(void *, PyObjectOutArg *) = nullptr;
};

template <class E> struct TypedIterSlots : TypedInterfaceTail<MoveNextSlot<E>> {
    static constexpr const char *methods[] = {"MoveNext", "btp_TypeOf", "btp_CastTo", "btp_CastAs",
                                              "btp_IsAssignable"};
};
struct TypedIterableSlots : TypedInterfaceTail<GetEnumeratorSlot> {
    static constexpr const char *methods[] = {"GetEnumerator", "btp_TypeOf", "btp_CastTo",
                                              "btp_CastAs", "btp_IsAssignable"};
};

template <class E> using GenericArrayHost = SlotHost<TypedArraySlots<E>>;
template <class E> using GenericListHost = SlotHost<TypedListSlots<E>>;
template <class E> using GenericIterHost = SlotHost<TypedIterSlots<E>>;
using GenericIterableHost = SlotHost<TypedIterableSlots>;
