// The list of assemblies that the runtime may load.
#include "clrwrap/trusted_assemblies.h"

#include <algorithm>
#include <filesystem>
#include <unordered_set>

namespace clrwrap {
namespace {

// The runtime compares simple names without regard to the case of ASCII letters.
std::string lower(std::string text) {
    for (char &character : text)
        if (character >= 'A' && character <= 'Z') character += 'a' - 'A';
    return text;
}

std::vector<std::filesystem::path> assemblies_of(const std::string &folder) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        if (lower(entry->path().extension().native()) == ".dll") files.push_back(entry->path());
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

std::vector<std::string> list_assemblies(const std::vector<std::string> &folders) {
    std::vector<std::string> assemblies;
    std::unordered_set<std::string> names;
    for (const std::string &folder : folders)
        for (const std::filesystem::path &file : assemblies_of(folder))
            if (names.insert(lower(file.stem().native())).second)
                assemblies.push_back(file.native());
    return assemblies;
}

} // namespace clrwrap
