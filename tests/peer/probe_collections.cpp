// What tests reach of the collections, and the start of a module around them.
#include "peer/probe.h"
#include "peer/probe_sample.h"

#include "collections/callbacks.h"
#include "collections/collection_types.h"
#include "collections/interop_module.h"
#include "collections/interop_wrappers.h"
#include "collections/stream_read.h"
#include "marshal/buffers.h"
#include "marshal/exceptions.h"
#include "shell/clr_host.h"
#include "shell/identifiers.h"
#include "shell/raised.h"

namespace {

// All that an import does between the siblings and the module's own tree: 0, or -1 with an error.
int start_wrapped_module(PyObject *root) {
    fn_intern_identifiers();
    if (initialize_clr_host("", "WrpInterop.Kelmor.PSD", false, "kelmor", "psd") < 0) return -1;
    if (wrpPye_mlit_FFFFFFFF_common_wrappers(root) == nullptr) return -1;
    return publish_samples(root);
}

// Calls a callback and gives its result and the error that it left pending, as Python code that
// calls it cannot see both.
PyObject *status_and_error(std::int64_t (*callback)(void *, void *, void *, void *, void *),
                           void *first, void *second, void *third, void *fourth, void *fifth) {
    const std::int64_t status = callback(first, second, third, fourth, fifth);
    Ref error = take_raised();
    if (!error) error = Ref::borrow(Py_None);
    return Py_BuildValue("(iN)", static_cast<int>(status), error.release());
}
PyObject *status64_and_error(std::int64_t (*callback)(void *, void *, void *, void *, void *),
                             void *first, void *second, void *third, void *fourth, void *fifth) {
    const std::int64_t status = callback(first, second, third, fourth, fifth);
    Ref error = take_raised();
    if (!error) error = Ref::borrow(Py_None);
    return Py_BuildValue("(LN)", static_cast<long long>(status), error.release());
}
// What the managed side does when a callback has failed.
int catch_after(std::int64_t (*callback)(PyObject *), PyObject *stream, PyObject **owner,
                PyStringArg *text) {
    callback(stream);
    return fn_catch_and_clear_py_error(owner, text);
}
// A close with an error pending before.
PyObject *close_with_pending(PyObject *stream, PyObject *type, PyObject *value) {
    PyErr_SetObject(type, value);
    fn_clbk_rawio_close(stream);
    Ref error = take_raised();
    return error ? error.release() : Ref::borrow(Py_None).release();
}

const ProbeRow module_rows[] = {
    PROBE_ROW(status_and_error),
    PROBE_ROW(status64_and_error),
    PROBE_ROW(close_with_pending),
    PROBE_ROW(catch_after),
    PROBE_ROW(start_wrapped_module),
    PROBE_ROW(m_all_py_wrapper_callbacks),
    PROBE_ROW(m_py_obj_api_callbacks),
    PROBE_ROW(m_py_tpo_api_callbacks),
    PROBE_ROW(get_all_py_wrapper_callbacks),
    PROBE_ROW(wrpPye_tyds_ArrayWrapper),
    PROBE_ROW(wrpPye_tyds_StreamWrapper),
    PROBE_ROW(wrpPye_tyds_IterableWrapper),
    PROBE_ROW(wrpPye_bltp_iterable_iter),
    PROBE_ROW(wrpPye_bltp_iter_iternext),
    PROBE_ROW(fn_stream_read_bytes_impl),
    PROBE_ROW(fn_stream_read_line_impl),
    PROBE_ROW(fn_create_shlbuffer_view),
};
const ProbeTable module_table(module_rows);

const ProbeRow converter_rows[] = {
    PROBE_ROW(wrpPye_conv_py_to_clr_idisposable),
    PROBE_ROW(wrpPye_conv_py_to_clr_iter),
    PROBE_ROW(wrpPye_conv_py_to_clr_iterable),
    PROBE_ROW(wrpPye_conv_py_to_clr_icollection),
    PROBE_ROW(wrpPye_conv_py_to_clr_ilist),
    PROBE_ROW(wrpPye_conv_py_to_clr_array),
    PROBE_ROW(wrpPye_conv_py_to_clr_arrlist),
    PROBE_ROW(wrpPye_conv_py_to_clr_colbase),
    PROBE_ROW(wrpPye_conv_py_to_clr_rocolbase),
    PROBE_ROW(wrpPye_conv_py_to_clr_stream),
    PROBE_ROW(PyShlObject_HasLength),
    PROBE_ROW(PyShlObject_HasIter),
};
const ProbeTable converter_table(converter_rows);

const ProbeRow callback_rows[] = {
    PROBE_ROW(fn_clbk_iter_next),
    PROBE_ROW(fn_clbk_ucol_list_length),
    PROBE_ROW(fn_clbk_ucol_list_longlength),
    PROBE_ROW(fn_clbk_ucol_remove_at),
    PROBE_ROW(fn_clbk_ucol_clear),
    PROBE_ROW(fn_clbk_ucol_sequence_length),
    PROBE_ROW(fn_clbk_ucol_sequence_longlength),
    PROBE_ROW(fn_clbk_ucol_get_enumerator),
    PROBE_ROW(fn_clbk_ucol_object_length),
    PROBE_ROW(fn_clbk_ucol_create_fast_list),
    PROBE_ROW(fn_clbk_ucol_create_fast_longlist),
    PROBE_ROW(fn_clbk_ucol_get_unicode_bytes),
    PROBE_ROW(fn_clbk_olist_get_item),
    PROBE_ROW(fn_clbk_olist_set_item),
    PROBE_ROW(fn_clbk_olist_add),
    PROBE_ROW(fn_clbk_olist_insert),
    PROBE_ROW(fn_clbk_olist_remove),
    PROBE_ROW(fn_clbk_olist_contains),
    PROBE_ROW(fn_clbk_olist_index_of),
    PROBE_ROW(fn_clbk_olist_set_fast_item),
    PROBE_ROW(fn_clbk_olist_write_clr_ilist),
    PROBE_ROW(fn_clbk_olist_write_clr_arrlist),
    PROBE_ROW(fn_clbk_olist_write_clr_array),
    PROBE_ROW(fn_clbk_oseq_get_item),
    PROBE_ROW(fn_clbk_oseq_contains),
    PROBE_ROW(fn_clbk_oseq_index_of),
    PROBE_ROW(fn_clbk_rawio_write),
    PROBE_ROW(fn_clbk_rawio_write_byte),
    PROBE_ROW(fn_clbk_rawio_read),
    PROBE_ROW(fn_clbk_rawio_readbyte),
    PROBE_ROW(fn_clbk_rawio_seek),
    PROBE_ROW(fn_clbk_rawio_truncate),
    PROBE_ROW(fn_clbk_rawio_flush),
    PROBE_ROW(fn_clbk_rawio_close),
    PROBE_ROW(fn_clbk_rawio_readable),
    PROBE_ROW(fn_clbk_rawio_writable),
    PROBE_ROW(fn_clbk_rawio_seekable),
    PROBE_ROW(fn_clbk_rawio_tell),
    PROBE_ROW(fn_clbk_rawio_length),
    PROBE_ROW(fn_get_py_none),
    PROBE_ROW(fn_xinc_ref),
    PROBE_ROW(fn_xdec_ref),
};
const ProbeTable callback_table(callback_rows);

} // namespace
