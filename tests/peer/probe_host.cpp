// What tests reach of the host.
#include "peer/probe.h"

#include "host/exchange_host.h"
#include "host/fork_guard.h"
#include "host/host_environment.h"
#include "host/object_host.h"

// A friend of the three classes: shows the state that they keep to themselves.
struct HostTest {
    static bool can_free(const HostEnvironment &host) { return host.m_library.can_free; }
    static bool domain_initialized(const HostEnvironment &host) {
        return host.m_domain_initialized;
    }
    static const char *netcore_dir(const HostEnvironment &host) {
        return host.m_netcore_dir.c_str();
    }
    static const char *product_assembly_dir(const HostEnvironment &host) {
        return host.m_product_assembly_dir.c_str();
    }
    static void *exchange_slots(ExchangeHost &host) { return &host.m_get_type_name; }
    static void *object_slots(ObjectHost &host) { return &host.m_to_string_of_obj; }
};

namespace {

HostEnvironment *environment() {
    return HostEnvironment::instance(nullptr, false, nullptr, nullptr, nullptr, nullptr);
}

void *host_instance(const char *first_name, int debug, const char *family_name,
                    const char *second_name, const char *netcore_dir, const char *assembly_dir) {
    return HostEnvironment::instance(first_name, debug != 0, family_name, second_name, netcore_dir,
                                     assembly_dir);
}

int host_try_create_delegate(const char *assembly, const char *type, const char *method,
                             void **result) {
    return environment()->try_create_delegate(assembly, type, method, result);
}

int host_create_default_app_domain() { return environment()->create_default_app_domain(); }
int host_try_shutdown_default_app_domain() {
    return environment()->try_shutdown_default_app_domain();
}
int host_can_free_library() { return HostTest::can_free(*environment()); }
int host_domain_initialized() { return HostTest::domain_initialized(*environment()); }
const char *host_netcore_dir() { return HostTest::netcore_dir(*environment()); }
const char *host_product_assembly_dir() { return HostTest::product_assembly_dir(*environment()); }
int host_in_forked_child() { return in_forked_child(); }

const ProbeRow environment_rows[] = {
    PROBE_ROW(host_instance),
    PROBE_ROW(host_try_create_delegate),
    PROBE_ROW(host_create_default_app_domain),
    PROBE_ROW(host_try_shutdown_default_app_domain),
    PROBE_ROW(host_can_free_library),
    PROBE_ROW(host_domain_initialized),
    PROBE_ROW(host_netcore_dir),
    PROBE_ROW(host_product_assembly_dir),
    PROBE_ROW(host_in_forked_child),
};
const ProbeTable environment_table(environment_rows);

ExchangeHost &exchange() { return *ExchangeHost::get_instance(); }

void *exchange_get_instance() { return &exchange(); }
int exchange_initialize(const char *assembly_name) { return exchange().initialize(assembly_name); }
int exchange_set_method_ptr(const char *method, void **slot) {
    return exchange().set_method_ptr(*environment(), method, slot);
}
const char *exchange_get_assembly_name() { return exchange().get_assembly_name(); }
const char *exchange_error_msg() { return exchange().error_msg().c_str(); }
void *exchange_slots() { return HostTest::exchange_slots(exchange()); }
void *exchange_get_type_name(void *handle) { return exchange().get_type_name(handle); }
void exchange_set_exception_callback(void *callback) {
    exchange().set_exception_callback(callback);
}
void exchange_set_catch_and_clear_error_callback(void *callback) {
    exchange().set_catch_and_clear_error_callback(callback);
}
void exchange_set_u16_bytes_builder_callback(void *callback) {
    exchange().set_u16_bytes_builder_callback(callback);
}
void exchange_set_py_str_builder_callback(void *callback) {
    exchange().set_py_str_builder_callback(callback);
}
void exchange_set_py_unraisable_str_builder(void *callback) {
    exchange().set_py_unraisable_str_builder(callback);
}
void exchange_set_py_bytes_builder_callback(void *callback) {
    exchange().set_py_bytes_builder_callback(callback);
}
void exchange_set_py_obj_api_callbacks(void **table) { exchange().set_py_obj_api_callbacks(table); }
void exchange_set_py_static_callbacks(void ***tables) {
    exchange().set_py_static_callbacks(tables);
}
void exchange_set_py_generic_callbacks(void ***tables) {
    exchange().set_py_generic_callbacks(tables);
}
void exchange_free_pending_args(VariantArg *args, int count) {
    exchange().free_pending_args(args, count);
}
void exchange_free_instance(void *handle) { exchange().free_instance(handle); }
void exchange_free_struct(void *handle) { exchange().free_struct(handle); }
void exchange_init_services() { exchange().init_services(); }
void *exchange_box_stc_target(void *handle) { return exchange().box_stc_target(handle); }

const ProbeRow exchange_rows[] = {
    PROBE_ROW(exchange_get_instance),
    PROBE_ROW(exchange_initialize),
    PROBE_ROW(exchange_set_method_ptr),
    PROBE_ROW(exchange_get_assembly_name),
    PROBE_ROW(exchange_error_msg),
    PROBE_ROW(exchange_slots),
    PROBE_ROW(exchange_get_type_name),
    PROBE_ROW(exchange_set_exception_callback),
    PROBE_ROW(exchange_set_catch_and_clear_error_callback),
    PROBE_ROW(exchange_set_u16_bytes_builder_callback),
    PROBE_ROW(exchange_set_py_str_builder_callback),
    PROBE_ROW(exchange_set_py_unraisable_str_builder),
    PROBE_ROW(exchange_set_py_bytes_builder_callback),
    PROBE_ROW(exchange_set_py_obj_api_callbacks),
    PROBE_ROW(exchange_set_py_static_callbacks),
    PROBE_ROW(exchange_set_py_generic_callbacks),
    PROBE_ROW(exchange_free_pending_args),
    PROBE_ROW(exchange_free_instance),
    PROBE_ROW(exchange_free_struct),
    PROBE_ROW(exchange_init_services),
    PROBE_ROW(exchange_box_stc_target),
};
const ProbeTable exchange_table(exchange_rows);

ObjectHost &object() { return *ObjectHost::get_instance(); }

void *object_get_instance() { return &object(); }
int object_set_method_ptr(const char *method, void **slot) {
    return object().set_method_ptr(*environment(), method, slot);
}
int object_is_not_valid() { return object().is_not_valid(); }
const char *object_error_msg() { return object().error_msg().c_str(); }
void *object_slots() { return HostTest::object_slots(object()); }
int object_to_string_of_obj(void *handle, void **out) {
    return object().to_string_of_obj(handle, out);
}
int object_to_string_of_stc(void *handle, void **out) {
    return object().to_string_of_stc(handle, out);
}
int object_get_hash_code_of_obj(void *handle) { return object().get_hash_code_of_obj(handle); }
int object_get_hash_code_of_stc(void *handle) { return object().get_hash_code_of_stc(handle); }
int object_equals_of_obj(void *handle, VariantArg *other) {
    return object().equals_of_obj(handle, other);
}
int object_equals_of_stc(void *handle, VariantArg *other) {
    return object().equals_of_stc(handle, other);
}
int object_is_type_of(void *handle, VariantArg *type) { return object().is_type_of(handle, type); }
int object_get_type_name(VariantArg *value, void **out) {
    return object().get_type_name(value, out);
}
int object_get_obj_type(void *handle, void **out) { return object().get_obj_type(handle, out); }
int object_get_stc_type(void *handle, void **out) { return object().get_stc_type(handle, out); }
void object_dispose(void *handle) { object().dispose(handle); }

const ProbeRow object_rows[] = {
    PROBE_ROW(object_get_instance),
    PROBE_ROW(object_set_method_ptr),
    PROBE_ROW(object_is_not_valid),
    PROBE_ROW(object_error_msg),
    PROBE_ROW(object_slots),
    PROBE_ROW(object_to_string_of_obj),
    PROBE_ROW(object_to_string_of_stc),
    PROBE_ROW(object_get_hash_code_of_obj),
    PROBE_ROW(object_get_hash_code_of_stc),
    PROBE_ROW(object_equals_of_obj),
    PROBE_ROW(object_equals_of_stc),
    PROBE_ROW(object_is_type_of),
    PROBE_ROW(object_get_type_name),
    PROBE_ROW(object_get_obj_type),
    PROBE_ROW(object_get_stc_type),
    PROBE_ROW(object_dispose),
};
const ProbeTable object_table(object_rows);

} // namespace
