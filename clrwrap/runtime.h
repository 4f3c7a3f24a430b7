// The one runtime of the process: loaded, started, asked for delegates, ended.
//
// Nothing here has a destructor. The runtime is ended by a destructor of the module that started
// it, at process exit, when the objects of this library are gone already.
#pragma once

namespace clrwrap {

// Whether the file is the runtime's library and now usable. May be called again.
bool load_runtime(const char *libcoreclr_path);

int start_runtime(const char *exe_path, const char *domain_name, int property_count,
                  const char *const *keys, const char *const *values);

int create_delegate(const char *assembly, const char *type, const char *method, void **result);

bool is_runtime_running();

// Only the first call after a start ends the runtime.
int end_runtime();

} // namespace clrwrap
