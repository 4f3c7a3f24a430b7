// The hidden modules of the hand-made wrappers.
#include "collections/interop_module.h"

#include "collections/collection_types.h"
#include "collections/generic.h"
#include "collections/interop_wrappers.h"
#include "marshal/buffers.h"
#include "shell/module_identity.h"
#include "shell/module_tree.h"
#include "shell/ref.h"

namespace {

PyModuleDef wrpPye_mlds_FFFFFF_common_wrappers = {PyModuleDef_HEAD_INIT,
                                                  module_identity::wrpgen_module,
                                                  nullptr,
                                                  -1,
                                                  nullptr,
                                                  nullptr,
                                                  nullptr,
                                                  nullptr,
                                                  nullptr};

PyModuleDef wrpPye_mlds_FFFFFF_interop_wrappers = {PyModuleDef_HEAD_INIT,
                                                   module_identity::interop_module,
                                                   nullptr,
                                                   -1,
                                                   nullptr,
                                                   nullptr,
                                                   nullptr,
                                                   nullptr,
                                                   nullptr};

constexpr PyTypeObject *iterable = &wrpPye_tyds_IterableWrapper;
constexpr PyTypeObject *collection = &wrpPye_tyds_IColWrapper;
constexpr PyTypeObject *list = &wrpPye_tyds_IListWrapper;

// A view is no wrapper: it gets no marks.
int publish_buffer_view(PyObject *module) {
    if (fn_ready_type(&wrpPye_tyds_ShlBufferView) < 0) return -1;
    return fn_add_type(module, module_identity::interop_module, &wrpPye_tyds_ShlBufferView,
                       "_ShlBufferView");
}

bool publish_types(PyObject *module) {
    const auto publish = [module](PyTypeObject *type, const char *name,
                                  std::initializer_list<PyTypeObject *> interfaces) {
        return publish_wrapper_type(module, module_identity::interop_module, type, name,
                                    interfaces) == 0;
    };
    return publish(&wrpPye_tyds_IDisposableWrapper, "_IDisposableWrapper", {}) &&
           publish(&wrpPye_tyds_IterWrapper, "_IterWrapper", {}) &&
           publish(iterable, "_IterableWrapper", {}) &&
           publish(collection, "_IColWrapper", {iterable}) &&
           publish(list, "_IListWrapper", {iterable, collection}) &&
           publish(&wrpPye_tyds_RoColBaseWrapper, "_RoColBaseWrapper", {iterable, collection}) &&
           publish(&wrpPye_tyds_ColBaseWrapper, "_ColBaseWrapper", {iterable, collection, list}) &&
           publish(&wrpPye_tyds_ArrayWrapper, "_ArrayWrapper", {iterable, collection, list}) &&
           publish(&wrpPye_tyds_ArrListWrapper, "_ArrListWrapper", {iterable, collection, list}) &&
           publish_buffer_view(module) == 0 &&
           publish(&wrpPye_tyds_StreamWrapper, "_StreamWrapper", {&wrpPye_tyds_IDisposableWrapper});
}

} // namespace

PyObject *wrpPye_mlit_FFFFFFFF_interop_wrappers() {
    Ref module = Ref::steal(fn_create_module(&wrpPye_mlds_FFFFFF_interop_wrappers));
    if (!module || !publish_types(module.get())) return nullptr;
    return module.release();
}

PyObject *wrpPye_mlit_FFFFFFFF_common_wrappers(PyObject *root) {
    using namespace module_identity;
    PyObject *const wrpgen = fn_create_module(&wrpPye_mlds_FFFFFF_common_wrappers);
    if (fn_add_submodule(root, module_name, "_wrpgen", wrpgen) < 0) return nullptr;
    PyObject *const interop = wrpPye_mlit_FFFFFFFF_interop_wrappers();
    if (fn_add_submodule(wrpgen, wrpgen_module, "_interop", interop) < 0) return nullptr;
    PyObject *const generic = wrpPygn_mlit_FFFFFFFF_generic_wrappers();
    if (fn_add_submodule(wrpgen, wrpgen_module, "_generic", generic) < 0) return nullptr;
    return wrpgen; // owned by the root
}
