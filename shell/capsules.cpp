// Imports the capsules of the siblings and keeps the words that are wanted.
#include "shell/capsules.h"

#include "shell/import.h"
#include "shell/import_errors.h"
#include "shell/ref.h"

#include <cstring>

namespace {

int import_capsule(const CapsuleImport &capsule) {
    const auto *table = static_cast<const char *>(PyCapsule_Import(capsule.name, 0));
    if (!table) {
        PyShlErr_CapsuleImportError(capsule.name);
        return -1;
    }
    void *const places[] = {capsule.py_to_clr, capsule.clr_to_py, capsule.pass_through};
    for (size_t word = 0; word < std::size(places); ++word) {
        if (places[word]) std::memcpy(places[word], table + word * sizeof(void *), sizeof(void *));
    }
    return 0;
}

int import_source(const char *importer, const CapsuleSource &source) {
    const Ref module =
        Ref::steal(PyShImport_ImportRefModule(importer, source.module, reference_version));
    if (!module) return -1;
    for (const CapsuleImport &capsule : source.capsules) {
        if (import_capsule(capsule) < 0) return -1;
    }
    return 0;
}

} // namespace

int import_capsules(const char *importer, std::span<const CapsuleSource> sources) {
    for (const CapsuleSource &source : sources) {
        if (import_source(importer, source) < 0) return -1;
    }
    return 0;
}
