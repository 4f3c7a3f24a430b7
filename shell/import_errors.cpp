// The words of the import errors, and how they are chained.
#include "shell/import_errors.h"

#include "shell/raised.h"

#include <cstdarg>

namespace {

void chain_format(PyObject *type, const char *format, va_list values) {
    Ref cause = take_raised();
    PyErr_FormatV(type, format, values);
    Ref raised = take_raised();
    // Both setters take a reference over.
    PyException_SetCause(raised.get(), Py_NewRef(cause.get()));
    PyException_SetContext(raised.get(), cause.release());
    raise_again(std::move(raised));
}

} // namespace

void PyShlErr_ChainFormat(PyObject *type, const char *format, ...) {
    va_list values;
    va_start(values, format);
    chain_format(type, format, values);
    va_end(values);
}

void PyShlErr_ChainOrFormat(PyObject *type, const char *format, ...) {
    va_list values;
    va_start(values, format);
    if (PyErr_Occurred())
        chain_format(type, format, values);
    else
        PyErr_FormatV(type, format, values);
    va_end(values);
}

void PyShlErr_ModulePyInitError(const char *name, int code) {
    PyShlErr_ChainOrFormat(PyExc_ImportError,
                           "One or more errors occurred while loading the module '%s' (%i)", name,
                           code);
}

void PyShlErr_DependencyImportError(const char *name) {
    PyShlErr_ChainOrFormat(PyExc_ImportError,
                           "Unable to import module dependencies. Cannot import the %s module. The "
                           "module not found or errors occurred while initializing it.",
                           name);
}

void PyShlErr_UnableToImportModule(const char *name) {
    PyShlErr_ChainOrFormat(PyExc_ImportError,
                           "Unable to import the specified module %s. The module not found or "
                           "errors occurred while initializing it.",
                           name);
}

void PyShlErr_UnableToImportType(PyObject *type_name, const char *module) {
    PyShlErr_ChainOrFormat(PyExc_ImportError,
                           "Unable to import the specified type %U from the module %s. The type "
                           "not found or errors occurred while initializing it.",
                           type_name, module);
}

void PyShlErr_UnableToImportNestedType(const char *outer, PyObject *name) {
    PyShlErr_ChainOrFormat(PyExc_ImportError, "%s does not contain nested type %U", outer, name);
}

void PyShlErr_CapsuleImportError(const char *name) {
    PyShlErr_ChainOrFormat(PyExc_ImportError, "can't import capsule '%s'", name);
}

void PyShlErr_ModuleInitializationInternalError(int code) {
    PyShlErr_ChainOrFormat(PyExc_ImportError, "Module initialization internal error (%i)", code);
}

void PyShlErr_ModuleInitializationInternalError(int code, const char *name) {
    PyShlErr_ChainOrFormat(PyExc_ImportError, "Module initialization internal error (%i) <%s>",
                           code, name);
}

void PyShlErr_ModuleInitializationInternalError(int code, const char *parent, const char *child) {
    PyShlErr_ChainOrFormat(PyExc_ImportError, "Module initialization internal error (%i) <%s,%s>",
                           code, parent, child);
}

void PyShlErr_TypeInitializationInternalError(int code, const char *name) {
    PyShlErr_ChainOrFormat(PyExc_ImportError, "Type initialization internal error (%i) <%s>", code,
                           name);
}

void PyShlErr_TypeInitializationInternalError(int code, const char *owner, const char *member) {
    PyShlErr_ChainOrFormat(PyExc_ImportError, "Type initialization internal error (%i) <%s,%s>",
                           code, owner, member);
}

void PyShlErr_EnumTypeInitialization(const char *message, const char *name) {
    PyErr_SetString(PyExc_TypeError, message);
    PyShlErr_ChainFormat(PyExc_ImportError, "enum type '%s' is not initialized", name);
}
