// Choice among the signatures of a member: the first whose arguments all convert is called.
//
// Every failure of a parse is kept, of whatever class; when none is left, the failures together
// are one TypeError whose value is a list of texts in the order of the attempts. What happens after
// a successful parse is final. A generated dispatcher:
//
//     OverloadAttempts<2> attempts;
//     {
//         static const char *const keywords[] = {"file_path", nullptr};
//         PyStringArg file_path;
//         if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
//                                         fn_conv_py_string_to_clr_string, &file_path)) {
//             ... call, test, convert, return ...
//         }
//         attempts.keep_failure(0);
//     }
//     PyObject *const result = wrpPy_htgn_7E7D27DF_Image_001_save(self, args, kwds,
//                                                                 attempts.slot(1));
//     if (attempts.parsed(1)) return result;
//     return attempts.raise();                    // a tp_init: return attempts.raise_from_init();
//
// and an attempt that stands in a function of its own ends with
//
//     return keep_parse_failure(failure);        // a constructor: keep_parse_failure(failure), -1
#pragma once

#include "shell/cpython.h"

#include <cstddef>

// Moves the pending error's value into the slot and clears the indicator; gives null.
PyObject *keep_parse_failure(PyObject **slot);

// Raises TypeError over the texts of all failures, and drops them.
void raise_parse_failures(PyObject **failures, std::size_t count);
void drop_parse_failures(PyObject **failures, std::size_t count);

template <std::size_t Count> class OverloadAttempts {
public:
    OverloadAttempts() = default;
    OverloadAttempts(const OverloadAttempts &) = delete;
    OverloadAttempts &operator=(const OverloadAttempts &) = delete;
    ~OverloadAttempts() { drop_parse_failures(failures_, Count); }

    PyObject **slot(std::size_t attempt) { return &failures_[attempt]; }
    bool parsed(std::size_t attempt) const { return failures_[attempt] == nullptr; }
    void keep_failure(std::size_t attempt) { keep_parse_failure(&failures_[attempt]); }

    PyObject *raise() {
        raise_parse_failures(failures_, Count);
        return nullptr;
    }
    int raise_from_init() {
        raise_parse_failures(failures_, Count);
        return -1;
    }

private:
    PyObject *failures_[Count] = {}; // owned; null: not tried, or parsed
};
