// Takes text apart.
#include "host/str_utils.h"

#include <algorithm>

std::string cxxaw_substr(const std::string &text, std::size_t position, std::size_t length) {
    return text.substr(position, length);
}

bool cxxaw_isdigitstr(const std::string &text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        return character >= '0' && character <= '9';
    });
}
