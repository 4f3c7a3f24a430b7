// A managed enumerator as a Python iterator.
#include "collections/generic.h"
#include "collections/wrapper_rows.h"
#include "shell/module_identity.h"

PyHost_ph_Iter &PyHost_ph_Iter::get_instance() {
    static PyHost_ph_Iter host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_Iter>;

constexpr CastOperations casts =
    interface_casts<PyHost_ph_Iter, Valid::invalidate, &wrpPye_tyds_IterWrapper>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {{"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
                         KELMOR_CAST_ROWS(Casts, refuse_reinterpret_obj<wrpPye_tyds_IterWrapper>)};

} // namespace

constinit PyTypeObject wrpPye_tyds_IterWrapper = collection_wrapper_type(
    {.name = module_identity::iter_wrapper, .create = Valid::create, .methods = methods},
    {.iterate = wrpPye_bltp_iter_iter, .next = wrpPye_bltp_iter_iternext});

bool wrpPye_bltp_iter_is_not_valid(std::string &message) { return Valid::is_not_valid(message); }

PyObject *wrpPye_bltp_iter_iter(PyObject *self) { return Ref::borrow(self).release(); }

PyObject *wrpPye_bltp_iter_iternext(PyObject *self) { return next_item<PyHost_ph_Iter>(self); }

int wrpPye_conv_py_to_clr_iter(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {"IEnumerator", &wrpPye_tyds_IterWrapper,
                                                     Valid::invalidate,
                                                     variant_is_assignable<PyHost_ph_Iter>};
    const int accepted = interface_wrapper_from_py(value, out, conversion);
    if (accepted >= 0) return accepted;
    if (PyIter_Check(value)) return pass_python_object(value, CollectionKind::object, out);
    return refuse_value(conversion.name, value);
}
