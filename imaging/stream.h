// How codecs reach the bytes of a document: callbacks into the caller's stream, on the calling
// thread.
#pragma once
#include <cstdint>

// What every entry answers. The text behind a failure is the codec object's own message.
enum kelmor_status : int32_t {
    KELMOR_OK = 0,
    KELMOR_STREAM_FAILED = -1,  // a callback answered -1; the caller has kept its own exception
    KELMOR_WRONG_ARGUMENT = -2, // the description or the number of rows contradicts itself
    KELMOR_OUT_OF_MEMORY = -3,
    KELMOR_CODEC_FAILED = -4, // the codec refused, or the data is damaged
};

extern "C" {

// A codec uses only the callbacks that its header names; the others may be null. No callback may
// let an exception or a longjmp out: it answers -1 and keeps its reason to itself.
struct kelmor_stream {
    int64_t (*read)(void *user, uint8_t *block, int64_t length); // bytes read, 0 at the end, or -1
    int64_t (*write)(void *user, const uint8_t *block, int64_t length); // length, or -1
    int64_t (*seek)(void *user, int64_t offset, int32_t whence);        // new position, or -1
    int64_t (*size)(void *user);                                        // length in bytes, or -1
    void *user;
};
static_assert(sizeof(kelmor_stream) == 40);
}
