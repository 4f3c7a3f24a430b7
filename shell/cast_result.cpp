// Holds the factory of cast results.
#include "shell/cast_result.h"

PyObject *(*PyShCastOpResult_New)(int status, PyObject *value) = nullptr;
