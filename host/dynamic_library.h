// Owns one handle of a shared library and knows whether it brought that library into the process.
#pragma once

#include <string>

class DynamicLibrary {
public:
    DynamicLibrary() = default;
    ~DynamicLibrary();
    DynamicLibrary(DynamicLibrary &&other) noexcept;
    DynamicLibrary &operator=(DynamicLibrary &&other) noexcept;

    // Throws std::runtime_error when the library can't be loaded. `name` is not used.
    static DynamicLibrary load(const std::string &path, const std::string &name);
    static bool try_load(const std::string &path, const std::string &name, DynamicLibrary &target);

    // Closes the handle if that is allowed. Gives whether there was one.
    bool free();

    // Throws std::logic_error without a handle and std::runtime_error without the symbol.
    void *get_symbol(const char *name) const;

    void set_can_free(bool can_free) { this->can_free = can_free; }
    bool is_loaded() const { return handle != nullptr; }
    bool is_first_load() const { return first_load; }

private:
    friend struct HostTest;

    bool can_free = true; // belongs to the place, not to the library: a move leaves it alone
    void *handle = nullptr;
    bool first_load = false; // this object loaded it; false when it was in the process before
};
