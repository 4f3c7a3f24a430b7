// Reading loops over a managed stream.
#include "collections/stream_read.h"

#include "collections/stream_host.h"
#include "shell/ref.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

constexpr Py_ssize_t first_size = 1024;

// A bytes object that is filled from the front and grows.
class ReadBuffer {
public:
    explicit ReadBuffer(Py_ssize_t size)
        : bytes_(Ref::steal(PyBytes_FromStringAndSize(nullptr, size))) {}

    bool is_made() const { return static_cast<bool>(bytes_); }
    bool is_full() const { return used_ == PyBytes_GET_SIZE(bytes_.get()); }
    Py_ssize_t used() const { return used_; }
    const char *data() const { return PyBytes_AS_STRING(bytes_.get()); }

    // Fills the free tail by one managed read: the bytes that came, -1 with an error set.
    Py_ssize_t read(void *stream) {
        const Py_ssize_t free = PyBytes_GET_SIZE(bytes_.get()) - used_;
        const auto count = static_cast<std::int32_t>(std::min<Py_ssize_t>(free, INT32_MAX));
        const std::int32_t came = PyHost_ph_Stream::get_instance().read(
            stream, PyBytes_AS_STRING(bytes_.get()) + used_, count);
        if (PyErr_Occurred()) return -1;
        used_ += came;
        return came;
    }

    // Few crossings for large streams, little waste for small ones.
    bool grow(Py_ssize_t ceiling) {
        if (used_ == PY_SSIZE_T_MAX) {
            PyErr_SetString(PyExc_OverflowError,
                            "unbounded read returned more bytes than a Python bytes buffer can "
                            "hold");
            return false;
        }
        Py_ssize_t increment = 4096;
        if (used_ > 65536)
            increment = std::max<Py_ssize_t>(used_ >> 3, 65536);
        else if (used_ > 8192)
            increment = 2 * used_;
        return resize(used_ > ceiling - increment ? ceiling : used_ + increment);
    }

    void cut(Py_ssize_t size) { used_ = size; }

    // The bytes read so far, as a bytes object of just that size; null with an error set.
    PyObject *finish() {
        if (!is_full() && !resize(used_)) return nullptr;
        return bytes_.release();
    }

private:
    bool resize(Py_ssize_t size) {
        PyObject *bytes = bytes_.release();
        const int result = _PyBytes_Resize(&bytes, size); // leaves null when it fails
        bytes_ = Ref::steal(bytes);
        return result == 0;
    }

    Ref bytes_;
    Py_ssize_t used_ = 0;
};

// Ends a line behind its line feed and gives what was read beyond it back to the stream.
bool end_line(ReadBuffer &buffer, void *stream, const char *line_feed) {
    const Py_ssize_t length = line_feed + 1 - buffer.data();
    const Py_ssize_t beyond = buffer.used() - length;
    buffer.cut(length);
    if (beyond > 0) PyHost_ph_Stream::get_instance().seek(stream, -beyond, 1);
    return !PyErr_Occurred();
}

} // namespace

PyObject *read_once(void *stream, int size) {
    ReadBuffer buffer(size);
    if (!buffer.is_made() || buffer.read(stream) < 0) return nullptr;
    return buffer.finish();
}

PyObject *fn_stream_read_bytes_impl(void *stream, Py_ssize_t limit) {
    ReadBuffer buffer(limit < 0 ? first_size : limit);
    if (!buffer.is_made()) return nullptr;
    for (;;) {
        const Py_ssize_t came = buffer.read(stream);
        if (came < 0) return nullptr;
        if (came == 0 || buffer.used() == limit) return buffer.finish();
        if (buffer.is_full() && !buffer.grow(PY_SSIZE_T_MAX)) return nullptr;
    }
}

PyObject *fn_stream_read_line_impl(void *stream, Py_ssize_t limit) {
    const Py_ssize_t ceiling = limit < 0 ? PY_SSIZE_T_MAX : limit;
    ReadBuffer buffer(std::min(ceiling, first_size));
    if (!buffer.is_made()) return nullptr;
    for (;;) {
        const Py_ssize_t before = buffer.used();
        const Py_ssize_t came = buffer.read(stream);
        if (came < 0) return nullptr;
        if (came == 0) return buffer.finish();
        const void *const line_feed =
            std::memchr(buffer.data() + before, '\n', static_cast<std::size_t>(came));
        if (line_feed != nullptr) {
            if (!end_line(buffer, stream, static_cast<const char *>(line_feed))) return nullptr;
            return buffer.finish();
        }
        if (buffer.used() == limit) return buffer.finish();
        if (buffer.is_full() && !buffer.grow(ceiling)) return nullptr;
    }
}
