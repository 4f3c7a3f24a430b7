// Reads the version out of a folder name such as "netcore8.0".
#include "host/netcore_version_parser.h"

#include "host/str_utils.h"

bool try_parse(const std::string &name, NetcoreVersion &version) {
    const std::string prefix = "netcore";
    if (cxxaw_substr(name, 0, prefix.size()) != prefix) return false;

    std::string parts[2];
    if (!split(cxxaw_substr(name, prefix.size(), std::string::npos), parts)) return false;

    int major = 0;
    int minor = 0;
    if (!try_parse_int(parts[0], major) || !try_parse_int(parts[1], minor)) return false;
    version = NetcoreVersion(major, minor);
    return true;
}

bool split(const std::string &text, std::string *two_parts) {
    const std::size_t dot = text.find('.');
    if (dot == std::string::npos || dot != text.rfind('.')) return false;
    two_parts[0] = cxxaw_substr(text, 0, dot);
    two_parts[1] = cxxaw_substr(text, dot + 1, std::string::npos);
    return true;
}

bool try_parse_int(const std::string &text, int &value) {
    if (!cxxaw_isdigitstr(text)) return false;
    value = std::stoi(text);
    return true;
}
