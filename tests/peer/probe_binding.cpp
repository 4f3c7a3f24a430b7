// What tests reach of the binding.
#include "peer/probe.h"
#include "peer/probe_sample.h"

#include "binding/clr_object.h"
#include "binding/descriptors.h"
#include "binding/enums.h"
#include "binding/markers.h"
#include "binding/method_object.h"
#include "binding/results.h"
#include "binding/sibling_types.h"
#include "binding/types_map.h"

namespace {

void map_add(const char16_t *name, PyTypeObject *type) {
    PyWrpTypesMap::get_instance()->add(std::u16string(name), type);
}
int map_find(const char16_t *name, PyTypeObject **type) {
    return PyWrpTypesMap::get_instance()->find(std::u16string(name), *type);
}
void map_add_id(std::int64_t id, PyTypeObject *type) {
    PyWrpTypesMap::get_instance()->add(id, type);
}
int map_find_id(std::int64_t id, PyTypeObject **type) {
    return PyWrpTypesMap::get_instance()->find(id, *type);
}
void map_add_weak(std::int64_t id, PyTypeObject *type) {
    PyWrpTypesMap::get_instance()->add_weak(id, type);
}
int map_find_weak(std::int64_t id, PyTypeObject **type) {
    return PyWrpTypesMap::get_instance()->find_weak(id, *type);
}
PyWrpTypesMap *map_get_instance() { return PyWrpTypesMap::get_instance(); }

bool any_ifcs(PyTypeObject *type, PyObject *key, int count, ...) {
    va_list interfaces;
    va_start(interfaces, count);
    const bool done = fn_set_any_ifcs_markattr(type, key, count, interfaces);
    va_end(interfaces);
    return done;
}

// Calls tp_repr of an object while an error is pending; gives what it returned and what is pending.
PyObject *repr_with_pending(PyObject *object, PyObject *type, PyObject *value) {
    PyErr_SetObject(type, value);
    PyObject *const text = Py_TYPE(object)->tp_repr(object);
    PyObject *kind, *what, *where;
    PyErr_Fetch(&kind, &what, &where);
    PyObject *const shown = Py_BuildValue("(NNN)", text != nullptr ? text : Py_NewRef(Py_None),
                                          kind != nullptr ? kind : Py_NewRef(Py_None),
                                          what != nullptr ? what : Py_NewRef(Py_None));
    Py_XDECREF(where);
    return shown;
}

// The slots of a type, in the order of the names of the tests.
void type_slots(PyTypeObject *type, void **slots) {
    slots[0] = reinterpret_cast<void *>(type->tp_dealloc);
    slots[1] = reinterpret_cast<void *>(type->tp_repr);
    slots[2] = reinterpret_cast<void *>(type->tp_hash);
    slots[3] = reinterpret_cast<void *>(type->tp_richcompare);
    slots[4] = reinterpret_cast<void *>(type->tp_methods[0].ml_meth);
    slots[5] = reinterpret_cast<void *>(type->tp_init);
}

const ProbeRow object_rows[] = {
    PROBE_ROW(sample_class),
    PROBE_ROW(sample_derived),
    PROBE_ROW(sample_struct),
    PROBE_ROW(sample_interface),
    PROBE_ROW(fn_py_clr_type_generic_new),
    PROBE_ROW(fn_is_this_module_clr_object),
    PROBE_ROW(fn_is_this_module_clr_instance),
    PROBE_ROW(fn_py_unknown_to_clr_unknown),
    PROBE_ROW(fn_py_return_none),
    PROBE_ROW(wrapClrObject_tp_dealloc),
    PROBE_ROW(wrapClrObject_str),
    PROBE_ROW(wrapClrObject_hash),
    PROBE_ROW(wrapClrObject_tp_richcompare),
    PROBE_ROW(wrapClrObject_get_type),
    PROBE_ROW(wrapClrObject_tp_init_fault),
    PROBE_ROW(wrapClrStruct_tp_dealloc),
    PROBE_ROW(wrapClrStruct_str),
    PROBE_ROW(wrapClrStruct_hash),
    PROBE_ROW(wrapClrStruct_tp_richcompare),
    PROBE_ROW(wrapClrStruct_get_type),
    PROBE_ROW(repr_with_pending),
    PROBE_ROW(type_slots),
    PROBE_ROW(wrpPyl_convcaps_clr_to_py_C08ECFAB_Type),
    PROBE_ROW(wrpPyl_trancaps_py_to_clr_C08ECFAB_Type),
    PROBE_ROW(wrpPyl_convcaps_clr_to_py_359C4ED8_Object),
    PROBE_ROW(wrpPyl_trancaps_py_to_clr_359C4ED8_Object),
    PROBE_ROW(wrpPyl_convcaps_clr_to_py_738AFABA_Enum),
};
const ProbeTable object_table(object_rows);

const ProbeRow map_rows[] = {
    PROBE_ROW(map_add),
    PROBE_ROW(map_find),
    PROBE_ROW(map_add_id),
    PROBE_ROW(map_find_id),
    PROBE_ROW(map_add_weak),
    PROBE_ROW(map_find_weak),
    PROBE_ROW(map_get_instance),
    PROBE_ROW(get_py_type_object_by_obj),
    PROBE_ROW(fn_conv_clr_clsobj_to_py_clsobj),
    PROBE_ROW(fn_conv_clr_ifcimpl_to_py_ifcimpl),
    PROBE_ROW(fn_conv_clr_btpobj_to_py_btpobj),
    PROBE_ROW(fn_conv_clr_absobj_to_py_absobj),
    PROBE_ROW(fn_conv_clr_ifcimpl_to_py_ifcimpl_wps),
    PROBE_ROW(fn_conv_clr_vlarr_to_py_vlarr),
    PROBE_ROW(fn_write_py_tpo),
    PROBE_ROW(fn_try_write_py_tpo),
};
const ProbeTable map_table(map_rows);

const ProbeRow marker_rows[] = {
    PROBE_ROW(fn_set_obj_type_host_markattr),
    PROBE_ROW(fn_set_stc_type_host_markattr),
    PROBE_ROW(fn_set_castable_type_markattr),
    PROBE_ROW(fn_set_external_ancestor_markattr),
    PROBE_ROW(fn_set_additional_ifcs_markattr),
    PROBE_ROW(fn_set_implicit_ifcs_markattr),
    PROBE_ROW(any_ifcs),
    PROBE_ROW(fn_is_refobj_has_host_markattr),
    PROBE_ROW(fn_is_instance_has_host_markattr),
    PROBE_ROW(fn_has_external_ancestor_markattr),
    PROBE_ROW(fn_contains_any_ifc_markattr),
    PROBE_ROW(fn_contains_additional_ifc_markattr),
    PROBE_ROW(fn_contains_implicit_ifc_markattr),
    PROBE_ROW(fn_conv_py_obj_to_clr_refobj_not_null_handle),
    PROBE_ROW(fn_conv_py_obj_to_clr_gen_not_null_handle),
    PROBE_ROW(fn_conv_py_obj_to_clr_gen_handle),
};
const ProbeTable marker_table(marker_rows);

const ProbeRow descriptor_rows[] = {
    PROBE_ROW(PyShDescr_NewStaticField),  PROBE_ROW(PyShDescr_NewInstanceMethod),
    PROBE_ROW(PyShDescr_NewStaticMethod), PROBE_ROW(PyShDescr_NewMixedMethod),
    PROBE_ROW(PyShCMethod_New),           PROBE_ROW(install_descriptor),
    PROBE_ROW(install_nested_enum),
};
const ProbeTable descriptor_table(descriptor_rows);

} // namespace
