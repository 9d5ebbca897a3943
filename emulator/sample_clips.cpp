#include "emulator/sample_clips.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace krl::emu {
namespace {

int32_t Lerp(int32_t from, int32_t to, int32_t t, int32_t range) {
  return range > 0 ? from + (to - from) * t / range : from;
}

// A colour from a hue on 0..1535 (six 256-wide ramps), full saturation.
uint32_t Hue(int32_t hue, int32_t value = 255) {
  hue = ((hue % 1536) + 1536) % 1536;
  const int32_t ramp = hue % 256;
  int32_t r = 0, g = 0, b = 0;
  switch (hue / 256) {
    case 0: r = 255, g = ramp; break;
    case 1: r = 255 - ramp, g = 255; break;
    case 2: g = 255, b = ramp; break;
    case 3: g = 255 - ramp, b = 255; break;
    case 4: r = ramp, b = 255; break;
    default: r = 255, b = 255 - ramp; break;
  }
  return Pixel(static_cast<uint8_t>(r * value / 255), static_cast<uint8_t>(g * value / 255),
               static_cast<uint8_t>(b * value / 255));
}

// A triangle wave of the given period, 0..amplitude.
int32_t Triangle(int32_t x, int32_t period, int32_t amplitude) {
  const int32_t p = ((x % period) + period) % period;
  const int32_t half = period / 2;
  return (p < half ? p : period - p) * amplitude / std::max(half, 1);
}

// floor(sqrt(v)) for v >= 0: the double square root, corrected to the exact floor.
int32_t FloorSqrt(int64_t v) {
  int64_t r = static_cast<int64_t>(std::sqrt(static_cast<double>(v)));
  while (r * r > v) --r;
  while ((r + 1) * (r + 1) <= v) ++r;
  return static_cast<int32_t>(r);
}

}  // namespace

Frame SampleClipA(int32_t w, int32_t h, int32_t frame) {
  Frame out(w, h);
  if (out.pixels.empty()) return out;
  const int32_t unit = std::max(1, std::min(w, h));
  const int32_t horizon = h * 2 / 5;  // counted from the bottom row
  const int32_t sunX = w * 7 / 10 - frame * w / 400, sunY = horizon + h / 4 - frame * h / 600;
  const int32_t sunR = unit / 11;
  const int32_t range = std::max(h - horizon, 1);
  // The hills' outlines and shading depend on the column alone.
  std::vector<int32_t> far(w), near(w);
  std::vector<uint32_t> hill(w);
  for (int32_t x = 0; x < w; ++x) {
    far[x] = horizon + unit / 8 + Triangle(x + frame, unit / 2 + 1, unit / 6) -
             Triangle(x * 3 + frame, unit / 3 + 1, unit / 14);
    near[x] = horizon + unit / 20 + Triangle(x * 2 + frame * 3, unit / 3 + 1, unit / 10);
    hill[x] = Pixel(70, 70, static_cast<uint8_t>(110 + Triangle(x, 23, 12)));
  }
  for (int32_t y = 0; y < h; ++y) {
    uint32_t* row = &out.At(0, y);
    if (y < horizon) {
      // Fields in perspective: stripes that widen towards the bottom.
      const int32_t depth = horizon - y;
      const int32_t divisor = std::max(depth + 4, 1);
      const int32_t shade = Lerp(60, 150, depth, horizon);
      uint32_t field[2];
      for (int32_t stripe = 0; stripe < 2; ++stripe) {
        field[stripe] = Pixel(static_cast<uint8_t>(shade / 3), static_cast<uint8_t>(shade + stripe * 40),
                              static_cast<uint8_t>(shade / 4 + stripe * 20));
      }
      for (int32_t x = 0; x < w; ++x) row[x] = field[((x - w / 2) * 8 / divisor + frame / 4) & 1];
      continue;
    }
    const int32_t t = y - horizon;
    const int32_t skyR = Lerp(250, 40, t, range), skyG = Lerp(140, 60, t, range), skyB = Lerp(90, 160, t, range);
    const int64_t dy = y - sunY;
    for (int32_t x = 0; x < w; ++x) {
      if (y < near[x]) {
        row[x] = Pixel(30, 40, static_cast<uint8_t>(60 + (x + y) % 7));
      } else if (y < far[x]) {
        row[x] = hill[x];
      } else {
        const int64_t dx = x - sunX;
        const int64_t d2 = dx * dx + dy * dy;
        uint8_t r = static_cast<uint8_t>(skyR), g = static_cast<uint8_t>(skyG), b = static_cast<uint8_t>(skyB);
        if (d2 <= int64_t{sunR} * sunR) {
          r = 255, g = 230, b = 120;
        } else if (d2 <= int64_t{sunR} * sunR * 4) {
          r = static_cast<uint8_t>(std::min(255, r + 40));
          g = static_cast<uint8_t>(std::min(255, g + 30));
        }
        row[x] = Pixel(r, g, b);
      }
    }
  }
  return out;
}

Frame SampleClipB(int32_t w, int32_t h, int32_t frame) {
  Frame out(w, h);
  const int32_t unit = std::max(1, std::min(w, h));
  const int32_t cx = w / 2 + frame * w / 500, cy = h / 2;
  const int32_t ring = std::max(unit / 14, 2);
  const int32_t square = std::max(unit / 9, 2);
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) {
      const int64_t dx = x - cx, dy = y - cy;
      if (x % square == 0 || y % square == 0) {  // grid lines
        out.At(x, y) = Pixel(20, 20, 30);
        continue;
      }
      const int32_t d = FloorSqrt(dx * dx + dy * dy);
      if ((d + frame * 2) % ring < 2) {  // thin white ring lines
        out.At(x, y) = Pixel(250, 250, 250);
        continue;
      }
      const bool dark = (((x + frame) / square) + (y / square)) % 2 != 0;
      const int32_t band = (d + frame * 2) / ring;
      out.At(x, y) = Hue(band * 256 + (x + y) / 4 + frame * 8, dark ? 150 : 235);
    }
  }
  return out;
}

}  // namespace krl::emu
