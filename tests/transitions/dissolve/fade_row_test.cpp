// Chaotic Dissolve's row fade against the one-byte formula, trunc(a + (b - a) p)
// in doubles: every pair of bytes, at Progress values on both sides of the
// range the integer lanes take and at its ends.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "transitions/dissolve/fade_row.h"

namespace krl::test {
namespace {

uint8_t OneByte(uint8_t a, uint8_t b, float p) {
  return static_cast<uint8_t>(TruncToInt32(a + (b - a) * static_cast<double>(p)));
}

TEST(FadeRow, EveryPairOfBytesAsTheOneByteFormula) {
  // Rows of all 65536 pairs, a little longer than a multiple of 16 so that
  // the one-by-one tail is taken too.
  std::vector<uint8_t> a, b;
  for (int i = 0; i < 256; ++i) {
    for (int j = 0; j < 256; ++j) {
      a.push_back(static_cast<uint8_t>(i));
      b.push_back(static_cast<uint8_t>(j));
    }
  }
  for (int i = 0; i < 7; ++i) {
    a.push_back(static_cast<uint8_t>(250 - i));
    b.push_back(static_cast<uint8_t>(3 * i));
  }
  const float progress[] = {
      0.5f, 0.3f, 0.1f, 0.7f, 0.999f, 1.0f / 3, 0.25f, 0.75f, 1.0f, std::nextafter(1.0f, 0.0f),
      std::ldexp(1.0f, -22),                        // the smallest the integer lanes take
      std::nextafter(std::ldexp(1.0f, -22), 0.0f),  // and the largest below it, in doubles
      1e-9f, 0.0f, -0.0f, 1.0001f, -0.25f, 2.5f, std::numeric_limits<float>::quiet_NaN(),
      std::nextafter(std::ldexp(1.0f, -16), 1.0f), 0.0078125f, 0.123456789f,
  };
  std::vector<uint8_t> out(a.size());
  for (const float p : progress) {
    FadeRow(a.data(), b.data(), out.data(), out.size(), p);
    size_t wrong = 0, first = 0;
    for (size_t i = 0; i < out.size(); ++i) {
      if (out[i] != OneByte(a[i], b[i], p) && wrong++ == 0) first = i;
    }
    EXPECT_EQ(wrong, 0u) << "p = " << p << ", first at a = " << int{a[first]} << ", b = " << int{b[first]}
                         << ": " << int{out[first]} << " for " << int{OneByte(a[first], b[first], p)};
  }
}

}  // namespace
}  // namespace krl::test
