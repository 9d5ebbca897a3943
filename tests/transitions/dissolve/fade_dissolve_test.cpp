// Traditional Fade's arithmetic: the weight from the curve, the floored mix
// of every byte, and what curve values outside 0..1 do.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "test_support.h"

namespace krl::test {
namespace {

const emu::DeclaredEffect& Fade() { return Effect(Library(), "Traditional Fade"); }

// One pixel whose four bytes are all `byte`.
uint32_t Grey(uint8_t byte) { return 0x01010101u * byte; }

TEST(TraditionalFade, MixesEachByteWithTheCurvesWeight) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const struct {
    double curve;
    uint8_t a, b, expected;
  } rows[] = {
      {0.0, 37, 200, 37},    {1.0, 37, 200, 200},   // the ends copy A and B
      {0.3, 255, 0, 179},                           // t = 76, w = 180
      {0.5, 255, 0, 127},                           // floored, not rounded
      {0.999, 0, 10, 9},     {0.999, 200, 100, 100}, {0.999, 10, 0, 0},  // w = 1
      // Out-of-range curve values wrap in 32 bits; the low byte is stored.
      {1.5, 10, 20, 25},     {-0.5, 200, 100, 250},  {-0.5, 255, 0, 126},
      {2.0, 0, 255, 254},    {2.0, 255, 0, 1},       {1.00390625, 255, 0, 255},
      {8388607.99, 1, 0, 1},
      // Not representable as a 32-bit weight: the conversion's "indefinite"
      // value, which leaves A.
      {nan, 12, 250, 12},    {inf, 12, 250, 12},     {-inf, 12, 250, 12}, {1e9, 99, 3, 99},
  };
  for (const auto& row : rows) {
    emu::Instance fade(Library(), Fade());
    fade.SetConstant("Progression", row.curve);
    const emu::Frame a = Filled(3, 2, Grey(row.a)), b = Filled(3, 2, Grey(row.b));
    emu::Frame out(3, 2);
    ASSERT_EQ(fade.Render(a, b, out, 0.5), 1);
    for (uint32_t px : out.pixels) {
      EXPECT_EQ(px, Grey(row.expected)) << "curve " << row.curve << " a " << int{row.a} << " b " << int{row.b};
    }
  }
}

TEST(TraditionalFade, AlphaIsMixedLikeTheColours) {
  emu::Instance fade(Library(), Fade());
  const emu::Frame a = Filled(1, 1, 0x80FF4000), b = Filled(1, 1, 0x00000000);
  emu::Frame out(1, 1);
  fade.Render(a, b, out, 0.5);
  EXPECT_EQ(out.pixels[0], 0x407F2000u);
}

TEST(TraditionalFade, FollowsTheDefaultCurveOverOddSizedClips) {
  const emu::Frame a = emu::SampleClipA(97, 61), b = emu::SampleClipB(97, 61);
  const struct {
    double progress;
    uint32_t weightA;
  } rows[] = {{0.0, 256}, {0.25, 192}, {0.3, 180}, {0.5, 128}, {0.75, 64}, {1.0, 0}};
  for (const auto& row : rows) {
    emu::Instance fade(Library(), Fade());
    emu::Frame out(97, 61);
    ASSERT_EQ(fade.Render(a, b, out, row.progress), 1);
    for (size_t i = 0; i < out.ByteCount(); ++i) {
      const uint32_t expected = (a.Bytes()[i] * row.weightA + b.Bytes()[i] * (256 - row.weightA)) / 256;
      ASSERT_EQ(out.Bytes()[i], expected) << "byte " << i << " at " << row.progress;
    }
  }
}

TEST(TraditionalFade, ImageTwoFirstRunsFromBToA) {
  const emu::Frame a = emu::SampleClipA(40, 30), b = emu::SampleClipB(40, 30);
  emu::Instance forward(Library(), Fade()), backward(Library(), Fade());
  backward.SetValue("TransType", 1);
  emu::Frame expected(40, 30), out(40, 30);
  forward.Render(b, a, expected, 0.3);
  backward.Render(a, b, out, 0.3);
  EXPECT_EQ(out.pixels, expected.pixels);
}

TEST(TraditionalFade, InitGivesTheLinearCurveAndTheFirstItem) {
  emu::Instance fade(Library(), Fade());
  EXPECT_EQ(fade.Value("TransType"), 0);
  const std::vector<emu::CurvePoint>& curve = fade.Curve("Progression");
  ASSERT_EQ(curve.size(), 3u);
  const double expected[][2] = {{0.0, 0.0}, {0.5, 0.5}, {1.0, 1.0}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(curve[i].position, expected[i][0]);
    EXPECT_EQ(curve[i].value, expected[i][1]);
  }
}

}  // namespace
}  // namespace krl::test
