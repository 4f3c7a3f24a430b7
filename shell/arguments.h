// The common test of a positional argument count.
#pragma once

#include "shell/cpython.h"

// False when `count` lies within the bounds; otherwise true with TypeError set. A null `function`
// leaves the text without a name.
bool fn_check_args_count_out_of_range(Py_ssize_t count, const char *function, Py_ssize_t minimum,
                                      Py_ssize_t maximum);
