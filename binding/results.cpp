// Chooses the Python type of a managed result and wraps its handle.
#include "binding/results.h"

#include "binding/clr_object.h"
#include "binding/markers.h"
#include "binding/types_map.h"
#include "host/exchange_host.h"
#include "shell/ref.h"

namespace {

// Kinds of PyCollectionArg; how 0 and 1 are read depends on the reader.
enum : std::int32_t { another_type = 1, python_object = 2 };

PyTypeObject *implicit_implementer(void *handle, std::int64_t id, PyTypeObject *declared) {
    PyTypeObject *const candidate = resolve_weakly(handle, id);
    const bool shows =
        candidate != nullptr && fn_contains_implicit_ifc_markattr(candidate, declared);
    return shows ? candidate : nullptr;
}

PyObject *same_python_object(void *object) {
    return Ref::borrow(static_cast<PyObject *>(object)).release();
}

PyTypeObject *exposed_type_or_release(void *handle, std::int64_t id) {
    PyTypeObject *const type = get_py_type_object_by_obj(handle, id);
    if (type == nullptr) ExchangeHost::get_instance()->free_instance(handle);
    return type;
}

} // namespace

PyObject *fn_conv_clr_clsobj_to_py_clsobj(void *handle, PyTypeObject *declared) {
    if (handle == nullptr) return fn_py_return_none();
    return fn_py_clr_type_generic_new(handle, declared);
}

PyObject *fn_conv_clr_ifcimpl_to_py_ifcimpl(const PyObjectOutArg &result, PyTypeObject *declared) {
    if (result.handle == nullptr) return fn_py_return_none();
    PyTypeObject *const shown = implicit_implementer(result.handle, result.type_token, declared);
    return fn_py_clr_type_generic_new(result.handle, shown != nullptr ? shown : declared);
}

PyObject *fn_conv_clr_btpobj_to_py_btpobj(const PyCollectionArg &result, PyTypeObject *declared) {
    if (result.handle == nullptr) return fn_py_return_none();
    PyTypeObject *shown = nullptr;
    if (result.kind == another_type) shown = resolve_weakly(result.handle, result.type_token);
    return fn_py_clr_type_generic_new(result.handle, shown != nullptr ? shown : declared);
}

PyObject *fn_conv_clr_absobj_to_py_absobj(const PyCollectionArg &result, PyTypeObject *declared) {
    if (result.handle == nullptr) return fn_py_return_none();
    if (result.kind == python_object) return same_python_object(result.handle);
    PyTypeObject *const shown = resolve_weakly(result.handle, result.type_token);
    return fn_py_clr_type_generic_new(result.handle, shown != nullptr ? shown : declared);
}

PyObject *fn_conv_clr_ifcimpl_to_py_ifcimpl_wps(const PyCollectionArg &result,
                                                PyTypeObject *declared) {
    if (result.handle == nullptr) return fn_py_return_none();
    if (result.kind == python_object) return same_python_object(result.handle);
    PyTypeObject *const shown = implicit_implementer(result.handle, result.type_token, declared);
    if (shown != nullptr) return fn_py_clr_type_generic_new(result.handle, shown);
    // A value type behind an interface: the managed side gives its box and releases the target.
    void *const handle = result.kind == another_type
                             ? ExchangeHost::get_instance()->box_stc_target(result.handle)
                             : result.handle;
    return fn_py_clr_type_generic_new(handle, declared);
}

PyObject *fn_conv_clr_vlarr_to_py_vlarr(const VariantArg &result, PyTypeObject *kind_zero,
                                        PyTypeObject *other_kinds) {
    if (result.value == nullptr) return fn_py_return_none();
    return fn_py_clr_type_generic_new(result.value, result.kind == 0 ? kind_zero : other_kinds);
}

PyObject *fn_free_handles(std::initializer_list<void *> handles) {
    for (void *handle : handles) {
        if (handle != nullptr) ExchangeHost::get_instance()->free_instance(handle);
    }
    return nullptr;
}

PyObject *fn_write_py_tpo(void *handle, std::int64_t id) {
    PyTypeObject *const type = exposed_type_or_release(handle, id);
    if (type != nullptr) return fn_py_clr_type_generic_new(handle, type);
    PyErr_SetString(PyExc_TypeError, "unknown wrapper type");
    return nullptr;
}

int fn_try_write_py_tpo(void *handle, std::int64_t id, PyObject **out) {
    PyTypeObject *const type = exposed_type_or_release(handle, id);
    if (type == nullptr) return 0;
    *out = fn_py_clr_type_generic_new(handle, type);
    return *out != nullptr ? 1 : -1;
}
