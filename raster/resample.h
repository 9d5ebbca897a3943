// Nearest-neighbour resampling of a box of the output: every pixel of the box
// is a whole pixel of a source frame, read at a column that depends only on
// the output column and a row that depends only on the output row. The
// columns are worked out once per frame (in strips of a fixed table), the row
// once per output row, so the pixel loop is a plain indexed copy.
#pragma once

#include <algorithm>
#include <cstdint>

#include "raster/pixel_rows.h"

namespace krl {

// The source frame a box is sampled from: `width` x `height` pixels, rows
// stored one after another like every frame.
struct SampledFrame {
  const PixelWord* pixels;
  int32_t width;
  int32_t height;
};

// Fills columns [x0, x1) of rows [y0, y1) of `out` (a frame `outWidth`
// pixels wide): pixel (x, y) takes source pixel (column(x), row(y)).
// column(x) is asked exactly once per column, in increasing x, so it may keep
// a running value; row(y) is asked once per row and strip. A sample outside
// the source (a rounding at the box's far edge) takes the nearest edge pixel.
template <typename Column, typename Row>
void PaintSampled(PixelWord* out, int32_t outWidth, SampledFrame source, int32_t x0, int32_t x1, int32_t y0,
                  int32_t y1, Column column, Row row) {
  if (source.width <= 0 || source.height <= 0) return;
  constexpr int32_t kStrip = 2048;
  int32_t table[kStrip];
  for (int32_t strip = x0; strip < x1; strip += std::min(kStrip, x1 - strip)) {
    const int32_t count = std::min(kStrip, x1 - strip);
    for (int32_t i = 0; i < count; ++i) table[i] = std::clamp(column(strip + i), 0, source.width - 1);
    for (int32_t y = y0; y < y1; ++y) {
      const int32_t sy = std::clamp(row(y), 0, source.height - 1);
      const PixelWord* from = source.pixels + static_cast<size_t>(sy) * static_cast<size_t>(source.width);
      PixelWord* to = out + static_cast<size_t>(y) * static_cast<size_t>(outWidth) + strip;
      for (int32_t i = 0; i < count; ++i) to[i] = from[table[i]];
    }
  }
}

}  // namespace krl
