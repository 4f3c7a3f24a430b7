// Managed dates and times to Python.
#include "marshal/dates.h"

#include "marshal/date_api.h"
#include "marshal/strings.h"
#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/ref.h"

namespace {

Ref new_span(int64_t ticks) {
    TimeSpanArgBuilder span;
    span.from_ticks(ticks);
    return Ref::steal(new_py_timedelta(span));
}

// datetime(...) with the class that module "datetime" has at the moment, and a zone.
PyObject *call_datetime_class(const DateTimeArgBuilder &fields, PyObject *tzinfo) {
    const Ref type = Ref::steal(PyShImport_ImportType("datetime", PyWrpIdTypeName_DateTime));
    if (!type) return nullptr;
    if (is_py_datetime_class(type.get())) return new_py_datetime(fields, tzinfo);
    return PyObject_CallFunction(type.get(), "iiiiiiiO", fields.year, fields.month, fields.day,
                                 fields.hour, fields.minute, fields.second, fields.microsecond,
                                 tzinfo);
}

PyObject *new_utc_datetime(const DateTimeArgBuilder &fields) {
    const Ref timezone = Ref::steal(PyShImport_ImportType("datetime", PyWrpIdTypeName_TimeZone));
    if (!timezone) return nullptr;
    const Ref utc = Ref::steal(PyObject_GetAttr(timezone.get(), PyWrpIdDateTime_Utc));
    return utc ? call_datetime_class(fields, utc.get()) : nullptr;
}

PyObject *new_offset_datetime(const DateTimeArgBuilder &fields, int64_t offset) {
    const Ref timezone = Ref::steal(PyShImport_ImportType("datetime", PyWrpIdTypeName_TimeZone));
    if (!timezone) return nullptr;
    const Ref delta = new_span(offset);
    if (!delta) return nullptr;
    // PyObject_CallOneArg would ask 3.9 and 3.10 for the state of the thread.
    const Ref tzinfo =
        Ref::steal(PyObject_CallFunctionObjArgs(timezone.get(), delta.get(), nullptr));
    return tzinfo ? call_datetime_class(fields, tzinfo.get()) : nullptr;
}

} // namespace

PyObject *fn_conv_clr_datetime_to_py_datetime(const int64_t *value) {
    if (!import_py_datetime_api()) return nullptr;
    const DateTimeArgBuilder fields(value[0]);
    switch (fields.kind) {
    case 0:
        return new_py_datetime(fields, Py_None);
    case 1:
        return new_utc_datetime(fields);
    default:
        return new_offset_datetime(fields, value[1]);
    }
}

PyObject *fn_conv_clr_datetimeoffset_to_py_datetime(const int64_t *value) {
    if (!import_py_datetime_api()) return nullptr;
    return new_offset_datetime(DateTimeArgBuilder(value[0]), value[1]);
}

PyObject *fn_conv_clr_timespan_to_py_datetimedelta(int64_t ticks) {
    if (!import_py_datetime_api()) return nullptr;
    return new_span(ticks).release();
}

PyObject *fn_write_py_date_time(const int64_t *value) {
    return fn_conv_clr_datetime_to_py_datetime(value);
}

PyObject *fn_write_py_date_time_offset(const int64_t *value) {
    return fn_conv_clr_datetimeoffset_to_py_datetime(value);
}

PyObject *fn_write_py_datetimedelta(int64_t ticks) {
    return fn_conv_clr_timespan_to_py_datetimedelta(ticks);
}

PyObject *fn_write_py_timezone(const char *name, int32_t length, int64_t ticks) {
    if (!import_py_datetime_api()) return nullptr;
    const Ref timezone = Ref::steal(PyShImport_ImportType("datetime", PyWrpIdTypeName_TimeZone));
    if (!timezone) return nullptr;
    const Ref delta = new_span(ticks);
    if (!delta) return nullptr;
    // The interpreter's own class refuses None as a name; the call is made all the same.
    const Ref text = length == -1 ? Ref::borrow(Py_None)
                                  : Ref::steal(fn_conv_clr_string_to_py_string(name, length));
    if (!text) return nullptr;
    return PyObject_CallFunctionObjArgs(timezone.get(), delta.get(), text.get(), nullptr);
}
