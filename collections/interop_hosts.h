// Hosts of the managed interfaces that every generic instance leans on.
#pragma once

#include "collections/collection_hosts.h"

// The tail of the untyped interfaces, whose casts go over variants.
template <class Head> struct InterfaceTail : Head {
    bool btp_IsAssignable(const VariantArg *value) const { return m_btp_IsAssignable(value); }
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_CastAs(const VariantArg *value, void **out) const { return m_btp_CastAs(value, out); }

protected:
    VariantTestSlot m_btp_IsAssignable = nullptr;
    TypeOfSlot m_btp_TypeOf = nullptr;
    CastToSlot m_btp_CastTo = nullptr;
    VariantCastSlot m_btp_CastAs = nullptr;
};

struct NoSlots {};

struct DisposableSlots : InterfaceTail<NoSlots> {
    static constexpr const char *methods[] = {"btp_IsAssignable", "btp_TypeOf", "btp_CastTo",
                                              "btp_CastAs"};
};

struct IterSlots : InterfaceTail<MoveNextSlot<VariantElement>> {
    static constexpr const char *methods[] = {"MoveNext", "btp_IsAssignable", "btp_TypeOf",
                                              "btp_CastTo", "btp_CastAs"};
};

struct EnumerableHead : GetEnumeratorSlot {
protected:
    CreatorSlot m_create_instance_from_py_iterable = nullptr;
};
struct IterableSlots : InterfaceTail<EnumerableHead> {
    static constexpr const char *methods[] = {"GetEnumerator",    "CreateInstanceFromPyIterable",
                                              "btp_IsAssignable", "btp_TypeOf",
                                              "btp_CastTo",       "btp_CastAs"};
};

class PyHost_ph_Disposable : public SlotHost<DisposableSlots> {
public:
    static PyHost_ph_Disposable &get_instance();

private:
    PyHost_ph_Disposable() : SlotHost("Kelmor.WrpGen.Interop.SiApiDisposable") {}
};

class PyHost_ph_Iter : public SlotHost<IterSlots> {
public:
    static PyHost_ph_Iter &get_instance();

private:
    PyHost_ph_Iter() : SlotHost("Kelmor.WrpGen.Interop.SiApiEnumerator") {}
};

class PyHost_ph_Iterable : public SlotHost<IterableSlots> {
public:
    static PyHost_ph_Iterable &get_instance();

private:
    PyHost_ph_Iterable() : SlotHost("Kelmor.WrpGen.Interop.SiApiEnumerable") {}
};
