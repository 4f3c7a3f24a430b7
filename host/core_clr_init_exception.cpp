// Words the failure of the runtime's start.
#include "host/core_clr_init_exception.h"

#include <sstream>

CoreClrInitException::CoreClrInitException(int result, const char *exe_path,
                                           const char *domain_name, int property_count,
                                           const char *const *keys, const char *const *values) {
    std::ostringstream text;
    text << "coreclr_initialize failed (0x" << std::hex << result << ")";
    text << " [<APP_DOMAIN_NAME>='" << domain_name << "',<HOST_EXE_PATH>='" << exe_path << "'";
    for (int index = 0; index < property_count; ++index)
        text << ",<" << keys[index] << ">='" << values[index] << "'";
    text << "]";
    m_message = text.str();
}

CoreClrInitException::~CoreClrInitException() noexcept = default;

const char *CoreClrInitException::what() const noexcept { return m_message.c_str(); }
