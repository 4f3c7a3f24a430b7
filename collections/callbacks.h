// Python objects on the managed side: the callbacks by which it drives them, and their tables.
//
// All are called on the thread of the running delegate. None raises across the boundary: a Python
// error stays pending and the managed side turns the status into an exception of its own. Items
// that the managed side hands in are new references, consumed on every path.
#pragma once

#include "marshal/records.h"
#include "shell/cpython.h"

#include <cstdint>

// Iterators: 0 with the item and its variant, 1 at the end, 2 failed.
int fn_clbk_iter_next(PyObject *iterator, PyObject **item, VariantArg *out);

// Any collection. Lengths are -1 when they cannot be had.
std::int32_t fn_clbk_ucol_list_length(PyObject *list);
std::int64_t fn_clbk_ucol_list_longlength(PyObject *list);
int fn_clbk_ucol_remove_at(PyObject *list, std::int32_t index); // 0, -2 IndexError, -1
int fn_clbk_ucol_clear(PyObject *list);                         // 0, -1
std::int32_t fn_clbk_ucol_sequence_length(PyObject *sequence);
std::int64_t fn_clbk_ucol_sequence_longlength(PyObject *sequence);
PyObject *fn_clbk_ucol_get_enumerator(PyObject *object);
std::int32_t fn_clbk_ucol_object_length(PyObject *object);
// A list with empty places and the address of its items: filled by set_fast_item at every place
// before any Python code sees it.
PyObject **fn_clbk_ucol_create_fast_list(std::int32_t size, PyObject **list);
PyObject **fn_clbk_ucol_create_fast_longlist(std::int64_t size, PyObject **list);
int fn_clbk_ucol_get_unicode_bytes(PyObject *text, PyObject **owner, std::int32_t *count,
                                   const char **characters); // 1, 0

// Lists: 0, -2 IndexError, -1 any other failure, unless told otherwise.
int fn_clbk_olist_get_item(PyObject *list, std::int32_t index, VariantArg *out);
int fn_clbk_olist_set_item(PyObject *list, std::int32_t index, PyObject *item);
std::int32_t fn_clbk_olist_add(PyObject *list, PyObject *item); // the new length, -1
int fn_clbk_olist_insert(PyObject *list, std::int32_t index, PyObject *item);
int fn_clbk_olist_remove(PyObject *list, PyObject *item);            // 0, -1
int fn_clbk_olist_contains(PyObject *list, PyObject *item);          // 1, 0, -1
std::int32_t fn_clbk_olist_index_of(PyObject *list, PyObject *item); // -1 absent, -2 failed
void fn_clbk_olist_set_fast_item(PyObject **items, std::int32_t index, PyObject *item);
PyObject *fn_clbk_olist_write_clr_ilist(void *handle);
PyObject *fn_clbk_olist_write_clr_arrlist(void *handle);
PyObject *fn_clbk_olist_write_clr_array(void *handle);

// Sequences.
int fn_clbk_oseq_get_item(PyObject *sequence, std::int32_t index, VariantArg *out);
int fn_clbk_oseq_contains(PyObject *sequence, PyObject *item); // 1, 0, -1
std::int32_t fn_clbk_oseq_index_of(PyObject *sequence, PyObject *item);

// Streams.
std::int32_t fn_clbk_rawio_write(PyObject *stream, const void *bytes, std::int32_t count);
std::int32_t fn_clbk_rawio_write_byte(PyObject *stream, std::int32_t value);
std::int32_t fn_clbk_rawio_read(PyObject *stream, void *bytes, std::int32_t count);
std::int32_t fn_clbk_rawio_readbyte(PyObject *stream); // the byte, -1 at the end, -2 failed
std::int64_t fn_clbk_rawio_seek(PyObject *stream, std::int64_t offset, std::int32_t origin);
int fn_clbk_rawio_truncate(PyObject *stream, std::int64_t length);
int fn_clbk_rawio_flush(PyObject *stream);
void fn_clbk_rawio_close(PyObject *stream);
int fn_clbk_rawio_readable(PyObject *stream); // 1, 0, -1
int fn_clbk_rawio_writable(PyObject *stream);
int fn_clbk_rawio_seekable(PyObject *stream);
std::int64_t fn_clbk_rawio_tell(PyObject *stream);
std::int64_t fn_clbk_rawio_length(PyObject *stream); // -1 failed, -2 not seekable, -3 closed

// Objects.
PyObject *fn_get_py_none(); // borrowed
void fn_xinc_ref(PyObject *object);
void fn_xdec_ref(PyObject *object);

extern void *m_py_iter_callbacks[];
extern void *m_py_ucol_callbacks[];
extern void *m_py_olist_callbacks[];
extern void *m_py_oseq_callbacks[];
extern void *m_py_rawio_callbacks[];
extern void *m_py_obj_api_callbacks[];
extern void *m_py_tpo_api_callbacks[];
extern void **m_all_py_wrapper_callbacks[];

void ***get_all_py_wrapper_callbacks();
