// The properties that the runtime is started with: those of the caller, completed.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace clrwrap {

class Properties {
public:
    Properties(int count, const char *const *keys, const char *const *values);

    // Fills an empty trusted list at its place, makes the folders absolute and adds the settings
    // that the caller left open. `runtime_folder` is where the runtime's own files lie.
    void complete(const std::string &runtime_folder);

    int count() const { return static_cast<int>(items.size()); }
    std::vector<const char *> keys() const;
    std::vector<const char *> values() const;

private:
    // A key that was given before is left out: the runtime aborts when one comes twice.
    void add(const std::string &key, const std::string &value);
    std::string *find(const std::string &key);
    std::vector<std::string> folders_of(const std::string &key);

    std::vector<std::pair<std::string, std::string>> items;
};

} // namespace clrwrap
