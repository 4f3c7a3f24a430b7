// The table of the functions that read a Python value.
#include "marshal/py_read_callbacks.h"

#include "marshal/dates.h"
#include "marshal/decimals.h"
#include "marshal/others.h"
#include "marshal/scalars.h"
#include "marshal/strings.h"

void *m_py_read_callbacks[] = {
    reinterpret_cast<void *>(fn_read_py_string),
    reinterpret_cast<void *>(fn_read_py_bool),
    reinterpret_cast<void *>(fn_read_py_vers_long),
    reinterpret_cast<void *>(fn_read_py_double),
    reinterpret_cast<void *>(fn_read_py_decimal),
    reinterpret_cast<void *>(fn_read_py_decimal_tuple),
    reinterpret_cast<void *>(fn_read_py_vers_datetime),
    reinterpret_cast<void *>(fn_read_py_vers_date),
    reinterpret_cast<void *>(fn_read_py_vers_time),
    reinterpret_cast<void *>(fn_read_py_datetimedelta),
    reinterpret_cast<void *>(fn_read_py_guid),
};
