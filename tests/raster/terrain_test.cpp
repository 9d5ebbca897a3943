// The terrain generator: what it draws from rand() and in which order, what
// a noise table replaces, how the border averages, and the colour blend.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "raster/terrain.h"
#include "test_support.h"

namespace krl {
namespace {

constexpr int32_t kSide = 129;
constexpr unsigned kSeed = 4711;

std::vector<int> DrawsAfterSeed(size_t count) {
  std::srand(kSeed);
  std::vector<int> draws(count);
  for (int& d : draws) d = std::rand();
  return draws;
}

// Called after srand(kSeed) and a generator call: it made `draws` draws.
void ExpectDrewSinceSeed(size_t draws, const char* what) {
  const int next = std::rand();
  EXPECT_EQ(next, DrawsAfterSeed(draws + 1).back()) << what;
}

std::vector<int32_t> NoiseTable(int32_t side, unsigned randStart) {
  std::srand(randStart);
  std::vector<int32_t> noise(static_cast<size_t>(side) * side);
  for (int32_t& v : noise) v = std::rand() % 1024 - 512;
  return noise;
}

TEST(Terrain, DiamondSquareDrawsOncePerEntryCornersFirstOnlyWithoutATable) {
  std::vector<int32_t> noise = NoiseTable(kSide, 99);
  std::vector<int32_t> tabled(kSide * kSide, 0), again(kSide * kSide, 0), drawn(kSide * kSide, 0);
  std::srand(kSeed);
  bxglGenerateTerrainDS(tabled.data(), kSide, 7, 100, 1024, noise.data());
  ExpectDrewSinceSeed(0, "no draw with a noise table");
  std::srand(12345);  // another rand() state changes nothing
  bxglGenerateTerrainDS(again.data(), kSide, 7, 100, 1024, noise.data());
  EXPECT_EQ(tabled, again);
  EXPECT_EQ(tabled[128 * kSide + 128], noise[128 * kSide + 128]);
  std::srand(kSeed);
  bxglGenerateTerrainDS(drawn.data(), kSide, 7, 200, 1000, nullptr);
  ExpectDrewSinceSeed(kSide * kSide, "one draw per entry");
  // Corners (0, 0), (0, n), (n, n), (n, 0) from the first four draws.
  const std::vector<int> d = DrawsAfterSeed(4);
  const size_t corners[4] = {0, 128, 128 * kSide + 128, 128 * kSide};
  for (int k = 0; k < 4; ++k) {
    EXPECT_EQ(drawn[corners[k]], static_cast<int32_t>(((2.0 * d[k]) / 2147483647.0 - 1.0) * 1000)) << k;
  }
}

// Size 3, one level, roughness 255 (every displacement is the table's value):
// the centre averages four corners, every border point the three neighbours
// it has, sums truncated toward zero.
TEST(Terrain, BorderPointsAverageTheNeighboursTheyHave) {
  const std::vector<int32_t> noise = {-10, 1, 3,  //
                                      1,   1, 1,  //
                                      -5,  1, 4};
  std::vector<int32_t> map(9, 0);
  bxglGenerateTerrainDS(map.data(), 3, 1, 255, 1024, const_cast<int32_t*>(noise.data()));
  const int32_t centre = (-10 + 3 + 4 - 5) / 4 + 1;  // -1
  EXPECT_EQ(map, (std::vector<int32_t>{-10, (-10 + centre + 3) / 3 + 1, 3,           //
                                       (-10 + centre - 5) / 3 + 1, centre, (centre + 3 + 4) / 3 + 1,  //
                                       -5, (-5 + centre + 4) / 3 + 1, 4}));
  EXPECT_EQ(map[3], -4) << "-16 / 3 truncates to -5";
}

// Level 0 writes only the corners; roughness scales each level's displacement.
TEST(Terrain, LevelsAndRoughness) {
  constexpr int32_t kUnset = 0x5EED;
  std::vector<int32_t> noise = NoiseTable(kSide, 3), corners(kSide * kSide, kUnset);
  bxglGenerateTerrainDS(corners.data(), kSide, 0, 255, 1024, noise.data());
  for (size_t i = 0; i < corners.size(); ++i) {
    const bool corner = i == 0 || i == 128 || i == 128 * kSide || i == 128 * kSide + 128;
    EXPECT_EQ(corners[i], corner ? noise[i] : kUnset) << i;
  }
  std::vector<int32_t> centre(kSide * kSide, 0), flat(kSide * kSide, 0), rough(kSide * kSide, 0);
  centre[64 * kSide + 64] = 1000;  // only the first centre is displaced
  bxglGenerateTerrainDS(rough.data(), kSide, 7, 255, 0, centre.data());
  bxglGenerateTerrainDS(flat.data(), kSide, 7, 1, 0, centre.data());
  EXPECT_EQ(rough[64 * kSide + 64], 1000);
  EXPECT_EQ(flat[64 * kSide + 64], 3) << "1000 / 255, truncated";
}

// The triangle subdivision: corners (draw mod range) - range / 2, half-sums
// by arithmetic shift, displacement (A * noise) / n with A = step + roughness.
TEST(Terrain, TriangleSubdivisionFromANoiseTable) {
  const std::vector<int> d = DrawsAfterSeed(4);
  const auto corner = [&](int k) { return d[k] % 3 - 1; };
  std::vector<int32_t> map(9, 77), noise(9, 1);
  std::srand(kSeed);
  EXPECT_EQ(bxglGenerateTerrain2(map.data(), 3, 1, 3, 0, noise.data()), 1);
  ExpectDrewSinceSeed(4, "only the corners are drawn");
  const int32_t c00 = corner(0), c02 = corner(1), c22 = corner(2), c20 = corner(3);
  const auto half = [](int32_t p, int32_t q) { return ((p + q) >> 1) + 1; };
  EXPECT_EQ(map, (std::vector<int32_t>{c00, half(c00, c02), c02,                                //
                                       half(c00, c20), half(c20, c02), half(c02, c22),  //
                                       c20, half(c20, c22), c22}));
}

TEST(Terrain, TriangleSubdivisionReturnsTheLastStepAndDrawsSixPerCell) {
  std::vector<int32_t> map(kSide * kSide, 0);
  const struct {
    int32_t levels, lastStep;
  } rows[] = {{0, 128}, {1, 64}, {7, 1}, {9, 0}};
  for (const auto& row : rows) EXPECT_EQ(bxglGenerateTerrain(map.data(), kSide, row.levels, 64, 8), row.lastStep);
  std::srand(kSeed);
  bxglGenerateTerrain(map.data(), 3, 1, 64, 8);
  ExpectDrewSinceSeed(4 + 6, "four corners, six entries of the one cell");
}

TEST(Terrain, LerpColorEndsAndMiddle) {
  const int32_t dst = 0x12345678, src = static_cast<int32_t>(0xFF00FF00);
  int32_t keep = dst, take = dst, black = 0;
  bxglLerpColor(&keep, src, 0);
  bxglLerpColor(&take, src, 255);
  bxglLerpColor(&black, -1, 128);
  EXPECT_EQ(keep, dst);
  EXPECT_EQ(take, src);
  EXPECT_EQ(static_cast<uint32_t>(black), 0x80808080u) << "(255 * 32896 + 32895) >> 16 = 128 in every byte";
}

TEST(Terrain, TheLibraryExportsTheToolkit) {
  for (const char* name : {"bxglGenerateTerrainDS", "bxglGenerateTerrain", "bxglGenerateTerrain2", "bxglSubdivideTerrain",
                           "bxglSubdivideTerrain2", "bxglLerpColor", "hilbert_a", "hilbert_b", "hilbert_c", "hilbert_d"}) {
    EXPECT_NE(test::Library().Symbol(name), nullptr) << name;
  }
}

}  // namespace
}  // namespace krl
