// Debian's archives are not position-independent where they name a stream of libc: the linker sends
// those names here (--wrap).
#include <stdio.h>

__attribute__((visibility("hidden"))) FILE *__wrap_stderr;
__attribute__((visibility("hidden"))) FILE *__wrap_stdout;

__attribute__((constructor(101))) static void keep_streams(void) {
    __wrap_stderr = stderr;
    __wrap_stdout = stdout;
}
