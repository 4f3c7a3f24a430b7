// What tests reach of the converters and callbacks.
#include "peer/probe.h"

#include "marshal/buffers.h"
#include "marshal/dates.h"
#include "marshal/decimals.h"
#include "marshal/exceptions.h"
#include "marshal/others.h"
#include "marshal/py_read_callbacks.h"
#include "marshal/records.h"
#include "marshal/scalars.h"
#include "marshal/strings.h"
#include "shell/ref.h"

#include <new>
#include <string>
#include <type_traits>

namespace {

const ProbeRow scalar_rows[] = {
    PROBE_ROW(PyShLong_Check),
    PROBE_ROW(fn_conv_py_long_to_clr_int8),
    PROBE_ROW(fn_conv_py_long_to_clr_int16),
    PROBE_ROW(fn_conv_py_long_to_clr_int32),
    PROBE_ROW(fn_conv_py_long_to_clr_int64),
    PROBE_ROW(fn_conv_py_ulong_to_clr_uint8),
    PROBE_ROW(fn_conv_py_ulong_to_clr_uint16),
    PROBE_ROW(fn_conv_py_ulong_to_clr_uint32),
    PROBE_ROW(fn_conv_py_ulong_to_clr_uint64),
    PROBE_ROW(fn_conv_py_float_to_clr_double),
    PROBE_ROW(fn_conv_py_float_to_clr_float),
    PROBE_ROW(fn_conv_py_bool_to_clr_bool),
    PROBE_ROW(fn_read_py_bool),
    PROBE_ROW(fn_read_py_double),
    PROBE_ROW(fn_read_py_vers_long),
    PROBE_ROW(fn_write_py_bool),
    PROBE_ROW(fn_write_py_long),
    PROBE_ROW(fn_write_py_ulong),
    PROBE_ROW(fn_write_py_longlong),
    PROBE_ROW(fn_write_py_ulonglong),
    PROBE_ROW(fn_write_py_double),
};
const ProbeTable scalar_table(scalar_rows);

// What a cell holds, read in place.
PyObject *u16_text(const std::u16string *cell) {
    int byteorder = -1;
    return PyUnicode_DecodeUTF16(reinterpret_cast<const char *>(cell->data()),
                                 static_cast<Py_ssize_t>(cell->size() * 2), "surrogatepass",
                                 &byteorder);
}

const ProbeRow text_rows[] = {
    PROBE_ROW(u16_text),
    PROBE_ROW(fn_conv_py_string_to_clr_string),
    PROBE_ROW(fn_conv_py_string_to_clr_string_value),
    PROBE_ROW(fn_read_py_string),
    PROBE_ROW(fn_conv_py_strorpath_to_clr_string),
    PROBE_ROW(fn_conv_clr_string_to_py_string_value),
    PROBE_ROW(fn_conv_clr_string_to_py_string),
    PROBE_ROW(fn_create_u16_buffer),
    PROBE_ROW(on_clr_exception),
    PROBE_ROW(fn_catch_and_clear_py_error),
    PROBE_ROW(fn_describe_py_error),
    PROBE_ROW(fn_conv_clr_string_to_py_unraisable),
};
const ProbeTable text_table(text_rows);

const ProbeRow buffer_rows[] = {
    PROBE_ROW(fn_read_py_buffer),
    PROBE_ROW(fn_read_py_buffer_view),
    PROBE_ROW(fn_conv_py_bytes_to_clr_bytes_value),
    PROBE_ROW(fn_conv_py_bytes_to_clr_bytes),
    PROBE_ROW(fn_get_sizeof_py_byffer),
    PROBE_ROW(fn_create_py_byffer),
    PROBE_ROW(fn_release_py_buffer),
    PROBE_ROW(m_py_buffer_callbacks),
    PROBE_ROW(fn_conv_clr_bytes_to_py_bytes),
    PROBE_ROW(fn_create_shlbuffer_view),
    PROBE_ROW(wrpPye_tybp_ShlBufferView),
    PROBE_ROW(wrpPye_tyds_ShlBufferView),
};
const ProbeTable buffer_table(buffer_rows);

void utc_offset_of(PyObject *value, int *failed, int *has_offset, int64_t *ticks) {
    if (!import_py_datetime_api()) return;
    const PyUtcOffset offset = get_utc_offset(value);
    *failed = offset.failed;
    *has_offset = offset.has_offset;
    *ticks = offset.ticks;
}

const ProbeRow date_rows[] = {
    PROBE_ROW(copy_py_date),
    PROBE_ROW(copy_py_time),
    PROBE_ROW(copy_py_datetime),
    PROBE_ROW(copy_py_datetimedelta),
    PROBE_ROW(utc_offset_of),
    PROBE_ROW(fn_conv_py_datetime_to_clr_datetime),
    PROBE_ROW(fn_conv_py_datetime_to_clr_datetimeoffset),
    PROBE_ROW(fn_conv_py_datetimedelta_to_clr_timespan),
    PROBE_ROW(fn_read_py_vers_datetime),
    PROBE_ROW(fn_read_py_vers_date),
    PROBE_ROW(fn_read_py_vers_time),
    PROBE_ROW(fn_read_py_datetimedelta),
    PROBE_ROW(fn_conv_clr_datetime_to_py_datetime),
    PROBE_ROW(fn_conv_clr_datetimeoffset_to_py_datetime),
    PROBE_ROW(fn_conv_clr_timespan_to_py_datetimedelta),
    PROBE_ROW(fn_write_py_date_time),
    PROBE_ROW(fn_write_py_date_time_offset),
    PROBE_ROW(fn_write_py_datetimedelta),
    PROBE_ROW(fn_write_py_timezone),
};
const ProbeTable date_table(date_rows);

const ProbeRow other_rows[] = {
    PROBE_ROW(fn_conv_py_decimal_to_clr_decimal),
    PROBE_ROW(fn_conv_py_decimal_obj_to_clr_decimal),
    PROBE_ROW(fn_conv_py_decimal_tuple_to_clr_decimal),
    PROBE_ROW(fn_read_py_decimal),
    PROBE_ROW(fn_read_py_decimal_tuple),
    PROBE_ROW(fn_conv_clr_decimal_to_py_decimal),
    PROBE_ROW(fn_write_py_decimal),
    PROBE_ROW(fn_conv_py_uuid_to_clr_guid),
    PROBE_ROW(fn_conv_py_uuid_to_clr_guid_value),
    PROBE_ROW(fn_read_py_guid),
    PROBE_ROW(fn_conv_clr_guid_to_py_uuid),
    PROBE_ROW(fn_write_py_guid),
    PROBE_ROW(fn_conv_py_string_to_clr_char),
    PROBE_ROW(fn_conv_clr_char_to_py_string),
    PROBE_ROW(fn_write_py_char),
    PROBE_ROW(fn_conv_py_tuple_to_clr_version),
    PROBE_ROW(fn_conv_clr_version_to_py_tuple),
    PROBE_ROW(fn_conv_py_nullable_to_clr_nullable),
    PROBE_ROW(fn_conv_py_parbyref_to_clr_parbyref),
    PROBE_ROW(fn_push_parbyref_outvalue),
    PROBE_ROW(fn_conv_py_obj_to_ssize_t),
    PROBE_ROW(fn_conv_py_optional_to_ssize_t),
    PROBE_ROW(m_py_read_callbacks),
};
const ProbeTable other_table(other_rows);

// Size, then the offset of each field.
const int layout_PyStringArg[] = {sizeof(PyStringArg), offsetof(PyStringArg, length),
                                  offsetof(PyStringArg, char_size), offsetof(PyStringArg, data)};
const int layout_PyEphStrArg[] = {sizeof(PyEphStrArg), offsetof(PyEphStrArg, text),
                                  offsetof(PyEphStrArg, owner)};
const int layout_PyBytesArg[] = {sizeof(PyBytesArg), offsetof(PyBytesArg, held),
                                 offsetof(PyBytesArg, length), offsetof(PyBytesArg, data)};
const int layout_PyBytesArgBuilder[] = {sizeof(PyBytesArgBuilder),
                                        offsetof(PyBytesArgBuilder, view),
                                        offsetof(PyBytesArgBuilder, info)};
const int layout_VariantArg[] = {sizeof(VariantArg), offsetof(VariantArg, kind),
                                 offsetof(VariantArg, value)};
const int layout_PyObjectOutArg[] = {sizeof(PyObjectOutArg), offsetof(PyObjectOutArg, handle),
                                     offsetof(PyObjectOutArg, type_token)};
const int layout_PyCollectionArg[] = {sizeof(PyCollectionArg), offsetof(PyCollectionArg, kind),
                                      offsetof(PyCollectionArg, handle),
                                      offsetof(PyCollectionArg, type_token)};
const int layout_PyParamByRef[] = {sizeof(PyParamByRef), offsetof(PyParamByRef, list),
                                   offsetof(PyParamByRef, convert), offsetof(PyParamByRef, target)};
const int layout_PyNullableArg[] = {sizeof(PyNullableArg), offsetof(PyNullableArg, has_value),
                                    offsetof(PyNullableArg, convert),
                                    offsetof(PyNullableArg, target)};
const int layout_PySysVersionArg[] = {sizeof(PySysVersionArg), offsetof(PySysVersionArg, count),
                                      offsetof(PySysVersionArg, components)};
const int layout_PyInterimArgBuilder[] = {sizeof(PyInterimArgBuilder),
                                          offsetof(PyInterimArgBuilder, value),
                                          offsetof(PyInterimArgBuilder, owner)};
const int layout_PyShlBufferView[] = {sizeof(PyShlBufferView), offsetof(PyShlBufferView, data),
                                      offsetof(PyShlBufferView, length),
                                      offsetof(PyShlBufferView, readonly)};

// Records are plain bytes, builders end what they hold.
const int plain_records[] = {
    std::is_trivially_copyable_v<PyStringArg>,     std::is_trivially_copyable_v<PyEphStrArg>,
    std::is_trivially_copyable_v<PyBytesArg>,      std::is_trivially_copyable_v<VariantArg>,
    std::is_trivially_copyable_v<PyObjectOutArg>,  std::is_trivially_copyable_v<PyCollectionArg>,
    std::is_trivially_copyable_v<PyParamByRef>,    std::is_trivially_copyable_v<PyNullableArg>,
    std::is_trivially_copyable_v<PySysVersionArg>,
};
const int plain_builders[] = {
    std::is_trivially_copyable_v<PyEphStrArgBuilder>,
    std::is_trivially_copyable_v<PyBytesArgBuilder>,
    std::is_trivially_copyable_v<PyInterimArgBuilder>,
};
const int abi_sizes[] = {sizeof(int32_t), sizeof(void *), sizeof(int64_t), alignof(int64_t)};

const ProbeRow layout_rows[] = {
    PROBE_ROW(plain_records),
    PROBE_ROW(plain_builders),
    PROBE_ROW(abi_sizes),
    PROBE_ROW(layout_PyStringArg),
    PROBE_ROW(layout_PyEphStrArg),
    PROBE_ROW(layout_PyBytesArg),
    PROBE_ROW(layout_PyBytesArgBuilder),
    PROBE_ROW(layout_VariantArg),
    PROBE_ROW(layout_PyObjectOutArg),
    PROBE_ROW(layout_PyCollectionArg),
    PROBE_ROW(layout_PyParamByRef),
    PROBE_ROW(layout_PyNullableArg),
    PROBE_ROW(layout_PySysVersionArg),
    PROBE_ROW(layout_PyInterimArgBuilder),
    PROBE_ROW(layout_PyShlBufferView),
};
const ProbeTable layout_table(layout_rows);

// Builders made and ended in memory of the test's own.
template <class Builder> void construct(void *memory) { new (memory) Builder; }
template <class Builder> void destroy(void *memory) { static_cast<Builder *>(memory)->~Builder(); }
void *get_view(PyBytesArgBuilder *builder) { return builder->get_view(); }
void *get_info(PyBytesArgBuilder *builder) { return builder->get_info(); }

// The values pushed, last one first, after `kept` of them have been taken off again.
PyObject *stack_of_two(PyObject *first, PyObject *second, int taken) {
    PyTrPyObjStack<2> stack;
    stack.push(Py_XNewRef(first));
    stack.push(Py_XNewRef(second));
    Ref popped = Ref::steal(PyList_New(0));
    for (int i = 0; i < taken; i++) {
        const Ref item = Ref::steal(stack.pop());
        PyList_Append(popped.get(), item.get());
    }
    return popped.release();
}

const ProbeRow builder_rows[] = {
    {"eph_str_construct", reinterpret_cast<const void *>(construct<PyEphStrArgBuilder>)},
    {"eph_str_destroy", reinterpret_cast<const void *>(destroy<PyEphStrArgBuilder>)},
    {"bytes_construct", reinterpret_cast<const void *>(construct<PyBytesArgBuilder>)},
    {"bytes_destroy", reinterpret_cast<const void *>(destroy<PyBytesArgBuilder>)},
    {"interim_construct", reinterpret_cast<const void *>(construct<PyInterimArgBuilder>)},
    {"interim_destroy", reinterpret_cast<const void *>(destroy<PyInterimArgBuilder>)},
    PROBE_ROW(get_view),
    PROBE_ROW(get_info),
    PROBE_ROW(stack_of_two),
};
const ProbeTable builder_table(builder_rows);

// A converter's result with what it left pending, so that a test sees both: (result, exception).
PyObject *convert(PyConverter converter, PyObject *value, void *target) {
    const int result = converter(value, target);
    PyObject *type;
    PyObject *error;
    PyObject *traceback;
    PyErr_Fetch(&type, &error, &traceback);
    if (type) PyErr_NormalizeException(&type, &error, &traceback);
    PyObject *pair = Py_BuildValue("(iO)", result, error ? error : Py_None);
    Py_XDECREF(type);
    Py_XDECREF(error);
    Py_XDECREF(traceback);
    return pair;
}

// As a generated method calls it.
PyObject *parse_one(PyConverter converter, PyObject *args, void *target) {
    if (!PyArg_ParseTuple(args, "O&", converter, target)) return nullptr;
    return Py_NewRef(Py_None);
}

// Raises the parts as they are (null ones too), as C code does, and catches that:
// (result, whether an error is pending afterwards).
PyObject *raise_and_catch(PyObject *type, PyObject *value, PyObject *traceback, PyObject **owner,
                          PyStringArg *text) {
    PyErr_Restore(Py_XNewRef(type), Py_XNewRef(value), Py_XNewRef(traceback));
    const int result = fn_catch_and_clear_py_error(owner, text);
    const bool pending = PyErr_Occurred() != nullptr;
    PyErr_Clear();
    return Py_BuildValue("(ii)", result, pending);
}

// A converter that answers as its target says, and writes its calls down there.
struct Answer {
    int64_t result;
    PyObject *error; // borrowed; may be null
    int64_t calls;
    PyObject *value;
};
int told_converter(PyObject *value, void *target) {
    auto *answer = static_cast<Answer *>(target);
    answer->calls++;
    answer->value = value;
    if (answer->error) PyErr_SetObject(PyExceptionInstance_Class(answer->error), answer->error);
    return static_cast<int>(answer->result);
}

const ProbeRow call_rows[] = {PROBE_ROW(convert), PROBE_ROW(parse_one), PROBE_ROW(raise_and_catch),
                              PROBE_ROW(told_converter)};
const ProbeTable call_table(call_rows);

} // namespace
