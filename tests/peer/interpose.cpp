// Stands between a loaded module and the interpreter: writes down the calls, lets some of them
// fail.
//
// Each detour owns 32 bytes of machine code that load its address and jump to one trampoline; that
// saves all argument registers, asks C++ for the way on, and either jumps there with everything as
// it was or returns at once.
#include "peer/interpose.h"

#include "peer/journal.h"

#include <cstddef>
#include <cstring>
#include <deque>
#include <dlfcn.h>
#include <link.h>
#include <optional>
#include <set>
#include <string>
#include <sys/mman.h>

namespace {

struct Detour {
    std::string function;
    void *target; // the interpreter's
};

struct Registers {
    std::uint64_t integers[6]; // rdi, rsi, rdx, rcx, r8, r9
    std::uint64_t rax;
    std::uint64_t floats[8];
    std::uint64_t result;
};
static_assert(offsetof(Registers, floats) == 56 && offsetof(Registers, result) == 120);

struct Failure {
    std::string function;
    std::optional<std::string> text;
    int skip;
    std::uint64_t result;
    std::optional<std::string> message;
};

struct State {
    std::deque<Detour> detours; // a deque: the machine code holds their addresses
    std::set<std::string> watched;
    bool watch_all = false;
    std::deque<Failure> failures;
    bool keeps = false;
    std::uint64_t kept[2] = {};
};

State &state() {
    static State &only = *new State;
    return only;
}

const char *field(std::uint64_t object, std::size_t offset) {
    return *reinterpret_cast<const char *const *>(object + offset);
}

// The text that tells calls of a function apart: a name among the arguments.
const char *text_of(const std::string &function, const Registers &registers) {
    constexpr std::size_t tp_name = 24, m_name = 40; // PyTypeObject, PyModuleDef
    const std::uint64_t *arguments = registers.integers;
    if (function == "PyType_Ready") return field(arguments[0], tp_name);
    if (function == "PyModule_Create2" || function == "PyState_FindModule")
        return field(arguments[0], m_name);
    if (function == "PyModule_AddObject" || function == "PyDict_SetItemString")
        return reinterpret_cast<const char *>(arguments[1]);
    for (const char *named : {"PyUnicode_InternFromString", "PyCapsule_Import",
                              "PyImport_ImportModule", "PyUnicode_FromString"})
        if (function == named) return reinterpret_cast<const char *>(arguments[0]);
    if (function == "PyDict_SetItem" || function == "PyObject_GetAttr") {
        static const auto utf8 = reinterpret_cast<const char *(*)(std::uint64_t)>(
            dlsym(RTLD_DEFAULT, "PyUnicode_AsUTF8"));
        return utf8(arguments[1]);
    }
    return nullptr;
}

void raise(const std::string &message) {
    const auto set =
        reinterpret_cast<void (*)(void *, const char *)>(dlsym(RTLD_DEFAULT, "PyErr_SetString"));
    void *const type = *static_cast<void **>(dlsym(RTLD_DEFAULT, "PyExc_RuntimeError"));
    set(type, message.c_str());
}

// The count of references is the first word of an object, or the first half of it. An immortal
// object, whose count is never touched, has the upper bit of that half set.
void keep(const Registers &registers) {
    state().kept[0] = registers.integers[0];
    state().kept[1] = registers.integers[2];
    for (const std::uint64_t object : state().kept) {
        auto &count = *reinterpret_cast<std::int32_t *>(object);
        if (count >= 0) ++count;
    }
}

bool fails(const std::string &function, const char *text, Registers &registers) {
    for (Failure &failure : state().failures) {
        if (failure.function != function) continue;
        if (failure.text && (!text || *failure.text != text)) continue;
        if (failure.skip-- > 0) return false;
        if (state().keeps && function == "PyModule_AddObject") keep(registers);
        if (failure.message) raise(*failure.message);
        registers.result = failure.result;
        return true;
    }
    return false;
}

} // namespace

// Where the call goes on, or null when it returns at once.
extern "C" __attribute__((visibility("hidden"))) void *kelmor_peer_choose(Detour *detour,
                                                                          Registers *registers) {
    const char *text = text_of(detour->function, *registers);
    if (state().watch_all || state().watched.count(detour->function))
        JournalLine("python")
            .text("function", detour->function.c_str())
            .text("text", text)
            .number("second", static_cast<std::int64_t>(registers->integers[1]))
            .write();
    return fails(detour->function, text, *registers) ? nullptr : detour->target;
}

extern "C" __attribute__((visibility("hidden"))) void kelmor_peer_detour();

asm(R"(
    .text
    .hidden kelmor_peer_detour
    .type kelmor_peer_detour, @function
kelmor_peer_detour:
    push %rbp
    mov %rsp, %rbp
    sub $128, %rsp
    mov %rdi, 0(%rsp)
    mov %rsi, 8(%rsp)
    mov %rdx, 16(%rsp)
    mov %rcx, 24(%rsp)
    mov %r8, 32(%rsp)
    mov %r9, 40(%rsp)
    mov %rax, 48(%rsp)
    movsd %xmm0, 56(%rsp)
    movsd %xmm1, 64(%rsp)
    movsd %xmm2, 72(%rsp)
    movsd %xmm3, 80(%rsp)
    movsd %xmm4, 88(%rsp)
    movsd %xmm5, 96(%rsp)
    movsd %xmm6, 104(%rsp)
    movsd %xmm7, 112(%rsp)
    mov %r10, %rdi
    mov %rsp, %rsi
    call kelmor_peer_choose
    test %rax, %rax
    jz 1f
    mov %rax, %r11
    mov 0(%rsp), %rdi
    mov 8(%rsp), %rsi
    mov 16(%rsp), %rdx
    mov 24(%rsp), %rcx
    mov 32(%rsp), %r8
    mov 40(%rsp), %r9
    mov 48(%rsp), %rax
    movsd 56(%rsp), %xmm0
    movsd 64(%rsp), %xmm1
    movsd 72(%rsp), %xmm2
    movsd 80(%rsp), %xmm3
    movsd 88(%rsp), %xmm4
    movsd 96(%rsp), %xmm5
    movsd 104(%rsp), %xmm6
    movsd 112(%rsp), %xmm7
    leave
    jmp *%r11
1:
    mov 120(%rsp), %rax
    leave
    ret
    .size kelmor_peer_detour, . - kelmor_peer_detour
)");

namespace {

// mov $detour, %r10; mov $trampoline, %r11; jmp *%r11
void write_code(unsigned char *code, Detour *detour) {
    void (*target)() = kelmor_peer_detour;
    std::memcpy(code, "\x49\xba", 2);
    std::memcpy(code + 2, &detour, 8);
    std::memcpy(code + 10, "\x49\xbb", 2);
    std::memcpy(code + 12, &target, 8);
    std::memcpy(code + 20, "\x41\xff\xe3", 3);
}

unsigned char *next_code() {
    constexpr std::size_t size = 1 << 16;
    static auto *const block = static_cast<unsigned char *>(mmap(
        nullptr, size, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    static std::size_t used = 0;
    return block + (used += 32) - 32;
}

// Of the interpreter's symbols only the functions: a slot of its data is no call.
bool is_python_function(const char *name, void *address) {
    if (std::strncmp(name, "Py", 2) != 0 && std::strncmp(name, "_Py", 3) != 0) return false;
    Dl_info info;
    ElfW(Sym) *symbol = nullptr;
    if (!dladdr1(address, &info, reinterpret_cast<void **>(&symbol), RTLD_DL_SYMENT)) return false;
    return symbol && ELF64_ST_TYPE(symbol->st_info) == STT_FUNC;
}

void turn(void **slot, const char *name) {
    Detour &detour = state().detours.emplace_back(Detour{name, dlsym(RTLD_DEFAULT, name)});
    unsigned char *code = next_code();
    write_code(code, &detour);
    // The linker has made the page of the slots read-only.
    char *page = reinterpret_cast<char *>(reinterpret_cast<std::uintptr_t>(slot) & ~4095ul);
    mprotect(page, 4096, PROT_READ | PROT_WRITE);
    *slot = code;
}

// What of a module's dynamic section is needed to find its slots.
struct Dynamic {
    explicit Dynamic(const ElfW(Dyn) * entry) {
        for (; entry->d_tag != DT_NULL; ++entry) {
            const auto address = entry->d_un.d_ptr;
            switch (entry->d_tag) {
            case DT_SYMTAB:
                symbols = reinterpret_cast<const ElfW(Sym) *>(address);
                break;
            case DT_STRTAB:
                names = reinterpret_cast<const char *>(address);
                break;
            case DT_RELA:
                data = reinterpret_cast<const ElfW(Rela) *>(address);
                break;
            case DT_RELASZ:
                data_count = entry->d_un.d_val / sizeof(ElfW(Rela));
                break;
            case DT_JMPREL:
                calls = reinterpret_cast<const ElfW(Rela) *>(address);
                break;
            case DT_PLTRELSZ:
                call_count = entry->d_un.d_val / sizeof(ElfW(Rela));
                break;
            }
        }
    }

    const ElfW(Sym) *symbols = nullptr;
    const char *names = nullptr;
    const ElfW(Rela) *data = nullptr, *calls = nullptr;
    std::size_t data_count = 0, call_count = 0;
};

int turn_all(const link_map &module, const Dynamic &dynamic, const ElfW(Rela) * entries,
             std::size_t count) {
    int turned = 0;
    for (const ElfW(Rela) *entry = entries; entry != entries + count; ++entry) {
        const auto type = ELF64_R_TYPE(entry->r_info);
        if (type != R_X86_64_JUMP_SLOT && type != R_X86_64_GLOB_DAT) continue;
        const char *name = dynamic.names + dynamic.symbols[ELF64_R_SYM(entry->r_info)].st_name;
        void *const address = dlsym(RTLD_DEFAULT, name);
        if (!address || !is_python_function(name, address)) continue;
        turn(reinterpret_cast<void **>(module.l_addr + entry->r_offset), name);
        ++turned;
    }
    return turned;
}

} // namespace

int peer_interpose(const char *module_path) {
    void *const handle = dlopen(module_path, RTLD_NOW | RTLD_NOLOAD);
    if (!handle) return -1;
    const link_map &module = *static_cast<const link_map *>(handle);
    const Dynamic dynamic(module.l_ld);
    return turn_all(module, dynamic, dynamic.data, dynamic.data_count) +
           turn_all(module, dynamic, dynamic.calls, dynamic.call_count);
}

void peer_watch(const char *function) {
    if (function)
        state().watched.insert(function);
    else
        state().watch_all = true;
}

void peer_fail(const char *function, const char *text, int skip, std::uint64_t result,
               const char *message) {
    state().failures.push_back({function, text ? std::optional<std::string>(text) : std::nullopt,
                                skip, result,
                                message ? std::optional<std::string>(message) : std::nullopt});
}

void peer_fail_no_more() { state().failures.clear(); }

void peer_keep() { state().keeps = true; }

const std::uint64_t *peer_kept() { return state().kept; }
