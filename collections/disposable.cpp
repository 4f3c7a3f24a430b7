// A managed disposable as a context manager.
#include "binding/class_convert.h"
#include "binding/class_host.h"
#include "collections/collection_types.h"
#include "collections/interop_hosts.h"
#include "collections/interop_wrappers.h"
#include "collections/wrapper_rows.h"
#include "host/object_host.h"
#include "shell/module_identity.h"
#include "shell/ref.h"

PyHost_ph_Disposable &PyHost_ph_Disposable::get_instance() {
    static PyHost_ph_Disposable host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_Disposable>;

constexpr CastOperations casts =
    interface_casts<PyHost_ph_Disposable, Valid::invalidate, &wrpPye_tyds_IDisposableWrapper>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {
    {"__enter__", wrpPye_bltp_idisposable_enter, METH_NOARGS, nullptr},
    {"__exit__", wrpPye_bltp_idisposable_exit, METH_VARARGS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    KELMOR_CAST_ROWS(Casts, refuse_reinterpret_obj<wrpPye_tyds_IDisposableWrapper>)};

} // namespace

constinit PyTypeObject wrpPye_tyds_IDisposableWrapper = collection_wrapper_type(
    {.name = module_identity::idisposable_wrapper, .create = Valid::create, .methods = methods},
    {});

bool wrpPye_bltp_idisposable_is_not_valid(std::string &message) {
    return Valid::is_not_valid(message);
}

PyObject *wrpPye_bltp_idisposable_enter(PyObject *self, PyObject *) {
    return Ref::borrow(self).release();
}

// Suppresses no exception; only the managed object is disposed of.
PyObject *wrpPye_bltp_idisposable_exit(PyObject *self, PyObject *) {
    if (refuse_in_forked_child()) return nullptr;
    ObjectHost::get_instance()->dispose(handle_of(self));
    return PyErr_Occurred() ? nullptr : fn_py_return_none();
}

int wrpPye_conv_py_to_clr_idisposable(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {"IDisposable", &wrpPye_tyds_IDisposableWrapper,
                                                     Valid::invalidate,
                                                     variant_is_assignable<PyHost_ph_Disposable>};
    const int accepted = interface_wrapper_from_py(value, out, conversion);
    return accepted >= 0 ? accepted : refuse_value(conversion.name, value);
}
