// Starts the runtime, binds the two services, hands the managed side its callbacks.
#include "shell/clr_host.h"

#include "host/exchange_host.h"
#include "host/host_environment.h"
#include "host/object_host.h"
#include "shell/cpython.h"

namespace {

// The order is part of the interface: a builder is there before the first table that may make the
// managed side use it.
void hand_over_callbacks(const ExchangeHost &exchange) {
    exchange.set_exception_callback(clr_callbacks.exception);
    exchange.set_catch_and_clear_error_callback(clr_callbacks.catch_and_clear_error);
    exchange.set_u16_bytes_builder_callback(clr_callbacks.u16_str_builder);
    exchange.set_py_str_builder_callback(clr_callbacks.py_str_builder);
    exchange.set_py_unraisable_str_builder(clr_callbacks.py_unraisable_str);
    exchange.set_py_obj_api_callbacks(clr_callbacks.py_obj_api);
    exchange.set_py_static_callbacks(clr_callbacks.py_static());
    exchange.set_py_generic_callbacks(clr_callbacks.py_generic());
    exchange.set_py_bytes_builder_callback(clr_callbacks.py_bytes_builder);
}

} // namespace

int initialize_clr_host(std::string first_name, const char *assembly_name, bool debug,
                        std::string family_name, std::string product_name) {
    HostEnvironment::instance(first_name.c_str(), debug, family_name.c_str(), product_name.c_str(),
                              nullptr, nullptr);
    ExchangeHost *exchange = ExchangeHost::get_instance();
    if (!exchange->initialize(assembly_name)) {
        PyErr_SetString(PyExc_TypeError, exchange->error_msg().c_str());
        return -1;
    }
    hand_over_callbacks(*exchange);
    exchange->init_services(); // may call back at once
    const ObjectHost *object = ObjectHost::get_instance();
    if (object->is_not_valid()) {
        PyErr_SetString(PyExc_TypeError, object->error_msg().c_str());
        return -1;
    }
    return 0;
}

int start_clr_host(const char *module_name, const char *assembly_name) {
    const std::string name = module_name;
    return initialize_clr_host(std::string(), assembly_name, false, name.substr(0, name.find('.')),
                               name.substr(name.rfind('.') + 1));
}
