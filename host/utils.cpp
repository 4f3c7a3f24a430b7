// Builds lists of paths.
#include "host/utils.h"

#include <unordered_set>

namespace pal {

std::string join(const std::vector<std::string> &items, char separator, bool unique) {
    std::string text;
    std::unordered_set<std::string> seen;
    bool first = true;
    for (const std::string &item : items) {
        if (unique && !seen.insert(item).second) continue;
        if (!first) text += separator;
        text += item;
        first = false;
    }
    return text;
}

std::string join_unique(const std::vector<std::string> &items, char separator) {
    return join(items, separator, true);
}

std::string join_to_full_path(const std::string &base, const std::vector<std::string> &items,
                              char separator) {
    std::string text;
    for (const std::string &item : items) {
        text += path_is_relative(item) ? build_path(base, item) : item;
        text += separator;
    }
    const std::size_t last = text.find_last_not_of(separator);
    if (last != std::string::npos) text.erase(last + 1);
    return text;
}

} // namespace pal
