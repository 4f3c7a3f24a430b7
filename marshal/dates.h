// Dates, times, offsets and spans, both ways.
//
// Wire forms: a DateTime is one int64, ticks below the kind in bits 62 and 63. A DateTimeOffset,
// and a DateTime of kind 2 that comes back, is two: that, and the offset from UTC in ticks. A
// TimeSpan is one int64 of ticks. Python's resolution is the microsecond: what is finer is dropped
// on the way back.
#pragma once

#include "shell/cpython.h"

#include "marshal/datetime_arg_builder.h"
#include "marshal/timespan_arg_builder.h"

// The fields of the interpreter's objects, read out of their packed data.
void copy_py_date(PyObject *date, DateTimeArgBuilder &fields);
void copy_py_time(PyObject *time, DateTimeArgBuilder &fields);
void copy_py_datetime(PyObject *datetime, DateTimeArgBuilder &fields);
void copy_py_datetimedelta(PyObject *timedelta, TimeSpanArgBuilder &fields);

// What an object of module "datetime" is, subclasses included; a datetime is no date here.
enum class PyDateForm { none, timedelta, datetime, date, time };

// Imports the capsule of "datetime", as each use of it does. False with an exception set.
bool import_py_datetime_api();
PyDateForm get_py_date_form(PyObject *value); // after import_py_datetime_api()

struct PyUtcOffset {
    bool failed;     // an exception is set
    bool has_offset; // false for a naive object
    int64_t ticks;
};
PyUtcOffset get_utc_offset(PyObject *value); // after import_py_datetime_api()

// "O&" units, over one int64, two int64 and one int64.
int fn_conv_py_datetime_to_clr_datetime(PyObject *value, void *target);
int fn_conv_py_datetime_to_clr_datetimeoffset(PyObject *value, void *target);
int fn_conv_py_datetimedelta_to_clr_timespan(PyObject *value, void *target);

// Read callbacks. The first and third give 1 for a value without an offset, 2 for one with it.
int fn_read_py_vers_datetime(PyObject *value, int64_t *out);
int fn_read_py_vers_date(PyObject *value, int64_t *out);
int fn_read_py_vers_time(PyObject *value, int64_t *out);
int fn_read_py_datetimedelta(PyObject *value, int64_t *out);

// Results and write callbacks: a new reference.
PyObject *fn_conv_clr_datetime_to_py_datetime(const int64_t *value);
PyObject *fn_conv_clr_datetimeoffset_to_py_datetime(const int64_t *value);
PyObject *fn_conv_clr_timespan_to_py_datetimedelta(int64_t ticks);
PyObject *fn_write_py_date_time(const int64_t *value);
PyObject *fn_write_py_date_time_offset(const int64_t *value);
PyObject *fn_write_py_datetimedelta(int64_t ticks);

// A timezone with a UTF-16 name; None is its name for a `length` of -1.
PyObject *fn_write_py_timezone(const char *name, int32_t length, int64_t ticks);
