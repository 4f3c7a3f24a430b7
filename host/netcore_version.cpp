// The order of runtime versions.
#include "host/netcore_version.h"

#include <tuple>

bool operator<(const NetcoreVersion &left, const NetcoreVersion &right) {
    return std::tie(left.major, left.minor) < std::tie(right.major, right.minor);
}
