// The even-odd polygon test on integer vertices, in the 32-bit integer
// arithmetic it is defined in: the crossing column of an edge is
// X[k] + ((X[m] - X[k]) * (y - Y[k])) / (Y[m] - Y[k]), products wrapping in
// 32 bits and the division truncating toward zero. An axis-parallel rectangle
// L, R, T, B is thereby the half-open set L <= x < R, T <= y < B.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace krl {

struct Vertex {
  int32_t x, y;
};

namespace wrap32 {
// Two's-complement arithmetic without undefined behaviour: huge shapes wrap
// as 32-bit registers do instead of overflowing.
inline int32_t Add(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
inline int32_t Sub(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }
inline int32_t Mul(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }
// b is never 0 here; INT32_MIN / -1 wraps to INT32_MIN.
inline int32_t Div(int32_t a, int32_t b) { return b == -1 ? Sub(0, a) : a / b; }
}  // namespace wrap32

// Whether the edge between k and m crosses row y (one end above it, one not).
inline bool EdgeCrossesRow(Vertex k, Vertex m, int32_t y) { return (k.y > y) != (m.y > y); }

// The column where a crossing edge meets row y.
inline int32_t CrossingColumn(Vertex k, Vertex m, int32_t y) {
  using namespace wrap32;
  return Add(k.x, Div(Mul(Sub(m.x, k.x), Sub(y, k.y)), Sub(m.y, k.y)));
}

// The rule for one pixel: toggles once for every crossing right of x.
inline bool InsideEvenOdd(std::span<const Vertex> polygon, int32_t x, int32_t y) {
  bool inside = false;
  for (size_t k = 0, m = polygon.size() - 1; k < polygon.size(); m = k++) {
    if (EdgeCrossesRow(polygon[k], polygon[m], y) && x < CrossingColumn(polygon[k], polygon[m], y)) {
      inside = !inside;
    }
  }
  return inside;
}

// The crossings of one row, sorted, so that a whole row is tested at once: a
// pixel lies inside exactly when an odd number of crossings lie right of it,
// and the answer can change only at a crossing column.
class RowCrossings {
 public:
  static constexpr size_t kMaxVertices = 16;

  RowCrossings(std::span<const Vertex> polygon, int32_t y) {
    for (size_t k = 0, m = polygon.size() - 1; k < polygon.size() && k < kMaxVertices; m = k++) {
      if (EdgeCrossesRow(polygon[k], polygon[m], y)) columns_[count_++] = CrossingColumn(polygon[k], polygon[m], y);
    }
    std::sort(columns_.begin(), columns_.begin() + count_);
  }

  bool Inside(int32_t x) const {
    const int32_t* end = columns_.data() + count_;
    return ((end - std::upper_bound(columns_.data(), end, x)) & 1) != 0;
  }

  // The columns where the answer may change: x - 1 and x differ only at these.
  std::span<const int32_t> Columns() const { return {columns_.data(), count_}; }

 private:
  std::array<int32_t, kMaxVertices> columns_{};
  size_t count_ = 0;
};

}  // namespace krl
