// Builds paths and lists of paths.
#pragma once

#include "host/pal.nix.h"

#include <string>
#include <vector>

namespace pal {

template <typename... Parts>
std::string build_path(const std::string &base, const Parts &...parts) {
    std::string path = base;
    (path_append(path, parts), ...);
    return path;
}

// With `unique`, an item that was seen before is left out.
std::string join(const std::vector<std::string> &items, char separator, bool unique);
std::string join_unique(const std::vector<std::string> &items, char separator);

// Relative items are taken as below `base`. Separators at the end are removed, unless the result
// consists of nothing else.
std::string join_to_full_path(const std::string &base, const std::vector<std::string> &items,
                              char separator);

} // namespace pal
