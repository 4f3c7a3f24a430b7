// kelmor.shellbase: what the whole family shares without a runtime, the result of a cast.
#define KELMOR_MODULE_NAME "kelmor.shellbase"
#include "shell/module_identity.inc"

#include "cast_op_result.h"
#include "export_capsules.h"

#include "shell/import.h"
#include "shell/module_entry.h"
#include "shell/module_tree.h"
#include "shell/ref.h"

namespace {

PyModuleDef definition = {
    .m_base = PyModuleDef_HEAD_INIT, .m_name = KELMOR_MODULE_NAME, .m_size = -1};

// What the capsule points at. Its first word is the factory, which each module of the family takes.
PyObject *(*const factory_table[])(int status, PyObject *value) = {cast_op_result_new};

const CapsuleExport capsules[] = {{KELMOR_MODULE_NAME "._C_APIF", factory_table}};

PyObject *build_tree() {
    Ref module = Ref::steal(fn_create_module(&definition));
    if (!module || PyShModule_AddType(module.get(), &CastOpResult_Type, "CastOpResult") < 0 ||
        fn_set_leaf_package(module.get(), KELMOR_MODULE_NAME) < 0)
        return nullptr;
    return module.release();
}

int export_all(PyObject *root) { return fn_export_capsules(root, KELMOR_MODULE_NAME, capsules); }

const ModuleDescription description = {
    .name = KELMOR_MODULE_NAME,
    .build_tree = build_tree,
    .export_capsules = export_all,
};

} // namespace

KELMOR_MODULE_ENTRY PyInit_shellbase() { return module_entry(description); }
