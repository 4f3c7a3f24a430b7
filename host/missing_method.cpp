// Words the failure to find a managed method.
#include "host/missing_method.h"

#include <sstream>

std::string missing_method_error_message(const char *assembly, const char *type, const char *method,
                                         int error) {
    std::ostringstream text;
    text << "While initializing the host for the '" << type << " (Assembly=" << assembly
         << ")' type, an error occurred - Method '" << method << "' not found (error=" << error
         << ")";
    return text.str();
}
