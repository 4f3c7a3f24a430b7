// The record of a stream wrapper and the host of managed streams.
#pragma once

#include "binding/clr_object.h"
#include "collections/collection_hosts.h"

#include <cstddef>
#include <cstdint>

// `closed` is the wrapper's own memory: it is never read back from the managed stream, so two
// wrappers of one stream keep it apart.
struct PyShStreamObject {
    PyClrObject base;
    std::int32_t closed; // 0 until close or __exit__ ran
};
static_assert(sizeof(PyShStreamObject) == 32 && offsetof(PyShStreamObject, closed) == 24);

struct StreamHead {
    bool can_read(void *self) const { return m_can_read(self); }
    bool can_seek(void *self) const { return m_can_seek(self); }
    bool can_write(void *self) const { return m_can_write(self); }
    std::int64_t length(void *self) const { return m_length(self); }
    std::int64_t position(void *self) const { return m_position(self); }
    void close(void *self) const { m_close(self); }
    void flush(void *self) const { m_flush(self); }
    std::int32_t read(void *self, void *bytes, std::int32_t count) const {
        return m_read(self, bytes, count);
    }
    std::int64_t seek(void *self, std::int64_t offset, std::int32_t origin) const {
        return m_seek(self, offset, origin);
    }
    std::int64_t set_length(void *self, std::int32_t to_position, std::int64_t length) const {
        return m_set_length(self, to_position, length);
    }
    void write(void *self, const void *bytes, std::int32_t count) const {
        m_write(self, bytes, count);
    }
    bool btp_IsAssignable(void *object) const { return m_btp_IsAssignable(object); }
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_ReInterpretObj(void *object, void **out) const {
        return m_btp_ReInterpretObj(object, out);
    }
    int btp_CastAs(void *object, void **out) const { return m_btp_CastAs(object, out); }

protected:
    using Test = unsigned char (*)(void *);

    Test m_can_read = nullptr;
    Test m_can_seek = nullptr;
    Test m_can_write = nullptr;
    std::int64_t (*m_length)(void *) = nullptr;
    std::int64_t (*m_position)(void *) = nullptr;
    void (*m_close)(void *) = nullptr;
    void (*m_flush)(void *) = nullptr;
    std::int32_t (*m_read)(void *, void *, std::int32_t) = nullptr;
    std::int64_t (*m_seek)(void *, std::int64_t, std::int32_t) = nullptr;
    // The flag is 1 when truncate was given no size: cut at the position.
    std::int64_t (*m_set_length)(void *, std::int32_t, std::int64_t) = nullptr;
    void (*m_write)(void *, const void *, std::int32_t) = nullptr;
    HandleTestSlot m_btp_IsAssignable = nullptr;
    TypeOfSlot m_btp_TypeOf = nullptr;
    CastToSlot m_btp_CastTo = nullptr;
    ReInterpretSlot m_btp_ReInterpretObj = nullptr;
    HandleCastSlot m_btp_CastAs = nullptr;
};

struct StreamSlots : StreamHead {
    static constexpr const char *methods[] = {"CanRead",    "CanSeek",    "CanWrite",
                                              "Length",     "Position",   "Close",
                                              "Flush",      "Read",       "Seek",
                                              "SetLength",  "Write",      "btp_IsAssignable",
                                              "btp_TypeOf", "btp_CastTo", "btp_ReInterpretObj",
                                              "btp_CastAs"};
};

class PyHost_ph_Stream : public SlotHost<StreamSlots> {
public:
    static PyHost_ph_Stream &get_instance();

private:
    PyHost_ph_Stream() : SlotHost("Kelmor.WrpGen.Interop.SiApiStream") {}
};

bool wrpPye_uafn_stream_invalidate(); // true: the validity error is set
