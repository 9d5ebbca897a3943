// Copies of blocks of pixels read from a shifted place, held to the frame:
// the moves of the sliding transitions, whose ranges can reach past an edge
// for odd sizes or a Progress outside 0..1. A pixel is written only when it
// and the pixel it reads both lie inside the frame; the others stay as they
// were. Coordinates are 64-bit, so any shift or range is safe.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "raster/pixel_rows.h"

namespace krl {

// Rows of `width` x `height` visible pixels, `stride` pixels apart.
struct FrameShape {
  size_t stride;
  int32_t width, height;
};

// Half-open: columns [x0, x1), rows [y0, y1); empty when an end does not exceed its start.
struct Block {
  int64_t x0, x1, y0, y1;
};

// Columns [begin, end) of the output row `out` from `source` row read `shift` columns on.
inline void CopyColumnsClipped(PixelWord* out, const PixelWord* source, int64_t begin, int64_t end, int64_t shift,
                               int32_t width) {
  const int64_t from = std::max({begin, int64_t{0}, -shift});
  const int64_t to = std::min({end, int64_t{width}, int64_t{width} - shift});
  if (to > from) CopyRun(out + from, source + from + shift, static_cast<int32_t>(to - from));
}

// The block of `out` from `source` at (x + dx, y + dy).
inline void CopyBlockClipped(PixelWord* out, const PixelWord* source, const FrameShape& shape, const Block& block,
                             int64_t dx = 0, int64_t dy = 0) {
  const int64_t from = std::max({block.y0, int64_t{0}, -dy});
  const int64_t to = std::min({block.y1, int64_t{shape.height}, int64_t{shape.height} - dy});
  for (int64_t y = from; y < to; ++y) {
    CopyColumnsClipped(out + static_cast<size_t>(y) * shape.stride, source + static_cast<size_t>(y + dy) * shape.stride,
                       block.x0, block.x1, dx, shape.width);
  }
}

}  // namespace krl
