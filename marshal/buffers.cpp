// Byte blocks, both ways, and the window on managed memory.
#include "marshal/buffers.h"

#include "shell/module_identity.h"
#include "shell/ref.h"

#include <cstring>

namespace {

constexpr Py_ssize_t too_long = Py_ssize_t{1} << 31;

// A memoryview with a step refuses a plain request before the view can be looked at, yet what is
// wrong with it is known: it has memory, but not in one piece.
bool is_memoryview_with_step(PyObject *value) {
    if (!PyMemoryView_Check(value)) return false;
    Py_buffer view;
    if (PyObject_GetBuffer(value, &view, PyBUF_FULL_RO) < 0) return false; // released
    const bool contiguous = PyBuffer_IsContiguous(&view, 'C');
    PyBuffer_Release(&view);
    return !contiguous;
}

} // namespace

int fn_read_py_buffer(PyObject *value, Py_buffer *view, PyBytesArg *arg) {
    if (PyObject_GetBuffer(value, view, PyBUF_SIMPLE) < 0) {
        PyErr_Clear();
        const bool stepped = is_memoryview_with_step(value);
        PyErr_SetString(PyExc_BufferError,
                        stepped ? "buffer is not contiguous" : "can't get internal buffer");
        return 0;
    }
    arg->held = 1;
    if (!PyBuffer_IsContiguous(view, 'C')) {
        PyErr_SetString(PyExc_BufferError, "buffer is not contiguous");
        return 0;
    }
    if (view->len >= too_long) {
        PyErr_SetString(PyExc_BufferError, "buffer is too long");
        return 0;
    }
    arg->length = static_cast<int32_t>(view->len);
    arg->data = view->buf;
    return 1;
}

int fn_read_py_buffer_view(PyObject *value, Py_buffer *view, PyBytesArg *arg) {
    return fn_read_py_buffer(value, view, arg);
}

int fn_conv_py_bytes_to_clr_bytes_value(PyObject *value, Py_buffer *view, PyBytesArg *arg) {
    if (value == Py_None) {
        arg->length = -1;
        return 1;
    }
    if (!PyObject_CheckBuffer(value)) {
        PyErr_Format(PyExc_TypeError, "can't build byte[] from '%s'", Py_TYPE(value)->tp_name);
        return 0;
    }
    return fn_read_py_buffer(value, view, arg);
}

int fn_conv_py_bytes_to_clr_bytes(PyObject *value, void *builder) {
    auto *bytes = static_cast<PyBytesArgBuilder *>(builder);
    return fn_conv_py_bytes_to_clr_bytes_value(value, bytes->get_view(), bytes->get_info());
}

int32_t fn_get_sizeof_py_byffer() { return sizeof(Py_buffer); }

int32_t fn_create_py_byffer(void *memory) {
    std::memset(memory, 0, sizeof(Py_buffer));
    return 0;
}

void fn_release_py_buffer(Py_buffer *view) { PyBuffer_Release(view); }

PyObject *fn_conv_clr_bytes_to_py_bytes(const char *bytes, int32_t length) {
    return PyByteArray_FromStringAndSize(bytes, length);
}

namespace {

int shl_buffer_view_getbuffer(PyObject *self, Py_buffer *buffer, int flags) {
    const auto *view = reinterpret_cast<PyShlBufferView *>(self);
    return PyBuffer_FillInfo(buffer, self, view->data, view->length, view->readonly, flags);
}

} // namespace

void *m_py_buffer_callbacks[] = {
    reinterpret_cast<void *>(fn_get_sizeof_py_byffer),
    reinterpret_cast<void *>(fn_create_py_byffer),
    reinterpret_cast<void *>(fn_read_py_buffer_view),
    reinterpret_cast<void *>(fn_release_py_buffer),
};

PyBufferProcs wrpPye_tybp_ShlBufferView = {shl_buffer_view_getbuffer, nullptr};

// No constructor and no base-type flag: the managed side alone makes these.
constinit PyTypeObject wrpPye_tyds_ShlBufferView = [] {
    const PyVarObject head[] = {PyVarObject_HEAD_INIT(nullptr, 0)};
    PyTypeObject type{};
    type.ob_base = head[0];
    type.tp_name = module_identity::shl_buffer_view;
    type.tp_basicsize = sizeof(PyShlBufferView);
    type.tp_as_buffer = &wrpPye_tybp_ShlBufferView;
    return type;
}();

PyObject *fn_create_shlbuffer_view(void *data, int64_t length, int32_t readonly) {
    auto *view = PyObject_New(PyShlBufferView, &wrpPye_tyds_ShlBufferView);
    if (view == nullptr) return nullptr;
    view->data = data;
    view->length = length;
    view->readonly = readonly;
    return reinterpret_cast<PyObject *>(view);
}
