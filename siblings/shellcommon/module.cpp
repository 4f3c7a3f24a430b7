// kelmor.shellcommon: Python values in the forms that managed code takes, without a runtime.
#define KELMOR_MODULE_NAME "kelmor.shellcommon"
#include "shell/module_identity.inc"

#include "bytes_as_stream.h"

#include "shell/import.h"
#include "shell/module_entry.h"
#include "shell/module_tree.h"
#include "shell/ref.h"

namespace {

PyModuleDef definition = {
    .m_base = PyModuleDef_HEAD_INIT, .m_name = KELMOR_MODULE_NAME, .m_size = -1};

PyObject *build_tree() {
    Ref module = Ref::steal(fn_create_module(&definition));
    if (!module || PyShModule_AddType(module.get(), &BytesAsStream_Type, "BytesAsStream") < 0 ||
        fn_set_leaf_package(module.get(), KELMOR_MODULE_NAME) < 0)
        return nullptr;
    return module.release();
}

const ModuleDescription description = {
    .name = KELMOR_MODULE_NAME,
    .build_tree = build_tree,
};

} // namespace

KELMOR_MODULE_ENTRY PyInit_shellcommon() { return module_entry(description); }
