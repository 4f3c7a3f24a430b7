// The method object: a definition, linked to an object or still without one.
#include "binding/method_object.h"

#include "binding/clr_object.h"
#include "shell/module_identity.h"
#include "shell/ref.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace {

struct MethodObject {
    PyObject_HEAD PyMethodDef *definition;
    PyObject *self; // null: unbound, or static
    PyObject *weak_references;
    PyTypeObject *owner;
    PyObject *(*call)(MethodObject *method, PyObject *args, PyObject *kwds);
};
static_assert(offsetof(MethodObject, definition) == sizeof(PyObject));

using Call = PyObject *(*)(MethodObject *method, PyObject *args, PyObject *kwds);

MethodObject *as_method(PyObject *object) { return reinterpret_cast<MethodObject *>(object); }

PyObject *call_with_keywords(PyMethodDef *definition, PyObject *self, PyObject *args,
                             PyObject *kwds) {
    const auto function = reinterpret_cast<void (*)()>(definition->ml_meth);
    return reinterpret_cast<PyCFunctionWithKeywords>(function)(self, args, kwds);
}

// The tests below give true with TypeError set.
bool has_keywords(PyMethodDef *definition, PyObject *kwds) {
    if (kwds == nullptr || PyDict_Size(kwds) == 0) return false;
    PyErr_Format(PyExc_TypeError, "%.200s() takes no keyword arguments", definition->ml_name);
    return true;
}

bool has_arguments(PyMethodDef *definition, Py_ssize_t given, PyObject *kwds) {
    if (given == 0) return has_keywords(definition, kwds);
    PyErr_Format(PyExc_TypeError, "%.200s() takes no arguments (%zd given)", definition->ml_name,
                 given);
    return true;
}

bool lacks_one_argument(PyMethodDef *definition, Py_ssize_t given, PyObject *kwds) {
    if (given == 1) return has_keywords(definition, kwds);
    PyErr_Format(PyExc_TypeError, "%.200s() takes exactly one argument (%zd given)",
                 definition->ml_name, given);
    return true;
}

// The self of an unbound call, borrowed; null with TypeError set.
PyObject *self_of_unbound(MethodObject *method, PyObject *args) {
    const char *const name = method->definition->ml_name;
    if (PyTuple_GET_SIZE(args) == 0) {
        PyErr_Format(PyExc_TypeError, "unbound method %.200s() needs a 'self' argument", name);
        return nullptr;
    }
    PyObject *const self = PyTuple_GET_ITEM(args, 0);
    if (PyObject_TypeCheck(self, method->owner)) return self;
    PyErr_Format(PyExc_TypeError,
                 "descriptor '%s' for '%.100s' objects doesn't apply to a '%.100s' object", name,
                 method->owner->tp_name, Py_TYPE(self)->tp_name);
    return nullptr;
}

PyObject *wrpPye_tpsb_cmethod_tp_call_no_args_linked(MethodObject *method, PyObject *args,
                                                     PyObject *kwds) {
    if (has_arguments(method->definition, PyTuple_GET_SIZE(args), kwds)) return nullptr;
    return call_with_keywords(method->definition, method->self, args, kwds);
}

PyObject *wrpPye_tpsb_cmethod_tp_call_o_arg_linked(MethodObject *method, PyObject *args,
                                                   PyObject *kwds) {
    if (lacks_one_argument(method->definition, PyTuple_GET_SIZE(args), kwds)) return nullptr;
    return method->definition->ml_meth(method->self, PyTuple_GET_ITEM(args, 0));
}

PyObject *wrpPye_tpsb_cmethod_tp_call_with_args_linked(MethodObject *method, PyObject *args,
                                                       PyObject *kwds) {
    return call_with_keywords(method->definition, method->self, args, kwds);
}

PyObject *wrpPye_tpsb_cmethod_tp_call_no_args_unbound(MethodObject *method, PyObject *args,
                                                      PyObject *kwds) {
    PyObject *const self = self_of_unbound(method, args);
    if (self == nullptr) return nullptr;
    if (has_arguments(method->definition, PyTuple_GET_SIZE(args) - 1, kwds)) return nullptr;
    return call_with_keywords(method->definition, self, args, kwds);
}

PyObject *wrpPye_tpsb_cmethod_tp_call_o_arg_unbound(MethodObject *method, PyObject *args,
                                                    PyObject *kwds) {
    PyObject *const self = self_of_unbound(method, args);
    if (self == nullptr) return nullptr;
    if (lacks_one_argument(method->definition, PyTuple_GET_SIZE(args) - 1, kwds)) return nullptr;
    return method->definition->ml_meth(self, PyTuple_GET_ITEM(args, 1));
}

// The slice ends one short, so the last positional argument is lost. Callers rely on no member
// with arguments being reached this way; the family has always done it so.
PyObject *wrpPye_tpsb_cmethod_tp_call_with_args_unbound(MethodObject *method, PyObject *args,
                                                        PyObject *kwds) {
    PyObject *const self = self_of_unbound(method, args);
    if (self == nullptr) return nullptr;
    const Ref rest = Ref::steal(PyTuple_GetSlice(args, 1, PyTuple_GET_SIZE(args) - 1));
    if (!rest) return nullptr;
    return call_with_keywords(method->definition, self, rest.get(), kwds);
}

Call choose_call(int flags, bool linked) {
    if (flags & METH_NOARGS)
        return linked ? wrpPye_tpsb_cmethod_tp_call_no_args_linked
                      : wrpPye_tpsb_cmethod_tp_call_no_args_unbound;
    if (flags & METH_O)
        return linked ? wrpPye_tpsb_cmethod_tp_call_o_arg_linked
                      : wrpPye_tpsb_cmethod_tp_call_o_arg_unbound;
    return linked ? wrpPye_tpsb_cmethod_tp_call_with_args_linked
                  : wrpPye_tpsb_cmethod_tp_call_with_args_unbound;
}

PyObject *method_call(PyObject *object, PyObject *args, PyObject *kwds) {
    MethodObject *const method = as_method(object);
    return method->call(method, args, kwds);
}

PyObject *method_repr(PyObject *object) {
    const MethodObject *const method = as_method(object);
    const char *const name = method->definition->ml_name;
    if (method->self == nullptr)
        return PyUnicode_FromFormat("<extension method %s of %s objects>", name,
                                    method->owner->tp_name);
    return PyUnicode_FromFormat("<extension method %s of %s object at %p>", name,
                                Py_TYPE(method->self)->tp_name, method->self);
}

// The low bits of an address tell little, hence the rotation; -1 would mean an error.
Py_hash_t pointer_hash(const void *pointer) {
    const auto hash =
        static_cast<Py_hash_t>(std::rotr(reinterpret_cast<std::uintptr_t>(pointer), 4));
    return hash == -1 ? -2 : hash;
}

Py_hash_t method_hash(PyObject *object) {
    const MethodObject *const method = as_method(object);
    const Py_hash_t hash =
        pointer_hash(method->self) ^
        pointer_hash(reinterpret_cast<const void *>(method->definition->ml_meth));
    return hash == -1 ? -2 : hash;
}

PyObject *method_compare(PyObject *left, PyObject *right, int operation) {
    const bool comparable = Py_IS_TYPE(left, &wrpPye_tyds_MethodObjectType) &&
                            Py_IS_TYPE(right, &wrpPye_tyds_MethodObjectType);
    if (!comparable || (operation != Py_EQ && operation != Py_NE)) Py_RETURN_NOTIMPLEMENTED;
    const bool equal =
        as_method(left)->self == as_method(right)->self &&
        as_method(left)->definition->ml_meth == as_method(right)->definition->ml_meth;
    return PyBool_FromLong(equal == (operation == Py_EQ));
}

PyObject *method_doc(PyObject *object, void *) {
    const char *const text = as_method(object)->definition->ml_doc;
    if (text == nullptr || *text == '\0') Py_RETURN_NONE;
    return PyUnicode_FromString(text);
}

int method_traverse(PyObject *object, visitproc visit, void *arg) {
    const MethodObject *const method = as_method(object);
    Py_VISIT(method->self);
    Py_VISIT(method->owner);
    return 0;
}

void method_dealloc(PyObject *object) {
    MethodObject *const method = as_method(object);
    PyObject_GC_UnTrack(object);
    if (method->weak_references != nullptr) PyObject_ClearWeakRefs(object);
    Py_XDECREF(method->self);
    Py_DECREF(method->owner);
    PyObject_GC_Del(object);
}

PyGetSetDef method_properties[] = {{"__doc__", method_doc, nullptr, nullptr, nullptr},
                                   {nullptr, nullptr, nullptr, nullptr, nullptr}};

constexpr PyTypeObject method_type() {
    PyTypeObject type = empty_type(module_identity::method_object_type);
    type.tp_basicsize = sizeof(MethodObject);
    type.tp_flags = Py_TPFLAGS_HAVE_GC;
    type.tp_dealloc = method_dealloc;
    type.tp_repr = method_repr;
    type.tp_hash = method_hash;
    type.tp_call = method_call;
    type.tp_traverse = method_traverse;
    type.tp_richcompare = method_compare;
    type.tp_weaklistoffset = offsetof(MethodObject, weak_references);
    type.tp_getset = method_properties;
    return type;
}

} // namespace

constinit PyTypeObject wrpPye_tyds_MethodObjectType = method_type();

PyObject *PyShCMethod_New(PyTypeObject *owner, PyMethodDef *definition, PyObject *self) {
    if (PyType_Ready(&wrpPye_tyds_MethodObjectType) < 0) return nullptr; // at once when it is
    MethodObject *const method = PyObject_GC_New(MethodObject, &wrpPye_tyds_MethodObjectType);
    if (method == nullptr) return nullptr;
    const bool linked = self != nullptr || (definition->ml_flags & METH_STATIC) != 0;
    method->definition = definition;
    method->self = Ref::borrow(self).release();
    method->weak_references = nullptr;
    Py_INCREF(owner);
    method->owner = owner;
    method->call = choose_call(definition->ml_flags, linked);
    PyObject_GC_Track(method);
    return reinterpret_cast<PyObject *>(method);
}
