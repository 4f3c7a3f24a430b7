// The diary of the host's start-up.
#include "host/host_trace.h"

#include "host/pal.nix.h"

#include <cstdarg>

namespace trace {
namespace {

bool g_enabled = false;

void write_when_enabled(const char *format, va_list arguments) {
    if (g_enabled) pal::out_vprintf(format, arguments);
}

} // namespace

void initialize() {
    if (g_enabled) return;
    std::string value;
    if (!pal::getenv("COREHOST_TRACE", value)) return;
    g_enabled = pal::to_int(value) >= 1;
    if (g_enabled) info("%s", "CLR host tracing enabled");
}

void enable() { g_enabled = true; }

void disable() { g_enabled = false; }

bool is_enabled() { return g_enabled; }

void error(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    pal::err_vprintf(format, arguments);
    va_end(arguments);
}

void warning(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write_when_enabled(format, arguments);
    va_end(arguments);
}

void info(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write_when_enabled(format, arguments);
    va_end(arguments);
}

void verbose(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write_when_enabled(format, arguments);
    va_end(arguments);
}

} // namespace trace
