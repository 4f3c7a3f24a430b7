// What the host asks of Linux: environment, paths, shared libraries, output.
#include "host/pal.nix.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <unistd.h>

namespace pal {
namespace {

void write_line(FILE *stream, const char *format, va_list arguments) {
    std::vfprintf(stream, format, arguments);
    std::fputs("\r\n", stream);
    std::fflush(stream);
}

} // namespace

bool getenv(const char *name, std::string &value) {
    value.clear();
    if (const char *text = std::getenv(name)) value = text;
    return !value.empty();
}

int to_int(const std::string &text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

bool is_file_exists(const std::string &path) { return std::ifstream(path).is_open(); }

void path_append(std::string &path, const std::string &part) {
    if (!path.empty()) path += '/';
    path += part;
}

std::string path_get_directory(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

bool path_is_relative(const std::string &path) { return path.empty() || path[0] != '/'; }

std::string get_entry_point_exe() {
    char target[4095];
    const ssize_t length = readlink("/proc/self/exe", target, sizeof target);
    return length < 0 ? std::string() : std::string(target, static_cast<std::size_t>(length));
}

void *load_library(const std::string &path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL); }

bool get_module(const std::string &path, void **handle) {
    *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    return *handle != nullptr;
}

int free_library(void *handle) { return dlclose(handle); }

void *get_symbol(void *handle, const char *name) { return dlsym(handle, name); }

void err_vprintf(const char *format, va_list arguments) { write_line(stderr, format, arguments); }

void out_vprintf(const char *format, va_list arguments) { write_line(stdout, format, arguments); }

} // namespace pal
