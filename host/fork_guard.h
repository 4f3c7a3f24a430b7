// Knows whether this process was forked from the one that the runtime lives in.
//
// The runtime's threads do not survive a fork, so in the child every managed call and every
// release of a handle must be refused. The flag is set by a fork handler instead of by comparing
// process ids, because it is tested before each call.
#pragma once

extern bool g_in_forked_child; // written by the fork handler alone

inline bool in_forked_child() noexcept { return g_in_forked_child; }

// From now on children are told. Only the first call has an effect.
void watch_for_forks();
