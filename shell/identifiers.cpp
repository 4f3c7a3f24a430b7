// Interns the vocabulary in its order.
#include "shell/identifiers.h"

#define IDENTIFIER(variable, text) PyObject *variable = nullptr;
#include "shell/identifiers.inc"
#undef IDENTIFIER

namespace {

struct Row {
    PyObject **variable;
    const char *text;
};

const Row rows[] = {
#define IDENTIFIER(variable, text) {&variable, text},
#include "shell/identifiers.inc"
#undef IDENTIFIER
};

} // namespace

void fn_intern_identifiers() {
    // A second import overwrites without a release: interned text stays for the process anyway.
    for (const Row &row : rows) *row.variable = PyUnicode_InternFromString(row.text);
}
