// The tables that the managed side is given at the start.
#include "binding/py_write_callbacks.h"
#include "binding/results.h"
#include "collections/callbacks.h"
#include "collections/generic.h"
#include "marshal/buffers.h"
#include "marshal/exceptions.h"
#include "marshal/py_read_callbacks.h"
#include "marshal/strings.h"
#include "shell/clr_host.h"

PyObject *fn_get_py_none() { return Py_None; }
void fn_xinc_ref(PyObject *object) { Py_XINCREF(object); }
void fn_xdec_ref(PyObject *object) { Py_XDECREF(object); }

// Ends with a null, as those below: the managed side may find out how much a module offers.
void *m_py_obj_api_callbacks[] = {reinterpret_cast<void *>(fn_get_py_none),
                                  reinterpret_cast<void *>(fn_xinc_ref),
                                  reinterpret_cast<void *>(fn_xdec_ref), nullptr};

void *m_py_tpo_api_callbacks[] = {reinterpret_cast<void *>(fn_try_write_py_tpo), nullptr, nullptr,
                                  nullptr};

void **m_all_py_wrapper_callbacks[] = {m_py_read_callbacks,
                                       m_py_write_callbacks,
                                       m_py_buffer_callbacks,
                                       m_py_tpo_api_callbacks,
                                       m_py_iter_callbacks,
                                       m_py_ucol_callbacks,
                                       m_py_olist_callbacks,
                                       m_py_oseq_callbacks,
                                       m_py_rawio_callbacks,
                                       nullptr,
                                       nullptr,
                                       nullptr};

void ***get_all_py_wrapper_callbacks() { return m_all_py_wrapper_callbacks; }

const ClrCallbacks clr_callbacks = {reinterpret_cast<void *>(on_clr_exception),
                                    reinterpret_cast<void *>(fn_catch_and_clear_py_error),
                                    reinterpret_cast<void *>(fn_create_u16_buffer),
                                    reinterpret_cast<void *>(fn_conv_clr_string_to_py_string),
                                    reinterpret_cast<void *>(fn_conv_clr_string_to_py_unraisable),
                                    m_py_obj_api_callbacks,
                                    get_all_py_wrapper_callbacks,
                                    get_all_pygn_generic_callbacks,
                                    reinterpret_cast<void *>(fn_conv_clr_bytes_to_py_bytes)};
