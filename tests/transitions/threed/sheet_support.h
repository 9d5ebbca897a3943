// What the tests of Roll, Peel and Origami Unfold share: renders of the coded
// clips with any fields and colours, the blends written out byte by byte, and
// a map of the output that tells A and B in place from everything else.
#pragma once

#include <map>
#include <string>

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {

// The back colour of the worked examples: bytes 200, 201, 202 (blue, green, red).
inline constexpr KrColor kBackFromHost{200, 201, 202, 0};
inline constexpr uint32_t kBack = 0xFFCAC9C8;

struct SheetRender {
  std::string effect;
  int32_t w = 100, h = 80;
  double progress = 0.5;
  FieldValues values = {};
  emu::Frame a = {}, b = {};  // the coded clips when left empty
};

inline emu::Frame Render(SheetRender r) {
  emu::Instance instance(Library(), Effect(Library(), r.effect));
  for (const emu::DeclaredField& f : instance.effect().fields) {
    if (f.kind == "RGBcolor") instance.SetColor(f.key, kBackFromHost);
  }
  for (const auto& [key, value] : r.values) instance.SetValue(key, value);
  if (r.a.pixels.empty()) r.a = Coded(r.w, r.h, kTagA);
  if (r.b.pixels.empty()) r.b = Coded(r.w, r.h, kTagB);
  emu::Frame out(r.w, r.h, kUntouched);
  EXPECT_EQ(instance.Render(r.a, r.b, out, r.progress), 1);
  EXPECT_TRUE(instance.diagnostics().empty());
  return out;
}

// shade(P, g) with its weight a: bytes 0 to 2 scaled, byte 3 kept.
inline uint32_t Shaded(uint32_t p, uint32_t a) {
  uint32_t out = p & 0xFF000000u;
  for (int shift = 0; shift < 24; shift += 8) out |= ((((p >> shift) & 0xFF) * a + 128) >> 8) << shift;
  return out;
}

// mix(P, Q, f) with its weight a, all four bytes.
inline uint32_t Mixed(uint32_t p, uint32_t q, uint32_t a) {
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    out |= ((((p >> shift) & 0xFF) * (256 - a) + ((q >> shift) & 0xFF) * a + 128) >> 8) << shift;
  }
  return out;
}

// 'A' or 'B' where the pixel is that clip's own pixel in place, 'K' for the
// back colour, '.' where nothing was written, '*' for anything else.
inline char Kind(const emu::Frame& f, int32_t x, int32_t y) {
  const uint32_t px = f.At(x, y);
  if (px == Code(kTagA, x, y)) return 'A';
  if (px == Code(kTagB, x, y)) return 'B';
  if (px == kBack) return 'K';
  if (px == kUntouched) return '.';
  return '*';
}

// Each kind's bounding box and count: "A 0..99 x 0..79 (8000)" per kind, in kind order.
inline std::map<char, std::string> Regions(const emu::Frame& f) {
  struct Box {
    int32_t x0 = 1 << 30, x1 = -1, y0 = 1 << 30, y1 = -1, count = 0;
  };
  std::map<char, Box> boxes;
  for (int32_t y = 0; y < f.height; ++y) {
    for (int32_t x = 0; x < f.width; ++x) {
      Box& b = boxes[Kind(f, x, y)];
      b.x0 = std::min(b.x0, x), b.x1 = std::max(b.x1, x), b.y0 = std::min(b.y0, y), b.y1 = std::max(b.y1, y);
      ++b.count;
    }
  }
  std::map<char, std::string> out;
  for (const auto& [kind, b] : boxes) {
    out[kind] = std::to_string(b.x0) + ".." + std::to_string(b.x1) + " x " + std::to_string(b.y0) + ".." +
                std::to_string(b.y1) + " (" + std::to_string(b.count) + ")";
  }
  return out;
}

// The kinds along row y (or up column x) as runs: "B56 *19 A45".
inline std::string KindRuns(const emu::Frame& f, int32_t line, bool alongRow = true) {
  const int32_t count = alongRow ? f.width : f.height;
  auto kind = [&](int32_t i) { return alongRow ? Kind(f, i, line) : Kind(f, line, i); };
  std::string out;
  for (int32_t i = 0; i < count;) {
    int32_t end = i + 1;
    while (end < count && kind(end) == kind(i)) ++end;
    if (!out.empty()) out += ' ';
    out += kind(i) + std::to_string(end - i);
    i = end;
  }
  return out;
}

}  // namespace krl::test
