// Publishes bound types: registered before they are marked, marked before they are shown.
#include "binding/publish.h"

#include "binding/markers.h"
#include "binding/types_map.h"
#include "shell/import_errors.h"
#include "shell/module_tree.h"

namespace {

int fail(int code, const PyTypeObject *type) {
    PyShlErr_TypeInitializationInternalError(code, type->tp_name);
    return -1;
}

constexpr std::size_t most_interfaces = 12;

// The setters are variadic and read `count` of the pointers.
template <class Setter>
bool set_interfaces(Setter set, PyTypeObject *type, PyTypeObject *const *interfaces,
                    std::size_t count) {
    if (count == 0) return true;
    PyTypeObject *row[most_interfaces] = {};
    if (count > most_interfaces) return false;
    for (std::size_t i = 0; i < count; ++i) row[i] = interfaces[i];
    return set(type, static_cast<int>(count), row[0], row[1], row[2], row[3], row[4], row[5],
               row[6], row[7], row[8], row[9], row[10], row[11]);
}

int show(PyObject *module, const char *module_name, const BoundType &row) {
    if (row.enclosing == nullptr) return fn_add_type(module, module_name, row.type, row.name);
    PyObject *const entry = reinterpret_cast<PyObject *>(row.type);
    if (set_type_entry(row.enclosing, row.name, entry) == 0) return 0;
    PyShlErr_TypeInitializationInternalError(-1020, row.enclosing->tp_name, row.name);
    return -1;
}

} // namespace

int mark_bound_type(const BoundType &row) {
    PyTypeObject *const type = row.type;
    if (!set_interfaces(fn_set_additional_ifcs_markattr, type, row.additional,
                        row.additional_count))
        return fail(-1017, type);
    if (!set_interfaces(fn_set_implicit_ifcs_markattr, type, row.implicit, row.implicit_count))
        return fail(-1018, type);
    const bool marked =
        row.is_struct ? fn_set_stc_type_host_markattr(type) : fn_set_obj_type_host_markattr(type);
    if (!marked) return fail(-1016, type);
    if (!fn_set_castable_type_markattr(type, Py_None)) return fail(-1021, type);
    return 0;
}

int publish_bound_type(PyObject *module, const char *module_name, const BoundType &row) {
    PyWrpTypesMap::get_instance()->add(row.managed_name, row.type);
    if (mark_bound_type(row) < 0 || show(module, module_name, row) < 0) return -1;
    return row.install_members == nullptr ? 0 : row.install_members();
}

int ready_bound_types(PyTypeObject *const *types, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        if (fn_ready_type(types[i]) < 0) return -1;
    return 0;
}
