// Fractal: the noise table the init makes, its end frames, that the table
// (not the "Random Seed" field) decides the picture, and a render with no table.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "raster/terrain.h"
#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

constexpr uint32_t kA = kFlatA, kB = kFlatB;
constexpr int32_t kSide = 129;

emu::Frame Render(emu::Instance& instance, int32_t w, int32_t h, double progress) {
  emu::Frame out(w, h, kUnwritten);
  EXPECT_EQ(instance.Render(Filled(w, h, kA), Filled(w, h, kB), out, progress), 1);
  return out;
}

const int32_t* TableOf(const emu::Instance& instance) { return static_cast<const int32_t*>(instance.userData()); }

TEST(Fractal, InitDrawsTheNoiseTableFromSpectrumUnseeded) {
  std::srand(31);
  std::vector<int> draws(kSide * kSide);
  for (int& d : draws) d = std::rand();
  std::srand(31);
  emu::Instance instance(Library(), Effect(Library(), "Fractal"));
  const int32_t* table = TableOf(instance);
  ASSERT_NE(table, nullptr);
  for (size_t i = 0; i < draws.size(); ++i) ASSERT_EQ(table[i], draws[i] % 1024 - 512) << i;
}

TEST(Fractal, EndFramesAreTheClips) {
  emu::Instance instance(Library(), Effect(Library(), "Fractal"));
  for (const auto& [progress, clip] : {std::pair{0.0, kA}, {1.0, kB}}) {
    const emu::Frame out = Render(instance, 200, 100, progress);
    EXPECT_EQ(CountOf(out, clip), 200 * 100) << progress;
  }
}

TEST(Fractal, TheTableDecidesNotTheSeed) {
  emu::Instance instance(Library(), Effect(Library(), "Fractal"));
  const emu::Frame first = Render(instance, 150, 90, 0.45);
  instance.SetValue("Random Seed", 17);
  EXPECT_EQ(Render(instance, 150, 90, 0.45).pixels, first.pixels);
  EXPECT_GT(CountOf(first, kA), 0);
  EXPECT_GT(CountOf(first, kB), 0);
}

// Every pixel is A blended toward B by clamp(10 * trunc(Z) + h), h the map
// entry under it (nearest-lower sampling of the 129 x 129 map).
TEST(Fractal, EachPixelBlendsByTheTerrainUnderIt) {
  emu::Instance instance(Library(), Effect(Library(), "Fractal"));
  instance.SetConstant("Zero Line", -3.7);  // 10 * trunc(Z) = -30
  instance.SetConstant("Roughness", 180.9);
  std::vector<int32_t> map(kSide * kSide, 0);
  bxglGenerateTerrainDS(map.data(), kSide, 7, 180, 1024, const_cast<int32_t*>(TableOf(instance)));
  constexpr int32_t kW = 300, kH = 70;
  const emu::Frame out = Render(instance, kW, kH, 0.3);
  int blended = 0;
  for (int32_t y = 0; y < kH; ++y) {
    for (int32_t x = 0; x < kW; ++x) {
      const int32_t v = std::clamp(-30 + map[(y * kSide / kH) * kSide + x * kSide / kW], 0, 255);
      int32_t expected = static_cast<int32_t>(kA);
      bxglLerpColor(&expected, static_cast<int32_t>(kB), v);
      ASSERT_EQ(out.At(x, y), static_cast<uint32_t>(expected)) << x << "," << y;
      blended += v > 0 && v < 255;
    }
  }
  EXPECT_GT(blended, 100);
}

TEST(Fractal, WithoutATableTheSeedDraws) {
  emu::Instance instance(Library(), Effect(Library(), "Fractal"));
  void* table = instance.userData();
  instance.ReplaceUserData(nullptr);  // the host holds no user data
  std::srand(5);
  const emu::Frame first = Render(instance, 64, 48, 0.5);
  std::srand(6);
  EXPECT_EQ(Render(instance, 64, 48, 0.5).pixels, first.pixels) << "reseeded every render";
  instance.SetValue("Random Seed", 3);
  EXPECT_NE(Render(instance, 64, 48, 0.5).pixels, first.pixels);
  std::free(table);
}

}  // namespace
}  // namespace krl::test
