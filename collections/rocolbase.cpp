// A managed read-only collection base: the methods of the collection interface, its own casts.
#include "collections/collection_types.h"
#include "collections/interface_methods.h"
#include "collections/interop_wrappers.h"
#include "collections/list_hosts.h"
#include "collections/wrapper_rows.h"
#include "shell/module_identity.h"

PyHost_ph_RoColBase &PyHost_ph_RoColBase::get_instance() {
    static PyHost_ph_RoColBase host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_RoColBase, wrpPye_bltp_iterable_is_not_valid,
                       wrpPye_bltp_icollection_is_not_valid>;

constexpr CastOperations casts = class_casts<PyHost_ph_RoColBase, Valid::invalidate,
                                             wrap_handle_as<&wrpPye_tyds_RoColBaseWrapper>>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {{"count", wrpPye_bltp_icol_count, METH_O, nullptr},
                         {"copy", wrpPye_bltp_icol_copy, METH_NOARGS, nullptr},
                         {"contains", wrpPye_bltp_icol_contains, METH_O, nullptr},
                         {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
                         KELMOR_CAST_ROWS(Casts, Casts::reinterpret_obj)};

} // namespace

constinit PyTypeObject wrpPye_tyds_RoColBaseWrapper =
    collection_wrapper_type({.name = module_identity::rocolbase_wrapper,
                             .create = Valid::create,
                             .methods = methods,
                             .properties = wrpPye_typd_icol},
                            {.sequence = &wrpPye_tysd_icol, .iterate = wrpPye_bltp_iterable_iter});

bool wrpPye_bltp_rocolbase_is_not_valid(std::string &message) {
    return Valid::is_not_valid(message);
}

int wrpPye_conv_py_to_clr_rocolbase(PyObject *value, VariantArg *out) {
    static constexpr ClassConversion conversion = {"ReadOnlyCollectionBase",
                                                   &wrpPye_tyds_RoColBaseWrapper, Valid::invalidate,
                                                   class_is_assignable<PyHost_ph_RoColBase>};
    return array_like_from_py(value, out, conversion);
}
