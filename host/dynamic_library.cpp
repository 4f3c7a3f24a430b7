// Owns one handle of a shared library.
#include "host/dynamic_library.h"

#include "host/host_trace.h"
#include "host/pal.nix.h"

#include <stdexcept>
#include <utility>

DynamicLibrary::~DynamicLibrary() { free(); }

DynamicLibrary::DynamicLibrary(DynamicLibrary &&other) noexcept
    : handle(std::exchange(other.handle, nullptr)), first_load(other.first_load) {}

DynamicLibrary &DynamicLibrary::operator=(DynamicLibrary &&other) noexcept {
    free();
    handle = std::exchange(other.handle, nullptr);
    first_load = other.first_load;
    return *this;
}

DynamicLibrary DynamicLibrary::load(const std::string &path, const std::string &name) {
    DynamicLibrary library;
    if (!try_load(path, name, library)) throw std::runtime_error("DynamicLibrary::load");
    return library;
}

bool DynamicLibrary::try_load(const std::string &path, const std::string &,
                              DynamicLibrary &target) {
    target.free();
    trace::info("Try get module...");
    if (pal::get_module(path, &target.handle)) {
        trace::info("Using existed module...");
        return true;
    }
    trace::info("No existed module...");
    target.handle = pal::load_library(path);
    if (target.handle) {
        target.first_load = true;
        return true;
    }
    trace::info("No module...");
    trace::verbose("No: '%s'", path.c_str());
    return false;
}

bool DynamicLibrary::free() {
    const bool existed = handle != nullptr;
    if (existed && can_free) pal::free_library(std::exchange(handle, nullptr));
    return existed;
}

void *DynamicLibrary::get_symbol(const char *name) const {
    if (!handle) throw std::logic_error("Library was not opened!");
    void *symbol = pal::get_symbol(handle, name);
    if (!symbol) throw std::runtime_error(std::string("No such symbol: ") + name);
    return symbol;
}
