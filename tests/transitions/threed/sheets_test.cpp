// Roll, Peel and Origami Unfold, a sheet of A folded, rolled or peeled off B:
// where each part of the sheet lies, which pixel of which clip each part
// shows and how it is lit, the see-through back, the soft edges and the ends.
#include <gtest/gtest.h>

#include <limits>
#include <map>

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

// The back colour of the worked examples: bytes 200, 201, 202 (blue, green, red).
constexpr KrColor kBackFromHost{200, 201, 202, 0};
constexpr uint32_t kBack = 0xFFCAC9C8;
constexpr uint32_t kGrey = 0xFFC8C8C8;  // a plain B under Peel's shadow
constexpr uint32_t kAtHalfRadius = 239;  // Roll: shade 0.9330

emu::Frame Render(const std::string& effect, int32_t w, int32_t h, double progress, const FieldValues& values = {},
                  uint32_t plainB = 0) {
  emu::Instance instance(Library(), Effect(Library(), effect));
  for (const emu::DeclaredField& f : instance.effect().fields) {
    if (f.kind == "RGBcolor") instance.SetColor(f.key, kBackFromHost);
  }
  for (const auto& [key, value] : values) instance.SetValue(key, value);
  emu::Frame out(w, h, kUntouched);
  const emu::Frame b = plainB != 0 ? Filled(w, h, plainB) : Coded(w, h, kTagB);
  EXPECT_EQ(instance.Render(Coded(w, h, kTagA), b, out, progress), 1);
  EXPECT_TRUE(instance.diagnostics().empty());
  return out;
}

// shade(P, g) with its weight a: bytes 0 to 2 scaled, byte 3 kept.
uint32_t Shaded(uint32_t p, uint32_t a) {
  uint32_t out = p & 0xFF000000u;
  for (int shift = 0; shift < 24; shift += 8) out |= ((((p >> shift) & 0xFF) * a + 128) >> 8) << shift;
  return out;
}

// mix(P, Q, f) with its weight a, all four bytes.
uint32_t Mixed(uint32_t p, uint32_t q, uint32_t a) {
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    out |= ((((p >> shift) & 0xFF) * (256 - a) + ((q >> shift) & 0xFF) * a + 128) >> 8) << shift;
  }
  return out;
}

// 'A' or 'B' where the pixel is that clip's own pixel in place, 'K' for the
// back colour, '.' where nothing was written, '*' for anything else.
char Kind(const emu::Frame& f, int32_t x, int32_t y) {
  const uint32_t px = f.At(x, y);
  if (px == Code(kTagA, x, y)) return 'A';
  if (px == Code(kTagB, x, y)) return 'B';
  if (px == kBack) return 'K';
  if (px == kUntouched) return '.';
  return '*';
}

// Each kind's bounding box and count: "0..99 x 0..79 (8000)" per kind.
std::map<char, std::string> Regions(const emu::Frame& f) {
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
std::string KindRuns(const emu::Frame& f, int32_t line, bool alongRow = true) {
  const int32_t count = alongRow ? f.width : f.height;
  auto kind = [&](int32_t i) { return alongRow ? Kind(f, i, line) : Kind(f, line, i); };
  std::string out;
  for (int32_t i = 0; i < count;) {
    int32_t end = i + 1;
    while (end < count && kind(end) == kind(i)) ++end;
    out += (out.empty() ? "" : " ") + std::string(1, kind(i)) + std::to_string(end - i);
    i = end;
  }
  return out;
}

TEST(Sheets, WhereThePartsLie) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const FieldValues heavyPeel = {{"Shadow", 1}, {"IsAntiAlias", 1}, {"Transparent", 1}, {"Corner", 1}};
  const std::string whole = "0..99 x 0..79 (8000)";
  const struct {
    const char* effect;
    const char* what;
    double progress;
    FieldValues values;
    std::map<char, std::string> regions;  // '*' marks the flaps showing B shaded or the shaded back
  } cases[] = {
      // g = 0.5: columns 37 and 62 have their centres exactly on the packet's edge.
      {"Origami Unfold", "the packet grows", 0.1, {}, {{'A', "0..99 x 0..79 (7480)"}, {'K', "37..62 x 30..49 (520)"}}},
      {"Origami Unfold", "the side flaps lie folded, backs up", 0.2, {},
       {{'A', "0..99 x 0..79 (6000)"}, {'K', "25..74 x 20..59 (2000)"}}},
      // Upright flaps in perspective: strips in columns 21..24 and 75..78, taller outside.
      {"Origami Unfold", "the side flaps stand upright", 0.4, {},
       {{'*', "21..78 x 17..62 (344)"}, {'A', "0..99 x 0..79 (5656)"}, {'B', "25..74 x 20..59 (2000)"}}},
      {"Origami Unfold", "the end flaps tilted back by 45 degrees", 0.8, {},
       {{'*', "0..99 x 8..71 (2320)"}, {'A', "0..99 x 0..79 (1680)"}, {'B', "0..99 x 20..59 (4000)"}}},
      {"Origami Unfold", "NaN shows A", nan, {}, {{'A', whole}}},
      {"Peel", "NaN shows A", nan, heavyPeel, {{'A', whole}}},
      // The fold already lies beyond the far corner.
      {"Peel", "Progress 0.999", 0.999, heavyPeel, {{'B', whole}}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Regions(Render(c.effect, 100, 80, c.progress, c.values)), c.regions) << c.effect << ": " << c.what;
  }
}

TEST(Sheets, WhatEachPartShows) {
  constexpr uint32_t kUpright = 154, kAt45Degrees = 226;  // Origami: shade 0.6 and 0.8828
  const FieldValues noShadow = {{"Shadow", 0}};
  const struct {
    const char* effect;
    const char* what;
    double progress;
    FieldValues values;
    int32_t x, y;
    uint32_t expected;
    uint32_t plainB = 0;
  } cases[] = {
      // Origami, 100 x 80, Dc = 200. Column 24: rho = 3.92, B's column floor(25 - rho) = 21.
      {"Origami Unfold", "upright, beside the hinge", 0.4, {}, 24, 40, Shaded(Code(kTagB, 21, 40), kUpright)},
      {"Origami Unfold", "rising, seen from behind", 0.3, {}, 30, 40, Shaded(kBack, kAt45Degrees)},
      // The packet's side edges pass through the centres of columns 37 and 62:
      // half and half; its top and bottom edges lie on pixel borders.
      {"Origami Unfold", "a soft side edge", 0.1, {{"IsAntiAlias", 1}}, 37, 40, Mixed(Code(kTagA, 37, 40), kBack, 128)},
      {"Origami Unfold", "a hard top edge", 0.1, {{"IsAntiAlias", 1}}, 50, 29, Code(kTagA, 50, 29)},
      // Row 70: rho = 17.52, B's row floor(60 + rho) = 77; widened by dz / Dc = 1.062.
      {"Origami Unfold", "the top flap's far corner", 0.8, {}, 3, 70, Shaded(Code(kTagB, 0, 77), kAt45Degrees)},
      // Peel, 100 x 80, Bottom Right, half way: D = 128.06, R = 8.0039, F = 9.5537.
      {"Peel", "the flat flap: the back colour", 0.5, noShadow, 30, 30, kBack},
      {"Peel", "the flap's material would lie outside the sheet", 0.5, noShadow, 20, 10, Code(kTagA, 20, 10)},
      {"Peel", "the upper curl, lit by 0.9100", 0.5, noShadow, 50, 40, Shaded(kBack, 233)},
      {"Peel", "the shadow near the curl, 0.5788", 0.5, {{"Shadow", 1}}, 40, 20, Shaded(kGrey, 148), kGrey},
      {"Peel", "A seen through its own back", 0.5, {{"Shadow", 0}, {"Transparent", 1}}, 30, 30,
       Mixed(Code(kTagA, 30, 30), Code(kTagA, 57, 8), 128)},
      // (21, 30): delta = -11.82, the flap's material from (59.59, 0.03),
      // half a pixel from the top: covered 0.5265, weight 135 (the flap's
      // single-column way; (30, 30) above goes four columns at a time).
      {"Peel", "A seen through the flap's soft edge", 0.5, {{"Shadow", 0}, {"Transparent", 1}, {"IsAntiAlias", 1}}, 21,
       30, Mixed(Code(kTagA, 21, 30), Mixed(Code(kTagA, 21, 30), Code(kTagA, 59, 0), 128), 135)},
      {"Peel", "Top Left: the mirrored flap", 0.5, {{"Corner", 0}}, 69, 49, kBack},
      // At 0.1 F = 64.38: (90, 3) has lifted (delta = 4.10), the upper curl's
      // material lies outside the frame, the lower curl's comes from (90.66,
      // 3.37), lit by 0.9293.
      {"Peel", "early, the lifted corner shows the lower curl", 0.1, noShadow, 90, 3, Shaded(Code(kTagA, 90, 3), 238)},
      // Roll, 120 x 80 half way: R = 10, c = 65.5; the top of the roll
      // (delta = 0) shows m = 65.5 - 10 pi = 34.08, unshaded.
      {"Roll", "top of the roll", 0.5, {}, 65, 41, Code(kTagA, 34, 41)},
      // Right > Left: column W - 1 - x shows the sheet column W - 1 - m.
      {"Roll", "mirrored front", 0.5, {{"Direction", 1}}, 49, 0, Shaded(Code(kTagA, 91, 0), kAtHalfRadius)},
      // Both layers at half strength over B: B shows at a quarter.
      {"Roll", "see-through top", 0.5, {{"Transparent", 1}}, 65, 79,
       Mixed(Mixed(Code(kTagB, 65, 79), Code(kTagA, 65, 79), 128), Code(kTagA, 34, 79), 128)},
  };
  for (const auto& c : cases) {
    const int32_t w = std::string(c.effect) == "Roll" ? 120 : 100;
    EXPECT_EQ(Render(c.effect, w, 80, c.progress, c.values, c.plainB).At(c.x, c.y), c.expected)
        << c.effect << ": " << c.what;
  }
}

TEST(Roll, RollsAUpAndUncoversB) {
  const struct {
    const char* what;
    double progress;
    int32_t direction;
    const char* row;  // the same on every row
  } cases[] = {
      // R = 10, c = 65.5: column 55 (delta = R) is behind the roll, 75 (delta = -R) ahead of it.
      {"half way", 0.5, 0, "B56 *19 A45"},
      {"Right > Left mirrors it", 0.5, 1, "A45 *19 B56"},
      // c = 32.75: ahead of the contact line less than half a turn is wound, the front still bare.
      {"a quarter of the way, Direction 7 as Left > Right", 0.25, 7, "B23 *11 A86"},
      {"NaN shows A", std::numeric_limits<double>::quiet_NaN(), 0, "A120"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = Render("Roll", 120, 80, c.progress, {{"Direction", c.direction}});
    for (const int32_t y : {0, 37, 79}) EXPECT_EQ(KindRuns(out, y), c.row) << c.what << ", row " << y;
  }
  // Vertical travel, H = 120 so that the rows repeat the columns' numbers.
  const emu::Frame fromTop = Render("Roll", 40, 120, 0.5, {{"Direction", 2}});
  const emu::Frame fromBottom = Render("Roll", 40, 120, 0.5, {{"Direction", 3}});
  for (const int32_t x : {0, 39}) {
    EXPECT_EQ(KindRuns(fromTop, x, false), "A45 *19 B56");
    EXPECT_EQ(KindRuns(fromBottom, x, false), "B56 *19 A45");
    EXPECT_EQ(fromTop.At(x, 54), Code(kTagA, x, 85));  // the top of the roll, read in the pixel's own column
  }
}

TEST(Peel, CornersBeyondTheListAreBottomRight) {
  const emu::Frame bottomRight = Render("Peel", 100, 80, 0.37, {{"Corner", 3}});
  for (const int32_t corner : {4, -1, std::numeric_limits<int32_t>::max()}) {
    EXPECT_EQ(Render("Peel", 100, 80, 0.37, {{"Corner", corner}}).pixels, bottomRight.pixels) << corner;
  }
}

TEST(Sheets, DrawEveryPixelOfAnyFrame) {
  const std::pair<const char*, FieldValues> settings[] = {
      {"Origami Unfold", {{"IsAntiAlias", 1}}},
      {"Roll", {{"Direction", 3}, {"Transparent", 1}}},
      {"Peel", {{"Corner", 1}, {"Shadow", 1}, {"IsAntiAlias", 1}, {"Transparent", 1}}},
  };
  for (const auto& [effect, values] : settings) {
    for (const auto& [w, h] : {std::pair{1, 1}, {2, 7}, {7, 2}, {13, 5}, {300, 3}}) {
      for (const double p : {1e-9, 0.15, 0.2, 0.35, 0.5, 0.75, 0.999}) {
        const emu::Frame out = Render(effect, w, h, p, values);
        for (int32_t y = 0; y < h; ++y) {
          for (int32_t x = 0; x < w; ++x) ASSERT_NE(Kind(out, x, y), '.') << effect << " " << w << "x" << h << " " << p;
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
