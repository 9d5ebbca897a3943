// The landscapes. Smouldering Paper: when the cached height field is reused
// and when it is made anew (and that either way it draws as a fresh
// instance), the rim's colours, the end frames and the exchange of the clips.
// Fractal: that the noise table the init makes (not the "Random Seed" field)
// decides the picture, its end frames, and a render with no table.
#include <gtest/gtest.h>

#include <cstdlib>

#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

constexpr uint32_t kA = kFlatA, kB = kFlatB;
constexpr int kMarker = 424242;  // srand(kMarker) before a render shows whether it drew

// Renders into `out` with rand() at a known state; true when the render reseeded or drew.
bool Regenerated(emu::Instance& instance, int32_t w, int32_t h, emu::Frame& out) {
  std::srand(kMarker);
  out = RenderFlat(instance, w, h, 0.45);
  const int next = std::rand();
  std::srand(kMarker);
  return next != std::rand();
}

// The field is made anew only when the size, the whole degree or the
// variation change; a new field of the same size is made over the last one's
// memory, and every frame must come out as a fresh instance's does.
TEST(SmoulderingPaper, TheFieldIsMadeOnlyWhenSizeDegreeOrVariationChange) {
  emu::Instance moving(Library(), Effect(Library(), "Smouldering Paper"));
  const struct {
    const char* change;
    int32_t w, h;
    double degree;
    int32_t variation;
    bool regenerates;
  } rows[] = {
      {"first render", 40, 30, 128.0, 2002, true}, {"nothing", 40, 30, 128.0, 2002, false},
      {"degree below 1", 40, 30, 128.9, 2002, false}, {"degree by 1", 40, 30, 129.0, 2002, true},
      {"variation", 40, 30, 129.0, 7, true},        {"width", 41, 30, 129.0, 7, true},
      {"height", 41, 29, 129.0, 7, true},           {"nothing again", 41, 29, 129.5, 7, false},
      {"same size, variation", 41, 29, 129.5, 9, true}, {"a tall frame", 2, 300, 129.5, 9, true},
      {"one pixel", 1, 1, 129.5, 9, true},          {"no rows", 0, 5, 129.5, 9, false},
      {"back to a larger frame", 64, 48, 129.5, 9, true},
  };
  for (const auto& row : rows) {
    moving.SetConstant("RandomSettings", row.degree);
    moving.SetValue("Variations of Transition", row.variation);
    emu::Frame seen;
    EXPECT_EQ(Regenerated(moving, row.w, row.h, seen), row.regenerates) << row.change;
    emu::Instance fresh(Library(), Effect(Library(), "Smouldering Paper"));
    fresh.SetConstant("RandomSettings", row.degree);
    fresh.SetValue("Variations of Transition", row.variation);
    EXPECT_EQ(seen.pixels, RenderFlat(fresh, row.w, row.h, 0.45).pixels) << row.change;
  }
}

TEST(SmoulderingPaper, TheRimShadesBetweenTheColoursAndLingersAtTheEnds) {
  emu::Instance instance(Library(), Effect(Library(), "Smouldering Paper"));
  instance.SetColor("Color1", KrColor{200, 200, 200, 0});
  instance.SetColor("Color2", KrColor{0, 0, 0, 7});
  const emu::Frame out = RenderFlat(instance, 160, 120, 0.5);
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
  // Degree 0 makes a smooth field between the four corners: at the start
  // only values up to 1000 show the rim, at the end only values from 64535.
  instance.SetConstant("RandomSettings", 0.0);
  const emu::Frame start = RenderFlat(instance, 100, 80, 0.0), end = RenderFlat(instance, 100, 80, 1.0);
  EXPECT_EQ(CountOf(start, kB), 0);
  EXPECT_EQ(CountOf(end, kA), 0);
  EXPECT_GT(CountOf(start, kA), 100 * 80 / 2);
  EXPECT_GT(CountOf(end, kB), 100 * 80 / 2);
}

TEST(SmoulderingPaper, TransTypeExchangesInLocalsOnly) {
  emu::Instance instance(Library(), Effect(Library(), "Smouldering Paper"));
  const emu::Frame plain = RenderFlat(instance, 30, 20, 0.4);
  instance.SetValue("TransType", 1);
  emu::Frame a = Filled(30, 20, kA), b = Filled(30, 20, kB), out(30, 20, kUnwritten);
  ASSERT_EQ(instance.Render(a, b, out, 0.4), 1);
  EXPECT_EQ(instance.record().InputA, a.Bytes()) << "the record is left as the host filled it";
  for (size_t i = 0; i < out.pixels.size(); ++i) {
    const uint32_t swapped = plain.pixels[i] == kA ? kB : (plain.pixels[i] == kB ? kA : plain.pixels[i]);
    ASSERT_EQ(out.pixels[i], swapped) << i;
  }
}

TEST(Fractal, TheTableDecidesNotTheSeedAndTheEndsAreTheClips) {
  std::srand(2);  // the init draws the table from the process's rand(), unseeded
  emu::Instance instance(Library(), Effect(Library(), "Fractal"));
  const emu::Frame first = RenderFlat(instance, 150, 90, 0.45);
  instance.SetValue("Random Seed", 17);
  EXPECT_EQ(RenderFlat(instance, 150, 90, 0.45).pixels, first.pixels);
  EXPECT_GT(CountOf(first, kA), 0);
  EXPECT_GT(CountOf(first, kB), 0);
  EXPECT_EQ(CountOf(RenderFlat(instance, 200, 100, 0.0), kA), 200 * 100);
  EXPECT_EQ(CountOf(RenderFlat(instance, 200, 100, 1.0), kB), 200 * 100);
}

TEST(Fractal, WithoutATableTheSeedDraws) {
  emu::Instance instance(Library(), Effect(Library(), "Fractal"));
  void* table = instance.userData();
  instance.ReplaceUserData(nullptr);  // the host holds no user data
  std::srand(5);
  const emu::Frame first = RenderFlat(instance, 64, 48, 0.5);
  std::srand(6);
  EXPECT_EQ(RenderFlat(instance, 64, 48, 0.5).pixels, first.pixels) << "reseeded every render";
  instance.SetValue("Random Seed", 3);
  EXPECT_NE(RenderFlat(instance, 64, 48, 0.5).pixels, first.pixels);
  std::free(table);
}

}  // namespace
}  // namespace krl::test
