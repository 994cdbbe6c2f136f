// Hooks the tests use to reach states of the classic routines that the host decides.
// The library never calls these.
#pragma once

namespace portlib::testing {

// Replaces the processor count that ETIME, DTIME and DTIMER8 choose their clocks by
// (-1: ask the host again).
void set_processor_count(int count) noexcept;

}  // namespace portlib::testing
