// The five C entries of the wrap library. A failure leaves them as a code, never as an exception.
#include "clrwrap/runtime.h"
#include "clrwrap/status.h"

#include <new>

namespace {

template <typename Work> int guarded(int on_failure, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc &) {
        return on_failure == 0 ? 0 : status::out_of_memory;
    } catch (...) {
        return on_failure;
    }
}

} // namespace

#define KELMOR_ENTRY extern "C" __attribute__((visibility("default")))

// 0 is failure here, unlike in the other entries.
KELMOR_ENTRY int coreclr_wrap_load(const char *libcoreclr_path) {
    return guarded(0, [=] { return libcoreclr_path && clrwrap::load_runtime(libcoreclr_path); });
}

KELMOR_ENTRY int coreclr_wrap_initialize(const char *exe_path, const char *domain_name,
                                         int property_count, const char **keys,
                                         const char **values) {
    return guarded(status::unexpected, [=] {
        return clrwrap::start_runtime(exe_path, domain_name, property_count, keys, values);
    });
}

KELMOR_ENTRY int coreclr_wrap_create_delegate(const char *assembly, const char *type,
                                              const char *method, void **result) {
    return guarded(status::unexpected,
                   [=] { return clrwrap::create_delegate(assembly, type, method, result); });
}

KELMOR_ENTRY int coreclr_wrap_shutdown() {
    return guarded(status::unexpected, [] { return clrwrap::end_runtime(); });
}

KELMOR_ENTRY int coreclr_wrap_is_domain_initialized() { return clrwrap::is_runtime_running(); }
