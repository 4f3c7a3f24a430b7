// The properties that the runtime is started with: those of the caller, completed.
#include "clrwrap/properties.h"

#include "clrwrap/folder_list.h"
#include "clrwrap/trusted_assemblies.h"

#include <algorithm>

namespace clrwrap {
namespace {

struct Setting {
    const char *key;
    const char *value;
};

const Setting settings[] = {
    // A child that is forked from the process and writes to double-mapped code pages would write
    // to those of its parent.
    {"System.Runtime.EnableWriteXorExecute", "0"},
    // One thread less; a collection stops the one thread that runs managed code anyway.
    {"System.GC.Concurrent", "false"},
    // The process would end at the first named culture where the ICU libraries are not installed.
    {"System.Globalization.Invariant", "true"},
};

void append_unless_there(std::vector<std::string> &folders, const std::string &folder) {
    if (std::find(folders.begin(), folders.end(), folder) == folders.end())
        folders.push_back(folder);
}

} // namespace

Properties::Properties(int count, const char *const *keys, const char *const *values) {
    for (int index = 0; index < count; ++index) add(keys[index], values[index]);
}

void Properties::complete(const std::string &runtime_folder) {
    for (const char *key : {"APP_PATHS", "APP_NI_PATHS", "NATIVE_DLL_SEARCH_DIRECTORIES"})
        if (std::string *list = find(key)) *list = join_paths(folders_of(key));

    std::vector<std::string> native_folders = folders_of("NATIVE_DLL_SEARCH_DIRECTORIES");
    append_unless_there(native_folders, runtime_folder);
    add("NATIVE_DLL_SEARCH_DIRECTORIES", "");
    *find("NATIVE_DLL_SEARCH_DIRECTORIES") = join_paths(native_folders);

    std::vector<std::string> app_folders = folders_of("APP_PATHS");
    if (!app_folders.empty()) add("APP_CONTEXT_BASE_DIRECTORY", app_folders.front() + "/");

    append_unless_there(app_folders, runtime_folder);
    add("TRUSTED_PLATFORM_ASSEMBLIES", "");
    std::string *trusted = find("TRUSTED_PLATFORM_ASSEMBLIES");
    if (trusted->empty()) *trusted = join_paths(list_assemblies(app_folders));

    for (const Setting &setting : settings) add(setting.key, setting.value);
}

std::vector<const char *> Properties::keys() const {
    std::vector<const char *> texts;
    for (const auto &item : items) texts.push_back(item.first.c_str());
    return texts;
}

std::vector<const char *> Properties::values() const {
    std::vector<const char *> texts;
    for (const auto &item : items) texts.push_back(item.second.c_str());
    return texts;
}

void Properties::add(const std::string &key, const std::string &value) {
    if (!find(key)) items.emplace_back(key, value);
}

std::string *Properties::find(const std::string &key) {
    for (auto &item : items)
        if (item.first == key) return &item.second;
    return nullptr;
}

std::vector<std::string> Properties::folders_of(const std::string &key) {
    const std::string *list = find(key);
    return list ? split_folders(list->c_str()) : std::vector<std::string>();
}

} // namespace clrwrap
