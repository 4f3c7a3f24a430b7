// What every managed object offers by its handle: text, hash, equality, type, disposal.
#pragma once

#include <cstdint>
#include <string>

class HostEnvironment;
struct VariantArg;

class ObjectHost {
public:
    // The first call binds the delegates, so it comes after ExchangeHost::initialize. A failure
    // stays for the life of the process.
    static ObjectHost *get_instance();

    bool set_method_ptr(const HostEnvironment &host, const char *method, void **slot);

    bool is_not_valid() const { return m_invalid; }
    const std::string &error_msg() const { return m_error_msg; }

    // 1 when `out` holds a new Python string.
    int to_string_of_obj(void *handle, void **out) const { return m_to_string_of_obj(handle, out); }
    int to_string_of_stc(void *handle, void **out) const { return m_to_string_of_stc(handle, out); }

    std::int32_t get_hash_code_of_obj(void *handle) const { return m_get_hash_code_of_obj(handle); }
    std::int32_t get_hash_code_of_stc(void *handle) const { return m_get_hash_code_of_stc(handle); }

    bool equals_of_obj(void *handle, VariantArg *other) const {
        return m_equals_of_obj(handle, other) != 0;
    }
    bool equals_of_stc(void *handle, VariantArg *other) const {
        return m_equals_of_stc(handle, other) != 0;
    }
    bool is_type_of(void *handle, VariantArg *type) const {
        return m_is_type_of(handle, type) != 0;
    }

    // 1 on success.
    int get_type_name(VariantArg *value, void **out) const { return m_get_type_name(value, out); }

    // Non-zero on success; `out` is the handle of a managed type.
    int get_obj_type(void *handle, void **out) const { return m_get_obj_type(handle, out); }
    int get_stc_type(void *handle, void **out) const { return m_get_stc_type(handle, out); }

    void dispose(void *handle) const { m_dispose(handle); }

private:
    friend struct HostTest;

    using OutCall = int (*)(void *handle, void **out);
    using Hash = std::int32_t (*)(void *handle);
    // A managed truth value is one byte; what stands above it in the register is not defined.
    using Test = std::uint8_t (*)(void *handle, VariantArg *other);

    ObjectHost();

    OutCall m_to_string_of_obj = nullptr;
    OutCall m_to_string_of_stc = nullptr;
    Hash m_get_hash_code_of_obj = nullptr;
    Hash m_get_hash_code_of_stc = nullptr;
    Test m_equals_of_obj = nullptr;
    Test m_equals_of_stc = nullptr;
    Test m_is_type_of = nullptr;
    int (*m_get_type_name)(VariantArg *value, void **out) = nullptr;
    OutCall m_get_obj_type = nullptr;
    OutCall m_get_stc_type = nullptr;
    void (*m_dispose)(void *handle) = nullptr;

    const char *m_assembly_name; // not owned
    bool m_invalid = false;
    std::string m_error_msg;
};
