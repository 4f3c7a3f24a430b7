// Binds the delegates of the service channel.
#include "host/exchange_host.h"

#include "host/host_environment.h"
#include "host/missing_method.h"

const char *HostNotReady = "CLR Host is not ready";

namespace {

const char type_name[] = "Kelmor.WrpGen.Interop.ExchangeHost";

} // namespace

ExchangeHost *ExchangeHost::get_instance() {
    static ExchangeHost host;
    return &host;
}

bool ExchangeHost::initialize(const char *assembly_name) {
    m_assembly_name = assembly_name;
    const HostEnvironment &host =
        *HostEnvironment::instance(nullptr, false, nullptr, nullptr, nullptr, nullptr);
    const auto bind = [&](const char *method, auto &slot) {
        return set_method_ptr(host, method, reinterpret_cast<void **>(&slot));
    };
    return bind("GetTypeName", m_get_type_name) &&
           bind("SetExceptionCallback", m_set_exception_callback) &&
           bind("SetCatchAndClearErrorCallback", m_set_catch_and_clear_error_callback) &&
           bind("SetU16StrBuilderCallback", m_set_u16_bytes_builder_callback) &&
           bind("SetPyUnraisableStrBuilderCallback", m_set_py_unraisable_str_builder) &&
           bind("SetPyStrBuilderCallback", m_set_py_str_builder_callback) &&
           bind("SetPyBytesBuilderCallback", m_set_py_bytes_builder_callback) &&
           bind("SetPyObjApiCallbacks", m_set_py_obj_api_callbacks) &&
           bind("SetPyStaticCallbacks", m_set_py_static_callbacks) &&
           bind("SetPyGenericCallbacks", m_set_py_generic_callbacks) &&
           bind("FreePendingArgs", m_free_pending_args) && bind("FreeInstance", m_free_instance) &&
           bind("FreeInstance", m_free_struct) && bind("InitServices", m_init_services) &&
           bind("BoxStcTarget", m_box_stc_target);
}

bool ExchangeHost::set_method_ptr(const HostEnvironment &host, const char *method, void **slot) {
    const int error = host.try_create_delegate(m_assembly_name, type_name, method, slot);
    if (error == 0) return true;
    m_error_msg = missing_method_error_message(m_assembly_name, type_name, method, error);
    return false;
}
