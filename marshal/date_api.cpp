// The interpreter's date-and-time interface.
#include "marshal/date_api.h"

#include "shell/identifiers.h"
#include "shell/ref.h"

#include <datetime.h>

namespace {

// What PyCapsule_Import does for a module that is there, without its import machinery and without a
// new str for each name: the module out of `sys.modules`, the capsule out of the module. Null, with
// no exception set, when any of it is not as it should be.
void *find_capsule() {
    static PyObject *attribute; // interned, and never released, as all identifiers
    if (attribute == nullptr) attribute = PyUnicode_InternFromString("datetime_CAPI");
    // The module and the class in it bear one name.
    const Ref module = Ref::steal(PyImport_GetModule(PyWrpIdTypeName_DateTime));
    if (attribute == nullptr || !module || !PyModule_CheckExact(module.get())) {
        return PyErr_Clear(), nullptr;
    }
    PyObject *const capsule = PyDict_GetItemWithError(PyModule_GetDict(module.get()), attribute);
    if (capsule == nullptr || !PyCapsule_CheckExact(capsule)) return PyErr_Clear(), nullptr;
    void *const api = PyCapsule_GetPointer(capsule, PyDateTime_CAPSULE_NAME);
    if (api == nullptr) PyErr_Clear();
    return api;
}

} // namespace

bool import_py_datetime_api() {
    void *api = find_capsule();
    // Imports the module where it is missing, and words the error where it cannot serve.
    if (api == nullptr) api = PyCapsule_Import(PyDateTime_CAPSULE_NAME, 0);
    PyDateTimeAPI = static_cast<PyDateTime_CAPI *>(api);
    return api != nullptr;
}

PyDateForm get_py_date_form(PyObject *value) {
    if (PyDelta_Check(value)) return PyDateForm::timedelta;
    if (PyDateTime_Check(value)) return PyDateForm::datetime;
    if (PyDate_Check(value)) return PyDateForm::date;
    if (PyTime_Check(value)) return PyDateForm::time;
    return PyDateForm::none;
}

bool has_no_tzinfo(PyObject *value) {
    if (PyDateTime_CheckExact(value)) {
        return !reinterpret_cast<PyDateTime_DateTime *>(value)->hastzinfo;
    }
    return PyTime_CheckExact(value) && !reinterpret_cast<PyDateTime_Time *>(value)->hastzinfo;
}

void copy_py_date(PyObject *date, DateTimeArgBuilder &fields) {
    fields.year = PyDateTime_GET_YEAR(date);
    fields.month = PyDateTime_GET_MONTH(date);
    fields.day = PyDateTime_GET_DAY(date);
}

void copy_py_time(PyObject *time, DateTimeArgBuilder &fields) {
    fields.hour = PyDateTime_TIME_GET_HOUR(time);
    fields.minute = PyDateTime_TIME_GET_MINUTE(time);
    fields.second = PyDateTime_TIME_GET_SECOND(time);
    fields.microsecond = PyDateTime_TIME_GET_MICROSECOND(time);
}

void copy_py_datetime(PyObject *datetime, DateTimeArgBuilder &fields) {
    copy_py_date(datetime, fields);
    fields.hour = PyDateTime_DATE_GET_HOUR(datetime);
    fields.minute = PyDateTime_DATE_GET_MINUTE(datetime);
    fields.second = PyDateTime_DATE_GET_SECOND(datetime);
    fields.microsecond = PyDateTime_DATE_GET_MICROSECOND(datetime);
}

void copy_py_datetimedelta(PyObject *timedelta, TimeSpanArgBuilder &fields) {
    fields.days = PyDateTime_DELTA_GET_DAYS(timedelta);
    fields.seconds = PyDateTime_DELTA_GET_SECONDS(timedelta);
    fields.microseconds = PyDateTime_DELTA_GET_MICROSECONDS(timedelta);
}

PyObject *new_py_datetime(const DateTimeArgBuilder &fields, PyObject *tzinfo) {
    return PyDateTimeAPI->DateTime_FromDateAndTime(
        fields.year, fields.month, fields.day, fields.hour, fields.minute, fields.second,
        fields.microsecond, tzinfo, PyDateTimeAPI->DateTimeType);
}

PyObject *new_py_timedelta(const TimeSpanArgBuilder &fields) {
    return PyDateTimeAPI->Delta_FromDelta(fields.days, fields.seconds, fields.microseconds, 1,
                                          PyDateTimeAPI->DeltaType);
}

bool is_py_datetime_class(PyObject *type) {
    return type == reinterpret_cast<PyObject *>(PyDateTimeAPI->DateTimeType);
}
