// The diary of the host's start-up, written to stdout when COREHOST_TRACE asks for it.
#pragma once

namespace trace {

// Reads COREHOST_TRACE: a number of 1 or more turns the diary on. Does nothing when it is on.
void initialize();

void enable();
void disable();
bool is_enabled();

// printf-style; each call is one line. There is one level of detail, so the last three are alike.
// They carry no format attribute, because the diary's "%hs" would make compilers warn.
void error(const char *format, ...); // to stderr, also when the diary is off
void warning(const char *format, ...);
void info(const char *format, ...);
void verbose(const char *format, ...);

} // namespace trace
