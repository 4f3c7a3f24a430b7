// Keeps what belongs to the process, and not to the runtime, as it was before the runtime started.
#include "clrwrap/process_state.h"

#include <cstdlib>
#include <pthread.h>

namespace clrwrap {
namespace {

// The runtime's diagnostic server: three threads and three files in the temporary folder that
// nobody asked for. A user who wants it sets the variable.
const char diagnostics_variable[] = "DOTNET_EnableDiagnostics";

bool belongs_to_runtime(int number) {
    switch (number) {
    case SIGSEGV:
    case SIGFPE:
    case SIGILL:
    case SIGBUS:
    case SIGTRAP:
        return true;
    default:
        return number == SIGRTMIN;
    }
}

} // namespace

ProcessStateKeeper::ProcessStateKeeper() {
    sigset_t blocked;
    sigfillset(&blocked);
    for (int number = 1; number < signal_count; ++number) {
        if (belongs_to_runtime(number))
            sigdelset(&blocked, number);
        else
            known[number] = sigaction(number, nullptr, &actions[number]) == 0;
    }
    pthread_sigmask(SIG_BLOCK, &blocked, &mask);
    getrlimit(RLIMIT_NOFILE, &open_files);
    diagnostics_disabled_here =
        !std::getenv(diagnostics_variable) && setenv(diagnostics_variable, "0", 0) == 0;
}

ProcessStateKeeper::~ProcessStateKeeper() {
    if (diagnostics_disabled_here) unsetenv(diagnostics_variable);
    setrlimit(RLIMIT_NOFILE, &open_files);
    for (int number = 1; number < signal_count; ++number)
        if (known[number]) sigaction(number, &actions[number], nullptr);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

} // namespace clrwrap
