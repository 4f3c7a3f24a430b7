// A managed collection: its length, membership and elements, without items.
#include "collections/collection_types.h"
#include "collections/interface_methods.h"
#include "collections/interop_wrappers.h"
#include "collections/list_hosts.h"
#include "collections/list_operations.h"
#include "collections/list_results.h"
#include "collections/wrapper_rows.h"
#include "shell/module_identity.h"
#include "shell/ref.h"

PyHost_ph_ICol &PyHost_ph_ICol::get_instance() {
    static PyHost_ph_ICol host;
    return host;
}

namespace {

using Valid = Validity<PyHost_ph_ICol, wrpPye_bltp_iterable_is_not_valid>;

constexpr ListOperations operations = collection_table<HostOperations<PyHost_ph_ICol>>();

bool refuse_elements(const char *text) {
    if (!PyErr_Occurred()) PyErr_SetString(PyExc_ValueError, text);
    return false;
}

// A collection has no items to index, so its own iterator gives the elements. The length that was
// asked before stands: another number of elements is an error, never a list with empty places.
bool draw_elements(const ListOperations &, PyObject *self, PyObject *result, Py_ssize_t length) {
    const Ref iterator = Ref::steal(PyObject_GetIter(self));
    if (!iterator) return refuse_elements("the collection was modified during the operation");
    for (Py_ssize_t i = 0; i < length; ++i) {
        PyObject *const item = PyIter_Next(iterator.get());
        if (item == nullptr) return refuse_elements("argument must be iterable or sequence");
        PyList_SET_ITEM(result, i, item);
    }
    const Ref surplus = Ref::steal(PyIter_Next(iterator.get()));
    if (surplus) return refuse_elements("argument must be iterable or sequence");
    return !PyErr_Occurred();
}

Py_ssize_t wrpPye_bltp_icol_sq_length(PyObject *self) { return list_sq_length(operations, self); }

PyObject *wrpPye_bltp_icol_get_length(PyObject *self, void *) {
    return list_length(operations, self);
}

PyObject *wrpPye_bltp_icol_sq_concat(PyObject *self, PyObject *other) {
    return concat_elements(operations, self, other, draw_elements);
}

PyObject *wrpPye_bltp_icol_sq_repeat(PyObject *self, Py_ssize_t count) {
    return repeat_elements(operations, self, count, draw_elements);
}

int wrpPye_bltp_icol_sq_contains(PyObject *self, PyObject *value) {
    return list_sq_contains(operations, self, value);
}

constexpr CastOperations casts =
    interface_casts<PyHost_ph_ICol, Valid::invalidate, &wrpPye_tyds_IColWrapper>();
using Casts = CastBuiltIns<casts>;

PyMethodDef methods[] = {{"count", wrpPye_bltp_icol_count, METH_O, nullptr},
                         {"copy", wrpPye_bltp_icol_copy, METH_NOARGS, nullptr},
                         {"contains", wrpPye_bltp_icol_contains, METH_O, nullptr},
                         {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
                         KELMOR_CAST_ROWS(Casts, refuse_reinterpret_obj<wrpPye_tyds_IColWrapper>)};

} // namespace

PyObject *wrpPye_bltp_icol_count(PyObject *self, PyObject *value) {
    return list_count(operations, self, value);
}

PyObject *wrpPye_bltp_icol_copy(PyObject *self, PyObject *) {
    return wrpPye_bltp_icol_sq_repeat(self, 1);
}

PyObject *wrpPye_bltp_icol_contains(PyObject *self, PyObject *value) {
    return list_contains(operations, self, value);
}

PySequenceMethods wrpPye_tysd_icol = {wrpPye_bltp_icol_sq_length,
                                      wrpPye_bltp_icol_sq_concat,
                                      wrpPye_bltp_icol_sq_repeat,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      wrpPye_bltp_icol_sq_contains,
                                      nullptr,
                                      nullptr};

PyGetSetDef wrpPye_typd_icol[] = {
    {"length", wrpPye_bltp_icol_get_length, nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};

constinit PyTypeObject wrpPye_tyds_IColWrapper =
    collection_wrapper_type({.name = module_identity::icol_wrapper,
                             .create = Valid::create,
                             .methods = methods,
                             .properties = wrpPye_typd_icol},
                            {.sequence = &wrpPye_tysd_icol, .iterate = wrpPye_bltp_iterable_iter});

bool wrpPye_bltp_icollection_is_not_valid(std::string &message) {
    return Valid::is_not_valid(message);
}

int wrpPye_conv_py_to_clr_icollection(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {
        "List", &wrpPye_tyds_IColWrapper, Valid::invalidate, variant_is_assignable<PyHost_ph_ICol>};
    const int accepted = interface_wrapper_from_py(value, out, conversion);
    if (accepted >= 0) return accepted;
    if (PyShlObject_HasLength(value) && PyShlObject_HasIter(value))
        return pass_python_object(value, CollectionKind::object, out);
    return refuse_value(conversion.name, value);
}
