// Tests a positional argument count in the words of the interpreter.
#include "shell/arguments.h"

bool fn_check_args_count_out_of_range(Py_ssize_t count, const char *function, Py_ssize_t minimum,
                                      Py_ssize_t maximum) {
    if (minimum <= count && count <= maximum) return false;
    const bool too_few = count < minimum;
    const Py_ssize_t bound = too_few ? minimum : maximum;
    const char *word = minimum == maximum ? "exactly" : too_few ? "at least" : "at most";
    PyErr_Format(PyExc_TypeError, "%.150s%s takes %s %d argument%s (%zd given)",
                 function ? function : "function", function ? "()" : "", word,
                 static_cast<int>(bound), bound == 1 ? "" : "s", count);
    return true;
}
