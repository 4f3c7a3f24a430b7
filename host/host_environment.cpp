// Finds the runtime's folders, loads the wrap library from there and starts the runtime through it.
#include "host/host_environment.h"

#include "host/core_clr_init_exception.h"
#include "host/fork_guard.h"
#include "host/host_trace.h"
#include "host/pal.nix.h"
#include "host/utils.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

const char *KelmorDomainName = "KelmorCLRHostDomain";

namespace {

const char release_wrap_name[] = "libkelmor.embed.coreclrwrap.so";
const char debug_wrap_name[] = "libkelmor.embed.coreclrwrap.debug.so";

template <typename Entry> void bind(const DynamicLibrary &library, const char *name, Entry &entry) {
    entry = reinterpret_cast<Entry>(library.get_symbol(name));
}

} // namespace

HostEnvironment *HostEnvironment::instance(const char *, bool debug, const char *family_name,
                                           const char *, const char *netcore_dir,
                                           const char *assembly_dir) {
    static HostEnvironment host;
    if (host.m_library.is_loaded()) return &host;

    trace::initialize();
    host.initialize(debug, family_name, netcore_dir, assembly_dir);
    watch_for_forks();
    if (host.m_library.is_first_load())
        host.create_default_app_domain();
    else
        host.m_domain_initialized = host.m_is_domain_initialized() != 0;
    return &host;
}

// The query entry has no null state: it is called right after its binding, or never.
HostEnvironment::HostEnvironment()
    : m_initialize(nullptr), m_create_delegate(nullptr), m_shutdown(nullptr),
      m_domain_initialized(false), m_debug(false) {}

HostEnvironment::~HostEnvironment() { try_shutdown_default_app_domain(); }

const char *HostEnvironment::get_libcoreclr_wrap_name() const {
    return m_debug ? debug_wrap_name : release_wrap_name;
}

void HostEnvironment::complete_app_folders(std::vector<std::string> &folders,
                                           const std::string &folder) {
    if (std::find(folders.begin(), folders.end(), folder) == folders.end())
        folders.push_back(folder);
}

void HostEnvironment::initialize(bool debug, const std::string &family_name,
                                 const char *netcore_dir, const char *assembly_dir) {
    trace::info("Initializing .NET Core host...");
    m_exe_path = pal::get_entry_point_exe();
    m_debug = debug;
    choose_netcore_dir("NETCORE_WRAPPER_NETCORE_DIR_" + family_name, netcore_dir);
    choose_assembly_dirs("NETCORE_WRAPPER_ASSEMBLY_DIR_" + family_name, assembly_dir);
    load_wrap_library();
    if (m_library.is_first_load()) load_runtime();
    trace::info(".NET Core host ready.");
}

// The search looks for the release library even when the debug one is to be loaded, so a folder
// qualifies by what every installation has.
void HostEnvironment::choose_netcore_dir(const std::string &variable, const char *netcore_dir) {
    std::string found;
    if (netcore_dir)
        m_netcore_dir = netcore_dir;
    else if (pal::getenv(variable.c_str(), m_netcore_dir) &&
             pal::get_major_netcore_path(m_netcore_dir, release_wrap_name, found))
        m_netcore_dir = found;
    else
        m_netcore_dir = pal::path_get_directory(m_exe_path);
    trace::info("NETCORE_DIR: '%s'", m_netcore_dir.c_str());
}

void HostEnvironment::choose_assembly_dirs(const std::string &variable, const char *assembly_dir) {
    std::vector<std::string> folders;
    std::string root;
    if (assembly_dir)
        folders.push_back(assembly_dir);
    else if (pal::getenv(variable.c_str(), root))
        pal::get_app_folders(root, m_debug, folders);
    else
        folders.push_back(pal::path_get_directory(m_exe_path));
    complete_app_folders(folders, m_netcore_dir);
    m_product_assembly_dir = pal::join(folders, ':', false);
    trace::info("PRODUCT_ASSEMBLY_DIR: '%s'", m_product_assembly_dir.c_str());
}

void HostEnvironment::load_wrap_library() {
    const std::string path = pal::build_path(m_netcore_dir, get_libcoreclr_wrap_name());
    trace::verbose("Loading: '%s'", path.c_str());
    m_library = DynamicLibrary::load(path, get_libcoreclr_wrap_name());
    trace::info("wrap dll loaded");
    m_library.set_can_free(false);
    bind(m_library, "coreclr_wrap_initialize", m_initialize);
    bind(m_library, "coreclr_wrap_create_delegate", m_create_delegate);
    bind(m_library, "coreclr_wrap_shutdown", m_shutdown);
    bind(m_library, "coreclr_wrap_is_domain_initialized", m_is_domain_initialized);
}

// The load entry answers 0 for failure, unlike all others.
void HostEnvironment::load_runtime() const {
    LoadEntry load = nullptr;
    bind(m_library, "coreclr_wrap_load", load);
    const std::string path = pal::build_path(m_netcore_dir, "libcoreclr.so");
    trace::verbose("Loading2: '%s'", path.c_str());
    if (load(path.c_str()) == 0) throw std::runtime_error("init coreclr wap");
}

bool HostEnvironment::create_default_app_domain() {
    if (m_domain_initialized) return false;
    trace::info("Creating default AppDomain...");

    // One text for each property: the interface does not forbid the other side to change one.
    const std::string app_paths(m_product_assembly_dir.c_str());
    const std::string app_ni_paths(m_product_assembly_dir.c_str());
    const std::string native_paths(m_product_assembly_dir.c_str());
    const std::string exe_path(m_exe_path.c_str());
    trace::verbose("APP_PATH: '%hs'", app_paths.c_str());
    trace::verbose("APP_NI_PATHS: '%hs'", app_ni_paths.c_str());
    trace::verbose("NATIVE_DLL_SEARCH_DIRECTORIES: '%hs'", native_paths.c_str());
    trace::verbose("HOST_EXE_PATH: '%hs'", exe_path.c_str());

    const char *keys[] = {"TRUSTED_PLATFORM_ASSEMBLIES", "APP_PATHS", "APP_NI_PATHS",
                          "NATIVE_DLL_SEARCH_DIRECTORIES", "AppDomainCompatSwitch"};
    const char *values[] = {"", app_paths.c_str(), app_ni_paths.c_str(), native_paths.c_str(),
                            "UseLatestBehaviorWhenTFMNotSpecified"};
    const int count = static_cast<int>(std::size(keys));
    const int result = m_initialize(exe_path.c_str(), KelmorDomainName, count, keys, values);
    if (result != 0)
        throw CoreClrInitException(result, exe_path.c_str(), KelmorDomainName, count, keys, values);

    m_domain_initialized = true;
    trace::info("Default AppDomain ready.");
    return true;
}

int HostEnvironment::try_shutdown_default_app_domain() {
    if (!m_shutdown || !m_domain_initialized) return -1;
    // Only the module that started the runtime may end it.
    if (!m_library.is_loaded() || !m_library.is_first_load()) {
        m_domain_initialized = false;
        return -1;
    }
    trace::info("Shutdowning .NET Core host...");
    const int result = m_shutdown();
    trace::info(".NET Core host is down: %d", result);
    m_domain_initialized = false;
    return 0;
}
