// Lists of folders, as texts joined by colons.
#pragma once

#include <string>
#include <vector>

namespace clrwrap {

// The folders of the list as absolute paths, empty items left out: the runtime refuses to start
// when one is relative.
std::vector<std::string> split_folders(const char *list);

std::string join_paths(const std::vector<std::string> &paths);

} // namespace clrwrap
