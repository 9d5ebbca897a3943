// Venetian Blinds: the runs of A, pen and squeezed B in each blind, the seam
// blur taken pixel by pixel in place, reaching into blinds not yet drawn.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

struct Blinds {
  int32_t vertical, n, pw, smoothing;
  double p;
};

emu::Frame RenderBlinds(const emu::Frame& a, const emu::Frame& b, const Blinds& c, uint32_t prior = kUntouched) {
  emu::Instance blinds(Library(), Effect(Library(), "Venetian Blinds"));
  blinds.SetValue("Orientation", c.vertical);
  blinds.SetValue("NumberOfBlinds", c.n);
  blinds.SetValue("BorderWidth", c.pw);
  blinds.SetValue("SmoothingFactor", c.smoothing);
  blinds.SetColor("Color", kPenFromHost);
  emu::Frame out(a.width, a.height, prior);
  EXPECT_EQ(blinds.Render(a, b, out, c.p), 1);
  return out;
}

TEST(VenetianBlinds, EachBlindShowsAThenThePenThenSqueezedB) {
  const emu::Frame a = Coded(30, 40, kTagA), b = Coded(30, 40, kTagB);
  const struct {
    const char* what;
    Blinds blinds;
    const char* line;  // column 7 from the bottom, or row 7 from the left
  } cases[] = {
      {"d = 5 of 10 rows", {0, 4, 2, 0, 0.5}, "A3 P2 B5 A3 P2 B5 A3 P2 B5 A3 P2 B5"},
      {"the pen beyond A's part starts at the blind's first row", {0, 4, 8, 0, 0.5}, "P5 B5 P5 B5 P5 B5 P5 B5"},
      {"end: B, the pen clipped away", {0, 4, 3, 0, 1.0}, "B40"},
      {"down the picture: B, pen, A from each blind's left", {1, 3, 2, 0, 0.5}, "B5 P2 A3 B5 P2 A3 B5 P2 A3"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderBlinds(a, b, c.blinds);
    EXPECT_EQ(c.blinds.vertical ? RowRuns(out, 7) : ColumnRuns(out, 7), c.line) << c.what;
  }
}

TEST(VenetianBlinds, BlindsDownThePictureBlurTheirSeamsColumnByColumnInPlace) {
  // 97 columns in 3 blinds from columns 0, 32 and 64, B's part 16 wide: the
  // seams at 16, 48 and 80 lie so far inside their blinds that no box of 13
  // reaches a neighbour. The blur runs over the 12 columns about each seam,
  // blinds last to first, in ascending columns, each from its top row down,
  // every mean reading the pixels already replaced.
  const emu::Frame a = emu::SampleClipA(97, 61), b = emu::SampleClipB(97, 61);
  emu::Frame expected = RenderBlinds(a, b, {1, 3, 2, 0, 0.5});
  for (const int32_t seam : {80, 48, 16}) {
    for (int32_t x = seam - 6; x < seam + 6; ++x) {
      for (int32_t y = 60; y >= 0; --y) expected.At(x, y) = BoxMean(expected, x, y, 13);
    }
  }
  EXPECT_EQ(RenderBlinds(a, b, {1, 3, 2, 3, 0.5}).pixels, expected.pixels);
}

TEST(VenetianBlinds, AThinBlindsBlurReachesTheBlindDrawnAfterIt) {
  // 61 rows in 8 blinds of 7.6: the box of 13 around each seam reads rows of
  // the blind below it before that one is drawn.
  const emu::Frame a = emu::SampleClipA(97, 61), b = emu::SampleClipB(97, 61);
  EXPECT_NE(RenderBlinds(a, b, {0, 8, 0, 3, 0.5}, 0xFF000000).pixels,
            RenderBlinds(a, b, {0, 8, 0, 3, 0.5}, 0xFFFFFFFF).pixels);
  EXPECT_EQ(RenderBlinds(a, b, {0, 8, 0, 0, 0.5}, 0xFF000000).pixels,
            RenderBlinds(a, b, {0, 8, 0, 0, 0.5}, 0xFFFFFFFF).pixels);
}

TEST(VenetianBlinds, OddCountsPensAndProgressStayInside) {
  const emu::Frame a = emu::SampleClipA(23, 17), b = emu::SampleClipB(23, 17);
  for (const int32_t vertical : {0, 1}) {
    for (const int32_t n : {0, -3, 40, INT32_MAX}) {
      for (const int32_t pw : {INT32_MIN, INT32_MAX}) {
        for (const double p : {std::nan(""), 3.0, 1e300}) {
          const emu::Frame out = RenderBlinds(a, b, {vertical, n, pw, 3, p});
          EXPECT_TRUE(n > 0 || out.pixels == emu::Frame(23, 17, kUntouched).pixels) << "no blinds draw nothing";
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
