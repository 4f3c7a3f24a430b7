// A bytes-like object as a binary stream that managed code can read.
//
// Nothing is copied: the stream reads straight from the object's buffer, which it holds until it is
// closed. Hence it is for reading alone; a stream that has to grow is an io.BytesIO.
#include "bytes_as_stream.h"

#include "shell/arguments.h"
#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/ref.h"

#include <algorithm>
#include <cstring>

namespace {

struct BytesAsStream {
    PyObject_HEAD Py_buffer data; // held while open; `data.obj` is null once closed
    Py_ssize_t position;          // never negative; may lie behind the end
};

BytesAsStream *as_stream(PyObject *object) { return reinterpret_cast<BytesAsStream *>(object); }

bool is_closed(PyObject *self) { return as_stream(self)->data.obj == nullptr; }

// The stream, or null with ValueError set.
BytesAsStream *open_stream(PyObject *self) {
    if (!is_closed(self)) return as_stream(self);
    PyErr_SetString(PyExc_ValueError, "I/O operation on closed stream");
    return nullptr;
}

PyObject *refuse(const char *operation) {
    const Ref io = Ref::steal(PyImport_ImportModule("io"));
    const Ref error =
        Ref::steal(io ? PyObject_GetAttrString(io.get(), "UnsupportedOperation") : nullptr);
    if (error) PyErr_SetString(error.get(), operation);
    return nullptr;
}

// "O&" unit of an optional size: None reads as -1, which means "to the end".
int optional_size(PyObject *value, void *out) {
    Py_ssize_t size = -1;
    if (value != Py_None) {
        size = PyNumber_AsSsize_t(value, PyExc_OverflowError);
        if (size == -1 && PyErr_Occurred()) return 0;
    }
    *static_cast<Py_ssize_t *>(out) = size;
    return 1;
}

// Moves past the next bytes, at most `limit` of them, and tells where they are.
const char *take(BytesAsStream *stream, Py_ssize_t limit, Py_ssize_t *count) {
    const Py_ssize_t left = std::max<Py_ssize_t>(stream->data.len - stream->position, 0);
    *count = std::min(left, limit);
    const char *start = static_cast<const char *>(stream->data.buf) + (left ? stream->position : 0);
    stream->position += *count;
    return start;
}

PyObject *stream_read(PyObject *self, PyObject *args) {
    Py_ssize_t size = -1;
    if (!PyArg_ParseTuple(args, "|O&:read", optional_size, &size)) return nullptr;
    BytesAsStream *stream = open_stream(self);
    if (!stream) return nullptr;
    Py_ssize_t count = 0;
    const char *bytes = take(stream, size < 0 ? PY_SSIZE_T_MAX : size, &count);
    return PyBytes_FromStringAndSize(bytes, count);
}

PyObject *stream_readinto(PyObject *self, PyObject *target) {
    BytesAsStream *stream = open_stream(self);
    Py_buffer out;
    if (!stream || PyObject_GetBuffer(target, &out, PyBUF_WRITABLE) < 0) return nullptr;
    Py_ssize_t count = 0;
    const char *bytes = take(stream, out.len, &count);
    // A move: the target may be the very memory that is read from.
    std::memmove(out.buf, bytes, count);
    PyBuffer_Release(&out);
    return PyLong_FromSsize_t(count);
}

// Relative to the start nothing before it can be named; relative to elsewhere it is the start.
PyObject *stream_seek(PyObject *self, PyObject *args) {
    Py_ssize_t offset = 0;
    int whence = 0;
    if (!PyArg_ParseTuple(args, "n|i:seek", &offset, &whence)) return nullptr;
    BytesAsStream *stream = open_stream(self);
    if (!stream) return nullptr;
    if (whence < 0 || whence > 2)
        return PyErr_Format(PyExc_ValueError, "invalid whence (%i, should be 0, 1 or 2)", whence);
    if (offset < 0 && whence == 0)
        return PyErr_Format(PyExc_ValueError, "negative seek value %zd", offset);
    const Py_ssize_t origin = whence == 0 ? 0 : whence == 1 ? stream->position : stream->data.len;
    if (offset > PY_SSIZE_T_MAX - origin) {
        PyErr_SetString(PyExc_OverflowError, "new position too large");
        return nullptr;
    }
    stream->position = std::max<Py_ssize_t>(origin + offset, 0);
    return PyLong_FromSsize_t(stream->position);
}

PyObject *stream_tell(PyObject *self, PyObject *) {
    const BytesAsStream *stream = open_stream(self);
    return stream ? PyLong_FromSsize_t(stream->position) : nullptr;
}

PyObject *answer(PyObject *self, PyObject *truth) {
    return open_stream(self) ? Py_NewRef(truth) : nullptr;
}

PyObject *stream_readable(PyObject *self, PyObject *) { return answer(self, Py_True); }
PyObject *stream_writable(PyObject *self, PyObject *) { return answer(self, Py_False); }
PyObject *stream_seekable(PyObject *self, PyObject *) { return answer(self, Py_True); }
PyObject *stream_flush(PyObject *self, PyObject *) { return answer(self, Py_None); }

PyObject *stream_write(PyObject *self, PyObject *) {
    return open_stream(self) ? refuse("write") : nullptr;
}

PyObject *stream_truncate(PyObject *self, PyObject *) {
    return open_stream(self) ? refuse("truncate") : nullptr;
}

PyObject *stream_close(PyObject *self, PyObject *) {
    PyBuffer_Release(&as_stream(self)->data); // harmless when it is released already
    Py_RETURN_NONE;
}

PyObject *stream_enter(PyObject *self, PyObject *) { return answer(self, self); }

PyObject *get_closed(PyObject *self, void *) { return PyBool_FromLong(is_closed(self)); }

PyObject *stream_repr(PyObject *self) {
    if (is_closed(self)) return PyUnicode_FromString("<BytesAsStream closed>");
    return PyUnicode_FromFormat("<BytesAsStream of %zd bytes at position %zd>",
                                as_stream(self)->data.len, as_stream(self)->position);
}

PyObject *stream_new(PyTypeObject *type, PyObject *args, PyObject *kwds) {
    static const char *const keywords[] = {"data", nullptr};
    PyObject *data = nullptr;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O:BytesAsStream", const_cast<char **>(keywords),
                                     &data))
        return nullptr;
    Ref created = Ref::steal(type->tp_alloc(type, 0));
    if (!created || PyObject_GetBuffer(data, &as_stream(created.get())->data, PyBUF_SIMPLE) < 0)
        return nullptr;
    return created.release();
}

int stream_traverse(PyObject *self, visitproc visit, void *arg) {
    Py_VISIT(as_stream(self)->data.obj);
    return 0;
}

int stream_clear(PyObject *self) {
    PyBuffer_Release(&as_stream(self)->data);
    return 0;
}

void stream_dealloc(PyObject *self) {
    PyObject_GC_UnTrack(self);
    stream_clear(self);
    Py_TYPE(self)->tp_free(self);
}

PyMethodDef stream_methods[] = {
    {"read", stream_read, METH_VARARGS, "The next bytes, all by default."},
    {"readinto", stream_readinto, METH_O, "Fills a writable buffer; the number of bytes."},
    {"write", stream_write, METH_O, "Not supported: the stream is for reading."},
    {"seek", stream_seek, METH_VARARGS, "Moves the position; the new position."},
    {"tell", stream_tell, METH_NOARGS, "The position."},
    {"truncate", stream_truncate, METH_VARARGS, "Not supported: the stream is for reading."},
    {"readable", stream_readable, METH_NOARGS, "True."},
    {"writable", stream_writable, METH_NOARGS, "False."},
    {"seekable", stream_seekable, METH_NOARGS, "True."},
    {"flush", stream_flush, METH_NOARGS, "Nothing to be done."},
    {"close", stream_close, METH_NOARGS, "Lets go of the data; may be repeated."},
    {"__enter__", stream_enter, METH_NOARGS, nullptr},
    {"__exit__", stream_close, METH_VARARGS, nullptr},
    {},
};

PyGetSetDef stream_getset[] = {
    {"closed", get_closed, nullptr, "Whether `close` was called.", nullptr},
    {},
};

} // namespace

PyTypeObject BytesAsStream_Type = {
    .ob_base = {PyObject_HEAD_INIT(nullptr) 0},
    .tp_name = "kelmor.shellcommon.BytesAsStream",
    .tp_basicsize = sizeof(BytesAsStream),
    .tp_dealloc = stream_dealloc,
    .tp_repr = stream_repr,
    .tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC,
    .tp_doc = "BytesAsStream(data)\n--\n\n"
              "A bytes-like object as a binary stream for reading, without a copy.",
    .tp_traverse = stream_traverse,
    .tp_clear = stream_clear,
    .tp_methods = stream_methods,
    .tp_getset = stream_getset,
    .tp_new = stream_new,
};
