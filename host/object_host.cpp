// Binds the delegates that serve every managed object.
#include "host/object_host.h"

#include "host/exchange_host.h"
#include "host/host_environment.h"
#include "host/missing_method.h"

namespace {

const char type_name[] = "Kelmor.WrpGen.Interop.ObjectHost";

} // namespace

ObjectHost *ObjectHost::get_instance() {
    static ObjectHost host;
    return &host;
}

ObjectHost::ObjectHost() : m_assembly_name(ExchangeHost::get_instance()->get_assembly_name()) {
    const HostEnvironment &host =
        *HostEnvironment::instance(nullptr, false, nullptr, nullptr, nullptr, nullptr);
    const auto bind = [&](const char *method, auto &slot) {
        return set_method_ptr(host, method, reinterpret_cast<void **>(&slot));
    };
    // The first failure ends the chain; its text stays in m_error_msg.
    (void)(bind("ToStringOfObj", m_to_string_of_obj) && bind("ToStringOfStc", m_to_string_of_stc) &&
           bind("GetHashOfObj", m_get_hash_code_of_obj) &&
           bind("GetHashOfStc", m_get_hash_code_of_stc) && bind("IsEqualsOfObj", m_equals_of_obj) &&
           bind("IsEqualsOfStc", m_equals_of_stc) && bind("IsTypeOf", m_is_type_of) &&
           bind("GetTypeName", m_get_type_name) && bind("GetObjType", m_get_obj_type) &&
           bind("GetStcType", m_get_stc_type) && bind("Dispose", m_dispose));
}

bool ObjectHost::set_method_ptr(const HostEnvironment &host, const char *method, void **slot) {
    const int error = host.try_create_delegate(m_assembly_name, type_name, method, slot);
    if (error == 0) return true;
    m_error_msg = missing_method_error_message(m_assembly_name, type_name, method, error);
    m_invalid = true;
    return false;
}
