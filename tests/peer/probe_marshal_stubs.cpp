// Calls of the interpreter that a test may answer itself: failures that no input brings about.
//
// The linker sends the probe's calls here (`--wrap`); without an answer set they go on as always.
#include "peer/probe.h"

#include "shell/cpython.h"

namespace {

struct Stub {
    int active;
    PyObject *result; // borrowed; may be null
};
Stub stub_import_module;
Stub stub_as_utf16_string;
Stub stub_fs_decoder; // what it decodes to

const ProbeRow stub_rows[] = {PROBE_ROW(stub_import_module), PROBE_ROW(stub_as_utf16_string),
                              PROBE_ROW(stub_fs_decoder)};
const ProbeTable stub_table(stub_rows);

} // namespace

extern "C" {

PyObject *__real_PyImport_ImportModule(const char *name);
PyObject *__wrap_PyImport_ImportModule(const char *name) {
    if (!stub_import_module.active) return __real_PyImport_ImportModule(name);
    return Py_XNewRef(stub_import_module.result);
}

PyObject *__real_PyUnicode_AsUTF16String(PyObject *text);
PyObject *__wrap_PyUnicode_AsUTF16String(PyObject *text) {
    if (!stub_as_utf16_string.active) return __real_PyUnicode_AsUTF16String(text);
    return Py_XNewRef(stub_as_utf16_string.result);
}

int __real_PyUnicode_FSDecoder(PyObject *path, void *decoded);
int __wrap_PyUnicode_FSDecoder(PyObject *path, void *decoded) {
    if (!stub_fs_decoder.active) return __real_PyUnicode_FSDecoder(path, decoded);
    *static_cast<PyObject **>(decoded) = Py_XNewRef(stub_fs_decoder.result);
    return Py_CLEANUP_SUPPORTED;
}
}
