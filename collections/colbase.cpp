// A managed collection base: the methods of the list interface, its own casts.
#include "collections/collection_types.h"
#include "collections/interface_methods.h"
#include "collections/interop_wrappers.h"
#include "collections/list_hosts.h"
#include "collections/wrapper_rows.h"
#include "shell/module_identity.h"

PyHost_ph_ColBase &PyHost_ph_ColBase::get_instance() {
    static PyHost_ph_ColBase host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_ColBase, wrpPye_bltp_iterable_is_not_valid,
                       wrpPye_bltp_icollection_is_not_valid, wrpPye_bltp_ilist_is_not_valid>;

constexpr CastOperations casts = class_casts<PyHost_ph_ColBase, Valid::invalidate,
                                             wrap_handle_as<&wrpPye_tyds_ColBaseWrapper>>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {
    {"append", wrpPye_bltp_ilist_append, METH_O, nullptr},
    {"insert", wrpPye_bltp_ilist_insert, METH_VARARGS, nullptr},
    {"extend", wrpPye_bltp_ilist_extend, METH_O, nullptr},
    {"remove", wrpPye_bltp_ilist_remove, METH_O, nullptr},
    {"pop", wrpPye_bltp_ilist_pop, METH_VARARGS, nullptr},
    {"clear", wrpPye_bltp_ilist_clear, METH_NOARGS, nullptr},
    {"index", wrpPye_bltp_ilist_index, METH_VARARGS, nullptr},
    {"count", wrpPye_bltp_ilist_count, METH_O, nullptr},
    {"contains", wrpPye_bltp_ilist_contains, METH_O, nullptr},
    {"sort", KELMOR_WITH_KEYWORDS(wrpPye_bltp_ilist_sort), METH_VARARGS | METH_KEYWORDS, nullptr},
    {"reverse", wrpPye_bltp_ilist_reverse, METH_NOARGS, nullptr},
    {"copy", wrpPye_bltp_ilist_copy, METH_NOARGS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    KELMOR_CAST_ROWS(Casts, Casts::reinterpret_obj)};

} // namespace

constinit PyTypeObject wrpPye_tyds_ColBaseWrapper =
    collection_wrapper_type({.name = module_identity::colbase_wrapper,
                             .create = Valid::create,
                             .methods = methods,
                             .properties = wrpPye_typd_ilist},
                            {.sequence = &wrpPye_tysd_ilist,
                             .mapping = &wrpPye_tygd_ilist,
                             .iterate = wrpPye_bltp_iterable_iter});

bool wrpPye_bltp_colbase_is_not_valid(std::string &message) { return Valid::is_not_valid(message); }

int wrpPye_conv_py_to_clr_colbase(PyObject *value, VariantArg *out) {
    static constexpr ClassConversion conversion = {"CollectionBase", &wrpPye_tyds_ColBaseWrapper,
                                                   Valid::invalidate,
                                                   class_is_assignable<PyHost_ph_ColBase>};
    return array_like_from_py(value, out, conversion);
}
