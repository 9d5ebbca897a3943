// The fades. Traditional Fade's arithmetic: the weight from the curve, the
// floored mix of every byte (alpha too), and what curve values outside 0..1
// do. Chaotic Dissolve: the plain fade at both ends, the fade's truncation,
// where pixels land (worked out independently of the library), and the
// background.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

#include "test_support.h"

namespace krl::test {
namespace {

// One pixel whose four bytes are all `byte`.
uint32_t Grey(uint8_t byte) { return 0x01010101u * byte; }

// Traditional Fade takes its weight from the curve (here a constant, at
// Progress 0.5); a single pixel of Chaotic Dissolve never moves (its pull and
// offset stay below a pixel) and fades by Progress rounded to single precision.
TEST(Fades, MixEachByte) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const char* const kFade = "Traditional Fade";
  const char* const kChaotic = "Chaotic Dissolve";
  const struct {
    const char* effect;
    double weight;  // the curve or the Progress
    uint8_t a, b, expected;
  } rows[] = {
      {kFade, 0.0, 37, 200, 37},    {kFade, 1.0, 37, 200, 200},  // the ends copy A and B
      {kFade, 0.3, 255, 0, 179},                                 // t = 76, w = 180
      {kFade, 0.5, 255, 0, 127},                                 // floored, not rounded
      {kFade, 0.999, 0, 10, 9},     {kFade, 0.999, 10, 0, 0},    // w = 1
      // Out-of-range curve values wrap in 32 bits; the low byte is stored.
      {kFade, 1.5, 10, 20, 25},     {kFade, -0.5, 200, 100, 250}, {kFade, 2.0, 0, 255, 254},
      {kFade, 8388607.99, 1, 0, 1},
      // Not representable as a 32-bit weight: the conversion's "indefinite"
      // value, which leaves A.
      {kFade, nan, 12, 250, 12},    {kFade, inf, 12, 250, 12},   {kFade, 1e9, 99, 3, 99},
      {kChaotic, 0.5, 255, 0, 127}, {kChaotic, 0.999, 0, 255, 254},
      {kChaotic, 0.3, 0, 10, 3},    // 10 x 0.3f = 3.0000001
      {kChaotic, 0.3, 10, 0, 6},    // 10 - 3.0000001 is just below 7
  };
  for (const auto& row : rows) {
    emu::Instance instance(Library(), Effect(Library(), row.effect));
    const bool fade = row.effect == kFade;
    if (fade) instance.SetConstant("Progression", row.weight);
    const int32_t w = fade ? 3 : 1, h = fade ? 2 : 1;
    emu::Frame out(w, h);
    ASSERT_EQ(instance.Render(Filled(w, h, Grey(row.a)), Filled(w, h, Grey(row.b)), out, fade ? 0.5 : row.weight), 1);
    for (uint32_t px : out.pixels) {
      EXPECT_EQ(px, Grey(row.expected)) << row.effect << " " << row.weight << ": " << int{row.a} << ">" << int{row.b};
    }
  }
}

const emu::DeclaredEffect& Chaotic() { return Effect(Library(), "Chaotic Dissolve"); }

constexpr KrColor kBackground{10, 20, 30, 0};  // the host's alpha 0 is drawn as 255
constexpr uint32_t kBackgroundPixel = 0xFF1E140A;

emu::Frame Render(const emu::Frame& a, const emu::Frame& b, double progress) {
  emu::Instance chaotic(Library(), Chaotic());
  chaotic.SetColor("Color", kBackground);
  emu::Frame out(a.width, a.height, 0xDEADBEEF);
  EXPECT_EQ(chaotic.Render(a, b, out, progress), 1);
  return out;
}

// Every pixel tells where it came from: red = x, green = y.
emu::Frame Numbered(int32_t w, int32_t h) {
  emu::Frame f(w, h);
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) f.At(x, y) = emu::Pixel(x, y, 0x5A);
  }
  return f;
}

TEST(ChaoticDissolve, TheEndsAreThePlainClips) {
  const emu::Frame a = emu::SampleClipA(31, 17), b = emu::SampleClipB(31, 17);
  EXPECT_EQ(Render(a, b, 0.0).pixels, a.pixels);
  EXPECT_EQ(Render(a, b, 1.0).pixels, b.pixels);
}

TEST(ChaoticDissolve, PixelsLandWhereTheRestartedGeneratorThrowsThem) {
  // A 16 x 12 frame: which source pixel is seen at a few places (none: the
  // background), and how many places no pixel reaches.
  struct Landing {
    int tx, ty, sx, sy;  // sx < 0: background
  };
  const struct {
    double progress;
    int background;
    Landing landings[6];
  } rows[] = {
      {0.5, 77, {{0, 0, 1, 0}, {8, 6, 9, 6}, {12, 2, 13, 0}, {15, 11, -1, 0}, {5, 5, 5, 7}, {10, 3, 7, 1}}},
      {0.3, 72, {{0, 0, 1, 0}, {8, 6, 9, 6}, {12, 2, 14, 1}, {15, 11, -1, 0}, {5, 5, 5, 7}, {10, 3, 8, 1}}},
      {0.75, 78, {{0, 0, 1, 0}, {8, 6, 9, 6}, {12, 2, -1, 0}, {15, 11, -1, 0}, {5, 5, 4, 6}, {10, 3, 11, 3}}},
  };
  const emu::Frame numbered = Numbered(16, 12);
  for (const auto& row : rows) {
    std::srand(static_cast<unsigned>(row.background));  // the process's rand() plays no part
    const emu::Frame out = Render(numbered, numbered, row.progress);
    int background = 0;
    for (uint32_t px : out.pixels) background += px == kBackgroundPixel;
    EXPECT_EQ(background, row.background) << row.progress;
    for (const Landing& l : row.landings) {
      const uint32_t expected = l.sx < 0 ? kBackgroundPixel : numbered.At(l.sx, l.sy);
      EXPECT_EQ(out.At(l.tx, l.ty), expected) << row.progress << " at " << l.tx << "," << l.ty;
    }
  }
}

TEST(ChaoticDissolve, EveryFrameRestartsTheGeneratorAndLeavesRandAlone) {
  const emu::Frame a = emu::SampleClipA(40, 30), b = emu::SampleClipB(40, 30);
  emu::Instance chaotic(Library(), Chaotic());
  emu::Frame first(40, 30), second(40, 30);
  std::srand(5);
  const int expectedNext = std::rand();
  std::srand(5);
  chaotic.Render(a, b, first, 0.4);
  EXPECT_EQ(std::rand(), expectedNext);
  chaotic.Render(a, b, second, 0.4);
  EXPECT_EQ(first.pixels, second.pixels);
}

}  // namespace
}  // namespace krl::test
