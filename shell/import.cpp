// Imports siblings by the version rule, and types by name.
#include "shell/import.h"

#include "shell/identifiers.h"
#include "shell/import_errors.h"
#include "shell/module_tree.h"
#include "shell/ref.h"
#include "shell/version.h"

#include <cstdarg>

const int reference_version[4] = {24, 5, 3, 0};

namespace {

// The four texts replace what an attribute look-up left, so that the user reads of the module and
// not of the attribute.
void raise_no_attribute(const char *module, const char *attribute) {
    PyErr_Format(PyExc_ImportError,
                 "Unable to import module dependencies. Cannot import the %s module. The %s module "
                 "found does not have '%s' attribute to check version compatibility.",
                 module, module, attribute);
}

void raise_lower(const char *module, PyObject *found, const int *reference) {
    PyErr_Format(PyExc_ImportError,
                 "Unable to import module dependencies. Cannot import the %s module. The %s module "
                 "found has a version ('%U') that is lower than the referenced version of that "
                 "module ('%i.%i.%i.%i').",
                 module, module, PyShVersionAttr_GetView(found), reference[0], reference[1],
                 reference[2], reference[3]);
}

void raise_not_compatible(const char *importer, const char *module, PyObject *found,
                          PyObject *threshold, const int *reference) {
    PyErr_Format(PyExc_ImportError,
                 "Unable to import module dependencies. Cannot import the %s module. The installed "
                 "version of the module ('%U') is not compatible with the referenced vesion of the "
                 "module ('%i.%i.%i.%i'). The installed version of the module is not compatible "
                 "with the module versions < '%U'. Update dendend module '%s' to a latest version.",
                 module, PyShVersionAttr_GetView(found), reference[0], reference[1], reference[2],
                 reference[3], PyShVersionAttr_GetView(threshold), importer);
}

bool is_compatible(const char *importer, const char *module, PyObject *imported,
                   const int *reference) {
    const Ref found = Ref::steal(PyObject_GetAttr(imported, PyWrpIdOwn_Version));
    if (!found) return raise_no_attribute(module, "VERSION"), false;
    if (PyShVersionAttr_Compare(reference, found.get()) > 0)
        return raise_lower(module, found.get(), reference), false;
    const Ref threshold =
        Ref::steal(PyObject_GetAttr(imported, PyWrpIdOwn_BackwardCompatibilityThreshold));
    // The attribute has a leading underscore, the text never had one.
    if (!threshold) return raise_no_attribute(module, "BACKWARD_COMPATIBILITY_THRESHOLD"), false;
    if (PyShVersionAttr_Compare(reference, threshold.get()) >= 0) return true;
    raise_not_compatible(importer, module, found.get(), threshold.get(), reference);
    return false;
}

// The object itself when it is a type, else empty with TypeError set.
Ref require_type(Ref object) {
    if (!object || PyType_Check(object.get())) return object;
    PyErr_Format(PyExc_TypeError, "Attribute must be %.200s object, not '%.200s'",
                 PyType_Type.tp_name, Py_TYPE(object.get())->tp_name);
    return Ref();
}

// The attribute of a module that is loaded already; empty, without an exception, when the long way
// must be gone: also for a module that another thread is still loading. What else a module raises
// when it is asked, an interrupt say, is not lost.
Ref loaded_attribute(const char *module, PyObject *name) {
    const Ref module_name = Ref::steal(PyUnicode_FromString(module));
    const Ref loaded = Ref::steal(module_name ? PyImport_GetModule(module_name.get()) : nullptr);
    Ref attribute = Ref::steal(loaded ? PyObject_GetAttr(loaded.get(), name) : nullptr);
    if (!attribute && (!loaded || PyErr_ExceptionMatches(PyExc_AttributeError))) PyErr_Clear();
    return attribute;
}

Ref import_type(const char *module, PyObject *name) {
    // Types are looked up for single values, and the import machinery takes half a microsecond.
    Ref type = loaded_attribute(module, name);
    if (!type && !PyErr_Occurred()) {
        const Ref imported = Ref::steal(PyImport_ImportModule(module));
        if (!imported) {
            PyShlErr_UnableToImportModule(module);
            return Ref();
        }
        type = Ref::steal(PyObject_GetAttr(imported.get(), name));
    }
    if (!type) PyShlErr_UnableToImportType(name, module);
    return type;
}

Ref nested_type(PyObject *outer, PyObject *name) {
    Ref type = Ref::steal(PyObject_GetAttr(outer, name));
    if (!type)
        PyShlErr_UnableToImportNestedType(reinterpret_cast<PyTypeObject *>(outer)->tp_name, name);
    return require_type(std::move(type));
}

} // namespace

PyObject *PyShImport_ImportRefModule(const char *importer, const char *module,
                                     const int *reference) {
    Ref imported = Ref::steal(PyImport_ImportModule(module));
    if (!imported) {
        PyShlErr_DependencyImportError(module);
        return nullptr;
    }
    return is_compatible(importer, module, imported.get(), reference) ? imported.release()
                                                                      : nullptr;
}

PyObject *PyShImport_ImportType(const char *module, PyObject *name) {
    return import_type(module, name).release();
}

PyObject *PyShImport_ImportTypeEx(const char *module, PyObject *name) {
    return require_type(import_type(module, name)).release();
}

PyObject *PyShImport_ImportTypeExV(const char *module, int count, ...) {
    va_list names;
    va_start(names, count);
    Ref type = require_type(import_type(module, va_arg(names, PyObject *)));
    for (int i = 1; i < count && type; ++i)
        type = nested_type(type.get(), va_arg(names, PyObject *));
    va_end(names);
    return type.release();
}

int PyShModule_AddType(PyObject *module, PyTypeObject *type, const char *name) {
    if (fn_ready_type(type) < 0) return -1;
    const char *module_name = PyModule_GetName(module);
    if (module_name) return fn_add_type(module, module_name, type, name);
    PyShlErr_TypeInitializationInternalError(-1014, "?", name);
    return -1;
}
