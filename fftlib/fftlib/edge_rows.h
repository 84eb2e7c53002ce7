// The grid's rows above and below the frame.
#pragma once

#include <cstdint>

namespace lx {

class DefocusEngine;

// For an input pass that has done the rows first to last of the frame: repeats the frame's
// first and last grid row beyond it. They go with the range that holds them, so that the
// ways share them and no row is read before it is written.
void RepeatEdgeRows(DefocusEngine* engine, std::int32_t first, std::int32_t last);

}  // namespace lx
