// Words the failure to find a managed method.
#pragma once

#include <string>

std::string missing_method_error_message(const char *assembly, const char *type, const char *method,
                                         int error);
