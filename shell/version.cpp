// The version object: four numbers that are compared, and the text that is shown.
#include "shell/version.h"

#include "shell/module_identity.h"
#include "shell/ref.h"

#include <compare>
#include <cstdint>
#include <tuple>

namespace {

PyShVersionObject *as_version(PyObject *object) {
    return reinterpret_cast<PyShVersionObject *>(object);
}

auto numbers(PyObject *object) {
    const PyShVersionObject *version = as_version(object);
    return std::tie(version->major, version->minor, version->patch, version->sub);
}

PyObject *version_repr(PyObject *self) {
    return PyUnicode_FromFormat("<%s: %U>", Py_TYPE(self)->tp_name, as_version(self)->view);
}

PyObject *version_str(PyObject *self) { return Py_NewRef(as_version(self)->view); }

// 32-bit FNV-1a over the numbers, low byte first. The view has no part: versions of equal numbers
// are equal.
Py_hash_t version_hash(PyObject *self) {
    const PyShVersionObject *version = as_version(self);
    std::uint32_t hash = 0x811C9DC5;
    for (const int number : {version->major, version->minor, version->patch, version->sub}) {
        for (int shift = 0; shift < 32; shift += 8) {
            hash ^= (static_cast<std::uint32_t>(number) >> shift) & 0xFF;
            hash *= 16777619;
        }
    }
    const Py_hash_t result = static_cast<std::int32_t>(hash);
    return result == -1 ? -2 : result; // -1 is the interpreter's mark of an error
}

PyObject *version_richcompare(PyObject *self, PyObject *other, int operation) {
    if (!Py_IS_TYPE(self, &PyShModuleVersion_Type) || !Py_IS_TYPE(other, &PyShModuleVersion_Type))
        Py_RETURN_NOTIMPLEMENTED;
    const auto order = numbers(self) <=> numbers(other);
    switch (operation) {
    case Py_LT:
        return PyBool_FromLong(order < 0);
    case Py_LE:
        return PyBool_FromLong(order <= 0);
    case Py_EQ:
        return PyBool_FromLong(order == 0);
    case Py_NE:
        return PyBool_FromLong(order != 0);
    case Py_GT:
        return PyBool_FromLong(order > 0);
    case Py_GE:
        return PyBool_FromLong(order >= 0);
    default:
        Py_RETURN_NOTIMPLEMENTED;
    }
}

PyObject *get_major(PyObject *self, void *) { return PyLong_FromLong(as_version(self)->major); }
PyObject *get_minor(PyObject *self, void *) { return PyLong_FromLong(as_version(self)->minor); }
PyObject *get_patch(PyObject *self, void *) { return PyLong_FromLong(as_version(self)->patch); }
PyObject *get_sub(PyObject *self, void *) { return PyLong_FromLong(as_version(self)->sub); }
PyObject *get_view(PyObject *self, void *) { return Py_NewRef(as_version(self)->view); }

void version_dealloc(PyObject *self) {
    Py_XDECREF(as_version(self)->view);
    Py_TYPE(self)->tp_free(self);
}

PyGetSetDef version_getset[] = {
    {"major", get_major, nullptr, nullptr, nullptr},
    {"minor", get_minor, nullptr, nullptr, nullptr},
    {"patch", get_patch, nullptr, nullptr, nullptr},
    {"sub", get_sub, nullptr, nullptr, nullptr},
    {"view", get_view, nullptr, nullptr, nullptr},
    {},
};

} // namespace

// No flag: it is no base class, and without tp_new Python code cannot make one.
PyTypeObject PyShModuleVersion_Type = {
    .ob_base = {PyObject_HEAD_INIT(nullptr) 0},
    .tp_name = module_identity::version_type,
    .tp_basicsize = sizeof(PyShVersionObject),
    .tp_dealloc = version_dealloc,
    .tp_repr = version_repr,
    .tp_hash = version_hash,
    .tp_str = version_str,
    .tp_richcompare = version_richcompare,
    .tp_getset = version_getset,
};

PyObject *PyShVersionAttr_Create(int major, int minor, int patch, int sub, const char *view) {
    Ref created = Ref::steal(PyType_GenericNew(&PyShModuleVersion_Type, nullptr, nullptr));
    if (!created) return nullptr;
    PyShVersionObject *version = as_version(created.get());
    version->major = major;
    version->minor = minor;
    version->patch = patch;
    version->sub = sub;
    version->view = PyUnicode_FromString(view);
    return version->view ? created.release() : nullptr;
}

int PyShVersionAttr_Compare(const int *reference, PyObject *version) {
    const auto order =
        std::tie(reference[0], reference[1], reference[2], reference[3]) <=> numbers(version);
    return order < 0 ? -1 : order > 0;
}

PyObject *PyShVersionAttr_GetView(PyObject *version) { return as_version(version)->view; }
