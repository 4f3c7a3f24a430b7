// Facts about a bound type as entries of its own dictionary, where sibling modules can read them.
//
// A sibling's wrapper has slot functions of its own file, so slots cannot tell it; a marker can,
// and it promises the layout of PyClrObject. Look-ups read the dictionary of exactly the type at
// hand: every type has entries of its own, inherited interfaces spelled out.
//
// Setters give true on success. A module initialiser calls them in this order: additional
// interfaces, implicit interfaces, host, castable.
#pragma once

#include "marshal/records.h"
#include "shell/cpython.h"

#include <cstdarg>

bool fn_set_obj_type_host_markattr(PyTypeObject *type);
bool fn_set_stc_type_host_markattr(PyTypeObject *type);
bool fn_set_castable_type_markattr(PyTypeObject *type, PyObject *value); // Ellipsis: enumeration
bool fn_set_external_ancestor_markattr(PyTypeObject *type, PyTypeObject *ancestor);

// Interfaces that a wrapper may be passed as with no managed call; then those through which a
// result may be shown as its class. The rest are `count` type pointers.
bool fn_set_additional_ifcs_markattr(PyTypeObject *type, int count, ...);
bool fn_set_implicit_ifcs_markattr(PyTypeObject *type, int count, ...);
bool fn_set_any_ifcs_markattr(PyTypeObject *type, PyObject *key, int count, va_list interfaces);

bool fn_is_refobj_has_host_markattr(PyObject *object);
bool fn_is_instance_has_host_markattr(PyObject *object, int *kind); // 0 class, 1 struct
bool fn_has_external_ancestor_markattr(PyObject *object, PyTypeObject *ancestor);
bool fn_contains_any_ifc_markattr(PyTypeObject *type, PyObject *key, PyTypeObject *interface);
bool fn_contains_additional_ifc_markattr(PyObject *object, PyTypeObject *interface);
bool fn_contains_implicit_ifc_markattr(PyTypeObject *type, PyTypeObject *interface);

// Wrappers of any module of the family: 1, or 0 with no Python error. "Not null" refuses None,
// not a wrapper whose handle is null.
int fn_conv_py_obj_to_clr_refobj_not_null_handle(PyObject *object, void **out);
int fn_conv_py_obj_to_clr_gen_not_null_handle(PyObject *object, VariantArg *out);
// For None only the handle is written.
int fn_conv_py_obj_to_clr_gen_handle(PyObject *object, VariantArg *out);

// Stores an entry in a type's own dictionary. A static type refuses setattr, so the dictionary is
// written directly; the attribute cache must be told. 0 or -1.
int set_type_entry(PyTypeObject *type, PyObject *key, PyObject *value);
int set_type_entry(PyTypeObject *type, const char *key, PyObject *value);
