// A function made at run time that does what a test has told it.
//
// Each stub owns 32 bytes of machine code that load the stub's address and jump to one trampoline;
// that saves the argument registers of the System V calling convention in a Frame, hands it to
// C++, and loads the result registers from it.
#include "peer/stub.h"

#include "peer/journal.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <sys/mman.h>

extern "C" __attribute__((visibility("hidden"))) void kelmor_peer_run(Stub *stub, Frame *frame) {
    stub->run(*frame);
}

extern "C" __attribute__((visibility("hidden"))) void kelmor_peer_trampoline();

asm(R"(
    .text
    .hidden kelmor_peer_trampoline
    .type kelmor_peer_trampoline, @function
kelmor_peer_trampoline:
    push %rbp
    mov %rsp, %rbp
    sub $144, %rsp
    mov %rdi, 0(%rsp)
    mov %rsi, 8(%rsp)
    mov %rdx, 16(%rsp)
    mov %rcx, 24(%rsp)
    mov %r8, 32(%rsp)
    mov %r9, 40(%rsp)
    movsd %xmm0, 48(%rsp)
    movsd %xmm1, 56(%rsp)
    movsd %xmm2, 64(%rsp)
    movsd %xmm3, 72(%rsp)
    movsd %xmm4, 80(%rsp)
    movsd %xmm5, 88(%rsp)
    movsd %xmm6, 96(%rsp)
    movsd %xmm7, 104(%rsp)
    lea 16(%rbp), %rax
    mov %rax, 112(%rsp)
    mov %r10, %rdi
    mov %rsp, %rsi
    call kelmor_peer_run
    mov 120(%rsp), %rax
    movsd 128(%rsp), %xmm0
    leave
    ret
    .size kelmor_peer_trampoline, . - kelmor_peer_trampoline
)");

namespace {

constexpr std::size_t code_size = 32;
constexpr std::size_t block_size = 1 << 16;

unsigned char *next_code() {
    static unsigned char *next = nullptr;
    static unsigned char *end = nullptr;
    if (next == end) {
        void *block = mmap(nullptr, block_size, PROT_READ | PROT_WRITE | PROT_EXEC,
                           MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED) throw std::bad_alloc();
        next = static_cast<unsigned char *>(block);
        end = next + block_size;
    }
    unsigned char *code = next;
    next += code_size;
    return code;
}

// mov $stub, %r10; mov $trampoline, %r11; jmp *%r11
void *make_code(Stub *stub) {
    unsigned char *code = next_code();
    void (*target)() = kelmor_peer_trampoline;
    std::memcpy(code, "\x49\xba", 2);
    std::memcpy(code + 2, &stub, 8);
    std::memcpy(code + 10, "\x49\xbb", 2);
    std::memcpy(code + 12, &target, 8);
    std::memcpy(code + 20, "\x41\xff\xe3", 3);
    return code;
}

std::uint64_t argument_of(const Frame &frame, int index) {
    return index < 6 ? frame.integers[index] : frame.stack[index - 6];
}

char *memory_of(const Frame &frame, int argument, int offset) {
    char *start = reinterpret_cast<char *>(argument_of(frame, argument));
    return start ? start + offset : nullptr;
}

} // namespace

Stub::Stub(const char *assembly, const char *type, const char *method)
    : assembly(assembly ? assembly : ""), type(type), method(method), any_assembly(!assembly),
      function(make_code(this)) {}

void Stub::reset() {
    integers = 6;
    floats = 0;
    calls = 0;
    results.clear();
    snapshots.clear();
    writes.clear();
    invocations.clear();
    last = nullptr;
}

void Stub::run(Frame &frame) {
    write_journal(frame);
    frame.result = 0;
    frame.result_float = 0;
    if (!results.empty()) {
        const Result &result = results[std::min(calls, results.size() - 1)];
        frame.result = result.integer;
        frame.result_float = result.floating;
    }
    ++calls;
    for (const Write &write : writes)
        if (char *memory = memory_of(frame, write.argument, write.offset))
            std::memcpy(memory, write.bytes.data(), write.bytes.size());
    for (const Invocation &invocation : invocations)
        invocation.function(invocation.first, invocation.second, invocation.third);
    if (last) last(&frame);
}

void Stub::write_journal(const Frame &frame) const {
    std::vector<std::uint64_t> arguments;
    for (int index = 0; index < integers; ++index) arguments.push_back(argument_of(frame, index));
    std::string shown;
    for (const Snapshot &snapshot : snapshots) {
        const char *memory = memory_of(frame, snapshot.argument, snapshot.offset);
        shown += shown.empty() ? "" : ",";
        shown += memory ? '"' + hexadecimal(memory, snapshot.size) + '"' : "null";
    }
    JournalLine("delegate")
        .text("type", type.c_str())
        .text("method", method.c_str())
        .numbers("arguments", arguments.data(), integers)
        .numbers("floats", frame.floats, floats)
        .json("snapshots", "[" + shown + "]")
        .write();
}

void *peer_stub_function(Stub *stub) { return stub->function; }

void peer_stub_reset(Stub *stub) { stub->reset(); }

void peer_stub_arguments(Stub *stub, int integers, int floats) {
    stub->integers = integers;
    stub->floats = floats;
}

void peer_stub_return(Stub *stub, std::uint64_t result, std::uint64_t result_float) {
    stub->results.push_back({result, result_float});
}

void peer_stub_snapshot(Stub *stub, int argument, int offset, int size) {
    stub->snapshots.push_back({argument, offset, size});
}

void peer_stub_write(Stub *stub, int argument, int offset, const void *bytes, int size) {
    const char *start = static_cast<const char *>(bytes);
    stub->writes.push_back({argument, offset, std::string(start, start + size)});
}

void peer_stub_invoke(Stub *stub, void *function, std::uint64_t first, std::uint64_t second,
                      std::uint64_t third) {
    using Function = void (*)(std::uint64_t, std::uint64_t, std::uint64_t);
    stub->invocations.push_back({reinterpret_cast<Function>(function), first, second, third});
}

void peer_stub_call(Stub *stub, StubFunction function) { stub->last = function; }
