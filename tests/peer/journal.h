// What the peer has been asked, one JSON object a line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// One line under construction. It is written by `write`, once.
class JournalLine {
public:
    explicit JournalLine(std::string_view call);

    JournalLine &text(std::string_view name, const char *value); // null pointer: null
    JournalLine &number(std::string_view name, std::int64_t value);
    JournalLine &texts(std::string_view name, const char *const *values, int count);
    JournalLine &numbers(std::string_view name, const std::uint64_t *values, int count);
    JournalLine &json(std::string_view name, std::string_view value);
    void write();

private:
    std::string line;
};

std::string hexadecimal(const void *bytes, int size);
