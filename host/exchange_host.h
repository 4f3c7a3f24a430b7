// The service channel to the managed side: hands over the callbacks, frees handles, names types.
#pragma once

#include <string>

class HostEnvironment;
struct VariantArg;

// Part of the interface of the module; no code reads it.
extern "C" __attribute__((visibility("default"))) const char *HostNotReady;

class ExchangeHost {
public:
    // Binds nothing: that is the task of `initialize`.
    static ExchangeHost *get_instance();

    // Binds all delegates, the first failure ends it with false and `error_msg` set. May run again
    // after a failed import; a text of the earlier failure then stays.
    bool initialize(const char *assembly_name);

    bool set_method_ptr(const HostEnvironment &host, const char *method, void **slot);

    const char *get_assembly_name() const { return m_assembly_name; }
    const std::string &error_msg() const { return m_error_msg; }

    // The result's block is freed by the caller with `free`, without running its destructor.
    std::u16string *get_type_name(void *handle) const { return m_get_type_name(handle); }

    // What these hand over must stay valid for the life of the process.
    void set_exception_callback(void *callback) const { m_set_exception_callback(callback); }
    void set_catch_and_clear_error_callback(void *callback) const {
        m_set_catch_and_clear_error_callback(callback);
    }
    void set_u16_bytes_builder_callback(void *callback) const {
        m_set_u16_bytes_builder_callback(callback);
    }
    void set_py_str_builder_callback(void *callback) const {
        m_set_py_str_builder_callback(callback);
    }
    void set_py_unraisable_str_builder(void *callback) const {
        m_set_py_unraisable_str_builder(callback);
    }
    void set_py_bytes_builder_callback(void *callback) const {
        m_set_py_bytes_builder_callback(callback);
    }
    void set_py_obj_api_callbacks(void **table) const { m_set_py_obj_api_callbacks(table); }
    void set_py_static_callbacks(void ***tables) const { m_set_py_static_callbacks(tables); }
    void set_py_generic_callbacks(void ***tables) const { m_set_py_generic_callbacks(tables); }

    void free_pending_args(VariantArg *args, int count) const { m_free_pending_args(args, count); }
    void free_instance(void *handle) const { m_free_instance(handle); }
    void free_struct(void *handle) const { m_free_struct(handle); }
    void init_services() const { m_init_services(); }
    void *box_stc_target(void *handle) const { return m_box_stc_target(handle); }

private:
    friend struct HostTest;

    using SetCallback = void (*)(void *callback);
    using SetTables = void (*)(void ***tables);
    using Free = void (*)(void *handle);

    ExchangeHost() = default;

    // In slot order, which is not the order of binding.
    std::u16string *(*m_get_type_name)(void *handle) = nullptr;
    SetCallback m_set_exception_callback = nullptr;
    SetCallback m_set_catch_and_clear_error_callback = nullptr;
    SetCallback m_set_u16_bytes_builder_callback = nullptr;
    SetCallback m_set_py_str_builder_callback = nullptr;
    SetCallback m_set_py_unraisable_str_builder = nullptr;
    SetCallback m_set_py_bytes_builder_callback = nullptr;
    void (*m_set_py_obj_api_callbacks)(void **table) = nullptr;
    SetTables m_set_py_static_callbacks = nullptr;
    SetTables m_set_py_generic_callbacks = nullptr;
    void (*m_free_pending_args)(VariantArg *args, int count) = nullptr;
    Free m_free_instance = nullptr;
    Free m_free_struct = nullptr; // the same managed method: a boxed struct is freed like a class
    void (*m_init_services)() = nullptr;
    void *(*m_box_stc_target)(void *handle) = nullptr;

    const char *m_assembly_name = nullptr; // not owned
    std::string m_error_msg;
};
