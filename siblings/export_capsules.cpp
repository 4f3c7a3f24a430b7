// Makes capsules and puts them into the modules that their names tell.
#include "export_capsules.h"

#include "shell/add_object.h"

#include <string>

namespace {

// The sub-module that `path`, such as "imaging", names below `root`; an empty path is the root.
Ref find_module(PyObject *root, const std::string &path) {
    Ref module = Ref::borrow(root);
    for (size_t start = 0; start < path.size() && module;) {
        const size_t end = std::min(path.find('.', start), path.size());
        module = Ref::steal(
            PyObject_GetAttrString(module.get(), path.substr(start, end - start).c_str()));
        start = end + 1;
    }
    return module;
}

int export_capsule(PyObject *root, size_t root_length, const CapsuleExport &capsule) {
    const std::string name = capsule.name;
    const size_t dot = name.rfind('.');
    const bool is_direct = dot == root_length;
    const Ref module = find_module(
        root, is_direct ? std::string() : name.substr(root_length + 1, dot - root_length - 1));
    if (!module) return -1;
    // The name is checked at every import, hence the whole dotted one.
    Ref object =
        Ref::steal(PyCapsule_New(const_cast<void *>(capsule.table), capsule.name, nullptr));
    return object ? add_object(module.get(), capsule.name + dot + 1, std::move(object)) : -1;
}

} // namespace

int fn_export_capsules(PyObject *root, const char *root_name,
                       std::span<const CapsuleExport> capsules) {
    const size_t root_length = std::char_traits<char>::length(root_name);
    for (const CapsuleExport &capsule : capsules) {
        if (export_capsule(root, root_length, capsule) < 0) return -1;
    }
    return 0;
}
