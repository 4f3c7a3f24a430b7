// A bytes-like object as a binary stream.
#pragma once

#include "shell/cpython.h"

extern PyTypeObject BytesAsStream_Type;
