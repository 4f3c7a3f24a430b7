// A function made at run time that does what a test has told it.
#pragma once

#include "peer/script.h"

#include <string>
#include <vector>

struct Stub {
    // `assembly` is null in a stub for all assemblies.
    Stub(const char *assembly, const char *type, const char *method);
    Stub(const Stub &) = delete;

    void reset();
    void run(Frame &frame);

    struct Result {
        std::uint64_t integer;
        std::uint64_t floating;
    };
    struct Snapshot {
        int argument, offset, size;
    };
    struct Write {
        int argument, offset;
        std::string bytes;
    };
    struct Invocation {
        void (*function)(std::uint64_t, std::uint64_t, std::uint64_t);
        std::uint64_t first, second, third;
    };

    std::string assembly, type, method;
    bool any_assembly;
    void *function; // its machine code
    int integers = 6, floats = 0;
    std::size_t calls = 0;
    std::vector<Result> results;
    std::vector<Snapshot> snapshots;
    std::vector<Write> writes;
    std::vector<Invocation> invocations;
    StubFunction last = nullptr;

private:
    void write_journal(const Frame &frame) const;
};
