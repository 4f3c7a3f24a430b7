// The runtime's library and the functions of its hosting interface.
#include "clrwrap/coreclr_library.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

namespace clrwrap {
namespace {

std::string last_loader_error() {
    const char *text = dlerror();
    return text ? text : "unknown error of the loader";
}

template <typename Function>
bool find(void *library, const char *name, Function &function, std::string &reason) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    if (function) return true;
    reason = std::string("it has no function ") + name;
    return false;
}

} // namespace

bool open_coreclr(const char *path, CoreClrFunctions &functions, std::string &folder,
                  std::string &reason) {
    char real_path[PATH_MAX];
    if (!realpath(path, real_path)) {
        reason = std::strerror(errno);
        return false;
    }
    void *library = dlopen(real_path, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        reason = last_loader_error();
        return false;
    }
    std::string optional;
    CoreClrFunctions found = {};
    find(library, "coreclr_set_error_writer", found.set_error_writer, optional);
    if (!find(library, "coreclr_initialize", found.initialize, reason) ||
        !find(library, "coreclr_create_delegate", found.create_delegate, reason) ||
        !find(library, "coreclr_shutdown", found.shutdown, reason)) {
        dlclose(library); // some other library; the runtime's own could not be unloaded
        return false;
    }
    functions = found;
    folder = real_path;
    folder.erase(folder.rfind('/'));
    if (folder.empty()) folder = "/";
    return true;
}

} // namespace clrwrap
