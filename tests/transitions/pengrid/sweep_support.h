// Helpers for the tests of the sweeping transitions (Windscreen Wiper, Clock):
// a frame checked against a picture of which source each pixel shows, and a
// render of the sample clips compared pixel for pixel with a plain rule.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "pen_grid_support.h"

namespace krl::test {

// 'A', 'B' (each read in place), 'P' or '.' (untouched) at (x, y).
using Picture = std::function<char(int32_t x, int32_t y)>;

// The first pixel that differs from the picture, or "" when none does.
inline std::string FirstMismatch(const emu::Frame& f, const Picture& expected) {
  for (int32_t y = 0; y < f.height; ++y) {
    for (int32_t x = 0; x < f.width; ++x) {
      const uint32_t px = f.At(x, y);
      const char shown = SourceOf(px);
      const bool inPlace = shown == 'P' || shown == '.' || (CodedX(px) == x && CodedY(px) == y);
      if (shown != expected(x, y) || !inPlace) {
        return "(" + std::to_string(x) + ", " + std::to_string(y) + ") shows " + shown + ", expected " + expected(x, y);
      }
    }
  }
  return "";
}

// The cell of the full grid that holds (x, y), written out from the rule:
// W / dx by H / dy, the last column and row taking the remainder.
struct GridCell {
  int32_t x0, x1, y0, y1;
};
inline GridCell CellOf(int32_t w, int32_t h, int32_t dx, int32_t dy, int32_t x, int32_t y) {
  const int32_t cw = w / dx, ch = h / dy;
  const int32_t i = cw == 0 ? dx - 1 : std::min(x / cw, dx - 1), j = ch == 0 ? dy - 1 : std::min(y / ch, dy - 1);
  return {i * cw, i == dx - 1 ? w : (i + 1) * cw, j * ch, j == dy - 1 ? h : (j + 1) * ch};
}

struct Sample {
  int32_t x, y;
  char source;
};

// A frame of coded clips and the picture it must show; when the edges lie on
// pixel borders, anti-aliasing must give the same frame.
struct PictureCase {
  const char* what;
  double progress;
  FieldValues values;
  Picture expected;
  bool onPixelBorders = true;
};

inline void ExpectPictures(const std::string& effect, int32_t w, int32_t h, std::span<const PictureCase> cases) {
  for (const PictureCase& c : cases) {
    EXPECT_EQ(FirstMismatch(RenderCoded(effect, w, h, c.progress, c.values), c.expected), "") << c.what;
    if (!c.onPixelBorders) continue;
    FieldValues smooth = c.values;
    smooth.emplace_back("Anti-Aliasing", 1);
    EXPECT_EQ(FirstMismatch(RenderCoded(effect, w, h, c.progress, smooth), c.expected), "") << c.what << " (smooth)";
  }
}

// A field's value in a list of settings, or its default.
inline int32_t ValueIn(const FieldValues& values, const std::string& key) {
  for (const auto& [k, value] : values) {
    if (k == key) return value;
  }
  return key == "Divide_X" || key == "Divide_Y" ? 1 : 0;
}

// A render of the sample clips (pen kPen) at a size, Progress and settings.
struct Setting {
  int32_t w, h;
  double progress;
  FieldValues values;
};

// A pixel as the description computes it.
using PixelRule = uint32_t (*)(const emu::Frame& a, const emu::Frame& b, int32_t x, int32_t y, const Setting& s);

inline void ExpectEveryPixelFollows(const std::string& effect, std::span<const Setting> settings, PixelRule rule) {
  for (const Setting& s : settings) {
    const emu::Frame a = emu::SampleClipA(s.w, s.h), b = emu::SampleClipB(s.w, s.h);
    emu::Instance instance(Library(), Effect(Library(), effect));
    instance.SetColor("Color", kPenFromHost);
    for (const auto& [key, value] : s.values) instance.SetValue(key, value);
    emu::Frame out(s.w, s.h, kUntouched);
    EXPECT_EQ(instance.Render(a, b, out, s.progress), 1);
    size_t off = 0;
    for (int32_t y = 0; y < s.h; ++y) {
      for (int32_t x = 0; x < s.w; ++x) off += out.At(x, y) != rule(a, b, x, y, s);
    }
    EXPECT_EQ(off, 0u) << s.w << "x" << s.h << " at " << s.progress;
  }
}

}  // namespace krl::test
