// Marks the children that are forked from a process with a runtime.
#include "host/fork_guard.h"

#include <pthread.h>

bool g_in_forked_child = false;

void watch_for_forks() {
    static bool watching = false;
    if (watching) return;
    watching = pthread_atfork(nullptr, nullptr, [] { g_in_forked_child = true; }) == 0;
}
