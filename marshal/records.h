// The records in which values cross the boundary: a wire format, byte for byte.
#pragma once

#include "shell/cpython.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

// The unit that PyArg_ParseTupleAndKeywords calls for "O&".
using PyConverter = int (*)(PyObject *value, void *target);

// A str. The managed side tests `length` first and reads nothing else when it is -1.
struct PyStringArg {
    int32_t length = -1;        // code points; -1 for None
    int32_t char_size = 0;      // 1, 2 or 4: Latin-1, UCS-2 or UCS-4
    const void *data = nullptr; // the str object's own characters, borrowed
};
static_assert(sizeof(PyStringArg) == 16 && offsetof(PyStringArg, length) == 0 &&
              offsetof(PyStringArg, char_size) == 4 && offsetof(PyStringArg, data) == 8);

// A str whose characters may belong to a temporary object.
struct PyEphStrArg {
    PyStringArg text;
    PyObject *owner = nullptr; // the temporary, a strong reference; null when the caller's own
};
static_assert(sizeof(PyEphStrArg) == 24 && offsetof(PyEphStrArg, text) == 0 &&
              offsetof(PyEphStrArg, owner) == 16);

// Starts as 24 zero bytes: its `length` is 0 and not -1 until a converter has run.
struct PyEphStrArgBuilder : PyEphStrArg {
    PyEphStrArgBuilder() noexcept { text = {0, 0, nullptr}; }
    PyEphStrArgBuilder(const PyEphStrArgBuilder &) = delete;
    PyEphStrArgBuilder &operator=(const PyEphStrArgBuilder &) = delete;
    ~PyEphStrArgBuilder() { Py_XDECREF(owner); }
};
static_assert(sizeof(PyEphStrArgBuilder) == 24);

// A block of bytes, lent by its exporter for the length of the call.
struct PyBytesArg {
    int32_t held = 0;     // 1 once a Py_buffer was obtained and must be released
    int32_t length = -1;  // bytes; -1 for None
    void *data = nullptr; // the exporter's first byte, borrowed
};
static_assert(sizeof(PyBytesArg) == 16 && offsetof(PyBytesArg, held) == 0 &&
              offsetof(PyBytesArg, length) == 4 && offsetof(PyBytesArg, data) == 8);

// The Py_buffer and the record that a delegate is given of it. The view is not cleared: `held`
// alone tells whether it means anything.
struct PyBytesArgBuilder {
    Py_buffer view;
    PyBytesArg info;

    PyBytesArgBuilder() noexcept {} // NOLINT: a default for `view` would cost 80 bytes a call
    PyBytesArgBuilder(const PyBytesArgBuilder &) = delete;
    PyBytesArgBuilder &operator=(const PyBytesArgBuilder &) = delete;
    ~PyBytesArgBuilder() {
        if (info.held != 0) PyBuffer_Release(&view);
    }
    Py_buffer *get_view() noexcept { return &view; }
    PyBytesArg *get_info() noexcept { return &info; }
};
static_assert(sizeof(Py_buffer) == 80 && sizeof(PyBytesArgBuilder) == 96 &&
              offsetof(PyBytesArgBuilder, view) == 0 && offsetof(PyBytesArgBuilder, info) == 80);

// A value whose form is known only at run time. `kind` is read in one of two ways, fixed by the
// declared parameter. Bytes 4 to 7 are padding: the managed side reads `kind` and `value` alone.
struct VariantArg {
    int32_t kind = 0;
    void *value = nullptr; // handle, or a borrowed PyObject *; see the kind spaces below
};
static_assert(sizeof(VariantArg) == 16 && offsetof(VariantArg, kind) == 0 &&
              offsetof(VariantArg, value) == 8);

// Kinds of a parameter that takes any value.
enum class VariantKind : int32_t {
    none = 0,
    class_handle = 1,
    struct_handle = 2,
    str = 3,
    buffer = 4,
    boolean = 5,
    integer = 6,
    floating = 7,
    decimal = 8,
    decimal_tuple = 9,
    datetime = 10,
    date = 11,
    time = 12,
    timedelta = 13,
    uuid = 14,
    list = 15,
    tuple = 16,
};

// Kinds of a parameter of array, list, collection, iterable, iterator or stream type.
enum class CollectionKind : int32_t {
    handle = 0,   // a managed handle; null for None
    object = 2,   // a Python list, or any iterator, iterable or stream
    sequence = 3, // a Python sequence that is no list
};

// Kinds of a parameter of interface, struct or equality form: which sort of handle is lent.
enum class HandleKind : int32_t {
    class_handle = 0,
    struct_handle = 1,
};

// A result of interface or abstract type. The managed side fills it.
struct PyObjectOutArg {
    void *handle;       // null means None
    int64_t type_token; // identity of the object's managed type
};
static_assert(sizeof(PyObjectOutArg) == 16 && offsetof(PyObjectOutArg, handle) == 0 &&
              offsetof(PyObjectOutArg, type_token) == 8);

// A result that may be a managed object of any type, or a Python object that once went in.
// The caller does not prepare it: the managed side writes every field, also for null.
struct PyCollectionArg {
    int32_t kind;       // 0, 1 or 2; its reading depends on the result converter
    void *handle;       // managed handle or, for kind 2, a PyObject *; null means None
    int64_t type_token; // identity of the object's managed type
};
static_assert(sizeof(PyCollectionArg) == 24 && offsetof(PyCollectionArg, kind) == 0 &&
              offsetof(PyCollectionArg, handle) == 8 &&
              offsetof(PyCollectionArg, type_token) == 16);

// A by-reference parameter, which Python passes as a list of at most one value.
struct PyParamByRef {
    PyObject *list = nullptr; // the caller's list, borrowed
    PyConverter convert = nullptr;
    void *target = nullptr; // where `convert` writes
};
static_assert(sizeof(PyParamByRef) == 24 && offsetof(PyParamByRef, list) == 0 &&
              offsetof(PyParamByRef, convert) == 8 && offsetof(PyParamByRef, target) == 16);

// A nullable value. `has_value` stays 0 for None.
struct PyNullableArg {
    int32_t has_value = 0;
    PyConverter convert = nullptr; // of the underlying type
    void *target = nullptr;        // where `convert` writes
};
static_assert(sizeof(PyNullableArg) == 24 && offsetof(PyNullableArg, has_value) == 0 &&
              offsetof(PyNullableArg, convert) == 8 && offsetof(PyNullableArg, target) == 16);

// A System.Version.
struct PySysVersionArg {
    int32_t count = -1;         // 2, 3 or 4; -1 for None
    int32_t components[4] = {}; // major, minor, build, revision; the first `count` have a meaning
};
static_assert(sizeof(PySysVersionArg) == 20 && offsetof(PySysVersionArg, count) == 0 &&
              offsetof(PySysVersionArg, components) == 4);

// A 64-bit value whose Python source may be a temporary.
struct PyInterimArgBuilder {
    int64_t value = 0;
    PyObject *owner = nullptr;

    PyInterimArgBuilder() noexcept = default;
    PyInterimArgBuilder(const PyInterimArgBuilder &) = delete;
    PyInterimArgBuilder &operator=(const PyInterimArgBuilder &) = delete;
    ~PyInterimArgBuilder() { Py_XDECREF(owner); }
};
static_assert(sizeof(PyInterimArgBuilder) == 16 && offsetof(PyInterimArgBuilder, value) == 0 &&
              offsetof(PyInterimArgBuilder, owner) == 8);

// The managed side assumes x86-64 Linux, and copies all records but the builders as plain bytes.
static_assert(sizeof(int32_t) == 4 && sizeof(void *) == 8 && sizeof(int64_t) == 8 &&
              sizeof(long) == 8 && alignof(int64_t) == 8 && alignof(void *) == 8);
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
template <class... Records>
inline constexpr bool all_plain = (std::is_trivially_copyable_v<Records> && ...) &&
                                  (std::is_standard_layout_v<Records> && ...);
static_assert(all_plain<PyStringArg, PyEphStrArg, PyBytesArg, VariantArg, PyObjectOutArg,
                        PyCollectionArg, PyParamByRef, PyNullableArg, PySysVersionArg>);
