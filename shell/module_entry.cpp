// Runs a module's start, step by step, and numbers the failures.
//
// The order is a requirement. The siblings are imported and checked before a runtime is started,
// so that a bad installation is a plain ImportError; the runtime and its services stand before the
// first type exists, since every type binds its delegates against them at its first use.
#include "shell/module_entry.h"

#include "shell/add_object.h"
#include "shell/cast_result.h"
#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/import_errors.h"
#include "shell/version.h"

namespace {

// 0, or -1 with the reason pending.
int take_cast_result_factory(const char *importer) {
    const char *const capsule = "kelmor.shellbase._C_APIF";
    const Ref module =
        Ref::steal(PyShImport_ImportRefModule(importer, "kelmor.shellbase", reference_version));
    if (!module) return -1;
    const void *table = PyCapsule_Import(capsule, 0);
    if (!table) {
        PyShlErr_CapsuleImportError(capsule);
        return -1;
    }
    PyShCastOpResult_New = *static_cast<decltype(PyShCastOpResult_New) const *>(table);
    return 0;
}

// 0, or the code of the step that failed.
int prepare(const ModuleDescription &module) {
    if (module.import_capsules && module.import_capsules() < 0) return -1009;
    if (module.uses_cast_results && take_cast_result_factory(module.name) < 0) return -1008;
    if (module.start_runtime && module.start_runtime(module.name, module.assembly) < 0)
        return -1007;
    return 0;
}

int add_version(PyObject *root) {
    return add_object(root, "VERSION",
                      Ref::steal(PyShVersionAttr_Create(24, 11, 0, 0, "24.11.0.0")));
}

// The oldest reference version that a dependant may have been built against.
int add_threshold(PyObject *root) {
    return add_object(root, "_BACKWARD_COMPATIBILITY_THRESHOLD",
                      Ref::steal(PyShVersionAttr_Create(22, 6, 0, 0, "22.6.0.0")));
}

// As above.
int complete(const ModuleDescription &module, PyObject *root) {
    if (module.add_wrappers && !module.add_wrappers(root)) return -1005;
    if (PyShModule_AddType(root, &PyShModuleVersion_Type, "_ModuleVersionType") < 0) return -1004;
    if (add_version(root) < 0) return -1001;
    if (add_threshold(root) < 0) return -1019;
    if (module.export_capsules && module.export_capsules(root) < 0) return -1006;
    return 0;
}

PyObject *fail(const ModuleDescription &module, int code) {
    PyShlErr_ModulePyInitError(module.name, code);
    return nullptr;
}

} // namespace

PyObject *module_entry(const ModuleDescription &module) {
    fn_intern_identifiers();
    int code = prepare(module);
    if (code) return fail(module, code);
    Ref root = Ref::steal(module.build_tree());
    if (!root) return fail(module, -1006);
    code = complete(module, root.get());
    return code ? fail(module, code) : root.release();
}
