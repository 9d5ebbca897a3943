// The Doors family: the depth's integer square root, the bounds on the turn
// at both ends, the closing doors with and without TransType; and every
// member against a plain playing of the doors' description: every cell,
// every (r, c) from the middle down, the four mirror images in their order,
// out-of-frame places left out and reads held to the frame. The render works
// from per-column and per-row tables instead; both must agree to the byte,
// whatever the size, division, pen, hinge and anti-aliasing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "raster/numeric.h"
#include "transitions/pengrid/pen_grid_support.h"
#include "transitions/threed/door_panels.h"

namespace krl::test {
namespace {

TEST(Doors, SquareRootAsTheDoorsTakeIt) {
  // The guess 1 overshoots to 2 and back for 2 and 3; with several steps the
  // last one rounds: 24 gives 5, 99 gives 10.
  const std::pair<int32_t, int32_t> cases[] = {{-5, 0},   {0, 0},    {1, 1},      {2, 1},      {3, 1},
                                               {17, 4},   {24, 5},   {99, 10},    {100, 10},   {921599, 960},
                                               {921600, 960}, {2000000, 1414}, {1 << 30, 32768}};
  for (const auto& [n, root] : cases) EXPECT_EQ(DoorSquareRoot(n), root) << n;
}

TEST(Doors, TurnsBetweenOnePlaceAndTheHinge) {
  const RowsCase cases[] = {
      // Progress 1: hw = 10, t = 9, w = 1; depth isqrt(99) = 10, bulge 2, slope 2 rows a column. Column
      // c = 0 is door all the way, c = 1 from r = 2: rows 2 .. 6 (r = min(y, 8 - y)).
      {"Progress 1 leaves a door one column long", 20, 9, 1.0, {},
       {"A1 B18 A1", "A1 B18 A1", "A2 B16 A2", "A2 B16 A2", "A2 B16 A2", "A2 B16 A2", "A2 B16 A2", "A1 B18 A1",
        "A1 B18 A1"}},
      // Progress 0: hw = 50, w = 49, slope 167: from c = 25 on the edge lies a row in (e = 1), so the top
      // and bottom rows show B over the cell's middle half; every other row is A, the doors meeting.
      {"Progress 0 turns the doors by one column", 100, 3, 0.0, {}, {"A25 B50 A25", "A100", "A25 B50 A25"}},
      // Closing: the doors carry B; at 0 they stand open (w = 1) over A, at 1 nearly shut.
      {"closing at 0", 20, 1, 0.0, {{"IsDoorClosing", 1}}, {"B1 A18 B1"}},
      {"closing at 1", 100, 3, 1.0, {{"IsDoorClosing", 1}}, {"B25 A50 B25", "B100", "B25 A50 B25"}},
      // TransType 1 as well: the doors carry A again and close over B.
      {"closing with TransType 1 at 0", 20, 1, 0.0, {{"IsDoorClosing", 1}, {"TransType", 1}}, {"A1 B18 A1"}},
      // A pen 3 wide beyond each free edge (w = 1: columns 2 .. 4).
      {"the pen at Progress 1", 20, 1, 1.0, {{"BorderWidth", 3}}, {"A1 P3 B12 P3 A1"}},
  };
  ExpectRows("Doors", cases);
}

struct Member {
  const char* name;
  bool columns;   // hinges on the cells' columns
  bool twoDoors;
  const char* hingeKey;
};

constexpr Member kMembers[] = {{"Doors", true, true, nullptr},
                               {"Vertical Doors", false, true, nullptr},
                               {"Swinging Door", true, false, "IsLeftDoor"},
                               {"Vertical Swinging Door", false, false, "IsTopDoor"}};

struct Setting {
  int32_t dx = 1, dy = 1, pw = 0;
  bool closing = false, nearHinge = true, aa = false, exchange = false;
};

uint32_t Mix(uint32_t inside, uint32_t outside, int64_t q) {
  uint32_t out = 0;
  for (int s = 0; s < 32; s += 8) {
    out |= ((((inside >> s) & 255) * (4 - q) + ((outside >> s) & 255) * q) >> 2) << s;
  }
  return out;
}

emu::Frame Played(const Member& m, const emu::Frame& a, const emu::Frame& b, double progress, const Setting& f) {
  const int64_t W = a.width, H = a.height;
  emu::Frame out(a.width, a.height, kUntouched);
  const emu::Frame *door = f.exchange ? &b : &a, *shown = f.exchange ? &a : &b;
  int64_t p = TruncToInt32(10000.0L * progress);
  if (f.closing) {
    p = 10000 - p;
    std::swap(door, shown);
  }
  const int64_t cw = (W * 16 / f.dx + 15) >> 4, ch = (H * 16 / f.dy + 15) >> 4;
  const int64_t LA = m.columns ? W : H, LB = m.columns ? H : W, cA = m.columns ? cw : ch, cB = m.columns ? ch : cw;
  const int64_t dA = m.columns ? f.dx : f.dy, dB = m.columns ? f.dy : f.dx;
  const int64_t hA = (cA + 1) >> 1, hB = (cB + 1) >> 1, n = m.twoDoors ? hA : cA;
  const int64_t t = std::min(std::max<int64_t>(p * n / 10000, 1), m.twoDoors ? n - 1 : n - 2);
  const int64_t w = m.twoDoors ? n - t : n - t - 1;
  int64_t bulge = DoorSquareRoot(static_cast<int32_t>(n * n - w * w)) >> 2;
  if (dB > dA) bulge = (bulge * (dA * 4096 / dB)) >> 12;
  const int64_t slope = bulge * 4096 / w, ratio = n * 4096 / w, radius = (ratio + 3072) >> 13;
  const int64_t ph = f.pw != 0 ? ((f.pw * slope * 3) >> 14) + f.pw : 0;
  auto at = [&](const emu::Frame& frame, int64_t along, int64_t across) {
    return m.columns ? frame.At(static_cast<int32_t>(along), static_cast<int32_t>(across))
                     : frame.At(static_cast<int32_t>(across), static_cast<int32_t>(along));
  };
  for (int64_t j = 0; j < dB; ++j) {
    const int64_t b0 = j * cB, b1 = b0 + cB - 1;
    for (int64_t i = 0; i < dA; ++i) {
      const int64_t a0 = i * cA, a1 = a0 + cA - 1;
      for (int64_t r = hB; r >= 0; --r) {
        for (int64_t k = m.twoDoors ? hA : cA - 1; k >= 0; --k) {
          struct Place { int64_t to; bool far; };
          const bool hingeFar = !m.twoDoors && !f.nearHinge;
          const int64_t c = hingeFar ? cA - 1 - k : k;
          Place alongs[2] = {{a0 + k, hingeFar}, {std::min(a1 - k, LA - 1), true}};
          if (!m.twoDoors) alongs[0].to = std::min(a0 + k, LA - 1);
          const Place acrosses[2] = {{m.twoDoors ? b0 + r : std::min(b0 + r, LB - 1), false},
                                     {std::min(b1 - r, LB - 1), true}};
          for (const Place& v : acrosses) {
            for (int h = 0; h < (m.twoDoors ? 2 : 1); ++h) {
              const Place& u = alongs[h];
              if (u.to < 0 || u.to >= LA || v.to < 0 || v.to >= LB) continue;
              const uint32_t revealed = at(*shown, u.to, v.to);
              const int64_t s = c * slope, e = s >> 12, q = f.aa ? (s >> 10) & 3 : 0;
              uint32_t px = revealed;
              if (c <= w && r >= e) {
                const int64_t sc = std::clamp<int64_t>((c * ratio) >> 12, 0, cA - 1);
                const int64_t height = cB - 2 * e;
                const int64_t sr = std::clamp<int64_t>(height == 0 ? 0 : (r - e) * cB / height, 0, cB - 1);
                const int64_t sa = std::min(u.far ? a1 - sc : a0 + sc, LA - 1);
                const int64_t sb = std::min(v.far ? b1 - sr : b0 + sr, LB - 1);
                px = at(*door, sa, sb);
                if (f.aa && radius > 0) {
                  uint64_t sum[4] = {}, count = 1;
                  for (int z = 0; z < 4; ++z) sum[z] = (px >> (8 * z)) & 255;
                  for (int64_t x = std::max({sa - radius, a0, int64_t{0}}); x <= std::min({sa + radius, a1, LA - 1}); ++x) {
                    for (int z = 0; z < 4; ++z) sum[z] += (at(*door, x, sb) >> (8 * z)) & 255;
                    ++count;
                  }
                  px = 0;
                  for (int z = 0; z < 4; ++z) px |= static_cast<uint32_t>(sum[z] / count) << (8 * z);
                }
                if (f.aa && r == e && q != 0) px = Mix(px, f.pw != 0 ? kPen : revealed, q);
              } else if (f.pw != 0 && c - f.pw <= w && r + ph >= e) {
                px = f.aa && r + ph == e ? Mix(kPen, revealed, q) : kPen;
              }
              (m.columns ? out.At(static_cast<int32_t>(u.to), static_cast<int32_t>(v.to))
                         : out.At(static_cast<int32_t>(v.to), static_cast<int32_t>(u.to))) = px;
            }
          }
        }
      }
    }
  }
  return out;
}

emu::Frame Rendered(const Member& m, const emu::Frame& a, const emu::Frame& b, double progress, const Setting& f) {
  FieldValues values = {{"TransType", f.exchange}, {"Divide_X", f.dx},         {"Divide_Y", f.dy},
                        {"BorderWidth", f.pw},    {"IsDoorClosing", f.closing}, {"IsAntiAlias", f.aa}};
  if (m.hingeKey != nullptr) values.emplace_back(m.hingeKey, f.nearHinge);
  emu::Instance instance(Library(), Effect(Library(), m.name));
  instance.SetColor("Color", kPenFromHost);
  for (const auto& [key, value] : values) instance.SetValue(key, value);
  emu::Frame out(a.width, a.height, kUntouched);
  EXPECT_EQ(instance.Render(a, b, out, progress), 1);
  return out;
}

class DoorFamily : public testing::TestWithParam<Member> {};

TEST_P(DoorFamily, DrawsWhatPlayingTheWritesInOrderDraws) {
  const Member& m = GetParam();
  // 400 x 120 and 120 x 400 at Progress 1: boxes of 101 places and of 201, beyond the counts 16-bit lanes divide.
  const std::pair<int32_t, int32_t> sizes[] = {{97, 61}, {10, 10}, {5, 13},  {1, 7},     {7, 1},
                                               {33, 2},  {2, 2},   {100, 10}, {400, 120}, {120, 400},
                                               {287, 1}};
  const Setting settings[] = {
      {},
      {.pw = 3, .aa = true},
      {.dx = 3, .dy = 2, .pw = 2, .closing = true, .nearHinge = false},
      {.dx = 2, .dy = 5, .aa = true, .exchange = true},
      {.dx = 8, .dy = 8, .pw = 1, .nearHinge = false, .aa = true},
      {.dx = 3, .dy = 7, .pw = 10, .closing = true, .aa = true, .exchange = true},
      // At 287 x 1 a row's last door stretch is empty at the row's end.
      {.dx = 5, .dy = 5, .pw = 3, .nearHinge = false},
  };
  for (const auto& [w, h] : sizes) {
    const emu::Frame a = emu::SampleClipA(w, h, 2), b = emu::SampleClipB(w, h, 4);
    for (const Setting& f : settings) {
      for (const double progress : {0.0, 0.13, 0.5, 0.77, 0.96, 1.0}) {
        ASSERT_EQ(Rendered(m, a, b, progress, f).pixels, Played(m, a, b, progress, f).pixels)
            << m.name << " " << w << "x" << h << " p=" << progress << " Divide " << f.dx << "x" << f.dy
            << " pen " << f.pw << " closing " << f.closing << " near hinge " << f.nearHinge << " aa " << f.aa;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Members, DoorFamily, testing::ValuesIn(kMembers),
                         [](const testing::TestParamInfo<Member>& m) { return NameOfMember({m.param.name, m.index}); });

}  // namespace
}  // namespace krl::test
