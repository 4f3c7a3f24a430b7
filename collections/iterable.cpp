// A managed enumerable as a Python iterable.
#include "collections/generic.h"
#include "collections/wrapper_rows.h"
#include "shell/module_identity.h"

PyHost_ph_Iterable &PyHost_ph_Iterable::get_instance() {
    static PyHost_ph_Iterable host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_Iterable>;

constexpr CastOperations casts =
    interface_casts<PyHost_ph_Iterable, Valid::invalidate, &wrpPye_tyds_IterableWrapper>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    KELMOR_CAST_ROWS(Casts, refuse_reinterpret_obj<wrpPye_tyds_IterableWrapper>)};

} // namespace

constinit PyTypeObject wrpPye_tyds_IterableWrapper = collection_wrapper_type(
    {.name = module_identity::iterable_wrapper, .create = Valid::create, .methods = methods},
    {.iterate = wrpPye_bltp_iterable_iter});

bool wrpPye_bltp_iterable_is_not_valid(std::string &message) {
    return Valid::is_not_valid(message);
}

PyObject *wrpPye_bltp_iterable_iter(PyObject *self) {
    return iterate<PyHost_ph_Iterable>(self, &wrpPye_tyds_IterWrapper);
}

int wrpPye_conv_py_to_clr_iterable(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {"IEnumerable", &wrpPye_tyds_IterableWrapper,
                                                     Valid::invalidate,
                                                     variant_is_assignable<PyHost_ph_Iterable>};
    const int accepted = interface_wrapper_from_py(value, out, conversion);
    if (accepted >= 0) return accepted;
    if (PyShlObject_HasIter(value)) return pass_python_object(value, CollectionKind::object, out);
    return refuse_value(conversion.name, value);
}
