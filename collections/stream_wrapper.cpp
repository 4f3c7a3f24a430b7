// A managed stream as a binary file object.
//
// Every byte crosses as a raw pointer into a bytes object or a caller's buffer. A crossing carries
// at most INT32_MAX bytes, so larger requests are split. After each delegate a pending error ends
// the operation.
#include "binding/casts.h"
#include "binding/host_state.h"
#include "collections/collection_types.h"
#include "collections/interop_wrappers.h"
#include "collections/stream_host.h"
#include "collections/stream_read.h"
#include "collections/wrapper_rows.h"
#include "marshal/others.h"
#include "marshal/scalars.h"
#include "shell/arguments.h"
#include "shell/identifiers.h"
#include "shell/import_errors.h"
#include "shell/module_identity.h"
#include "shell/ref.h"

#include <algorithm>

namespace {

using Valid = Validity<PyHost_ph_Stream>;

const PyHost_ph_Stream &host() { return PyHost_ph_Stream::get_instance(); }

PyShStreamObject *as_stream(PyObject *self) { return reinterpret_cast<PyShStreamObject *>(self); }

PyObject *none_unless_raised() { return PyErr_Occurred() ? nullptr : fn_py_return_none(); }

PyObject *bool_unless_raised(bool value) {
    return PyErr_Occurred() ? nullptr : PyBool_FromLong(value);
}

PyObject *number_unless_raised(std::int64_t value) {
    return PyErr_Occurred() ? nullptr : PyLong_FromLongLong(value);
}

// True: ValueError is set.
bool is_closed(PyObject *self) {
    if (as_stream(self)->closed == 0) return false;
    PyErr_SetString(PyExc_ValueError, "I/O operation on closed stream");
    return true;
}

// A contiguous buffer of an argument, released with this object.
class ArgumentBuffer {
public:
    ArgumentBuffer(PyObject *argument, int flags, const char *not_buffer, const char *not_plain) {
        const char *const name = argument == Py_None ? "None" : Py_TYPE(argument)->tp_name;
        if (PyObject_GetBuffer(argument, &view_, flags) < 0) {
            PyErr_Clear();
            PyErr_Format(PyExc_TypeError, not_buffer, name);
            return;
        }
        held_ = true;
        contiguous_ = PyBuffer_IsContiguous(&view_, 'C') != 0;
        if (!contiguous_) PyErr_Format(PyExc_TypeError, not_plain, name);
    }
    ArgumentBuffer(const ArgumentBuffer &) = delete;
    ArgumentBuffer &operator=(const ArgumentBuffer &) = delete;
    ~ArgumentBuffer() {
        if (held_) PyBuffer_Release(&view_);
    }

    bool is_usable() const { return held_ && contiguous_; } // false: TypeError is set
    Py_ssize_t size() const { return view_.len; }
    char *data() const { return static_cast<char *>(view_.buf); }
    std::int32_t piece_at(Py_ssize_t done) const {
        return static_cast<std::int32_t>(std::min<Py_ssize_t>(view_.len - done, INT32_MAX));
    }

private:
    Py_buffer view_;
    bool held_ = false;
    bool contiguous_ = false;
};

// The one size argument of read, readline and readlines; -1 when it is absent or None.
bool read_size(PyObject *args, const char *name, Py_ssize_t *size) {
    *size = -1;
    const Py_ssize_t given = PyTuple_GET_SIZE(args);
    if (fn_check_args_count_out_of_range(given, name, 0, 1)) return false;
    return given == 0 || fn_conv_py_optional_to_ssize_t(args, size);
}

// Lines are read ahead and given back, which only a stream that can seek allows.
bool check_seekable(PyObject *self) {
    const bool seekable = host().can_seek(handle_of(self));
    if (PyErr_Occurred()) {
        PyShlErr_ChainFormat(PyExc_TypeError,
                             "the operation supported only for seekable inner streams. an "
                             "exception was thrown during 'CanSeek' check");
        return false;
    }
    if (!seekable)
        PyErr_SetString(PyExc_TypeError, "the operation supported only for seekable inner streams. "
                                         "the inner stream is not seekable");
    return seekable;
}

PyObject *stream_close(PyObject *self, PyObject *) {
    if (as_stream(self)->closed == 0) {
        host().close(handle_of(self));
        as_stream(self)->closed = 1;
    }
    return none_unless_raised();
}

PyObject *stream_flush(PyObject *self, PyObject *) {
    if (is_closed(self)) return nullptr;
    host().flush(handle_of(self));
    return none_unless_raised();
}

PyObject *stream_readable(PyObject *self, PyObject *) {
    return is_closed(self) ? nullptr : bool_unless_raised(host().can_read(handle_of(self)));
}

PyObject *stream_seekable(PyObject *self, PyObject *) {
    return is_closed(self) ? nullptr : bool_unless_raised(host().can_seek(handle_of(self)));
}

PyObject *stream_writable(PyObject *self, PyObject *) {
    return is_closed(self) ? nullptr : bool_unless_raised(host().can_write(handle_of(self)));
}

PyObject *stream_tell(PyObject *self, PyObject *) {
    return is_closed(self) ? nullptr : number_unless_raised(host().position(handle_of(self)));
}

// The arguments are judged before the state of the stream.
PyObject *stream_seek(PyObject *self, PyObject *args) {
    std::int64_t offset = 0;
    int whence = 0;
    if (!PyArg_ParseTuple(args, "O&|i", fn_conv_py_long_to_clr_int64, &offset, &whence))
        return nullptr;
    if (whence < 0 || whence > 2)
        return PyErr_Format(PyExc_ValueError, "invalid whence (%i, should be 0, 1 or 2)", whence);
    if (offset < 0 && whence == 0)
        return PyErr_Format(PyExc_ValueError, "negative seek value %zd",
                            static_cast<Py_ssize_t>(offset));
    if (is_closed(self)) return nullptr;
    return number_unless_raised(host().seek(handle_of(self), offset, whence));
}

PyObject *stream_truncate(PyObject *self, PyObject *args) {
    const Py_ssize_t given = PyTuple_GET_SIZE(args);
    if (fn_check_args_count_out_of_range(given, "truncate", 0, 1)) return nullptr;
    PyObject *const size = given > 0 ? PyTuple_GET_ITEM(args, 0) : Py_None;
    const bool to_position = size == Py_None;
    std::int64_t length = 0;
    if (!to_position && !fn_conv_py_long_to_clr_int64(size, &length)) return nullptr;
    if (is_closed(self)) return nullptr;
    return number_unless_raised(host().set_length(handle_of(self), to_position, length));
}

PyObject *stream_write(PyObject *self, PyObject *argument) {
    if (is_closed(self)) return nullptr;
    const ArgumentBuffer buffer(argument, PyBUF_SIMPLE,
                                "write argument must be bytes-like object, not '%s'",
                                "write argument must be contiguous buffer, not '%s'");
    if (!buffer.is_usable()) return nullptr;
    Py_ssize_t done = 0;
    do {
        const std::int32_t piece = buffer.piece_at(done);
        host().write(handle_of(self), buffer.data() + done, piece);
        if (PyErr_Occurred()) return nullptr;
        done += piece;
    } while (done < buffer.size());
    return PyLong_FromSsize_t(done);
}

PyObject *stream_writelines(PyObject *self, PyObject *lines) {
    if (is_closed(self)) return nullptr;
    const Ref iterator = Ref::steal(PyObject_GetIter(lines));
    if (!iterator) return nullptr;
    while (const Ref line = Ref::steal(PyIter_Next(iterator.get())))
        if (!Ref::steal(stream_write(self, line.get()))) return nullptr;
    return none_unless_raised();
}

PyObject *stream_readline(PyObject *self, PyObject *args) {
    Py_ssize_t limit;
    if (!read_size(args, "readline", &limit) || is_closed(self) || !check_seekable(self))
        return nullptr;
    return fn_stream_read_line_impl(handle_of(self), limit);
}

// Stops behind the line that reaches the hint.
bool collect_lines(PyObject *self, Py_ssize_t hint, PyObject *lines) {
    const Ref iterator = Ref::steal(PyObject_GetIter(self));
    if (!iterator) return false;
    Py_ssize_t total = 0;
    while (const Ref line = Ref::steal(PyIter_Next(iterator.get()))) {
        if (PyList_Append(lines, line.get()) < 0) return false;
        const Py_ssize_t length = PyObject_Size(line.get());
        if (length < 0) return false;
        if (length >= hint - total) break;
        total += length;
    }
    return !PyErr_Occurred();
}

PyObject *stream_readlines(PyObject *self, PyObject *args) {
    Py_ssize_t hint;
    if (!read_size(args, "readlines", &hint) || is_closed(self) || !check_seekable(self))
        return nullptr;
    Ref lines = Ref::steal(PyList_New(0));
    if (!lines) return nullptr;
    if (hint > 0) return collect_lines(self, hint, lines.get()) ? lines.release() : nullptr;
    const Ref extended =
        Ref::steal(PyObject_CallMethodObjArgs(lines.get(), PyWrpIdList_Extend, self, nullptr));
    return extended ? lines.release() : nullptr;
}

PyObject *stream_readinto(PyObject *self, PyObject *argument) {
    if (is_closed(self)) return nullptr;
    const ArgumentBuffer buffer(argument, PyBUF_WRITABLE,
                                "readinto argument must be read-write bytes-like object, not '%s'",
                                "readinto argument must be read-write contiguous buffer, not '%s'");
    if (!buffer.is_usable()) return nullptr;
    Py_ssize_t done = 0;
    do {
        const std::int32_t piece = buffer.piece_at(done);
        const std::int32_t came = host().read(handle_of(self), buffer.data() + done, piece);
        if (PyErr_Occurred()) return nullptr;
        done += came;
        if (came < piece) break;
    } while (done < buffer.size());
    return PyLong_FromSsize_t(done);
}

PyObject *stream_read(PyObject *self, PyObject *args) {
    Py_ssize_t size;
    if (!read_size(args, "read", &size) || is_closed(self)) return nullptr;
    if (size < 0 || size > INT32_MAX) return fn_stream_read_bytes_impl(handle_of(self), size);
    return read_once(handle_of(self), static_cast<int>(size));
}

PyObject *stream_readall(PyObject *self, PyObject *) {
    return is_closed(self) ? nullptr : fn_stream_read_bytes_impl(handle_of(self), -1);
}

PyObject *stream_fileno(PyObject *, PyObject *) {
    PyErr_SetString(PyExc_ValueError, "fileno method is not supported");
    return nullptr;
}

PyObject *stream_isatty(PyObject *self, PyObject *) {
    if (is_closed(self)) return nullptr;
    Py_RETURN_FALSE;
}

// Disposes also of a stream that close has closed.
PyObject *stream_exit(PyObject *self, PyObject *args) {
    PyObject *const result = wrpPye_bltp_idisposable_exit(self, args);
    as_stream(self)->closed = 1;
    return result;
}

PyObject *stream_iter(PyObject *self) {
    if (is_closed(self) || !check_seekable(self)) return nullptr;
    return Ref::borrow(self).release();
}

// The tests ran in stream_iter. Null without an error ends the iteration.
PyObject *stream_iternext(PyObject *self) {
    Ref line = Ref::steal(fn_stream_read_line_impl(handle_of(self), -1));
    if (!line || PyBytes_GET_SIZE(line.get()) == 0) return nullptr;
    return line.release();
}

PyObject *stream_closed(PyObject *self, void *) {
    return PyBool_FromLong(as_stream(self)->closed != 0);
}

void wrpPye_init_fields_stream(PyObject *self) { as_stream(self)->closed = 0; }

PyObject *wrpPye_tpsb_stream_tp_new(PyTypeObject *type, PyObject *args, PyObject *kwds) {
    PyObject *const self = Valid::create(type, args, kwds);
    if (self != nullptr) wrpPye_init_fields_stream(self);
    return self;
}

constexpr CastOperations casts =
    class_casts<PyHost_ph_Stream, Valid::invalidate, wrap_handle_as<&wrpPye_tyds_StreamWrapper>>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {{"close", stream_close, METH_NOARGS, nullptr},
                         {"flush", stream_flush, METH_NOARGS, nullptr},
                         {"readable", stream_readable, METH_NOARGS, nullptr},
                         {"seekable", stream_seekable, METH_NOARGS, nullptr},
                         {"writable", stream_writable, METH_NOARGS, nullptr},
                         {"tell", stream_tell, METH_NOARGS, nullptr},
                         {"seek", stream_seek, METH_VARARGS, nullptr},
                         {"truncate", stream_truncate, METH_VARARGS, nullptr},
                         {"write", stream_write, METH_O, nullptr},
                         {"writelines", stream_writelines, METH_O, nullptr},
                         {"readline", stream_readline, METH_VARARGS, nullptr},
                         {"readlines", stream_readlines, METH_VARARGS, nullptr},
                         {"readinto", stream_readinto, METH_O, nullptr},
                         {"read", stream_read, METH_VARARGS, nullptr},
                         {"readall", stream_readall, METH_NOARGS, nullptr},
                         {"fileno", stream_fileno, METH_NOARGS, nullptr},
                         {"isatty", stream_isatty, METH_NOARGS, nullptr},
                         {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
                         {"__enter__", wrpPye_bltp_idisposable_enter, METH_NOARGS, nullptr},
                         {"__exit__", stream_exit, METH_VARARGS, nullptr},
                         KELMOR_CAST_ROWS(Casts, Casts::reinterpret_obj)};

PyGetSetDef properties[] = {{"closed", stream_closed, nullptr, nullptr, nullptr},
                            {nullptr, nullptr, nullptr, nullptr, nullptr}};

constexpr PyTypeObject stream_type() {
    PyTypeObject type = collection_wrapper_type({.name = module_identity::stream_wrapper,
                                                 .create = wrpPye_tpsb_stream_tp_new,
                                                 .methods = methods,
                                                 .properties = properties},
                                                {.iterate = stream_iter, .next = stream_iternext});
    type.tp_basicsize = sizeof(PyShStreamObject);
    return type;
}

} // namespace

PyHost_ph_Stream &PyHost_ph_Stream::get_instance() {
    static PyHost_ph_Stream host;
    return host;
}

constinit PyTypeObject wrpPye_tyds_StreamWrapper = stream_type();

bool wrpPye_bltp_stream_is_not_valid(std::string &message) { return Valid::is_not_valid(message); }

bool wrpPye_uafn_stream_invalidate() { return Valid::invalidate(); }
