// Finds the runtime's folders, loads the wrap library from there and starts the runtime through it.
//
// Several extension modules of the family may live in one process and share one runtime. The wrap
// library is where they meet: whoever brings it into the process starts the runtime and ends it;
// everybody else finds it loaded and attaches. That is all that the modules know of each other.
//
// A start-up that fails throws, because nobody may carry on without a runtime, and nobody up to
// the interpreter catches.
#pragma once

#include "host/dynamic_library.h"

#include <string>
#include <vector>

// The friendly name of the domain, read at each domain creation.
extern "C" __attribute__((visibility("default"))) const char *KelmorDomainName;

class HostEnvironment {
public:
    // Starts the runtime, or attaches to it, at the first call; later calls only give the object
    // and look at no argument, so they may pass nulls. `netcore_dir` and `assembly_dir`, unless
    // null, replace the search of their folders. The two names reach nothing.
    static HostEnvironment *instance(const char *first_name, bool debug, const char *family_name,
                                     const char *second_name, const char *netcore_dir,
                                     const char *assembly_dir);

    ~HostEnvironment();

    // Asks for the native pointer of a static managed method. 0 is success, everything else the
    // code of the failure.
    int try_create_delegate(const char *assembly, const char *type, const char *method,
                            void **result) const {
        return m_create_delegate(assembly, type, method, result);
    }

    const char *get_libcoreclr_wrap_name() const;

    // Appends `folder` unless it stands in the list already.
    static void complete_app_folders(std::vector<std::string> &folders, const std::string &folder);

    // False when the domain was there before; throws CoreClrInitException.
    bool create_default_app_domain();

    // 0 when this call ended the runtime, else -1.
    int try_shutdown_default_app_domain();

private:
    friend struct HostTest;

    // The entries of the wrap library. All but the load entry give 0 for success.
    using LoadEntry = int (*)(const char *libcoreclr_path);
    using InitializeEntry = int (*)(const char *exe_path, const char *domain_name,
                                    int property_count, const char **keys, const char **values);
    using CreateDelegateEntry = int (*)(const char *assembly, const char *type, const char *method,
                                        void **result);
    using ShutdownEntry = int (*)();
    using IsDomainInitializedEntry = int (*)(); // non-zero when a domain exists

    HostEnvironment();

    void initialize(bool debug, const std::string &family_name, const char *netcore_dir,
                    const char *assembly_dir);
    void choose_netcore_dir(const std::string &variable, const char *netcore_dir);
    void choose_assembly_dirs(const std::string &variable, const char *assembly_dir);
    void load_wrap_library();
    void load_runtime() const;

    std::string m_exe_path;             // full path of the process's executable
    std::string m_netcore_dir;          // holds the wrap library and libcoreclr.so
    std::string m_product_assembly_dir; // the assembly folders, joined by colons
    DynamicLibrary m_library;           // the wrap library; never unloaded
    InitializeEntry m_initialize;
    CreateDelegateEntry m_create_delegate;
    ShutdownEntry m_shutdown;
    IsDomainInitializedEntry m_is_domain_initialized; // unset until the library is bound
    bool m_domain_initialized; // the domain of this process is usable through this object
    bool m_debug;              // use the debug variants of library and folders
};
