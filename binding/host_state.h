// Validity of a bound type: its own host and all types that it refers to, asked once.
//
// Generated per class:
//
//     static const PyHostState &wrpPy_uafn_8D6FBABB_Layer_get_aggregate_host_state() {
//         static const PyHostState state = aggregate_host_state(
//             PyHost_cs_8D6FBABB_Layer::get_instance(),
//             {wrpPy_bltp_3A5C1F20_RasterCachedImage_is_not_valid,
//              wrpPye_bltp_idisposable_is_not_valid});
//         return state;
//     }
//     bool wrpPy_bltp_8D6FBABB_Layer_is_not_valid(std::string &message) {
//         return is_not_valid(wrpPy_uafn_8D6FBABB_Layer_get_aggregate_host_state(), message);
//     }
//     static bool wrpPy_uafn_8D6FBABB_Layer_invalidate() {
//         return raise_if_not_valid(wrpPy_uafn_8D6FBABB_Layer_get_aggregate_host_state());
//     }
//     PyObject *wrpPy_tpsb_8D6FBABB_Layer_tp_new(PyTypeObject *type, PyObject *args,
//                                                PyObject *kwds) {
//         return new_clr_object(wrpPy_uafn_8D6FBABB_Layer_get_aggregate_host_state(), type, args,
//                               kwds);
//     }
//
// An interface asks its host alone:
//
//     bool wrpPy_bltp_6868585B_IColorPalette_is_not_valid(std::string &message) {
//         return is_not_valid(PyHost_cs_6868585B_IColorPalette::get_instance(), message);
//     }
#pragma once

#include "binding/class_host.h"
#include "shell/cpython.h"

#include <cstddef>
#include <initializer_list>
#include <string>

struct PyHostState {
    bool invalid = false;
    bool from_reference = false; // the cause lies in another type
    std::string message;         // of the first failure found
};
static_assert(offsetof(PyHostState, from_reference) == 1 && offsetof(PyHostState, message) == 8);

// Gives whether a referenced type is not valid, and then its message.
using NotValidQuery = bool (*)(std::string &message);

PyHostState aggregate_host_state(const ClassHost &own,
                                 std::initializer_list<NotValidQuery> references = {});

bool is_not_valid(const PyHostState &state, std::string &message);
bool is_not_valid(const ClassHost &host, std::string &message);

// True: TypeError is set, chained when the cause lies in another type.
bool raise_not_valid(const PyHostState &state);
inline bool raise_if_not_valid(const PyHostState &state) {
    return state.invalid && raise_not_valid(state);
}

// The body of tp_new: a wrapper with a null handle.
PyObject *new_clr_object(const PyHostState &state, PyTypeObject *type, PyObject *args,
                         PyObject *kwds);
