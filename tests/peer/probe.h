// The probe: an extension module through which tests call functions of the runtime's layers.
//
// Each layer has a file probe_<layer>.cpp with a table of its functions:
//
//     const ProbeRow rows[] = {PROBE_ROW(fn_conv_py_long_to_clr_int16)};
//     const ProbeTable table(rows);
#pragma once

#include <cstddef>

struct ProbeRow {
    const char *name;
    const void *address; // of a function or of data
};

#define PROBE_ROW(function)                                                                        \
    { #function, reinterpret_cast < const void *>(&function) }

// Makes the rows known to the module by its mere existence.
class ProbeTable {
public:
    template <std::size_t Size>
    explicit ProbeTable(const ProbeRow (&rows)[Size]) : ProbeTable(rows, Size) {}

    static const ProbeTable *first();

    const ProbeRow *const rows;
    const std::size_t size;
    const ProbeTable *const next;

private:
    ProbeTable(const ProbeRow *rows, std::size_t size);
};
