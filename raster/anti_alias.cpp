// The edge blenders (raster/anti_alias.h): one walk, parameterised by its
// direction, behind the four exported routines.
//
// Per routine, the neighbour written beside the main pixel (r, c: the main
// pixel's row and column):
//
//   routine  columns rows  row held       column-major walk         row-major walk
//   1        +1      +1    at height - 1  row r - 1 if r > minRow     column c + 1 if c < maxCol - 1
//   2        +1      -1    at 0           row r + 1 if r < maxRow - 1 column c + 1 if c < maxCol - 1
//   3        -1      +1    at height - 1  row r - 1 if r > minRow + 1 column c - 1 if c > minCol + 1
//   4        -1      -1    at 0           row r + 1 if r < maxRow - 1 column c - 1 if c > minCol + 1
//
// Routine 3 keeps one more row from minRow than routine 1; that is how they
// are and it stays so.
#include "raster/anti_alias.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "host/entry.h"
#include "raster/numeric.h"

namespace krl {
namespace {

constexpr float kTwoThirds = 0.6666667f;  // 2/3 as a single

struct Steps {
  int32_t column;          // +1 or -1
  int32_t row;             // +1 or -1
  int32_t upperRowMargin;  // the neighbour row above (walking the columns) needs r > minRow + this
};

constexpr Steps StepsOf(EdgeWalk walk) {
  switch (walk) {
    case EdgeWalk::RightUp: return {+1, +1, 0};
    case EdgeWalk::RightDown: return {+1, -1, 0};
    case EdgeWalk::LeftUp: return {-1, +1, 1};
    case EdgeWalk::LeftDown: break;
  }
  return {-1, -1, 0};
}

// A byte stored as the processor stores a value to a 16-bit integer,
// truncating, and keeping its low 8 bits; a value beyond 16 bits stores the
// "indefinite" 0x8000, whose low byte is 0.
uint8_t StoreByte(long double v) {
  if (v > -32769.0L && v < 32768.0L) return static_cast<uint8_t>(static_cast<int32_t>(v));
  return 0;
}

// The pixels one blend reads and writes, each only where it lies in the frame.
class EdgePixels {
 public:
  explicit EdgePixels(const EdgeFrame& f)
      : f_(f), count_(f.stride > 0 && f.height > 0 ? int64_t{f.stride} * f.height : 0) {
    if (f.color != nullptr) std::memcpy(color_, f.color, 4);
  }

  // Each byte of the pixel at (c, r) becomes base + (other - base) x w,
  // where base is S1 (or S2 when baseIsS1 is false) and other the second source.
  void Blend(int64_t c, int64_t r, bool baseIsS1, long double w) const {
    const int64_t at = r * f_.stride + c;  // both stay far inside 64 bits
    if (at < 0 || at >= count_ || f_.mode < 0 || f_.mode > 2) return;
    uint8_t s1[4], s2[4], out[4];
    const size_t offset = 4 * static_cast<size_t>(at);
    Source(f_.mode == 1 ? nullptr : f_.src1, offset, s1);
    Source(f_.mode == 2 ? nullptr : f_.src2, offset, s2);
    const uint8_t* base = baseIsS1 ? s1 : s2;
    const uint8_t* other = baseIsS1 ? s2 : s1;
    for (int i = 0; i < 4; ++i) out[i] = StoreByte(base[i] + (other[i] - base[i]) * w);
    std::memcpy(f_.dst + offset, out, 4);
  }

 private:
  // The pixel of `frame` at `offset`, or the colour when frame is null.
  void Source(const uint8_t* frame, size_t offset, uint8_t* bytes) const {
    std::memcpy(bytes, frame != nullptr ? frame + offset : color_, 4);
  }

  const EdgeFrame& f_;
  int64_t count_;  // pixels in the frame
  uint8_t color_[4] = {};
};

// The weights of one step: t the walk's error term, run the length of the
// walk's major axis (dx or dy), inv = 0.5 / the edge's length.
struct Weights {
  long double main, side;
};

Weights WeightsOf(int64_t t, int64_t run, float inv) {
  const long double d = t * static_cast<long double>(inv);
  const long double main = (2 * run * static_cast<long double>(inv) - d) * kTwoThirds;
  return {main, d < 0 ? -d * kTwoThirds : 0.0L};
}

}  // namespace

void BlendEdge(EdgeWalk walk, const EdgeFrame& frame, EdgePoint from, EdgePoint to) {
  const Steps step = StepsOf(walk);
  const EdgePixels pixels(frame);
  // 64 bits: no end point makes a difference or a square overflow.
  const int64_t dx = std::llabs(int64_t{to.x} - from.x), dy = std::llabs(int64_t{to.y} - from.y);
  const float inv = dx == 0 && dy == 0 ? 0.0f : RoundToSingle(0.5L / std::sqrt(static_cast<long double>(dx * dx + dy * dy)));
  auto walking = [&](int64_t x) { return step.column > 0 ? x < to.x : x > to.x; };
  auto keepRow = [&](int64_t y) -> int64_t {
    if (step.row > 0) return y >= frame.height ? int64_t{frame.height} - 1 : y;
    return y < 0 ? 0 : y;
  };
  auto rowNeighbourAllowed = [&](int64_t r) {
    return step.row > 0 ? r > int64_t{frame.minRow} + step.upperRowMargin : r < int64_t{frame.maxRow} - 1;
  };
  auto columnNeighbourAllowed = [&](int64_t c) {
    return step.column > 0 ? c < int64_t{frame.maxCol} - 1 : c > int64_t{frame.minCol} + 1;
  };

  // The walk advances its major axis every step (the columns when dy < dx,
  // else the rows, so a diagonal walks row by row) and its minor axis when
  // the error term says so. Along the rows the two weights and the roles of
  // the sources trade places against the walk along the columns.
  const bool alongColumns = dy < dx;
  const int64_t run = alongColumns ? dx : dy, rise = alongColumns ? dy : dx;
  int64_t x = from.x, y = from.y;
  int64_t& major = alongColumns ? x : y;
  int64_t& minor = alongColumns ? y : x;
  const int32_t majorStep = alongColumns ? step.column : step.row, minorStep = alongColumns ? step.row : step.column;
  int64_t e = 2 * rise - run;
  while (walking(x)) {
    int64_t t;
    if (e >= 0) {
      minor += minorStep;
      t = e - run;
      e += 2 * (rise - run);
    } else {
      t = e + run;
      e += 2 * rise;
    }
    major += majorStep;
    y = keepRow(y);
    const Weights w = WeightsOf(t, run, inv);
    if (alongColumns) {
      pixels.Blend(x, y, false, w.main);
      if (rowNeighbourAllowed(y)) pixels.Blend(x, y - step.row, false, w.side);
    } else {
      pixels.Blend(x, y, true, w.side);
      if (columnNeighbourAllowed(x)) pixels.Blend(x + step.column, y, true, w.main);
    }
  }
}

namespace {

template <EdgeWalk kWalk>
void AntiAlias(uint8_t* dst, uint8_t* src1, uint8_t* src2, int32_t stride, int32_t height, int32_t x0, int32_t y0,
               int32_t x1, int32_t y1, int32_t minCol, int32_t maxRow, int32_t maxCol, int32_t minRow, int32_t mode,
               _color_t* color) {
  BlendEdge(kWalk, EdgeFrame{dst, src1, src2, stride, height, minCol, maxRow, maxCol, minRow, mode, color},
            EdgePoint{x0, y0}, EdgePoint{x1, y1});
}

}  // namespace
}  // namespace krl

// The exported blenders: each entry realigns the stack and puts the
// library's floating-point state in place around the walk (host/entry.h).
#define KR_ANTI_ALIAS_ENTRY(Name, walk)                                                                          \
  KR_ENTRY_POINT void Name(uint8_t* dst, uint8_t* src1, uint8_t* src2, int32_t stride, int32_t height,          \
                           int32_t x0, int32_t y0, int32_t x1, int32_t y1, int32_t minCol, int32_t maxRow,      \
                           int32_t maxCol, int32_t minRow, int32_t mode, _color_t* color) {                     \
    krl::Guarded<krl::AntiAlias<krl::EdgeWalk::walk>>(dst, src1, src2, stride, height, x0, y0, x1, y1, minCol, \
                                                      maxRow, maxCol, minRow, mode, color);                     \
  }
KR_ANTI_ALIAS_ENTRY(AntiAlias1, RightUp)
KR_ANTI_ALIAS_ENTRY(AntiAlias2, RightDown)
KR_ANTI_ALIAS_ENTRY(AntiAlias3, LeftUp)
KR_ANTI_ALIAS_ENTRY(AntiAlias4, LeftDown)
#undef KR_ANTI_ALIAS_ENTRY
