// The functions with which managed code makes a Python value.
#pragma once

// Indexed by the managed side: the order of the slots is part of the wire format.
extern void *m_py_write_callbacks[];
