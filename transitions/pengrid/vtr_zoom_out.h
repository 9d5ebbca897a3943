// The nearest-neighbour zoom behind Zoom Out, exported so that the host can
// call it too: `a` magnified about the frame centre from 1x to 16x while
// `progress` runs from 0 to 0.5, then `b` from 16x back to 1x. Rows are
// `width` pixels of 4 bytes; `rowBytes` is accepted and not used. The host
// declares the integers as long: int32_t, so that both builds agree.
#pragma once

#include <cstdint>

#include "host/export.h"

KR_EXPORT void bxglVTRZoomOut(unsigned char* out, unsigned char* a, unsigned char* b, int32_t rowBytes,
                              int32_t width, int32_t height, double progress);
