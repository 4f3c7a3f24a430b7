// The runtime's library and the functions of its hosting interface.
#pragma once

#include <string>

namespace clrwrap {

struct CoreClrFunctions {
    int (*initialize)(const char *exe_path, const char *domain_name, int property_count,
                      const char **keys, const char **values, void **host, unsigned *domain);
    int (*create_delegate)(void *host, unsigned domain, const char *assembly, const char *type,
                           const char *method, void **result);
    int (*shutdown)(void *host, unsigned domain);
    int (*set_error_writer)(void (*writer)(const char *message)); // null in old runtimes
};

// Opens the library and fills `functions`. On success `folder` is where the file really lies,
// links resolved: the runtime's other files are beside that, not beside a link to it. On failure
// `reason` says why.
bool open_coreclr(const char *path, CoreClrFunctions &functions, std::string &folder,
                  std::string &reason);

} // namespace clrwrap
