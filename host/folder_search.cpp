// Finds the runtime folder of the highest version, and the folders of the managed assemblies.
#include "host/netcore_version.h"
#include "host/netcore_version_parser.h"
#include "host/pal.nix.h"

#include <algorithm>
#include <dirent.h>
#include <memory>

namespace pal {
namespace {

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

// Only what the file system itself calls a folder: links and entries of unknown type are not.
bool is_child_folder(const dirent &entry) {
    const std::string name = entry.d_name;
    return entry.d_type == DT_DIR && name != "." && name != "..";
}

} // namespace

bool get_major_netcore_path(const std::string &root, const std::string &file, std::string &result) {
    const OpenFolder folder(opendir(root.c_str()));
    if (!folder) return false;

    std::vector<NetcoreFolder<std::string>> candidates;
    while (const dirent *entry = readdir(folder.get())) {
        NetcoreVersion version;
        if (is_child_folder(*entry) && try_parse(entry->d_name, version))
            candidates.push_back({version, entry->d_name});
    }
    std::sort(candidates.begin(), candidates.end(),
              [](const auto &left, const auto &right) { return left.version < right.version; });

    for (auto candidate = candidates.rbegin(); candidate != candidates.rend(); ++candidate) {
        const std::string path = root + "/" + candidate->name;
        if (is_file_exists(path + "/" + file)) {
            result = path;
            return true;
        }
    }
    return false;
}

void get_app_folders(const std::string &root, bool debug, std::vector<std::string> &result) {
    const OpenFolder folder(opendir(root.c_str()));
    if (!folder) return;

    while (const dirent *entry = readdir(folder.get())) {
        if (!is_child_folder(*entry)) continue;
        const std::string name = entry->d_name;
        std::string path = root + "/" + name;
        if (debug) {
            path += "/debug";
            if (!is_file_exists(path)) continue;
        }
        // The drawing assemblies come last, so that a module's own copy of one goes first.
        result.insert(name == "gfxtypes" ? result.end() : result.begin(), path);
    }
}

} // namespace pal
