// Counts of the host's own string manager, whose freed buffers stay poisoned to the end.
#pragma once

namespace strings {

int Live();
// Buffers freed twice, frees of others' buffers, overruns, writes after the free.
int Faults();

} // namespace strings
