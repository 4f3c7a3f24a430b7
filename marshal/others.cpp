// GUIDs, characters, versions, nullables, by-reference parameters and indexes.
#include "marshal/others.h"

#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/ref.h"

#include <cstring>

namespace {

constexpr Py_ssize_t guid_size = 16;

int refuse_type(const char *words, PyObject *value) {
    PyErr_Format(PyExc_TypeError, words, Py_TYPE(value)->tp_name);
    return 0;
}

constexpr Py_ssize_t least_parts = 2;
constexpr Py_ssize_t most_parts = 4;

// The element as 64 bits, or false with an exception set.
bool read_version_element(PyObject *element, Py_ssize_t &number) {
    if (!PyLong_Check(element)) {
        PyErr_Format(PyExc_ValueError,
                     "an element of a version number tuple must be integer, not %.200s",
                     Py_TYPE(element)->tp_name);
        return false;
    }
    number = PyLong_AsSsize_t(element);
    if (number == -1 && PyErr_Occurred()) return false;
    if (number >= 0) return true;
    PyErr_Format(PyExc_ValueError,
                 "an element of a version number tuple must be greater or equal zero, not %zd",
                 number);
    return false;
}

} // namespace

int fn_conv_py_uuid_to_clr_guid_value(PyObject *value, uint8_t *target) {
    const Ref bytes = Ref::steal(PyObject_GetAttr(value, PyWrpIdUuid_BytesLe));
    if (!bytes) return 0;
    if (!PyBytes_Check(bytes.get()) || PyBytes_GET_SIZE(bytes.get()) != guid_size) {
        return refuse_type("can't build Guid from '%s'", value);
    }
    std::memcpy(target, PyBytes_AS_STRING(bytes.get()), guid_size);
    return 1;
}

int fn_conv_py_uuid_to_clr_guid(PyObject *value, void *target) {
    const Ref uuid_type = Ref::steal(PyShImport_ImportType("uuid", PyWrpIdTypeName_Uuid));
    if (!uuid_type) return 0;
    const int is_uuid = PyObject_IsInstance(value, uuid_type.get());
    if (is_uuid < 0) return 0;
    if (!is_uuid) return refuse_type("can't build Guid from '%s'", value);
    return fn_conv_py_uuid_to_clr_guid_value(value, static_cast<uint8_t *>(target));
}

int fn_read_py_guid(PyObject *value, uint8_t *out) {
    return fn_conv_py_uuid_to_clr_guid_value(value, out);
}

PyObject *fn_conv_clr_guid_to_py_uuid(const void *source) {
    const Ref uuid_type = Ref::steal(PyShImport_ImportType("uuid", PyWrpIdTypeName_Uuid));
    if (!uuid_type) return nullptr;
    const Ref bytes =
        Ref::steal(PyBytes_FromStringAndSize(static_cast<const char *>(source), guid_size));
    const Ref none = Ref::steal(PyTuple_New(0));
    const Ref named = Ref::steal(PyDict_New());
    if (!bytes || !none || !named) return nullptr;
    if (PyDict_SetItem(named.get(), PyWrpIdUuid_BytesLe, bytes.get()) < 0) return nullptr;
    return PyObject_Call(uuid_type.get(), none.get(), named.get());
}

PyObject *fn_write_py_guid(const void *source) { return fn_conv_clr_guid_to_py_uuid(source); }

int fn_conv_py_string_to_clr_char(PyObject *value, void *target) {
    if (!PyUnicode_Check(value)) return refuse_type("can't build Char from '%s'", value);
    const Ref encoded = Ref::steal(PyUnicode_AsUTF16String(value));
    if (!encoded) {
        if (!PyErr_Occurred()) {
            PyErr_SetString(PyExc_TypeError, "cannot convert unicode object to byte string");
        }
        return 0;
    }
    if (!PyBytes_Check(encoded.get())) {
        return refuse_type("converted string must be bytes-like object, not '%s'", encoded.get());
    }
    uint16_t units[2]; // the byte-order mark and the one
    if (PyBytes_GET_SIZE(encoded.get()) != sizeof units) {
        PyErr_SetString(PyExc_TypeError, "string must contain one UTF-16 code unit");
        return 0;
    }
    std::memcpy(units, PyBytes_AS_STRING(encoded.get()), sizeof units);
    *static_cast<uint16_t *>(target) = units[1];
    return 1;
}

PyObject *fn_conv_clr_char_to_py_string(uint16_t unit) {
    int byteorder = -1; // given, so that U+FEFF is a character and no mark
    return PyUnicode_DecodeUTF16(reinterpret_cast<const char *>(&unit), sizeof unit, nullptr,
                                 &byteorder);
}

PyObject *fn_write_py_char(int32_t unit) {
    return fn_conv_clr_char_to_py_string(static_cast<uint16_t>(unit));
}

int fn_conv_py_tuple_to_clr_version(PyObject *value, void *arg) {
    auto *version = static_cast<PySysVersionArg *>(arg);
    if (value == Py_None) {
        version->count = -1;
        return 1;
    }
    if (!PyTuple_Check(value)) {
        return refuse_type("a tuple or None is required, not '%.200s'", value);
    }
    const Py_ssize_t count = PyTuple_GET_SIZE(value);
    if (count < least_parts || count > most_parts) {
        PyErr_Format(PyExc_ValueError,
                     "a version number tuple must contains at least 2 and at most %zd elements "
                     "(%zd given)",
                     most_parts, count);
        return 0;
    }
    version->count = static_cast<int32_t>(count);
    for (Py_ssize_t i = 0; i < count; i++) {
        Py_ssize_t number;
        if (!read_version_element(PyTuple_GET_ITEM(value, i), number)) return 0;
        version->components[i] = static_cast<int32_t>(number);
    }
    return 1;
}

PyObject *fn_conv_clr_version_to_py_tuple(const PySysVersionArg &version) {
    if (version.count == -1) Py_RETURN_NONE;
    Ref tuple = Ref::steal(PyTuple_New(version.count));
    if (!tuple) return nullptr;
    for (int32_t i = 0; i < version.count; i++) {
        PyObject *component = PyLong_FromLong(version.components[i]);
        if (component == nullptr) return nullptr;
        PyTuple_SET_ITEM(tuple.get(), i, component);
    }
    return tuple.release();
}

int fn_conv_py_nullable_to_clr_nullable(PyObject *value, void *arg) {
    auto *nullable = static_cast<PyNullableArg *>(arg);
    if (value == Py_None) return 1;
    if (nullable->convert(value, nullable->target) != 1) return 0;
    nullable->has_value = 1;
    return 1;
}

int fn_conv_py_parbyref_to_clr_parbyref(PyObject *value, void *arg) {
    auto *parameter = static_cast<PyParamByRef *>(arg);
    if (!PyList_CheckExact(value)) {
        return refuse_type(
            "argument should be empty list or list contains default value, not '%.200s'", value);
    }
    parameter->list = value;
    if (PyList_GET_SIZE(value) == 0) return 1;
    // Held: a converter that runs Python code may empty the list.
    const Ref item = Ref::borrow(PyList_GET_ITEM(value, 0));
    if (item.get() == Py_None) return 1;
    return parameter->convert(item.get(), parameter->target) == 1;
}

int fn_push_parbyref_outvalue(PyObject *list, PyObject *value) {
    Ref owned = Ref::steal(value);
    const Py_ssize_t count = PyList_Size(list);
    if (count < 0) return -1;
    if (count > 0) return PyList_SetItem(list, 0, owned.release());
    return PyList_Append(list, owned.get());
}

int fn_conv_py_obj_to_ssize_t(PyObject *value, void *target) {
    if (!PyIndex_Check(value)) {
        return refuse_type("argument should be integer or None, not '%.200s'", value);
    }
    const Py_ssize_t number = PyNumber_AsSsize_t(value, PyExc_OverflowError);
    if (number == -1 && PyErr_Occurred()) return 0;
    *static_cast<int64_t *>(target) = number;
    return 1;
}

int fn_conv_py_optional_to_ssize_t(PyObject *args, void *target) {
    PyObject *item = PyTuple_GetItem(args, 0);
    if (item == nullptr) return 0;
    return item == Py_None ? 1 : fn_conv_py_obj_to_ssize_t(item, target);
}
