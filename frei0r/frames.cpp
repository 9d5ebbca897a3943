#include "frei0r/frames.h"

namespace krl::frei0r {

void FlipRowsSwapRedBlue(const uint8_t* from, uint8_t* to, size_t width, size_t height) {
  const size_t rowBytes = width * 4;
  for (size_t y = 0; y < height; ++y) {
    const uint8_t* in = from + y * rowBytes;
    uint8_t* out = to + (height - 1 - y) * rowBytes;
    for (size_t x = 0; x < rowBytes; x += 4) {
      out[x] = in[x + 2];
      out[x + 1] = in[x + 1];
      out[x + 2] = in[x];
      out[x + 3] = in[x + 3];
    }
  }
}

}  // namespace krl::frei0r
