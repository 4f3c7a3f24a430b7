// A small library for tests of loading: it tells when it leaves the process.
#include <cstdlib>

#define SAMPLE_SYMBOL extern "C" __attribute__((visibility("default")))

namespace {

// Where a test that wants to see the end of the library lets it be counted.
int *unload_counter = nullptr;

struct AtUnload {
    ~AtUnload() {
        if (unload_counter) ++*unload_counter;
    }
} at_unload;

} // namespace

SAMPLE_SYMBOL int sample_answer() { return 42; }

SAMPLE_SYMBOL void sample_count_unloads(int *counter) { unload_counter = counter; }
