// What the peer has been asked, one JSON object a line.
#include "peer/journal.h"

#include "peer/script.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

std::string &lines() {
    static std::string &text = *new std::string;
    return text;
}

int log_file = -1;

// Bytes above 127 stand as they are: a path need not be text.
std::string quoted(const char *value) {
    if (!value) return "null";
    const char digits[] = "0123456789abcdef";
    std::string text = "\"";
    for (; *value; ++value) {
        const unsigned char byte = static_cast<unsigned char>(*value);
        if (byte < 32 || byte == '"' || byte == '\\')
            text += std::string("\\u00") + digits[byte >> 4] + digits[byte & 15];
        else
            text += *value;
    }
    return text + '"';
}

template <typename Item, typename Spelling>
std::string list(const Item *items, int count, Spelling spelling) {
    std::string text = "[";
    for (int index = 0; index < count; ++index) text += (index ? "," : "") + spelling(items[index]);
    return text + "]";
}

} // namespace

JournalLine::JournalLine(std::string_view call) {
    line = "{\"call\":\"" + std::string(call) + '"';
    number("process", getpid());
}

JournalLine &JournalLine::text(std::string_view name, const char *value) {
    return json(name, quoted(value));
}

JournalLine &JournalLine::number(std::string_view name, std::int64_t value) {
    return json(name, std::to_string(value));
}

JournalLine &JournalLine::texts(std::string_view name, const char *const *values, int count) {
    return json(name, list(values, count, quoted));
}

JournalLine &JournalLine::numbers(std::string_view name, const std::uint64_t *values, int count) {
    return json(name,
                list(values, count, [](std::uint64_t value) { return std::to_string(value); }));
}

JournalLine &JournalLine::json(std::string_view name, std::string_view value) {
    line.append(",\"").append(name).append("\":").append(value);
    return *this;
}

void JournalLine::write() {
    line += "}\n";
    lines() += line;
    if (log_file >= 0 && ::write(log_file, line.data(), line.size()) < 0) log_file = -1;
}

std::string hexadecimal(const void *bytes, int size) {
    const char digits[] = "0123456789abcdef";
    const unsigned char *byte = static_cast<const unsigned char *>(bytes);
    std::string text;
    for (; size > 0; --size, ++byte) {
        text += digits[*byte >> 4];
        text += digits[*byte & 15];
    }
    return text;
}

const char *peer_journal() { return lines().c_str(); }

void peer_clear_journal() { lines().clear(); }

void peer_log_to(const char *path) {
    log_file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
}
