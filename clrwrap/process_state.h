// Keeps what belongs to the process, and not to the runtime, as it was before the runtime started.
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace clrwrap {

// Lives around the start of the runtime. The runtime takes over the signals that end or interrupt
// a process, raises the limit of open files and looks at the environment; the interpreter had all
// that first. What the runtime needs to work at all stays with it: the signals of hardware faults,
// which it turns into managed exceptions, and the one by which it stops its threads.
//
// Meanwhile all other signals are blocked, and the runtime's threads inherit that: a Ctrl-C must
// interrupt a system call of the main thread, not one of theirs.
class ProcessStateKeeper {
public:
    ProcessStateKeeper();
    ~ProcessStateKeeper();
    ProcessStateKeeper(const ProcessStateKeeper &) = delete;
    ProcessStateKeeper &operator=(const ProcessStateKeeper &) = delete;

private:
    static constexpr int signal_count = 65; // 1 to 64; the place of 0 is not used

    struct sigaction actions[signal_count];
    bool known[signal_count] = {}; // the C library hides some signals
    sigset_t mask;
    rlimit open_files;
    bool diagnostics_disabled_here;
};

} // namespace clrwrap
