// The table of the functions that make a Python value.
#include "binding/py_write_callbacks.h"

#include "binding/results.h"
#include "marshal/dates.h"
#include "marshal/decimals.h"
#include "marshal/others.h"
#include "marshal/scalars.h"

void *m_py_write_callbacks[] = {
    reinterpret_cast<void *>(fn_write_py_tpo),
    reinterpret_cast<void *>(fn_write_py_bool),
    reinterpret_cast<void *>(fn_write_py_long),
    reinterpret_cast<void *>(fn_write_py_ulong),
    reinterpret_cast<void *>(fn_write_py_longlong),
    reinterpret_cast<void *>(fn_write_py_ulonglong),
    reinterpret_cast<void *>(fn_write_py_double),
    reinterpret_cast<void *>(fn_write_py_decimal),
    reinterpret_cast<void *>(fn_write_py_date_time),
    reinterpret_cast<void *>(fn_write_py_date_time_offset),
    reinterpret_cast<void *>(fn_write_py_datetimedelta),
    reinterpret_cast<void *>(fn_write_py_timezone),
    reinterpret_cast<void *>(fn_write_py_guid),
    reinterpret_cast<void *>(fn_write_py_char),
};
