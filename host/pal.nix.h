// What the host asks of Linux: environment, paths, folders, shared libraries, output.
#pragma once

#include <cstdarg>
#include <string>
#include <vector>

namespace pal {

// An empty variable counts as absent: false with `value` empty.
bool getenv(const char *name, std::string &value);

// strtol in base 10; text that is no number gives 0.
int to_int(const std::string &text);

// Whether the path opens for reading, so an unreadable file counts as absent and a readable
// folder as present.
bool is_file_exists(const std::string &path);

// Appends "/" and `part`; an empty `path` becomes `part`. A slash that is already there is not
// looked at.
void path_append(std::string &path, const std::string &part);

// Everything before the last "/", or "".
std::string path_get_directory(const std::string &path);

bool path_is_relative(const std::string &path);

// The file of the running executable, links resolved; "" when the system does not tell it.
std::string get_entry_point_exe();

// Loads with global symbols; null on failure.
void *load_library(const std::string &path);

// Finds a library that is already in the process, and loads nothing.
bool get_module(const std::string &path, void **handle);

int free_library(void *handle);
void *get_symbol(void *handle, const char *name);

// Each writes one line, ended by "\r\n", and flushes: a start-up that fails aborts the process,
// and an abort drops what is still buffered.
void err_vprintf(const char *format, va_list arguments);
void out_vprintf(const char *format, va_list arguments);

// Searches the children "netcore<major>.<minor>" of `root` for the highest version that holds
// `file`. Gives false and leaves `result` alone when there is none; throws std::out_of_range when
// a number does not fit an int.
bool get_major_netcore_path(const std::string &root, const std::string &file, std::string &result);

// Adds the sub-folders of `root` (with `debug`, those of their "debug" folders that exist) to
// `result`: "gfxtypes" at the end, each other one at the front.
void get_app_folders(const std::string &root, bool debug, std::vector<std::string> &result);

} // namespace pal
