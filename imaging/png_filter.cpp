// Row filters as flat loops without branches, so that the compiler turns each into vector code.
#include "imaging/png_filter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace kelmor {
namespace {

uint8_t paeth(int left, int above, int corner) {
    const int to_left = std::abs(above - corner);
    const int to_above = std::abs(left - corner);
    const int to_corner = std::abs(left + above - 2 * corner);
    const int nearer = to_above <= to_corner ? above : corner;
    return static_cast<uint8_t>(to_left <= to_above && to_left <= to_corner ? left : nearer);
}

// The first pixel has no left neighbour: its left and corner samples count as zero.
void apply(RowFilter filter, const FilterInput &in, uint8_t *__restrict out) {
    const uint8_t *row = in.row, *above = in.above;
    const size_t unit = in.unit, first = std::min(in.length, in.unit);
    switch (filter) {
    case RowFilter::sub:
        std::memcpy(out, row, first);
        for (size_t i = unit; i < in.length; ++i)
            out[i] = static_cast<uint8_t>(row[i] - row[i - unit]);
        break;
    case RowFilter::up:
        for (size_t i = 0; i < in.length; ++i) out[i] = static_cast<uint8_t>(row[i] - above[i]);
        break;
    case RowFilter::average:
        for (size_t i = 0; i < first; ++i) out[i] = static_cast<uint8_t>(row[i] - above[i] / 2);
        for (size_t i = unit; i < in.length; ++i)
            out[i] = static_cast<uint8_t>(row[i] - (row[i - unit] + above[i]) / 2);
        break;
    case RowFilter::paeth:
        for (size_t i = 0; i < first; ++i) out[i] = static_cast<uint8_t>(row[i] - above[i]);
        for (size_t i = unit; i < in.length; ++i)
            out[i] = static_cast<uint8_t>(row[i] - paeth(row[i - unit], above[i], above[i - unit]));
        break;
    default:
        std::memcpy(out, row, in.length);
    }
}

uint64_t sum_of_differences(const uint8_t *bytes, size_t length) {
    uint64_t sum = 0;
    for (size_t i = 0; i < length; ++i) {
        const int8_t difference = static_cast<int8_t>(bytes[i]);
        sum += static_cast<uint64_t>(difference < 0 ? -difference : difference);
    }
    return sum;
}

} // namespace

void filter_row(RowFilter filter, const FilterInput &input, uint8_t *out, uint8_t *scratch) {
    if (filter != RowFilter::best) {
        out[0] = static_cast<uint8_t>(filter);
        apply(filter, input, out + 1);
        return;
    }
    uint64_t smallest = std::numeric_limits<uint64_t>::max();
    for (const auto candidate :
         {RowFilter::none, RowFilter::sub, RowFilter::up, RowFilter::average, RowFilter::paeth}) {
        scratch[0] = static_cast<uint8_t>(candidate);
        apply(candidate, input, scratch + 1);
        const uint64_t sum = sum_of_differences(scratch + 1, input.length);
        if (sum >= smallest) continue;
        smallest = sum;
        std::memcpy(out, scratch, input.length + 1);
    }
}

} // namespace kelmor
