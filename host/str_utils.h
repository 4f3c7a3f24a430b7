// Takes text apart.
#pragma once

#include <cstddef>
#include <string>

// At most `length` characters from `position` on; std::string::npos means to the end.
std::string cxxaw_substr(const std::string &text, std::size_t position, std::size_t length);

// Whether the text is not empty and consists of "0" to "9".
bool cxxaw_isdigitstr(const std::string &text);
