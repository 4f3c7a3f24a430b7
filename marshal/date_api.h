// The interpreter's date-and-time interface, behind the one file that includes its header.
//
// <datetime.h> gives each file a pointer of its own that has to be set before its macros work, so
// only date_api.cpp includes it.
#pragma once

#include "marshal/dates.h"

// True for an exact datetime or time without a zone, told without an attribute look-up. False says
// nothing.
bool has_no_tzinfo(PyObject *value);

// The interpreter's own constructors: a new reference.
PyObject *new_py_datetime(const DateTimeArgBuilder &fields, PyObject *tzinfo);
PyObject *new_py_timedelta(const TimeSpanArgBuilder &fields); // normalised

// Whether `type` is the interpreter's datetime class, which new_py_datetime() makes instances of.
bool is_py_datetime_class(PyObject *type);
