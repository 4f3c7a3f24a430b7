// What tests reach of the module shell.
#include "peer/probe.h"

#include "shell/arguments.h"
#include "shell/capsules.h"
#include "shell/cast_result.h"
#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/import_errors.h"
#include "shell/module_tree.h"
#include "shell/pyinstaller_hooks.h"
#include "shell/version.h"

#include <cstdint>

namespace {

const ProbeRow identifier_rows[] = {
    PROBE_ROW(fn_intern_identifiers),
#define IDENTIFIER(variable, text) PROBE_ROW(variable),
#include "shell/identifiers.inc"
#undef IDENTIFIER
};
const ProbeTable identifier_table(identifier_rows);

// Calls a function while an exception is pending, which Python code cannot. All parts may be null.
void call_with_pending(PyObject *type, PyObject *value, PyObject *traceback,
                       void (*function)(std::uintptr_t, ...), std::uintptr_t first,
                       std::uintptr_t second, std::uintptr_t third, std::uintptr_t fourth) {
    PyErr_Restore(Py_XNewRef(type), Py_XNewRef(value), Py_XNewRef(traceback));
    function(first, second, third, fourth);
}

// Overloads by the number of their texts.
void module_internal_error_0(int code) { PyShlErr_ModuleInitializationInternalError(code); }
void module_internal_error_1(int code, const char *name) {
    PyShlErr_ModuleInitializationInternalError(code, name);
}
void module_internal_error_2(int code, const char *parent, const char *child) {
    PyShlErr_ModuleInitializationInternalError(code, parent, child);
}
void type_internal_error_1(int code, const char *name) {
    PyShlErr_TypeInitializationInternalError(code, name);
}
void type_internal_error_2(int code, const char *owner, const char *member) {
    PyShlErr_TypeInitializationInternalError(code, owner, member);
}

const ProbeRow error_rows[] = {
    PROBE_ROW(call_with_pending),
    PROBE_ROW(PyShlErr_ChainFormat),
    PROBE_ROW(PyShlErr_ChainOrFormat),
    PROBE_ROW(PyShlErr_ModulePyInitError),
    PROBE_ROW(PyShlErr_DependencyImportError),
    PROBE_ROW(PyShlErr_UnableToImportModule),
    PROBE_ROW(PyShlErr_UnableToImportType),
    PROBE_ROW(PyShlErr_UnableToImportNestedType),
    PROBE_ROW(PyShlErr_CapsuleImportError),
    PROBE_ROW(PyShlErr_EnumTypeInitialization),
    PROBE_ROW(module_internal_error_0),
    PROBE_ROW(module_internal_error_1),
    PROBE_ROW(module_internal_error_2),
    PROBE_ROW(type_internal_error_1),
    PROBE_ROW(type_internal_error_2),
};
const ProbeTable error_table(error_rows);

// One capsule, its three places.
int import_one_capsule(const char *importer, const char *module, const char *name, void **word_0,
                       void **word_1, void **word_2) {
    const CapsuleImport capsule[] = {{name, word_0, word_1, word_2}};
    const CapsuleSource source[] = {{module, capsule}};
    return import_capsules(importer, source);
}

const ProbeRow import_rows[] = {
    PROBE_ROW(PyShModuleVersion_Type),
    PROBE_ROW(PyShVersionAttr_Create),
    PROBE_ROW(PyShVersionAttr_Compare),
    PROBE_ROW(PyShVersionAttr_GetView),
    PROBE_ROW(reference_version),
    PROBE_ROW(PyShImport_ImportRefModule),
    PROBE_ROW(PyShImport_ImportType),
    PROBE_ROW(PyShImport_ImportTypeEx),
    PROBE_ROW(PyShImport_ImportTypeExV),
    PROBE_ROW(PyShModule_AddType),
    PROBE_ROW(fn_check_args_count_out_of_range),
    PROBE_ROW(import_one_capsule),
    PROBE_ROW(PyShCastOpResult_New),
};
const ProbeTable import_table(import_rows);

const ProbeRow tree_rows[] = {
    PROBE_ROW(fn_create_module),      PROBE_ROW(fn_add_submodule),
    PROBE_ROW(fn_ready_type),         PROBE_ROW(fn_add_type),
    PROBE_ROW(fn_add_enum),           PROBE_ROW(fn_set_leaf_package),
    PROBE_ROW(fn_set_branch_package), PROBE_ROW(fn_get_pyinstaller_hook_dirs),
};
const ProbeTable tree_table(tree_rows);

} // namespace
