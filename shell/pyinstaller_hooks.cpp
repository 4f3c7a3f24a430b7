// Builds the list of hook folders beside the module's file.
#include "shell/pyinstaller_hooks.h"

#include "shell/identifiers.h"
#include "shell/import_errors.h"
#include "shell/ref.h"

namespace {

Ref file_of(PyModuleDef *def) {
    PyObject *module = PyState_FindModule(def); // borrowed
    if (module) return Ref::steal(PyModule_GetFilenameObject(module));
    // A module that never got through its import is not known, and no exception says so.
    if (!PyErr_Occurred()) PyShlErr_ModuleInitializationInternalError(-1010);
    return Ref();
}

Ref join(PyObject *os_path, PyObject *base, const char *folder, PyObject *hook_folder) {
    if (!folder) {
        return Ref::steal(
            PyObject_CallMethodObjArgs(os_path, PyWrpIdOsPath_Join, base, hook_folder, nullptr));
    }
    const Ref between = Ref::steal(PyUnicode_FromString(folder));
    if (!between) return Ref();
    return Ref::steal(PyObject_CallMethodObjArgs(os_path, PyWrpIdOsPath_Join, base, between.get(),
                                                 hook_folder, nullptr));
}

} // namespace

PyObject *fn_get_pyinstaller_hook_dirs(PyModuleDef *def, const char **folders, Py_ssize_t count,
                                       const char *hook_folder) {
    const Ref file = file_of(def);
    if (!file) return nullptr;
    const Ref os_path = Ref::steal(PyImport_ImportModule("os.path"));
    if (!os_path) {
        PyShlErr_UnableToImportModule("os.path");
        return nullptr;
    }
    const Ref base = Ref::steal(
        PyObject_CallMethodObjArgs(os_path.get(), PyWrpIdOsPath_DirName, file.get(), nullptr));
    const Ref hook = Ref::steal(base ? PyUnicode_FromString(hook_folder) : nullptr);
    Ref paths = Ref::steal(hook ? PyList_New(count + 1) : nullptr);
    for (Py_ssize_t i = 0; paths && i <= count; ++i) {
        Ref path = join(os_path.get(), base.get(), i ? folders[i - 1] : nullptr, hook.get());
        if (!path) return nullptr;
        PyList_SET_ITEM(paths.get(), i, path.release());
    }
    return paths.release();
}
