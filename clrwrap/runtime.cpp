// The one runtime of the process: loaded, started, asked for delegates, ended.
#include "clrwrap/runtime.h"

#include "clrwrap/coreclr_library.h"
#include "clrwrap/process_state.h"
#include "clrwrap/properties.h"
#include "clrwrap/status.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <pthread.h>

namespace clrwrap {
namespace {

enum class Stage { empty, loaded, running, ended };

std::atomic<Stage> stage = Stage::empty;
CoreClrFunctions functions;
const std::string *runtime_folder = nullptr;
void *host = nullptr;
unsigned domain = 0;

// The threads of the runtime do not live in a child: there a collection would wait for them for
// ever, so nothing may enter it.
bool in_forked_child = false;

void write_error(const char *message) { std::fprintf(stderr, "kelmor: .NET: %s\n", message); }

// A name without properties, of more than blanks.
bool is_simple_name(const char *assembly) {
    const bool is_blank = *assembly && !assembly[std::strspn(assembly, " \t\r\n")];
    return !is_blank && !std::strpbrk(assembly, ",=\\/\"'");
}

} // namespace

bool load_runtime(const char *libcoreclr_path) {
    if (stage != Stage::empty) return true;
    std::string folder;
    std::string reason;
    if (!open_coreclr(libcoreclr_path, functions, folder, reason)) {
        std::fprintf(stderr, "kelmor: the .NET runtime '%s' can't be loaded: %s\n", libcoreclr_path,
                     reason.c_str());
        return false;
    }
    runtime_folder = new std::string(folder);
    stage = Stage::loaded;
    return true;
}

int start_runtime(const char *exe_path, const char *domain_name, int property_count,
                  const char *const *keys, const char *const *values) {
    if (stage != Stage::loaded) return status::not_allowed_now;
    Properties properties(property_count, keys, values);
    properties.complete(*runtime_folder);
    if (functions.set_error_writer) functions.set_error_writer(write_error);

    int result;
    {
        const ProcessStateKeeper keeper;
        result = functions.initialize(exe_path, domain_name, properties.count(),
                                      properties.keys().data(), properties.values().data(), &host,
                                      &domain);
    }
    if (result != status::ok) {
        std::fprintf(stderr, "kelmor: the .NET runtime in '%s' refused to start (0x%08x)\n",
                     runtime_folder->c_str(), static_cast<unsigned>(result));
        return result;
    }
    pthread_atfork(nullptr, nullptr, [] { in_forked_child = true; });
    stage = Stage::running;
    return status::ok;
}

int create_delegate(const char *assembly, const char *type, const char *method, void **result) {
    if (!is_runtime_running()) return status::not_running;
    if (!assembly || !type || !method || !result) return status::null_pointer;
    // The runtime ends the process when it can't parse the name.
    if (!is_simple_name(assembly)) return status::malformed_name;
    return functions.create_delegate(host, domain, assembly, type, method, result);
}

bool is_runtime_running() { return stage == Stage::running && !in_forked_child; }

int end_runtime() {
    if (in_forked_child) return status::not_running;
    Stage expected = Stage::running;
    if (!stage.compare_exchange_strong(expected, Stage::ended)) return status::not_running;
    return functions.shutdown(host, domain);
}

} // namespace clrwrap
