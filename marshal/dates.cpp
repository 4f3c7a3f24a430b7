// Python's dates and times to the managed side.
#include "marshal/dates.h"

#include "marshal/date_api.h"
#include "shell/identifiers.h"
#include "shell/ref.h"

namespace {

constexpr char not_a_date_time[] = "value too large or too small for .Net DateTime";

int refuse(PyObject *error, const char *words) {
    PyErr_SetString(error, words);
    return 0;
}

int refuse_type(const char *words, PyObject *value) {
    PyErr_Format(PyExc_TypeError, words, Py_TYPE(value)->tp_name);
    return 0;
}

// What has an offset reaches the managed side as UTC.
int convert_datetime(PyObject *value, int64_t *out) {
    DateTimeArgBuilder fields;
    copy_py_datetime(value, fields);
    const PyUtcOffset offset = get_utc_offset(value);
    if (offset.failed) return 0;
    fields.kind = offset.has_offset ? 1 : 0;
    const bool fits =
        offset.has_offset ? fields.to_utc_ticks(offset.ticks, *out) : fields.to_ticks(*out);
    return fits ? 1 : refuse(PyExc_OverflowError, not_a_date_time);
}

int convert_date(PyObject *value, int64_t *out) {
    DateTimeArgBuilder fields;
    copy_py_date(value, fields);
    return fields.to_ticks(*out) ? 1 : refuse(PyExc_OverflowError, not_a_date_time);
}

// A time stands on 1 January of year 1, so nothing can go out of range.
int convert_time(PyObject *value, int64_t *out) {
    DateTimeArgBuilder fields;
    copy_py_time(value, fields);
    const PyUtcOffset offset = get_utc_offset(value);
    if (offset.failed) return 0;
    if (!offset.has_offset) return fields.to_ticks(*out), 1;
    fields.kind = 1;
    return fields.to_time_ticks(offset.ticks, *out), 1;
}

// Local fields and their offset, which there must be.
int convert_with_offset(PyObject *value, const DateTimeArgBuilder &fields, int64_t *out,
                        const char *no_offset) {
    const PyUtcOffset offset = get_utc_offset(value);
    if (offset.failed) return 0;
    if (!offset.has_offset) return refuse(PyExc_ValueError, no_offset);
    out[1] = offset.ticks;
    return fields.to_ticks(out[0]) ? 1 : refuse(PyExc_OverflowError, not_a_date_time);
}

} // namespace

PyUtcOffset get_utc_offset(PyObject *value) {
    constexpr PyUtcOffset failure{true, false, 0};
    constexpr PyUtcOffset naive{false, false, 0};
    if (has_no_tzinfo(value)) return naive;
    const Ref tzinfo = Ref::steal(PyObject_GetAttr(value, PyWrpIdDateTime_Tzinfo));
    if (!tzinfo) return failure;
    if (tzinfo.get() == Py_None) return naive;
    const Ref delta = Ref::steal(PyObject_CallMethodNoArgs(value, PyWrpIdDateTime_UtcOffset));
    if (!delta) return failure;
    if (delta.get() == Py_None) return naive;
    if (get_py_date_form(delta.get()) != PyDateForm::timedelta) {
        PyErr_SetString(PyExc_TypeError, "instance utcoffset() return wrong value");
        return failure;
    }
    TimeSpanArgBuilder span;
    copy_py_datetimedelta(delta.get(), span);
    PyUtcOffset offset{false, true, 0};
    if (span.to_ticks(offset.ticks)) return offset;
    PyErr_SetString(PyExc_OverflowError, "value too large or too small utc offset");
    return failure;
}

int fn_conv_py_datetime_to_clr_datetime(PyObject *value, void *target) {
    if (!import_py_datetime_api()) return 0;
    auto *out = static_cast<int64_t *>(target);
    switch (get_py_date_form(value)) {
    case PyDateForm::datetime:
        return convert_datetime(value, out);
    case PyDateForm::date:
        return convert_date(value, out);
    case PyDateForm::time:
        return convert_time(value, out);
    default:
        return refuse_type("can't build DateTime from '%s'", value);
    }
}

int fn_conv_py_datetime_to_clr_datetimeoffset(PyObject *value, void *target) {
    if (!import_py_datetime_api()) return 0;
    auto *out = static_cast<int64_t *>(target);
    DateTimeArgBuilder fields;
    switch (get_py_date_form(value)) {
    case PyDateForm::datetime:
        copy_py_datetime(value, fields);
        return convert_with_offset(value, fields, out,
                                   "The tzinfo property of a given datetime should not be None");
    case PyDateForm::time:
        copy_py_time(value, fields);
        return convert_with_offset(value, fields, out,
                                   "The tzinfo property of a given time should not be None");
    default:
        return refuse_type("can't build DateTime from '%s'", value);
    }
}

int fn_conv_py_datetimedelta_to_clr_timespan(PyObject *value, void *target) {
    if (!import_py_datetime_api()) return 0;
    if (get_py_date_form(value) != PyDateForm::timedelta) {
        return refuse_type("can't build TimeSpan from '%s'", value);
    }
    return fn_read_py_datetimedelta(value, static_cast<int64_t *>(target));
}

int fn_read_py_datetimedelta(PyObject *value, int64_t *out) {
    TimeSpanArgBuilder span;
    copy_py_datetimedelta(value, span);
    if (span.to_ticks(*out)) return 1;
    return refuse(PyExc_OverflowError, "value too large or too small for .Net TimeSpan");
}

int fn_read_py_vers_datetime(PyObject *value, int64_t *out) {
    if (!import_py_datetime_api()) return 0;
    const PyUtcOffset offset = get_utc_offset(value);
    if (offset.failed) return 0;
    DateTimeArgBuilder fields;
    copy_py_datetime(value, fields);
    if (!offset.has_offset) {
        return fields.to_ticks(out[0]) ? 1 : refuse(PyExc_OverflowError, not_a_date_time);
    }
    out[1] = offset.ticks;
    if (fields.to_ticks(out[0])) return 2;
    return refuse(PyExc_OverflowError, "value too large or too small for .Net DateTimeOffSet");
}

int fn_read_py_vers_date(PyObject *value, int64_t *out) { return convert_date(value, out); }

int fn_read_py_vers_time(PyObject *value, int64_t *out) {
    if (!import_py_datetime_api()) return 0;
    const PyUtcOffset offset = get_utc_offset(value);
    if (offset.failed) return 0;
    DateTimeArgBuilder fields;
    copy_py_time(value, fields);
    fields.to_ticks(out[0]);
    if (!offset.has_offset) return 1;
    out[1] = offset.ticks;
    return 2;
}
