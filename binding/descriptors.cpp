// The four descriptor types.
#include "binding/descriptors.h"

#include "binding/clr_object.h"
#include "binding/markers.h"
#include "binding/method_object.h"
#include "shell/import_errors.h"
#include "shell/module_identity.h"
#include "shell/ref.h"

#include <cstddef>

namespace {

struct FieldDescr {
    PyObject_HEAD PyTypeObject *owner;
    PyGetSetDef *definition;
};

struct InstanceMethodDescr {
    PyObject_HEAD PyTypeObject *owner;
    PyMethodDef *definition;
};

struct StaticMethodDescr {
    PyObject_HEAD PyTypeObject *owner;
    PyMethodDef *definition;
    PyObject *method; // prepared once, so each access gives the same object
};

struct MixMethodDescr {
    PyObject_HEAD PyTypeObject *owner;
    PyObject *static_method; // prepared
    PyMethodDef *instance_definition;
};

static_assert(offsetof(FieldDescr, owner) == sizeof(PyObject) &&
              offsetof(InstanceMethodDescr, owner) == sizeof(PyObject) &&
              offsetof(StaticMethodDescr, owner) == sizeof(PyObject) &&
              offsetof(MixMethodDescr, owner) == sizeof(PyObject));

// What the shared slots need to know of a record.
const char *name_of(const FieldDescr *descr) { return descr->definition->name; }
const char *name_of(const InstanceMethodDescr *descr) { return descr->definition->ml_name; }
const char *name_of(const StaticMethodDescr *descr) { return descr->definition->ml_name; }
const char *name_of(const MixMethodDescr *descr) { return descr->instance_definition->ml_name; }

const char *doc_of(const FieldDescr *descr) { return descr->definition->doc; }
const char *doc_of(const InstanceMethodDescr *descr) { return descr->definition->ml_doc; }
const char *doc_of(const StaticMethodDescr *descr) { return descr->definition->ml_doc; }
const char *doc_of(const MixMethodDescr *descr) { return descr->instance_definition->ml_doc; }

PyObject *prepared_of(const FieldDescr *) { return nullptr; }
PyObject *prepared_of(const InstanceMethodDescr *) { return nullptr; }
PyObject *prepared_of(const StaticMethodDescr *descr) { return descr->method; }
PyObject *prepared_of(const MixMethodDescr *descr) { return descr->static_method; }

template <class Descr> const Descr *record(PyObject *object) {
    return reinterpret_cast<const Descr *>(object);
}

// False: TypeError is set.
bool check_type_argument(const char *name, PyObject *type) {
    if (type != nullptr && PyType_Check(type)) return true;
    const char *const given = type != nullptr ? Py_TYPE(type)->tp_name : "NoneType";
    PyErr_Format(PyExc_TypeError, "descriptor '%s' needs a type, not '%s', as arg 2", name, given);
    return false;
}

bool check_instance(const char *name, const PyTypeObject *owner, PyObject *object) {
    if (PyType_IsSubtype(Py_TYPE(object), const_cast<PyTypeObject *>(owner))) return true;
    PyErr_Format(PyExc_TypeError,
                 "descriptor '%s' for '%.100s' objects doesn't apply to a '%.100s' object", name,
                 owner->tp_name, Py_TYPE(object)->tp_name);
    return false;
}

// The member is static: the getter runs without an object, also when there is one.
PyObject *field_get(PyObject *self, PyObject *, PyObject *type) {
    const auto *const descr = record<FieldDescr>(self);
    if (!check_type_argument(name_of(descr), type)) return nullptr;
    return descr->definition->get(nullptr, descr->definition->closure);
}

PyObject *instance_method_get(PyObject *self, PyObject *object, PyObject *type) {
    const auto *const descr = record<InstanceMethodDescr>(self);
    const bool fits = object != nullptr ? check_instance(name_of(descr), descr->owner, object)
                                        : check_type_argument(name_of(descr), type);
    return fits ? PyShCMethod_New(descr->owner, descr->definition, object) : nullptr;
}

PyObject *static_method_get(PyObject *self, PyObject *, PyObject *type) {
    const auto *const descr = record<StaticMethodDescr>(self);
    if (!check_type_argument(name_of(descr), type)) return nullptr;
    return Ref::borrow(descr->method).release();
}

PyObject *mix_method_get(PyObject *self, PyObject *object, PyObject *type) {
    const auto *const descr = record<MixMethodDescr>(self);
    if (object != nullptr) {
        if (!check_instance(name_of(descr), descr->owner, object)) return nullptr;
        return PyShCMethod_New(descr->owner, descr->instance_definition, object);
    }
    if (!check_type_argument(name_of(descr), type)) return nullptr;
    return Ref::borrow(descr->static_method).release();
}

PyObject *field_repr(PyObject *self) {
    const auto *const descr = record<FieldDescr>(self);
    return PyUnicode_FromFormat("<attribute '%s' of '%s' objects>", name_of(descr),
                                descr->owner->tp_name);
}

template <class Descr> PyObject *method_repr(PyObject *self) {
    const auto *const descr = record<Descr>(self);
    return PyUnicode_FromFormat("<method '%s' of '%s' objects>", name_of(descr),
                                descr->owner->tp_name);
}

template <class Descr> PyObject *descr_doc(PyObject *self, void *) {
    const char *const text = doc_of(record<Descr>(self));
    if (text == nullptr || *text == '\0') Py_RETURN_NONE;
    return PyUnicode_FromString(text);
}

template <class Descr> int descr_traverse(PyObject *self, visitproc visit, void *arg) {
    const auto *const descr = record<Descr>(self);
    Py_VISIT(descr->owner);
    Py_VISIT(prepared_of(descr));
    return 0;
}

template <class Descr> void descr_dealloc(PyObject *self) {
    const auto *const descr = record<Descr>(self);
    PyObject_GC_UnTrack(self);
    Py_DECREF(descr->owner);
    Py_XDECREF(prepared_of(descr));
    PyObject_GC_Del(self);
}

template <class Descr>
PyGetSetDef descr_properties[] = {{"__doc__", descr_doc<Descr>, nullptr, nullptr, nullptr},
                                  {nullptr, nullptr, nullptr, nullptr, nullptr}};

template <class Descr>
constexpr PyTypeObject descr_type(const char *name, reprfunc repr, descrgetfunc get) {
    PyTypeObject type = empty_type(name);
    type.tp_basicsize = sizeof(Descr);
    type.tp_flags = Py_TPFLAGS_HAVE_GC;
    type.tp_dealloc = descr_dealloc<Descr>;
    type.tp_repr = repr;
    type.tp_traverse = descr_traverse<Descr>;
    type.tp_getset = descr_properties<Descr>;
    type.tp_descr_get = get;
    return type;
}

// An untracked object of the type with its owner set.
template <class Descr> Descr *new_descr(PyTypeObject *type, PyTypeObject *owner) {
    if (PyType_Ready(type) < 0) return nullptr; // returns at once for a type that is ready
    Descr *const descr = PyObject_GC_New(Descr, type);
    if (descr == nullptr) return nullptr;
    Py_INCREF(owner);
    descr->owner = owner;
    return descr;
}

template <class Descr> PyObject *track(Descr *descr) {
    PyObject_GC_Track(descr);
    return reinterpret_cast<PyObject *>(descr);
}

} // namespace

constinit PyTypeObject wrpPye_tyds_FieldDescrType =
    descr_type<FieldDescr>(module_identity::field_descr_type, field_repr, field_get);

constinit PyTypeObject wrpPye_tyds_InstanceMethodDescrType = descr_type<InstanceMethodDescr>(
    module_identity::instance_descr_type, method_repr<InstanceMethodDescr>, instance_method_get);

constinit PyTypeObject wrpPye_tyds_StaticMethodDescrType = descr_type<StaticMethodDescr>(
    module_identity::static_descr_type, method_repr<StaticMethodDescr>, static_method_get);

constinit PyTypeObject wrpPye_tyds_MixMethodDescrType = descr_type<MixMethodDescr>(
    module_identity::mix_method_descr_type, method_repr<MixMethodDescr>, mix_method_get);

PyObject *PyShDescr_NewStaticField(PyTypeObject *owner, PyGetSetDef *definition) {
    auto *const descr = new_descr<FieldDescr>(&wrpPye_tyds_FieldDescrType, owner);
    if (descr == nullptr) return nullptr;
    descr->definition = definition;
    return track(descr);
}

PyObject *PyShDescr_NewInstanceMethod(PyTypeObject *owner, PyMethodDef *definition) {
    auto *const descr = new_descr<InstanceMethodDescr>(&wrpPye_tyds_InstanceMethodDescrType, owner);
    if (descr == nullptr) return nullptr;
    descr->definition = definition;
    return track(descr);
}

PyObject *PyShDescr_NewStaticMethod(PyTypeObject *owner, PyMethodDef *definition) {
    Ref method = Ref::steal(PyShCMethod_New(owner, definition, nullptr));
    if (!method) return nullptr;
    auto *const descr = new_descr<StaticMethodDescr>(&wrpPye_tyds_StaticMethodDescrType, owner);
    if (descr == nullptr) return nullptr;
    descr->definition = definition;
    descr->method = method.release();
    return track(descr);
}

PyObject *PyShDescr_NewMixedMethod(PyTypeObject *owner, PyMethodDef *static_definition,
                                   PyMethodDef *instance_definition) {
    Ref method = Ref::steal(PyShCMethod_New(owner, static_definition, nullptr));
    if (!method) return nullptr;
    auto *const descr = new_descr<MixMethodDescr>(&wrpPye_tyds_MixMethodDescrType, owner);
    if (descr == nullptr) return nullptr;
    descr->static_method = method.release();
    descr->instance_definition = instance_definition;
    return track(descr);
}

int install_descriptor(PyTypeObject *type, const char *name, PyObject *descriptor) {
    Ref owned = Ref::steal(descriptor);
    if (!owned || set_type_entry(type, name, owned.get()) < 0) {
        PyShlErr_TypeInitializationInternalError(-1020, type->tp_name, name);
        return -1;
    }
    owned.release(); // kept for the process, beside the dictionary's reference
    return 0;
}
