// Two built-in sample clips, drawn procedurally in integer arithmetic so that
// every build draws the same pixels: A is a landscape at sunset, B a pattern
// of coloured rings over a checkerboard. Both move from frame to frame.
#pragma once

#include "emulator/frame.h"

namespace krl::emu {

Frame SampleClipA(int32_t width, int32_t height, int32_t frame = 0);
Frame SampleClipB(int32_t width, int32_t height, int32_t frame = 0);

}  // namespace krl::emu
