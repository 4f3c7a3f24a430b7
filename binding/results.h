// Managed results as Python objects: which type a handle is shown as depends on how the managed
// member declares its result.
//
//     PyObject *wrpPy_conv_clr_to_py_D91BAC5C_XmpHeaderPi(void *handle) {      // class, struct
//         return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPy_tyds_D91BAC5C_XmpHeaderPi);
//     }
//     PyObject *wrpPy_conv_clr_to_py_6868585B_IColorPalette(const PyObjectOutArg &result) {
//         return fn_conv_clr_ifcimpl_to_py_ifcimpl(result, &wrpPy_tyds_6868585B_IColorPalette);
//     }
//     // a member that is declared as Stream
//     return fn_conv_clr_absobj_to_py_absobj(result, &wrpPye_tyds_StreamWrapper);
//     // as an array with a bound element type
//     return fn_conv_clr_btpobj_to_py_btpobj(result, &wrpPygn_tyds_ArrayWrapper_0D30925B);
//     // as IList, ICollection, IEnumerable
//     return fn_conv_clr_ifcimpl_to_py_ifcimpl_wps(result, &wrpPye_tyds_IterableWrapper);
//
// All take the handle over. A null handle is None.
#pragma once

#include "marshal/records.h"
#include "shell/cpython.h"

#include <cstdint>
#include <initializer_list>

// Declared as a class or a struct: always the declared type, with no look-up.
PyObject *fn_conv_clr_clsobj_to_py_clsobj(void *handle, PyTypeObject *declared);

// Declared as an interface: the run-time class when that shows the interface, else the interface.
PyObject *fn_conv_clr_ifcimpl_to_py_ifcimpl(const PyObjectOutArg &result, PyTypeObject *declared);

// Declared as a collection with a bound element type.
PyObject *fn_conv_clr_btpobj_to_py_btpobj(const PyCollectionArg &result, PyTypeObject *declared);

// Declared as an abstract class that Python objects may stand for.
PyObject *fn_conv_clr_absobj_to_py_absobj(const PyCollectionArg &result, PyTypeObject *declared);

// Declared as an interface that Python objects may stand for.
PyObject *fn_conv_clr_ifcimpl_to_py_ifcimpl_wps(const PyCollectionArg &result,
                                                PyTypeObject *declared);

// The kind chooses the type.
PyObject *fn_conv_clr_vlarr_to_py_vlarr(const VariantArg &result, PyTypeObject *kind_zero,
                                        PyTypeObject *other_kinds);

// Gives back handles of a call that nobody will wrap, because another of its values could not be
// made. Always null, for the caller to return.
PyObject *fn_free_handles(std::initializer_list<void *> handles);

// Called by the managed side with a handle that it gives away.
PyObject *fn_write_py_tpo(void *handle, std::int64_t id);
int fn_try_write_py_tpo(void *handle, std::int64_t id, PyObject **out); // 1 done, 0 unknown, -1
