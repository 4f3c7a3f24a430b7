// Managed enumerations: Python enum classes made at import, numbers of their own width between.
//
//     PyTypeObject *wrpPy_tyds_51A0C2D7_XmpArrayType;
//     PyObject *wrpPy_eypi_51A0C2D7_XmpArrayType() {
//         static constexpr EnumMember members[] = {{"UNORDERED", 0}, {"ORDERED", 1}};
//         static constexpr EnumDescription description = {
//             "XmpArrayType", EnumBase::int_enum, EnumNumbers::signed_numbers, members, 2,
//             {&wrpPy_amml_51A0C2D7_XmpArrayType_000__type_of, ...}};   // the eight, in this order
//         return create_enum(description, &wrpPy_tyds_51A0C2D7_XmpArrayType);
//     }
//     int wrpPy_conv_py_to_clr_51A0C2D7_XmpArrayType(PyObject *value, std::int32_t *out) {
//         return enum_from_py(value, out, wrpPy_tyds_51A0C2D7_XmpArrayType, "XmpArrayType");
//     }
//     PyObject *wrpPy_conv_clr_to_py_51A0C2D7_XmpArrayType(std::int32_t value) {
//         return enum_to_py(value, wrpPy_tyds_51A0C2D7_XmpArrayType);
//     }
//     static PyObject *wrpPy_blts_51A0C2D7_XmpArrayType_000_get_type(PyObject *self, PyObject *) {
//         return enum_get_type<PyHost_cs_51A0C2D7_XmpArrayType, std::int32_t>(
//             self, wrpPy_uafn_51A0C2D7_XmpArrayType_invalidate);
//     }
//
// and likewise enum_as_uni_enum. The host's forwards are `int btp_GetType(Number, void **)` and
// `int btp_AsUniEnum(Number, void **)`. The other built-ins are those of casts.h with enum_casts.
#pragma once

#include "binding/casts.h"
#include "shell/cpython.h"

#include <cstddef>
#include <cstdint>

struct EnumMember {
    const char *name;
    std::int64_t value; // the bits of an unsigned 64-bit number where the numbers are unsigned
};

enum class EnumBase { int_enum, int_flag };
enum class EnumNumbers { signed_numbers, unsigned_numbers };

struct EnumDescription {
    const char *name; // simple managed name
    EnumBase base;
    EnumNumbers numbers;
    const EnumMember *members; // in declaration order
    std::size_t count;
    // _type_of, _cast_to, _cast_from, _reinterpret_obj, _as_uni_enum, _cast_as, _is_assignable,
    // get_type
    PyMethodDef *protocol[8];
};

// Makes the class, marks it and installs the protocol; stores it in `*type` (borrowed from the
// result's reference) and gives it, or null with an error.
PyObject *create_enum(const EnumDescription &description, PyTypeObject **type);

// Puts a nested enumeration into the enclosing class; takes the reference over in any case. 0, or
// -1 with the numbered error set.
int install_nested_enum(PyTypeObject *enclosing, const char *name, PyObject *enumeration);

// The Python integer of a number, and the number of an enumeration member (false: error set). A
// number wider than the width is cut without an error.
PyObject *signed_number_to_py(std::int64_t value);
PyObject *unsigned_number_to_py(std::uint64_t value);
bool read_signed_number(PyObject *value, std::int64_t *out);
bool read_unsigned_number(PyObject *value, std::uint64_t *out);
bool read_unsigned_64_bit_number(PyObject *value, std::uint64_t *out);

// Wants a member of exactly this enumeration; TypeError "can't build ..." otherwise.
bool check_enum_member(PyObject *value, PyTypeObject *type, const char *name);
// Calls the enumeration with the number; takes the number's reference over.
PyObject *enum_member_of(PyObject *number, PyTypeObject *type);

template <class Number> PyObject *enum_number_to_py(Number value) {
    if constexpr (static_cast<Number>(-1) < 0)
        return signed_number_to_py(value);
    else
        return unsigned_number_to_py(value);
}

template <class Number> bool enum_number_of(PyObject *member, Number *out) {
    if constexpr (static_cast<Number>(-1) < 0) {
        std::int64_t wide;
        if (!read_signed_number(member, &wide)) return false;
        *out = static_cast<Number>(wide);
    } else {
        std::uint64_t wide;
        const bool read = sizeof(Number) == 8 ? read_unsigned_64_bit_number(member, &wide)
                                              : read_unsigned_number(member, &wide);
        if (!read) return false;
        *out = static_cast<Number>(wide);
    }
    return true;
}

template <class Number>
int enum_from_py(PyObject *value, Number *out, PyTypeObject *type, const char *name) {
    return check_enum_member(value, type, name) && enum_number_of(value, out);
}

template <class Number> PyObject *enum_to_py(Number value, PyTypeObject *type) {
    return enum_member_of(enum_number_to_py(value), type);
}

// A managed Enum from the handle that a call wrote.
PyObject *uni_enum_result(void *handle);

template <class Host, class Number>
PyObject *enum_get_type(PyObject *member, bool (*invalidate)()) {
    Number value;
    if (invalidate() || !enum_number_of(member, &value)) return nullptr;
    void *handle = nullptr;
    Host::get_instance().btp_GetType(value, &handle);
    return managed_type_result(handle);
}

template <class Host, class Number>
PyObject *enum_as_uni_enum(PyObject *member, bool (*invalidate)()) {
    Number value;
    if (invalidate() || !enum_number_of(member, &value)) return nullptr;
    void *handle = nullptr;
    Host::get_instance().btp_AsUniEnum(value, &handle);
    return uni_enum_result(handle);
}
