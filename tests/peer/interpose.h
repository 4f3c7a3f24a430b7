// Stands between a loaded module and the interpreter: writes down the calls, lets some of them
// fail.
//
// A module reaches the interpreter through slots that the dynamic linker fills; those of functions
// are turned to detours. A test loads the module, interposes, and only then imports it.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)
extern "C" {

// Turns all slots of the module that hold functions of the interpreter. The number of slots, or -1
// when no such module is loaded.
int peer_interpose(const char *module_path);

// Writes the calls of the function into the journal; null watches every function.
void peer_watch(const char *function);

// A call of the function fails: it is not made, `result` is its answer, and RuntimeError with
// `message` is set unless that is null. Only a call with this text counts, null takes any; `skip`
// such calls go through before it fails. All calls behind it fail as well.
void peer_fail(const char *function, const char *text, int skip, std::uint64_t result,
               const char *message);

// Ends all failing.
void peer_fail_no_more();

// A failing PyModule_AddObject gets a reference more to the module and to the object, whose
// addresses `peer_kept` gives: what has become of them can then be read from their counts.
void peer_keep();
const std::uint64_t *peer_kept();
}
#pragma GCC visibility pop
