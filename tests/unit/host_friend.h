// What the host's classes show to tests alone: their layout, which is an interface, and their
// state.
#pragma once

#include "host/core_clr_init_exception.h"
#include "host/dynamic_library.h"
#include "host/exchange_host.h"
#include "host/host_environment.h"
#include "host/object_host.h"

#include <cstddef>
#include <new>

struct HostTest {
    static constexpr std::size_t can_free_offset = offsetof(DynamicLibrary, can_free);
    static constexpr std::size_t handle_offset = offsetof(DynamicLibrary, handle);
    static constexpr std::size_t first_load_offset = offsetof(DynamicLibrary, first_load);
    static bool can_free(const DynamicLibrary &library) { return library.can_free; }
    static void *handle(const DynamicLibrary &library) { return library.handle; }

    static constexpr std::size_t environment_offsets[] = {
        offsetof(HostEnvironment, m_exe_path),
        offsetof(HostEnvironment, m_netcore_dir),
        offsetof(HostEnvironment, m_product_assembly_dir),
        offsetof(HostEnvironment, m_library),
        offsetof(HostEnvironment, m_initialize),
        offsetof(HostEnvironment, m_create_delegate),
        offsetof(HostEnvironment, m_shutdown),
        offsetof(HostEnvironment, m_is_domain_initialized),
        offsetof(HostEnvironment, m_domain_initialized),
        offsetof(HostEnvironment, m_debug),
    };
    static constexpr std::size_t exchange_offsets[] = {
        offsetof(ExchangeHost, m_get_type_name),
        offsetof(ExchangeHost, m_set_exception_callback),
        offsetof(ExchangeHost, m_set_catch_and_clear_error_callback),
        offsetof(ExchangeHost, m_set_u16_bytes_builder_callback),
        offsetof(ExchangeHost, m_set_py_str_builder_callback),
        offsetof(ExchangeHost, m_set_py_unraisable_str_builder),
        offsetof(ExchangeHost, m_set_py_bytes_builder_callback),
        offsetof(ExchangeHost, m_set_py_obj_api_callbacks),
        offsetof(ExchangeHost, m_set_py_static_callbacks),
        offsetof(ExchangeHost, m_set_py_generic_callbacks),
        offsetof(ExchangeHost, m_free_pending_args),
        offsetof(ExchangeHost, m_free_instance),
        offsetof(ExchangeHost, m_free_struct),
        offsetof(ExchangeHost, m_init_services),
        offsetof(ExchangeHost, m_box_stc_target),
        offsetof(ExchangeHost, m_assembly_name),
        offsetof(ExchangeHost, m_error_msg),
    };
    static constexpr std::size_t object_offsets[] = {
        offsetof(ObjectHost, m_to_string_of_obj),
        offsetof(ObjectHost, m_to_string_of_stc),
        offsetof(ObjectHost, m_get_hash_code_of_obj),
        offsetof(ObjectHost, m_get_hash_code_of_stc),
        offsetof(ObjectHost, m_equals_of_obj),
        offsetof(ObjectHost, m_equals_of_stc),
        offsetof(ObjectHost, m_is_type_of),
        offsetof(ObjectHost, m_get_type_name),
        offsetof(ObjectHost, m_get_obj_type),
        offsetof(ObjectHost, m_get_stc_type),
        offsetof(ObjectHost, m_dispose),
        offsetof(ObjectHost, m_assembly_name),
        offsetof(ObjectHost, m_invalid),
        offsetof(ObjectHost, m_error_msg),
    };

    // A host environment that no test shares with another. Its memory starts as ones, so that what
    // the constructor clears can be told from what it leaves.
    class Environment {
    public:
        Environment() {
            for (unsigned char &byte : memory) byte = 0xff;
            host = new (memory) HostEnvironment();
        }
        ~Environment() { host->~HostEnvironment(); }

        bool strings_are_empty() const {
            return host->m_exe_path.empty() && host->m_netcore_dir.empty() &&
                   host->m_product_assembly_dir.empty();
        }
        bool library_is_new() const {
            return host->m_library.can_free && !host->m_library.handle &&
                   !host->m_library.first_load;
        }
        bool first_entries_are_null() const {
            return !host->m_initialize && !host->m_create_delegate && !host->m_shutdown;
        }
        bool flags_are_false() const { return !host->m_domain_initialized && !host->m_debug; }
        void set_debug(bool debug) { host->m_debug = debug; }
        void set_shutdown(int (*entry)()) { host->m_shutdown = entry; }
        void set_domain_initialized(bool value) { host->m_domain_initialized = value; }
        void set_first_load(bool value) { host->m_library.first_load = value; }
        bool domain_initialized() const { return host->m_domain_initialized; }
        void set_start(const char *exe_path, const char *assembly_dirs,
                       int (*entry)(const char *, const char *, int, const char **,
                                    const char **)) {
            host->m_exe_path = exe_path;
            host->m_product_assembly_dir = assembly_dirs;
            host->m_initialize = entry;
        }
        bool shows(const char *text) const {
            return text == host->m_exe_path.c_str() || text == host->m_product_assembly_dir.c_str();
        }

        HostEnvironment *host;

    private:
        alignas(HostEnvironment) unsigned char memory[sizeof(HostEnvironment)];
    };
};
