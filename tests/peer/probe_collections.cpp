// What tests reach of the collections, and the start of a module around them.
#include "peer/probe.h"
#include "peer/probe_sample.h"

#include "collections/callbacks.h"
#include "collections/collection_types.h"
#include "collections/interop_module.h"
#include "collections/interop_wrappers.h"
#include "collections/stream_read.h"
#include "marshal/buffers.h"
#include "shell/clr_host.h"
#include "shell/identifiers.h"

namespace {

// All that an import does between the siblings and the module's own tree: 0, or -1 with an error.
int start_wrapped_module(PyObject *root) {
    fn_intern_identifiers();
    if (initialize_clr_host("", "WrpInterop.Kelmor.PSD", false, "kelmor", "psd") < 0) return -1;
    if (wrpPye_mlit_FFFFFFFF_common_wrappers(root) == nullptr) return -1;
    return publish_samples(root);
}

const ProbeRow module_rows[] = {
    PROBE_ROW(start_wrapped_module),         PROBE_ROW(m_all_py_wrapper_callbacks),
    PROBE_ROW(m_py_obj_api_callbacks),       PROBE_ROW(m_py_tpo_api_callbacks),
    PROBE_ROW(get_all_py_wrapper_callbacks), PROBE_ROW(wrpPye_tyds_ArrayWrapper),
    PROBE_ROW(wrpPye_tyds_StreamWrapper),    PROBE_ROW(wrpPye_tyds_IterableWrapper),
    PROBE_ROW(fn_stream_read_bytes_impl),    PROBE_ROW(fn_stream_read_line_impl),
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
