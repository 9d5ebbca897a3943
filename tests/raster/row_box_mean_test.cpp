// The in-place box mean: runs taken by the tight loop (windows inside the
// frame), pairs of rows taken side by side, and the pixel-at-a-time path
// (windows held to the frame's edges, rows counted more than once near the
// top and bottom, a side of 1 without sums) replace pixels exactly as summing
// all k x k pixels does, in the order the calls give.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "raster/row_box_mean.h"
#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

// Ascending spans with gaps somewhere in [0, w), replaced 0 to 2 times (now
// and then 3, which two rows side by side leave to one row at a time).
std::vector<RowBoxMean::Span> RandomSpans(int32_t w) {
  std::vector<RowBoxMean::Span> spans;
  for (int32_t x = std::rand() % w; x < w;) {
    const int32_t end = std::min(w, x + 1 + std::rand() % 15);
    spans.push_back({x, end, std::rand() % 23 == 0 ? 3 : std::rand() % 3});
    x = end + std::rand() % 4;
  }
  return spans;
}

TEST(RowBoxMean, RunsAndRowPairsReplaceAsThePlainMeanInOrder) {
  const struct {
    int32_t w, h, k;
  } cases[] = {{48, 30, 13}, {64, 40, 13}, {48, 30, 9},  {33, 21, 5}, {20, 17, 3}, {12, 9, 13}, {5, 19, 9},
               {1, 6, 5},    {26, 1, 13},  {17, 11, 1}, {40, 26, 7}, {14, 40, 13}, {30, 30, 13}};
  for (const auto& c : cases) {
    std::srand(static_cast<unsigned>(c.w * 131 + c.h * 7 + c.k));
    emu::Frame fast(c.w, c.h);
    for (uint32_t& px : fast.pixels) px = static_cast<uint32_t>(std::rand()) << 8 ^ static_cast<uint32_t>(std::rand());
    emu::Frame plain = fast;
    const FrameRows rows{nullptr, nullptr, reinterpret_cast<PixelWord*>(fast.pixels.data()), c.w, c.h};
    RowBoxMean mean(rows, c.k);
    const auto replace = [&](int32_t x, int32_t y, int32_t times) {
      for (int32_t t = 0; t < times; ++t) plain.At(x, y) = BoxMean(plain, x, y, c.k);
    };
    // Rows in ascending order, now and then one skipped or its columns
    // changed, so that the sums are slid down as well as gathered anew.
    for (int32_t y = 0; y < c.h;) {
      const int mode = std::rand() % 5;
      if (mode >= 3) {  // two rows at once, over the columns their spans cover
        const std::vector<RowBoxMean::Span> first = RandomSpans(c.w);
        const std::vector<RowBoxMean::Span> second = y + 1 < c.h ? RandomSpans(c.w) : std::vector<RowBoxMean::Span>();
        int32_t begin = c.w, end = 0;
        for (const auto& spans : {first, second}) {
          if (spans.empty()) continue;
          begin = std::min(begin, spans.front().begin);
          end = std::max(end, spans.back().end);
        }
        mean.ReplaceRowPair(y, begin, end, first, second);
        for (const auto& s : first) {
          for (int32_t x = s.begin; x < s.end; ++x) replace(x, y, s.times);
        }
        for (const auto& s : second) {
          for (int32_t x = s.begin; x < s.end; ++x) replace(x, y + 1, s.times);
        }
        ASSERT_EQ(fast.pixels, plain.pixels) << c.w << "x" << c.h << " k " << c.k << " rows " << y << " and " << y + 1;
        y += 2;
        continue;
      }
      const bool narrow = std::rand() % 5 == 0;
      const int32_t begin = narrow ? std::rand() % c.w : 0;
      const int32_t end = narrow ? begin + 1 + std::rand() % (c.w - begin) : c.w;
      mean.StartRow(y, begin, end);
      switch (mode) {
        case 0:  // runs with gaps, once or twice each
          for (int32_t x = begin; x < end;) {
            const int32_t runEnd = std::min(end, x + 1 + std::rand() % 12), times = std::rand() % 3;
            mean.ReplaceRun(x, runEnd, times);
            for (int32_t i = x; i < runEnd; ++i) replace(i, y, times);
            x = runEnd + std::rand() % 3;
          }
          break;
        case 1:  // the whole span downwards
          mean.ReplaceRunDown(begin, end);
          for (int32_t x = end - 1; x >= begin; --x) replace(x, y, 1);
          break;
        default:  // pixel by pixel, now and then a step back
          for (int32_t x = begin; x < end; ++x) {
            mean.Replace(x);
            replace(x, y, 1);
            if (x > begin && std::rand() % 4 == 0) {
              mean.Replace(x - 1);
              replace(x - 1, y, 1);
            }
          }
      }
      ASSERT_EQ(fast.pixels, plain.pixels) << c.w << "x" << c.h << " k " << c.k << " row " << y;
      y += 1 + (std::rand() % 6 == 0);
    }
  }
}

}  // namespace
}  // namespace krl::test
