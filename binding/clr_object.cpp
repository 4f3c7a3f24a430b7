// The slots of wrappers: everything is asked of the managed side.
#include "binding/clr_object.h"

#include "binding/casts.h"
#include "binding/class_host.h"
#include "binding/markers.h"
#include "host/exchange_host.h"
#include "host/fork_guard.h"
#include "host/object_host.h"
#include "shell/identifiers.h"
#include "shell/raised.h"

namespace {

// The operations of the object service for the two flavours of handles.
struct ClassFlavour {
    static int to_string(void *handle, void **out) {
        return ObjectHost::get_instance()->to_string_of_obj(handle, out);
    }
    static int hash(void *handle) {
        return ObjectHost::get_instance()->get_hash_code_of_obj(handle);
    }
    static bool equals(void *handle, VariantArg *other) {
        return ObjectHost::get_instance()->equals_of_obj(handle, other);
    }
    static int type(void *handle, void **out) {
        return ObjectHost::get_instance()->get_obj_type(handle, out);
    }
    static void release(void *handle) { ExchangeHost::get_instance()->free_instance(handle); }
};

struct StructFlavour {
    static int to_string(void *handle, void **out) {
        return ObjectHost::get_instance()->to_string_of_stc(handle, out);
    }
    static int hash(void *handle) {
        return ObjectHost::get_instance()->get_hash_code_of_stc(handle);
    }
    static bool equals(void *handle, VariantArg *other) {
        return ObjectHost::get_instance()->equals_of_stc(handle, other);
    }
    static int type(void *handle, void **out) {
        return ObjectHost::get_instance()->get_stc_type(handle, out);
    }
    static void release(void *handle) { ExchangeHost::get_instance()->free_struct(handle); }
};

// In a forked child the handle means nothing any more, so nothing is released.
template <class Flavour> void dealloc(PyObject *self) {
    void *&handle = reinterpret_cast<PyClrObject *>(self)->handle;
    if (handle != nullptr && !in_forked_child()) Flavour::release(handle);
    handle = nullptr;
    Py_TYPE(self)->tp_free(self);
}

template <class Flavour> PyObject *managed_text(PyObject *self) {
    void *text = nullptr;
    const int status = refuse_in_forked_child() ? 0 : Flavour::to_string(handle_of(self), &text);
    if (status == 1) return static_cast<PyObject *>(text);
    if (PyErr_Occurred()) return nullptr;
    return PyUnicode_FromFormat("<%s object at %p>", Py_TYPE(self)->tp_name, self);
}

// Must work while an exception is being formatted: that one is set aside and comes back.
template <class Flavour> PyObject *text(PyObject *self) {
    if (!PyErr_Occurred()) return managed_text<Flavour>(self);
    const RaisedAside earlier;
    PyObject *const result = managed_text<Flavour>(self);
    if (PyErr_Occurred()) PyErr_WriteUnraisable(PyWrpIdTraceBack_FormatExceptionWarning);
    return result;
}

template <class Flavour> Py_hash_t hash(PyObject *self) {
    if (refuse_in_forked_child()) return -1;
    const int value = Flavour::hash(handle_of(self));
    if (PyErr_Occurred()) return -1;
    return value == -1 ? -2 : value;
}

template <class Flavour> PyObject *compare(PyObject *self, PyObject *other, int operation) {
    if (operation != Py_EQ && operation != Py_NE) Py_RETURN_NOTIMPLEMENTED;
    const bool wanted = operation == Py_EQ;
    if (self == other) return PyBool_FromLong(wanted);
    VariantArg right;
    if (!fn_conv_py_obj_to_clr_gen_handle(other, &right)) Py_RETURN_NOTIMPLEMENTED;
    if (refuse_in_forked_child()) return nullptr;
    const bool equal = Flavour::equals(handle_of(self), &right);
    if (PyErr_Occurred()) return nullptr;
    return PyBool_FromLong(equal == wanted);
}

template <class Flavour> PyObject *get_type(PyObject *self) {
    if (refuse_in_forked_child()) return nullptr;
    void *type = nullptr;
    Flavour::type(handle_of(self), &type);
    return managed_type_result(type);
}

} // namespace

PyObject *fn_py_clr_type_generic_new(void *handle, PyTypeObject *type) {
    PyObject *const wrapper = type->tp_new(type, nullptr, nullptr);
    if (wrapper == nullptr) { // also a struct's handle goes this way
        if (!in_forked_child()) ExchangeHost::get_instance()->free_instance(handle);
        return nullptr;
    }
    reinterpret_cast<PyClrObject *>(wrapper)->handle = handle;
    return wrapper;
}

bool fn_is_this_module_clr_object(PyObject *object) {
    return Py_TYPE(object)->tp_dealloc == wrapClrObject_tp_dealloc;
}

bool fn_is_this_module_clr_instance(PyObject *object, int *kind) {
    const destructor flavour = Py_TYPE(object)->tp_dealloc;
    if (flavour == wrapClrObject_tp_dealloc) {
        *kind = static_cast<int>(HandleKind::class_handle);
        return true;
    }
    if (flavour == wrapClrStruct_tp_dealloc) {
        *kind = static_cast<int>(HandleKind::struct_handle);
        return true;
    }
    return false;
}

int fn_py_unknown_to_clr_unknown(PyObject *wrapper, void **out) {
    *out = handle_of(wrapper);
    return 1;
}

PyObject *fn_py_return_none() { Py_RETURN_NONE; }

void wrapClrObject_tp_dealloc(PyObject *self) { dealloc<ClassFlavour>(self); }
PyObject *wrapClrObject_str(PyObject *self) { return text<ClassFlavour>(self); }
Py_hash_t wrapClrObject_hash(PyObject *self) { return hash<ClassFlavour>(self); }
PyObject *wrapClrObject_tp_richcompare(PyObject *self, PyObject *other, int operation) {
    return compare<ClassFlavour>(self, other, operation);
}
PyObject *wrapClrObject_get_type(PyObject *self, PyObject *) {
    return get_type<ClassFlavour>(self);
}

void wrapClrStruct_tp_dealloc(PyObject *self) { dealloc<StructFlavour>(self); }
PyObject *wrapClrStruct_str(PyObject *self) { return text<StructFlavour>(self); }
Py_hash_t wrapClrStruct_hash(PyObject *self) { return hash<StructFlavour>(self); }
PyObject *wrapClrStruct_tp_richcompare(PyObject *self, PyObject *other, int operation) {
    return compare<StructFlavour>(self, other, operation);
}
PyObject *wrapClrStruct_get_type(PyObject *self, PyObject *) {
    return get_type<StructFlavour>(self);
}

int refuse_deletion(const char *property) {
    PyErr_Format(PyExc_AttributeError, "can't delete attribute '%s'", property);
    return -1;
}

int wrapClrObject_tp_init_fault(PyObject *, PyObject *, PyObject *) {
    PyErr_SetString(PyExc_TypeError, "type has no available constructor");
    return -1;
}
