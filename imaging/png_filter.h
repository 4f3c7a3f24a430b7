// The five row filters of PNG (PNG specification, section 9), turned towards writing.
#pragma once
#include <cstddef>
#include <cstdint>

namespace kelmor {

enum class RowFilter : uint8_t { none, sub, up, average, paeth, best };

// One row with the one above it. `unit` is the distance in bytes to the same sample of the pixel to
// the left, 1 for samples of less than a byte.
struct FilterInput {
    const uint8_t *row;
    const uint8_t *above; // zeros for the first row
    size_t length;
    size_t unit;
};

// Writes the filter's number and the filtered bytes: length + 1 in all. `best` takes the filter of
// the smallest sum of absolute differences, and needs length + 1 bytes of scratch.
void filter_row(RowFilter filter, const FilterInput &input, uint8_t *out, uint8_t *scratch);

} // namespace kelmor
