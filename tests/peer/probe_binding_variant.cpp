// What tests reach of variants and of the callbacks that make values.
#include "peer/probe.h"

#include "binding/py_write_callbacks.h"
#include "binding/variant.h"

namespace {

const ProbeRow rows[] = {PROBE_ROW(fn_conv_py_variant_to_clr_variant),
                         PROBE_ROW(m_py_write_callbacks)};
const ProbeTable table(rows);

} // namespace
