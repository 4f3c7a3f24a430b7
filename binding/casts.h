// The cast built-ins of every bound type, written once over a small table of functions per type.
//
// A class:
//
//     static constexpr CastOperations casts = class_casts<
//         PyHost_cs_D91BAC5C_XmpHeaderPi, wrpPy_uafn_D91BAC5C_XmpHeaderPi_invalidate,
//         wrpPy_conv_clr_to_py_D91BAC5C_XmpHeaderPi>();
//     static PyObject *wrpPy_blts_D91BAC5C_XmpHeaderPi_000__cast_to(PyObject *, PyObject *object) {
//         return cast_to(casts, object);
//     }
//
// and so on with type_of(casts), cast_from_nothing(), reinterpret_obj(casts, object),
// cast_as(casts, object), is_assignable(casts, object). A struct uses struct_casts with the same
// arguments; an interface interface_casts<Host, invalidate, &type> and
// refuse_reinterpretation(&type, object); an enumeration enum_casts<Host, invalidate, converter>
// and the functions of enums.h. The five classes that have btp_CastFrom call cast_from instead of
// cast_from_nothing.
//
// The host's forwards: `int btp_TypeOf(void **)`, `int btp_CastTo(const VariantArg *, Out *)`,
// `int btp_ReInterpretObj(void *, Out *)`, and for classes and enumerations
// `int btp_CastAs(void *, Out *)`, `bool btp_IsAssignable(void *)`, for structs and interfaces the
// last two with `const VariantArg *`. Out is `void *`, or the number of an enumeration.
#pragma once

#include "binding/results.h"
#include "marshal/records.h"
#include "shell/cpython.h"

#include <cstdint>

// What a cast entry writes: a handle, or the number of an enumeration in its own width.
union CastValue {
    void *handle = nullptr;
    std::uint64_t number; // the widest
};

struct CastOperations {
    bool (*invalidate)();
    // 1 for a wrapper that the family's entries take, 0 with no error for everything else.
    int (*accepts)(PyObject *object, VariantArg *out);
    int (*type_of)(void **out);
    int (*cast_to)(const VariantArg *value, CastValue *out);
    int (*cast_as)(const VariantArg *value, CastValue *out);
    bool (*is_assignable)(const VariantArg *value);
    int (*reinterpret)(void *object, CastValue *out); // null for an interface
    PyObject *(*to_py)(const CastValue &value);       // takes the handle over
};

PyObject *type_of(const CastOperations &casts);
PyObject *cast_to(const CastOperations &casts, PyObject *object);
PyObject *cast_as(const CastOperations &casts, PyObject *object);
PyObject *reinterpret_obj(const CastOperations &casts, PyObject *object);
PyObject *is_assignable(const CastOperations &casts, PyObject *object);

// _cast_from of nearly all types: a failed cast, whatever the argument, with no test of validity.
PyObject *cast_from_nothing();
// _cast_from of the few types that have the entry; `call` forwards to btp_CastFrom.
PyObject *cast_from(PyObject *self, PyObject *type,
                    int (*call)(void *self, void *type, void **out));
// _reinterpret_obj of an interface.
PyObject *refuse_reinterpretation(const PyTypeObject *interface, PyObject *object);

// A managed Type from the handle that a call wrote. Its status adds nothing: a call that failed has
// left an error, and one that gave 0 without an error has written a handle like any other.
PyObject *managed_type_result(void *handle);

// The family tests: a class wrapper; a class or struct wrapper.
int accept_class_wrapper(PyObject *object, VariantArg *out);
int accept_any_wrapper(PyObject *object, VariantArg *out);

// The place that an entry writes to.
template <class Out> Out *cast_slot(CastValue *value) { return reinterpret_cast<Out *>(value); }

// One function for each entry of a host. `Out` is what its cast entries write.
template <class Host, class Out> struct CastCalls {
    static int type_of(void **out) { return Host::get_instance().btp_TypeOf(out); }
    static int cast_to(const VariantArg *value, CastValue *out) {
        return Host::get_instance().btp_CastTo(value, cast_slot<Out>(out));
    }
    static int reinterpret(void *object, CastValue *out) {
        return Host::get_instance().btp_ReInterpretObj(object, cast_slot<Out>(out));
    }
    static int cast_as_of_handle(const VariantArg *value, CastValue *out) {
        return Host::get_instance().btp_CastAs(value->value, cast_slot<Out>(out));
    }
    static int cast_as_of_variant(const VariantArg *value, CastValue *out) {
        return Host::get_instance().btp_CastAs(value, cast_slot<Out>(out));
    }
    static bool is_assignable_of_handle(const VariantArg *value) {
        return Host::get_instance().btp_IsAssignable(value->value);
    }
    static bool is_assignable_of_variant(const VariantArg *value) {
        return Host::get_instance().btp_IsAssignable(value);
    }
};

template <PyObject *(*ToPy)(void *)> PyObject *cast_handle_to_py(const CastValue &value) {
    return ToPy(value.handle);
}
template <PyTypeObject *Type> PyObject *cast_interface_to_py(const CastValue &value) {
    return fn_conv_clr_clsobj_to_py_clsobj(value.handle, Type); // there is no type id here
}

template <class Host, bool (*Invalidate)(), PyObject *(*ToPy)(void *)>
constexpr CastOperations class_casts() {
    using Calls = CastCalls<Host, void *>;
    return {Invalidate,         accept_class_wrapper,     Calls::type_of,
            Calls::cast_to,     Calls::cast_as_of_handle, Calls::is_assignable_of_handle,
            Calls::reinterpret, cast_handle_to_py<ToPy>};
}

template <class Host, bool (*Invalidate)(), PyObject *(*ToPy)(void *)>
constexpr CastOperations struct_casts() {
    using Calls = CastCalls<Host, void *>;
    return {Invalidate,         accept_any_wrapper,        Calls::type_of,
            Calls::cast_to,     Calls::cast_as_of_variant, Calls::is_assignable_of_variant,
            Calls::reinterpret, cast_handle_to_py<ToPy>};
}

template <class Host, bool (*Invalidate)(), PyTypeObject *Type>
constexpr CastOperations interface_casts() {
    using Calls = CastCalls<Host, void *>;
    return {Invalidate,     accept_any_wrapper,        Calls::type_of,
            Calls::cast_to, Calls::cast_as_of_variant, Calls::is_assignable_of_variant,
            nullptr,        cast_interface_to_py<Type>};
}

// `ToPy` is the enumeration's converter, whose parameter is its number.
template <class Host, bool (*Invalidate)(), auto ToPy> struct EnumCasts;
template <class Host, bool (*Invalidate)(), class Number, PyObject *(*ToPy)(Number)>
struct EnumCasts<Host, Invalidate, ToPy> {
    static PyObject *to_py(const CastValue &value) {
        return ToPy(*reinterpret_cast<const Number *>(&value));
    }
    static constexpr CastOperations operations() {
        using Calls = CastCalls<Host, Number>;
        return {Invalidate,
                accept_class_wrapper,
                Calls::type_of,
                Calls::cast_to,
                Calls::cast_as_of_handle,
                Calls::is_assignable_of_handle,
                Calls::reinterpret,
                to_py};
    }
};
template <class Host, bool (*Invalidate)(), auto ToPy> constexpr CastOperations enum_casts() {
    return EnumCasts<Host, Invalidate, ToPy>::operations();
}
