// The scripted peer: stands in for the runtime, answers from a table that a test fills, and writes
// down every call.
//
// The library lives in the test's process before the wrap library comes, so a test fills it first.
// It stays usable until the very end of the process, hence nothing in it has a destructor.
#pragma once

#include <cstdint>

struct Stub;

// What a stub was called with. A function that a stub calls may change the two results.
struct Frame {
    std::uint64_t integers[6];  // rdi, rsi, rdx, rcx, r8, r9
    std::uint64_t floats[8];    // low halves of xmm0 to xmm7
    std::uint64_t *stack;       // the arguments behind those
    std::uint64_t result;       // rax
    std::uint64_t result_float; // xmm0
};
static_assert(sizeof(Frame) == 17 * 8);

using StubFunction = void (*)(Frame *frame);

#pragma GCC visibility push(default)
extern "C" {

// The journal: one JSON object a line, in the order of the calls.
const char *peer_journal(); // valid until the next call
void peer_clear_journal();
// Writes every further line to the file as well, at once: the last calls of a process come when
// nobody is left to ask.
void peer_log_to(const char *path);

// A fixed answer of "load", "initialize", "shutdown" or "is_domain_initialized". Without one they
// answer like a runtime that starts.
void peer_answer(const char *entry, int answer);

// What a delegate request gets. A null name fits all, and the latest rule that fits holds; without
// one it gets a stub that answers 0.
void peer_refuse(const char *assembly, const char *type, const char *method, int code);
void peer_provide(const char *assembly, const char *type, const char *method, void *function);
void peer_allow(const char *assembly, const char *type, const char *method);

// The stub of a method; a null assembly fits all. It is a function made at run time.
Stub *peer_stub(const char *assembly, const char *type, const char *method);
void *peer_stub_function(Stub *stub);
// Back to a stub that answers 0.
void peer_stub_reset(Stub *stub);
// How many arguments the journal shows: integers (beyond six they lie on the stack) and floats.
void peer_stub_arguments(Stub *stub, int integers, int floats);
// The next result; when all results are used up the last one stays.
void peer_stub_return(Stub *stub, std::uint64_t result, std::uint64_t result_float);
// At each call: shows `size` bytes behind a pointer argument, as they are before anything is
// written.
void peer_stub_snapshot(Stub *stub, int argument, int offset, int size);
// At each call: writes bytes behind a pointer argument, unless that is null.
void peer_stub_write(Stub *stub, int argument, int offset, const void *bytes, int size);
// At each call: calls a function with three words, such as the one that sets a Python error.
void peer_stub_invoke(Stub *stub, void *function, std::uint64_t first, std::uint64_t second,
                      std::uint64_t third);
// At each call, last of all.
void peer_stub_call(Stub *stub, StubFunction function);

// The five entries of the wrap library, which only forwards to these. `caller`: an address in the
// library that starts or ends the runtime, whose name the journal shows.
int peer_on_load(const char *libcoreclr_path);
int peer_on_initialize(const char *exe_path, const char *domain_name, int property_count,
                       const char **keys, const char **values, const void *caller);
int peer_on_create_delegate(const char *assembly, const char *type, const char *method,
                            void **result);
int peer_on_shutdown(const void *caller);
int peer_on_is_domain_initialized();
}
#pragma GCC visibility pop
