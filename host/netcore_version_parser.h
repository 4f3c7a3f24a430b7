// Reads the version out of a folder name such as "netcore8.0".
#pragma once

#include "host/netcore_version.h"

#include <string>

// Takes "netcore" + digits + "." + digits and nothing else. A number beyond the range of int
// throws std::out_of_range, here and in try_parse_int.
bool try_parse(const std::string &name, NetcoreVersion &version);

// Splits a text with exactly one dot into what stands before and after it.
bool split(const std::string &text, std::string *two_parts);

bool try_parse_int(const std::string &text, int &value);
