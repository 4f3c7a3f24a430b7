// The characters of a Python str for a managed reader of 16-bit units.
#include "collections/callbacks.h"
#include "shell/ref.h"

namespace {

int refuse(const char *text) {
    if (!PyErr_Occurred()) PyErr_SetString(PyExc_TypeError, text);
    return 0;
}

} // namespace

// The encoded form begins with a byte order mark of one unit. The count leaves it out; the address
// points one unit behind the first character, which the managed reader takes into account.
int fn_clbk_ucol_get_unicode_bytes(PyObject *text, PyObject **owner, std::int32_t *count,
                                   const char **characters) {
    if (!PyUnicode_Check(text)) {
        PyErr_Format(PyExc_TypeError, "can't build Char from '%s'", Py_TYPE(text)->tp_name);
        return 0;
    }
    if (!unicode_is_ready(text) && unicode_make_ready(text) < 0) {
        PyErr_SetString(PyExc_TypeError, "unicode object is not ready");
        return 0;
    }
    Ref bytes = Ref::steal(PyUnicode_AsUTF16String(text));
    if (!bytes) return refuse("cannot convert unicode object to byte string");
    if (!PyBytes_Check(bytes.get())) {
        PyErr_Format(PyExc_TypeError, "converted string must be bytes-like object, not '%s'",
                     Py_TYPE(bytes.get())->tp_name);
        return 0;
    }
    *count = static_cast<std::int32_t>((PyBytes_GET_SIZE(bytes.get()) - 2) / 2);
    *characters = PyBytes_AS_STRING(bytes.get()) + 4;
    *owner = bytes.release();
    return 1;
}
