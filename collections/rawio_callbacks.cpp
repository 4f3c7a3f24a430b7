// A Python file object as the managed side drives it.
//
// Only `closed`, `readable`, `writable`, `seekable`, `readinto`, `write`, `seek`, `tell`,
// `truncate`, `flush` and `close` are used, each at the moment the managed stream needs it: there
// is no buffering here. Bytes cross as a view of the managed block, without a copy.
//
// The reference of a view is never given back. Python code may have kept the view, whose memory is
// gone after the call, and whoever reads it then must at least find a live object.
#include "collections/callbacks.h"
#include "marshal/buffers.h"
#include "marshal/scalars.h"
#include "shell/identifiers.h"
#include "shell/import_errors.h"
#include "shell/raised.h"
#include "shell/ref.h"

namespace {

constexpr const char *closed_check_failed =
    "An error occurred while checking if the stream is closed";
constexpr const char *length_failed =
    "While calculating the length of the stream, an error occurred.";

constexpr int call_failed = -1; // an error is pending

enum class Transfer { counted, nothing, failed }; // nothing: None, a stream without bytes at hand

template <class... Args> Ref call(PyObject *stream, PyObject *method, Args... args) {
    return Ref::steal(PyObject_CallMethodObjArgs(stream, method, args..., nullptr));
}

// Calls `write` or `readinto` with a view of the block.
Transfer transfer(PyObject *stream, PyObject *method, void *bytes, std::int32_t count,
                  bool readonly, std::int32_t *transferred) {
    PyObject *const view = fn_create_shlbuffer_view(bytes, count, readonly);
    if (view == nullptr) return Transfer::failed;
    const Ref result = call(stream, method, view);
    if (!result) return Transfer::failed;
    if (result.get() == Py_None) return Transfer::nothing;
    const int counted = fn_conv_py_long_to_clr_int32(result.get(), transferred);
    return counted ? Transfer::counted : Transfer::failed;
}

std::int32_t count_or_failed(PyObject *stream, PyObject *method, void *bytes, std::int32_t count,
                             bool readonly) {
    std::int32_t transferred = 0;
    const Transfer outcome = transfer(stream, method, bytes, count, readonly, &transferred);
    return outcome == Transfer::failed ? call_failed : transferred;
}

// False: an error is pending.
bool as_int64(const Ref &number, std::int64_t *out) {
    return number && fn_conv_py_long_to_clr_int64(number.get(), out);
}

std::int64_t int64_or_failed(const Ref &number) {
    std::int64_t value;
    return as_int64(number, &value) ? value : std::int64_t{call_failed};
}

// 1, 0, or -1 with an error pending.
int as_truth(const Ref &value) {
    bool truth = false;
    if (!value || !fn_conv_py_bool_to_clr_bool(value.get(), &truth)) return call_failed;
    return truth;
}

int is_closed(PyObject *stream) {
    const int closed = as_truth(Ref::steal(PyObject_GetAttr(stream, PyWrpIdRawIo_Closed)));
    if (closed < 0) PyShlErr_ChainFormat(PyExc_TypeError, closed_check_failed);
    return closed;
}

// A closed stream can do nothing, and is not asked.
int is_able(PyObject *stream, PyObject *method) {
    const int closed = is_closed(stream);
    if (closed != 0) return closed < 0 ? call_failed : 0;
    return as_truth(call(stream, method));
}

Ref seek(PyObject *stream, std::int64_t offset, std::int32_t origin) {
    const Ref to = Ref::steal(PyLong_FromLongLong(offset));
    const Ref from = Ref::steal(PyLong_FromLong(origin));
    if (!to || !from) return Ref();
    return call(stream, PyWrpIdRawIo_Seek, to.get(), from.get());
}

// A managed stream that is cut below its position stands at its new end.
bool follow_truncation(PyObject *stream, std::int64_t length) {
    std::int64_t position;
    if (!as_int64(call(stream, PyWrpIdRawIo_Tell), &position)) return false;
    if (position < 0 || length < 0 || length >= position) return true;
    return static_cast<bool>(seek(stream, length, 0));
}

// Seeks to the end and back to where the stream was. False: an error is pending.
bool measure(PyObject *stream, std::int64_t *length) {
    const Ref position = seek(stream, 0, 1);
    if (!position) return false;
    const Ref end = seek(stream, 0, 2);
    if (!end) return false;
    if (!call(stream, PyWrpIdRawIo_Seek, position.get())) return false;
    return as_int64(end, length);
}

std::int64_t length_failure() {
    PyShlErr_ChainFormat(PyExc_TypeError, length_failed);
    return call_failed;
}

} // namespace

std::int32_t fn_clbk_rawio_write(PyObject *stream, const void *bytes, std::int32_t count) {
    return count_or_failed(stream, PyWrpIdRawIo_Write, const_cast<void *>(bytes), count, true);
}

std::int32_t fn_clbk_rawio_write_byte(PyObject *stream, std::int32_t value) {
    return fn_clbk_rawio_write(stream, &value, 1); // little-endian: the lowest byte comes first
}

std::int32_t fn_clbk_rawio_read(PyObject *stream, void *bytes, std::int32_t count) {
    return count_or_failed(stream, PyWrpIdRawIo_ReadInto, bytes, count, false);
}

std::int32_t fn_clbk_rawio_readbyte(PyObject *stream) {
    constexpr std::int32_t at_end = -1, failed = -2;
    unsigned char byte = 0;
    std::int32_t came = 0;
    switch (transfer(stream, PyWrpIdRawIo_ReadInto, &byte, 1, false, &came)) {
    case Transfer::counted:
        return came == 0 ? at_end : byte;
    case Transfer::nothing:
        PyErr_SetString(PyExc_OSError, "no bytes are available for reading");
        return failed;
    default:
        return failed;
    }
}

std::int64_t fn_clbk_rawio_seek(PyObject *stream, std::int64_t offset, std::int32_t origin) {
    return int64_or_failed(seek(stream, offset, origin));
}

int fn_clbk_rawio_truncate(PyObject *stream, std::int64_t length) {
    const Ref size = Ref::steal(PyLong_FromLongLong(length));
    if (!size || !call(stream, PyWrpIdRawIo_Truncate, size.get())) return call_failed;
    if (!follow_truncation(stream, length)) PyErr_Clear(); // the cut itself has been made
    return 0;
}

int fn_clbk_rawio_flush(PyObject *stream) {
    return call(stream, PyWrpIdRawIo_Flush) ? 0 : call_failed;
}

// Runs during clean-up, perhaps while an exception is in flight, and must disturb nothing.
void fn_clbk_rawio_close(PyObject *stream) {
    const RaisedAside earlier;
    if (!call(stream, PyWrpIdRawIo_Close)) PyErr_WriteUnraisable(stream);
}

int fn_clbk_rawio_readable(PyObject *stream) { return is_able(stream, PyWrpIdRawIo_Readable); }
int fn_clbk_rawio_writable(PyObject *stream) { return is_able(stream, PyWrpIdRawIo_Writable); }
int fn_clbk_rawio_seekable(PyObject *stream) { return is_able(stream, PyWrpIdRawIo_Seekable); }

std::int64_t fn_clbk_rawio_tell(PyObject *stream) {
    return int64_or_failed(call(stream, PyWrpIdRawIo_Tell));
}

std::int64_t fn_clbk_rawio_length(PyObject *stream) {
    constexpr std::int64_t not_seekable = -2, closed_stream = -3;
    const int closed = is_closed(stream);
    if (closed != 0) return closed < 0 ? call_failed : closed_stream;
    const int seekable = as_truth(call(stream, PyWrpIdRawIo_Seekable));
    if (seekable < 0) return length_failure();
    if (seekable == 0) return not_seekable;
    std::int64_t length;
    return measure(stream, &length) ? length : length_failure();
}

void *m_py_rawio_callbacks[] = {reinterpret_cast<void *>(fn_clbk_rawio_write),
                                reinterpret_cast<void *>(fn_clbk_rawio_write_byte),
                                reinterpret_cast<void *>(fn_clbk_rawio_read),
                                reinterpret_cast<void *>(fn_clbk_rawio_readbyte),
                                reinterpret_cast<void *>(fn_clbk_rawio_seek),
                                reinterpret_cast<void *>(fn_clbk_rawio_truncate),
                                reinterpret_cast<void *>(fn_clbk_rawio_flush),
                                reinterpret_cast<void *>(fn_clbk_rawio_close),
                                reinterpret_cast<void *>(fn_clbk_rawio_readable),
                                reinterpret_cast<void *>(fn_clbk_rawio_writable),
                                reinterpret_cast<void *>(fn_clbk_rawio_seekable),
                                reinterpret_cast<void *>(fn_clbk_rawio_tell),
                                reinterpret_cast<void *>(fn_clbk_rawio_length)};
