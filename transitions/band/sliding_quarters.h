// The exported helper behind Sliding Quarters, callable by a host on its own.
#pragma once

#include <cstdint>

#include "host/export.h"

// Draws one frame of Sliding Quarters into `out` from the 32-bit frames `a`
// and `b`: rows `rowBytes` apart, `width` x `height` pixels, at `progress`.
KR_EXPORT void bxglVTRSlidingQuarters(unsigned char* out, unsigned char* a, unsigned char* b, int32_t rowBytes,
                                      int32_t width, int32_t height, double progress);
