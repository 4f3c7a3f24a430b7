// Lists of folders, as texts joined by colons.
#include "clrwrap/folder_list.h"

#include <filesystem>
#include <sstream>

namespace clrwrap {

std::vector<std::string> split_folders(const char *list) {
    std::vector<std::string> folders;
    std::istringstream items(list);
    for (std::string item; std::getline(items, item, ':');)
        if (!item.empty()) folders.push_back(std::filesystem::absolute(item).native());
    return folders;
}

std::string join_paths(const std::vector<std::string> &paths) {
    std::string text;
    for (const std::string &path : paths) {
        if (!text.empty()) text += ':';
        text += path;
    }
    return text;
}

} // namespace clrwrap
