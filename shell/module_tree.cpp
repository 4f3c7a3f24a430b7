// Creates modules and publishes what belongs to them.
#include "shell/module_tree.h"

#include "shell/add_object.h"
#include "shell/import_errors.h"

namespace {

int fail_module(const char *module_name) {
    PyShlErr_ModuleInitializationInternalError(-1022, module_name);
    return -1;
}

Ref text_of(std::string_view text) {
    return Ref::steal(
        PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size())));
}

int set_package(PyObject *module, const char *module_name, std::string_view package) {
    Ref name = text_of(package);
    if (!name || add_object(module, "__package__", std::move(name)) < 0)
        return fail_module(module_name);
    return 0;
}

} // namespace

PyObject *fn_create_module(PyModuleDef *definition) {
    // The interface version is fixed: all interpreters that we build for know this one.
    PyObject *module = PyModule_Create2(definition, 1013);
    if (!module) PyShlErr_ModuleInitializationInternalError(-1003, definition->m_name);
    return module;
}

int fn_add_submodule(PyObject *parent, const char *parent_name, const char *leaf, PyObject *child) {
    if (!child) return -1;
    if (add_object(parent, leaf, Ref::steal(child)) == 0) return 0;
    PyShlErr_ModuleInitializationInternalError(-1002, parent_name, leaf);
    return -1;
}

int fn_ready_type(PyTypeObject *type) {
    if (PyType_Ready(type) == 0) return 0;
    PyShlErr_TypeInitializationInternalError(-1015, type->tp_name);
    return -1;
}

int fn_add_type(PyObject *module, const char *module_name, PyTypeObject *type, const char *name) {
    if (add_object(module, name, Ref::borrow(reinterpret_cast<PyObject *>(type))) == 0) return 0;
    PyShlErr_TypeInitializationInternalError(-1014, module_name, name);
    return -1;
}

void fn_set_home(PyObject *enumeration, std::string_view module_name,
                 std::string_view qualified_name) {
    const Ref home = text_of(module_name);
    const Ref path = text_of(qualified_name);
    if (!home || !path || PyObject_SetAttrString(enumeration, "__module__", home.get()) < 0 ||
        PyObject_SetAttrString(enumeration, "__qualname__", path.get()) < 0)
        PyErr_Clear();
}

int fn_add_enum(PyObject *module, const char *module_name, const char *full_name, const char *name,
                PyObject *created) {
    if (!created) {
        PyShlErr_TypeInitializationInternalError(-1013, full_name);
        return -1;
    }
    fn_set_home(created, module_name, name);
    if (add_object(module, name, Ref::steal(created)) == 0) return 0;
    PyShlErr_TypeInitializationInternalError(-1014, module_name, name);
    return -1;
}

int fn_set_leaf_package(PyObject *module, const char *module_name) {
    const std::string_view name = module_name;
    const size_t dot = name.rfind('.');
    return set_package(module, module_name, name.substr(0, dot == name.npos ? 0 : dot));
}

int fn_set_branch_package(PyObject *module, const char *module_name) {
    if (set_package(module, module_name, module_name) < 0) return -1;
    Ref path = Ref::steal(PyList_New(0));
    if (!path || add_object(module, "__path__", std::move(path)) < 0)
        return fail_module(module_name);
    return 0;
}
