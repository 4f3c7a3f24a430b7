// The version in the name of a runtime folder, and such a folder.
#pragma once

struct NetcoreVersion {
    int major;
    int minor;

    NetcoreVersion() {} // both fields stay unset
    NetcoreVersion(int major, int minor) : major(major), minor(minor) {}
};

bool operator<(const NetcoreVersion &left, const NetcoreVersion &right);

template <typename String> struct NetcoreFolder {
    NetcoreVersion version;
    String name;
};
