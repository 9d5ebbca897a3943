// The in-place box mean: runs taken by the tight loop (windows inside the
// frame) and by the pixel-at-a-time path (windows held to the frame's edges,
// rows counted more than once near the top and bottom, a side of 1 without
// sums) replace pixels exactly as summing all k x k pixels does, in the order
// the calls give.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "raster/row_box_mean.h"

namespace krl {
namespace {

struct Picture {
  int32_t w, h;
  std::vector<uint32_t> px;
  uint32_t& At(int32_t x, int32_t y) { return px[static_cast<size_t>(y) * w + x]; }
};

// The mean of the k x k pixels around (x, y), coordinates held to the picture.
uint32_t PlainMean(Picture& p, int32_t x, int32_t y, int32_t k) {
  uint32_t sum[3] = {};
  for (int32_t r = y - k / 2; r <= y + k / 2; ++r) {
    for (int32_t c = x - k / 2; c <= x + k / 2; ++c) {
      const uint32_t px = p.At(std::clamp(c, 0, p.w - 1), std::clamp(r, 0, p.h - 1));
      for (int i = 0; i < 3; ++i) sum[i] += (px >> (8 * i)) & 0xFF;
    }
  }
  const uint32_t area = static_cast<uint32_t>(k * k);
  return 0xFF000000u | (sum[2] / area) << 16 | (sum[1] / area) << 8 | sum[0] / area;
}

TEST(RowBoxMean, RunsReplaceAsThePlainMeanInOrder) {
  const struct {
    int32_t w, h, k;
  } cases[] = {{48, 30, 13}, {48, 30, 9}, {33, 21, 5}, {20, 17, 3}, {12, 9, 13}, {5, 19, 9},
               {1, 6, 5},    {26, 1, 13}, {17, 11, 1}, {40, 26, 7}, {14, 40, 13}};
  for (const auto& c : cases) {
    std::srand(static_cast<unsigned>(c.w * 131 + c.h * 7 + c.k));
    Picture fast{c.w, c.h, std::vector<uint32_t>(static_cast<size_t>(c.w) * c.h)};
    for (uint32_t& px : fast.px) px = static_cast<uint32_t>(std::rand()) << 8 ^ static_cast<uint32_t>(std::rand());
    Picture plain = fast;
    const FrameRows rows{nullptr, nullptr, reinterpret_cast<PixelWord*>(fast.px.data()), c.w, c.h};
    RowBoxMean mean(rows, c.k);
    // Rows in ascending order, now and then one skipped or its columns
    // changed, so that the sums are slid down as well as gathered anew.
    for (int32_t y = 0; y < c.h; y += 1 + (std::rand() % 6 == 0)) {
      const bool narrow = std::rand() % 5 == 0;
      const int32_t begin = narrow ? std::rand() % c.w : 0;
      const int32_t end = narrow ? begin + 1 + std::rand() % (c.w - begin) : c.w;
      mean.StartRow(y, begin, end);
      const auto replace = [&](int32_t x, int32_t times) {
        for (int32_t t = 0; t < times; ++t) plain.At(x, y) = PlainMean(plain, x, y, c.k);
      };
      switch (std::rand() % 3) {
        case 0:  // runs with gaps, once or twice each
          for (int32_t x = begin; x < end;) {
            const int32_t runEnd = std::min(end, x + 1 + std::rand() % 12), times = std::rand() % 3;
            mean.ReplaceRun(x, runEnd, times);
            for (int32_t i = x; i < runEnd; ++i) replace(i, times);
            x = runEnd + std::rand() % 3;
          }
          break;
        case 1:  // the whole span downwards
          mean.ReplaceRunDown(begin, end);
          for (int32_t x = end - 1; x >= begin; --x) replace(x, 1);
          break;
        default:  // pixel by pixel, now and then a step back
          for (int32_t x = begin; x < end; ++x) {
            mean.Replace(x);
            replace(x, 1);
            if (x > begin && std::rand() % 4 == 0) {
              mean.Replace(x - 1);
              replace(x - 1, 1);
            }
          }
      }
      ASSERT_EQ(fast.px, plain.px) << c.w << "x" << c.h << " k " << c.k << " row " << y;
    }
  }
}

}  // namespace
}  // namespace krl
