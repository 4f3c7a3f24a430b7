// Tells PyInstaller where the hooks of the family lie.
#pragma once

#include "shell/cpython.h"

// A new list of `count + 1` paths beside the file of the module: `hook_folder` itself, and the one
// in each of the folders. Null with an exception set on a failure.
PyObject *fn_get_pyinstaller_hook_dirs(PyModuleDef *def, const char **folders, Py_ssize_t count,
                                       const char *hook_folder);
