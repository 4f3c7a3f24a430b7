// Binds the slots of host classes, and disarms them in a forked child.
#include "binding/class_host.h"

#include "host/exchange_host.h"
#include "host/fork_guard.h"
#include "host/host_environment.h"
#include "host/missing_method.h"
#include "shell/cpython.h"

#include <algorithm>
#include <cstdint>
#include <pthread.h>
#include <vector>

namespace {

struct SlotRange {
    void **first;
    std::size_t count;
};

void raise_forked() {
    PyErr_SetString(PyExc_RuntimeError, "managed code cannot be called in a forked child process");
}

// Stands in for every delegate of whatever signature: the caller cleans the arguments up.
std::intptr_t refuse_call() {
    raise_forked();
    return -1;
}

void disarm(const SlotRange &slots) {
    std::fill_n(slots.first, slots.count, reinterpret_cast<void *>(refuse_call));
}

// Never destroyed: a fork may come after the destructors of this module have run.
std::vector<SlotRange> &armed_slots() {
    static auto *const ranges = new std::vector<SlotRange>;
    return *ranges;
}

void disarm_all() {
    for (const SlotRange &slots : armed_slots()) disarm(slots);
}

void remember(const SlotRange &slots) {
    static const bool watching = pthread_atfork(nullptr, nullptr, disarm_all) == 0;
    (void)watching;
    armed_slots().push_back(slots);
}

} // namespace

bool refuse_in_forked_child() {
    if (!in_forked_child()) return false;
    raise_forked();
    return true;
}

ClassHost::ClassHost() : m_assembly_name(ExchangeHost::get_instance()->get_assembly_name()) {}

bool ClassHost::set_method_ptr(const HostEnvironment &host, const char *type, const char *method,
                               void **slot) {
    const int error = host.try_create_delegate(m_assembly_name, type, method, slot);
    if (error == 0) return true;
    m_error_msg = missing_method_error_message(m_assembly_name, type, method, error);
    m_invalid = true;
    return false;
}

void ClassHost::bind(const char *type, const char *const *methods, std::size_t count,
                     void **slots) {
    if (in_forked_child()) return disarm({slots, count});
    const HostEnvironment &host =
        *HostEnvironment::instance(nullptr, false, nullptr, nullptr, nullptr, nullptr);
    for (std::size_t i = 0; i < count; ++i)
        if (!set_method_ptr(host, type, methods[i], &slots[i])) break;
    remember({slots, count});
}
