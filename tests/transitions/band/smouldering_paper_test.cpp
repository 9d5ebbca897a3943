// Smouldering Paper: when the cached height field is reused and when it is
// made anew (and what that draws), its frames at changing sizes, the rim's
// colours and the end frames.
#include <gtest/gtest.h>

#include <cstdlib>

#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

constexpr uint32_t kA = kFlatA, kB = kFlatB;
constexpr int kMarker = 424242;  // srand(kMarker) before a render shows whether it drew

emu::Frame Render(emu::Instance& instance, int32_t w, int32_t h, double progress) {
  emu::Frame out(w, h, kUnwritten);
  EXPECT_EQ(instance.Render(Filled(w, h, kA), Filled(w, h, kB), out, progress), 1);
  return out;
}

int FirstDrawAfter(unsigned randStart) {
  std::srand(randStart);
  return std::rand();
}

// Renders with rand() at a known state; true when the render reseeded or drew.
bool Regenerated(emu::Instance& instance, int32_t w, int32_t h, double progress, emu::Frame* out = nullptr) {
  std::srand(kMarker);
  const emu::Frame frame = Render(instance, w, h, progress);
  if (out != nullptr) *out = frame;
  return std::rand() != FirstDrawAfter(kMarker);
}

TEST(SmoulderingPaper, TheFieldIsMadeOnlyWhenSizeDegreeOrVariationChange) {
  emu::Instance instance(Library(), Effect(Library(), "Smouldering Paper"));
  emu::Frame first, again;
  EXPECT_TRUE(Regenerated(instance, 40, 30, 0.5, &first)) << "first render";
  EXPECT_FALSE(Regenerated(instance, 40, 30, 0.5, &again)) << "same frame: cache reused, no draw";
  EXPECT_EQ(again.pixels, first.pixels);
  const struct {
    const char* change;
    int32_t w, h;
    double degree;
    int32_t variation;
    bool regenerates;
  } rows[] = {
      {"nothing", 40, 30, 128.0, 2002, false},   {"degree below 1", 40, 30, 128.9, 2002, false},
      {"degree by 1", 40, 30, 129.0, 2002, true}, {"variation", 40, 30, 129.0, 7, true},
      {"width", 41, 30, 129.0, 7, true},          {"height", 41, 29, 129.0, 7, true},
      {"nothing again", 41, 29, 129.5, 7, false},
  };
  for (const auto& row : rows) {
    instance.SetConstant("RandomSettings", row.degree);
    instance.SetValue("Variations of Transition", row.variation);
    EXPECT_EQ(Regenerated(instance, row.w, row.h, 0.3), row.regenerates) << row.change;
  }
}

// A new field of the same size is made over the last one's memory: it must
// come out as a fresh instance's does.
TEST(SmoulderingPaper, OneInstanceAtChangingSizesAndVariationsDrawsAsFreshOnes) {
  emu::Instance moving(Library(), Effect(Library(), "Smouldering Paper"));
  const struct {
    int32_t w, h, variation;
  } rows[] = {{64, 48, 2002}, {17, 90, 2002}, {17, 90, 9}, {1, 1, 9}, {0, 5, 9},
              {64, 48, 9},    {64, 48, 10},   {2, 300, 10}, {33, 3, 10}};
  for (const auto& row : rows) {
    moving.SetValue("Variations of Transition", row.variation);
    const emu::Frame seen = Render(moving, row.w, row.h, 0.45);
    emu::Instance fresh(Library(), Effect(Library(), "Smouldering Paper"));
    fresh.SetValue("Variations of Transition", row.variation);
    EXPECT_EQ(seen.pixels, Render(fresh, row.w, row.h, 0.45).pixels) << row.w << "x" << row.h << " " << row.variation;
  }
}

TEST(SmoulderingPaper, TheRimShadesBetweenTheColours) {
  emu::Instance instance(Library(), Effect(Library(), "Smouldering Paper"));
  instance.SetColor("Color1", KrColor{200, 200, 200, 0});
  instance.SetColor("Color2", KrColor{0, 0, 0, 7});
  const emu::Frame out = Render(instance, 160, 120, 0.5);
  int rim = 0;
  for (uint32_t px : out.pixels) {
    if (px == kA || px == kB) continue;
    const uint32_t grey = px & 0xFF;
    ASSERT_EQ(px, 0xFF000000u | grey * 0x010101u) << std::hex << px;
    ASSERT_LE(grey, 200u);
    ++rim;
  }
  EXPECT_GT(rim, 0);
  EXPECT_GT(CountOf(out, kA), 0);
  EXPECT_GT(CountOf(out, kB), 0);
}

TEST(SmoulderingPaper, EndFramesKeepARimWhereTheFieldIsExtreme) {
  emu::Instance instance(Library(), Effect(Library(), "Smouldering Paper"));
  // Degree 0 makes a smooth field between the four corners: at the start
  // only values up to 1000 show the rim, at the end only values from 64535.
  instance.SetConstant("RandomSettings", 0.0);
  const emu::Frame start = Render(instance, 100, 80, 0.0), end = Render(instance, 100, 80, 1.0);
  EXPECT_EQ(CountOf(start, kB), 0);
  EXPECT_EQ(CountOf(end, kA), 0);
  EXPECT_GT(CountOf(start, kA), 100 * 80 / 2);
  EXPECT_GT(CountOf(end, kB), 100 * 80 / 2);
}

TEST(SmoulderingPaper, TransTypeExchangesInLocalsOnly) {
  emu::Instance instance(Library(), Effect(Library(), "Smouldering Paper"));
  const emu::Frame plain = Render(instance, 30, 20, 0.4);
  instance.SetValue("TransType", 1);
  emu::Frame a = Filled(30, 20, kA), b = Filled(30, 20, kB), out(30, 20, kUnwritten);
  ASSERT_EQ(instance.Render(a, b, out, 0.4), 1);
  EXPECT_EQ(instance.record().InputA, a.Bytes()) << "the record is left as the host filled it";
  for (size_t i = 0; i < out.pixels.size(); ++i) {
    const uint32_t swapped = plain.pixels[i] == kA ? kB : (plain.pixels[i] == kB ? kA : plain.pixels[i]);
    ASSERT_EQ(out.pixels[i], swapped) << i;
  }
}

}  // namespace
}  // namespace krl::test
