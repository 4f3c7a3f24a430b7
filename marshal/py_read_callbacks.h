// The functions with which managed code reads a Python value that it was given.
#pragma once

// Indexed by the managed side: the order of the slots is part of the wire format.
extern void *m_py_read_callbacks[];
