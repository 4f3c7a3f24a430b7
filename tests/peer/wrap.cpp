// The wrap library of the scripted peer: five entries that only forward to the script.
#include "peer/script.h"

#define PEER_ENTRY extern "C" __attribute__((visibility("default")))

PEER_ENTRY int coreclr_wrap_load(const char *libcoreclr_path) {
    return peer_on_load(libcoreclr_path);
}

PEER_ENTRY int coreclr_wrap_initialize(const char *exe_path, const char *domain_name,
                                       int property_count, const char **keys, const char **values) {
    return peer_on_initialize(exe_path, domain_name, property_count, keys, values,
                              __builtin_return_address(0));
}

PEER_ENTRY int coreclr_wrap_create_delegate(const char *assembly, const char *type,
                                            const char *method, void **result) {
    return peer_on_create_delegate(assembly, type, method, result);
}

PEER_ENTRY int coreclr_wrap_shutdown() { return peer_on_shutdown(__builtin_return_address(0)); }

PEER_ENTRY int coreclr_wrap_is_domain_initialized() { return peer_on_is_domain_initialized(); }
