// The worded import errors, chained on a pending exception.
//
// All worded ones raise ImportError. When an exception is pending it becomes both __cause__ and
// __context__ of the new one; otherwise the new one stands alone. Exactly one is pending after.
#pragma once

#include "shell/cpython.h"

// Requires a pending exception: raises `type` with the formatted text, chained on it.
void PyShlErr_ChainFormat(PyObject *type, const char *format, ...);

// PyShlErr_ChainFormat when an exception is pending, else PyErr_Format.
void PyShlErr_ChainOrFormat(PyObject *type, const char *format, ...);

// The numbered error of a module's entry.
void PyShlErr_ModulePyInitError(const char *name, int code);

void PyShlErr_DependencyImportError(const char *name);
void PyShlErr_UnableToImportModule(const char *name);
void PyShlErr_UnableToImportType(PyObject *type_name, const char *module);
void PyShlErr_UnableToImportNestedType(const char *outer, PyObject *name);
void PyShlErr_CapsuleImportError(const char *name);

// Codes: -1002 (parent, child) adding a sub-module; -1003 creating a module; -1010 a module that
// the interpreter does not find; -1022 adding __package__ or __path__.
void PyShlErr_ModuleInitializationInternalError(int code);
void PyShlErr_ModuleInitializationInternalError(int code, const char *name);
void PyShlErr_ModuleInitializationInternalError(int code, const char *parent, const char *child);

// Codes: -1013 creating an enumeration; -1014 (module, type) adding a type to its module; -1015
// readying a type; -1016 host mark; -1017 additional interfaces; -1018 implicit interfaces;
// -1020 (type, attribute) a member into a type's dictionary; -1021 castable mark.
void PyShlErr_TypeInitializationInternalError(int code, const char *name);
void PyShlErr_TypeInitializationInternalError(int code, const char *owner, const char *member);

// TypeError with `message`, and ImportError chained on it.
void PyShlErr_EnumTypeInitialization(const char *message, const char *name);
