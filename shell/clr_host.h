// Starts the runtime and introduces the two sides to each other.
#pragma once

#include <string>

// What the managed side is given at the start, in the order of the hand-over. The functions and
// tables belong to higher layers, so their owner defines the record.
struct ClrCallbacks {
    void *exception;             // on_clr_exception
    void *catch_and_clear_error; // fn_catch_and_clear_py_error
    void *u16_str_builder;       // fn_create_u16_buffer
    void *py_str_builder;        // fn_conv_clr_string_to_py_string
    void *py_unraisable_str;     // fn_conv_clr_string_to_py_unraisable
    void **py_obj_api;           // m_py_obj_api_callbacks
    void ***(*py_static)();      // get_all_py_wrapper_callbacks
    void ***(*py_generic)();     // get_all_pygn_generic_callbacks
    void *py_bytes_builder;      // fn_conv_clr_bytes_to_py_bytes
};
extern const ClrCallbacks clr_callbacks; // defined in collections/

// 0, or -1 with TypeError set when a service lacks a method. What HostEnvironment throws passes
// through: without a runtime the process ends. The first string and `product_name` reach nothing.
int initialize_clr_host(std::string first_name, const char *assembly_name, bool debug,
                        std::string family_name, std::string product_name);

// initialize_clr_host for the module of that name: its first part is the family, the last one the
// product.
int start_clr_host(const char *module_name, const char *assembly_name);
