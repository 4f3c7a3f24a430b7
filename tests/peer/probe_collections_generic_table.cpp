// The table of generic callbacks, as the start hands it over.
#include "peer/probe.h"

#include "collections/generic.h"

namespace {

const ProbeRow rows[] = {PROBE_ROW(get_all_pygn_generic_callbacks)};
const ProbeTable table(rows);

} // namespace
