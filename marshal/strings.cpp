// Text, both ways.
#include "marshal/strings.h"

#include "shell/ref.h"

#include <cstdlib>
#include <new>
#include <string>

namespace {

// Where the characters stand, by the form of the object. An instance of a subclass is not compact.
const void *characters(PyObject *text) {
    auto *ascii = reinterpret_cast<PyASCIIObject *>(text);
    if (!ascii->state.compact) return reinterpret_cast<PyUnicodeObject *>(text)->data.any;
    if (ascii->state.ascii) return ascii + 1;
    return reinterpret_cast<PyCompactUnicodeObject *>(text) + 1;
}

} // namespace

int fn_conv_py_string_to_clr_string_value(PyObject *value, PyStringArg *arg) {
    if (!unicode_is_ready(value) && unicode_make_ready(value) < 0) {
        PyErr_SetString(PyExc_TypeError, "unicode object is not ready");
        return 0;
    }
    const auto *text = reinterpret_cast<PyASCIIObject *>(value);
    const int kind = text->state.kind;
    if (kind != 1 && kind != 2 && kind != 4) {
        PyErr_Format(PyExc_TypeError, "unknown unicode encoding '%i'", kind);
        return 0;
    }
    arg->length = static_cast<int32_t>(text->length);
    arg->char_size = kind;
    arg->data = characters(value);
    return 1;
}

int fn_conv_py_string_to_clr_string(PyObject *value, void *arg) {
    if (value == Py_None) {
        static_cast<PyStringArg *>(arg)->length = -1;
        return 1;
    }
    if (!PyUnicode_Check(value)) {
        PyErr_Format(PyExc_TypeError, "can't build String from '%s'", Py_TYPE(value)->tp_name);
        return 0;
    }
    return fn_conv_py_string_to_clr_string_value(value, static_cast<PyStringArg *>(arg));
}

int fn_read_py_string(PyObject *value, PyStringArg *arg) {
    return fn_conv_py_string_to_clr_string_value(value, arg);
}

int fn_conv_py_strorpath_to_clr_string(PyObject *value, void *arg) {
    auto *path = static_cast<PyEphStrArg *>(arg);
    path->owner = nullptr;
    if (value == Py_None) {
        path->text.length = -1;
        return 1;
    }
    if (PyUnicode_Check(value)) return fn_conv_py_string_to_clr_string_value(value, &path->text);
    PyObject *decoded;
    if (!PyUnicode_FSDecoder(value, &decoded)) return 0;
    Ref text = Ref::steal(decoded);
    if (!fn_conv_py_string_to_clr_string_value(text.get(), &path->text)) return 0;
    path->owner = text.release();
    return 1;
}

PyObject *fn_conv_clr_string_to_py_string_value(const char *chars, long length) {
    int byteorder = -1; // little-endian: a leading U+FEFF is a character, not a mark
    return PyUnicode_DecodeUTF16(chars, length * 2, "", &byteorder);
}

PyObject *fn_conv_clr_string_to_py_string(const char *chars, int32_t length) {
    return fn_conv_clr_string_to_py_string_value(chars, length);
}

void *fn_create_u16_buffer(const uint16_t *chars, int32_t length) {
    static_assert(sizeof(std::u16string) == 8, "the cell is the reference-counted string object");
    void *cell = std::malloc(sizeof(std::u16string));
    if (cell == nullptr) return nullptr;
    try {
        return new (cell)
            std::u16string(reinterpret_cast<const char16_t *>(chars), static_cast<size_t>(length));
    } catch (const std::exception &) { // nothing unwinds into managed code
        std::free(cell);
        return nullptr;
    }
}
