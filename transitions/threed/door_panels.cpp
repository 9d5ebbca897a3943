// The render the four Doors members share (see door_panels.h).
//
// Every cell writes its places in a fixed order (cell rows, cell columns,
// then r from the cell's middle down to 0, c likewise, then the four mirror
// images), and a place written twice keeps the later value. Who writes a
// pixel last depends on its column alone for the column-side choices (cell
// column, c, left or right) and on its row alone for the row-side choices
// (cell row, r, upper or lower), because the writes of a cell form the
// product of its columns and its rows and the order is lexicographic in
// them. So the writes are played once along each axis into a table, and the
// pixel loop reads a pixel's door place from the two tables: runs of B are
// copies, runs of pen fills, doors gathers from A.
#include "transitions/threed/door_panels.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

#include "host/host_calls.h"
#include "host/render_prologue.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"

namespace krl {
namespace {

constexpr int32_t kUnwritten = -1;

// Which cell writes a place of one axis last, and as what.
struct AxisPlace {
  int32_t distance = kUnwritten;  // c along, r across; kUnwritten where no cell writes
  bool far = false;               // the mirror image (right or lower), or a door hinged on the cell's last place
  int64_t first = 0, last = 0;    // the cell's first and last place (the last cells may reach past the frame)
};

// How the writes of one axis are placed.
enum class Placing : uint8_t {
  Mirrored,         // d from the half size down to 0: first + d (past the frame: not written), then last - d
  MirroredClamped,  // the same, first + d lowered to the frame's last place as well
  Single,           // d over the whole cell, first + d, lowered to the frame's last place; the hinge far or near
};

// Plays the writes of one axis in their order into places[0 .. length).
// Cells lying wholly past the frame all write the frame's last place with
// the same values, so only the last of them is played.
void PlayAxis(AxisPlace* places, int32_t length, int32_t cellSize, int32_t cells, Placing placing, bool hingeFar) {
  for (int32_t i = 0; i < length; ++i) places[i] = AxisPlace{};
  const int64_t lastPlace = length - 1;
  const int32_t half = (cellSize + 1) >> 1;
  auto write = [&](int64_t at, int32_t distance, bool far, int64_t first, int64_t last) {
    if (at < 0 || at > lastPlace) return;  // a cell one place wide mirrors to -1: not written
    places[at] = {distance, far, first, last};
  };
  auto playCell = [&](int32_t i) {
    const int64_t first = int64_t{i} * cellSize, last = first + cellSize - 1;
    if (placing == Placing::Single) {
      for (int32_t c = cellSize - 1; c >= 0; --c) {
        write(std::min(first + c, lastPlace), hingeFar ? cellSize - 1 - c : c, hingeFar, first, last);
      }
      return;
    }
    for (int32_t d = half; d >= 0; --d) {
      const int64_t near = first + d;
      write(placing == Placing::MirroredClamped ? std::min(near, lastPlace) : near, d, false, first, last);
      write(std::min(last - d, lastPlace), d, true, first, last);
    }
  };
  int32_t i = 0;
  for (; i < cells && int64_t{i} * cellSize < length; ++i) playCell(i);
  if (i < cells) playCell(cells - 1);
}

// The door's turn in one frame, in 32-bit integers that wrap as the
// machine's do; fx12 values carry 12 fraction bits.
struct DoorTurn {
  int32_t w;       // the door's projected length, at least 1
  int32_t slope;   // fx12: how far the slanted edge moves in per place of distance from the hinge
  int32_t ratio;   // fx12: source places per destination place along the door
  int32_t radius;  // anti-aliasing: the box reaches this far either side along the door
  int32_t ph;      // the pen's depth beyond the slanted edges
};

DoorTurn TurnDoors(int32_t p, int32_t length, bool twoDoors, int32_t dAlong, int32_t dAcross, int32_t pw) {
  int32_t t = WrappingMultiply(p, length) / 10000;
  if (t < 1) t = 1;
  const int32_t most = twoDoors ? length - 1 : length - 2;
  if (t > most) t = most;
  DoorTurn turn{};
  turn.w = twoDoors ? length - t : length - t - 1;
  const int32_t depth =
      DoorSquareRoot(WrappingSubtract(WrappingMultiply(length, length), WrappingMultiply(turn.w, turn.w)));
  int32_t bulge = depth >> 2;
  if (dAcross > dAlong) bulge = WrappingMultiply(bulge, TruncatingQuotient(WrappingMultiply(dAlong, 4096), dAcross)) >> 12;
  turn.slope = WrappingMultiply(bulge, 4096) / turn.w;
  turn.ratio = WrappingMultiply(length, 4096) / turn.w;
  turn.radius = WrappingAdd(turn.ratio, 3072) >> 13;
  turn.ph = pw != 0 ? WrappingAdd(WrappingMultiply(WrappingMultiply(pw, turn.slope), 3) >> 14, pw) : 0;
  return turn;
}

// A place along the doors, with what follows from its distance c.
struct AlongPlace {
  int32_t c;             // kUnwritten where no cell writes
  int32_t e;             // the slanted edge lies e places in from the cell's edge across
  int32_t q;             // the edge's quarter-place fraction (0 without anti-aliasing)
  int32_t source;        // the place along the source that the door shows here
  int32_t boxLo, boxHi;  // anti-aliasing: the places beside it that are averaged in (empty when boxLo > boxHi)
  bool door, pen;        // c <= w; the pen beyond the free edge reaches here
};

AlongPlace Along(const AxisPlace& at, const DoorTurn& turn, int32_t length, int32_t cellSize, int32_t pw, bool aa) {
  AlongPlace p{};
  p.c = at.distance;
  if (p.c == kUnwritten) return p;
  const int32_t s = WrappingMultiply(p.c, turn.slope);
  p.e = s >> 12;
  p.q = aa ? (s >> 10) & 3 : 0;
  const int64_t sc = std::clamp(WrappingMultiply(p.c, turn.ratio) >> 12, 0, cellSize - 1);
  // The near door's source of the last cell may lie past the frame: held to its last place.
  const int64_t source = std::min(at.far ? at.last - sc : at.first + sc, int64_t{length} - 1);
  p.source = static_cast<int32_t>(source);
  p.boxLo = static_cast<int32_t>(std::max({source - turn.radius, at.first, int64_t{0}}));
  p.boxHi = static_cast<int32_t>(std::min({source + turn.radius, at.last, int64_t{length} - 1}));
  if (turn.radius <= 0) p.boxHi = p.boxLo - 1;
  p.door = p.c <= turn.w;
  p.pen = pw != 0 && p.c - pw <= turn.w;
  return p;
}

// A place across the doors.
struct AcrossPlace {
  int32_t r;     // kUnwritten where no cell writes
  int32_t rPen;  // r + ph
  bool far;
  int64_t first, last;

  // The source place across for the cell offset sr, held to the frame.
  int32_t Source(int32_t sr, int32_t length) const {
    return static_cast<int32_t>(std::min(far ? last - sr : first + sr, int64_t{length} - 1));
  }
};

// The cell offset across that a door place at distance r shows, where the
// slanted edge lies e in: the door's visible height cellSize - 2e shows the
// whole cell. The vertical members ask for all offsets of one e at a time
// (OfEdge), worked out by steps while no product (r - e) * cellSize wraps,
// and kept for every edge up to highestEdge while they take little memory
// (a few hundred KB: a large block would come fresh from the system every
// frame); else those of one edge at a time.
class SourceOffsets {
 public:
  SourceOffsets(int32_t cellSize, int32_t half, int32_t highestEdge)
      : cellSize_(cellSize), half_(half), exact_(int64_t{half} * cellSize <= INT32_MAX) {
    const int64_t kept = (int64_t{std::clamp(highestEdge, 0, half)} + 1) * (int64_t{half} + 1);
    if (kept <= (int64_t{1} << 16)) {
      rows_ = AllocateScratch<int32_t>(static_cast<size_t>(kept));
      built_ = AllocateScratch<bool>(static_cast<size_t>(std::clamp(highestEdge, 0, half)) + 1);
      if (rows_ && built_) {
        keptEdges_ = std::clamp(highestEdge, 0, half) + 1;
        std::fill_n(built_.get(), static_cast<size_t>(keptEdges_), false);
      }
    }
    if (keptEdges_ == 0) rows_ = AllocateScratch<int32_t>(static_cast<size_t>(half) + 1);
  }

  int32_t At(int32_t r, int32_t e) const {
    const int32_t height = WrappingSubtract(cellSize_, WrappingMultiply(2, e));
    // Where the slanted edges meet (height 0) only r = e is a door place: its quotient 0 / 0 is taken as 0.
    const int32_t sr = TruncatingQuotient(WrappingMultiply(WrappingSubtract(r, e), cellSize_), height);
    return std::clamp(sr, 0, cellSize_ - 1);
  }

  // The offsets of edge e by distance, valid for r = e .. half; null when
  // they cannot be had so.
  const int32_t* OfEdge(int32_t e) {
    if (!exact_ || !rows_ || e < 0 || e > half_) return nullptr;
    int32_t* row = rows_.get();
    if (e < keptEdges_) {
      row += static_cast<size_t>(e) * (static_cast<size_t>(half_) + 1);
      if (built_[static_cast<size_t>(e)]) return row;
      built_[static_cast<size_t>(e)] = true;
    } else {
      if (keptEdges_ > 0) return nullptr;
      if (e == edge_) return row;
      edge_ = e;
    }
    const int32_t height = cellSize_ - 2 * e;
    if (height <= 0) {
      for (int32_t r = e; r <= half_; ++r) row[static_cast<size_t>(r)] = At(r, e);
      return row;
    }
    // Stepping r by 1 adds cellSize / height to the quotient.
    int32_t quotient = 0, remainder = 0;
    const int32_t step = cellSize_ / height, stepRemainder = cellSize_ % height;
    for (int32_t r = e; r <= half_; ++r) {
      row[static_cast<size_t>(r)] = std::min(quotient, cellSize_ - 1);
      quotient += step;
      remainder += stepRemainder;
      if (remainder >= height) {
        ++quotient;
        remainder -= height;
      }
    }
    return row;
  }

 private:
  int32_t cellSize_, half_;
  bool exact_;
  Scratch<int32_t> rows_;  // by edge, then distance; or the one edge edge_
  Scratch<bool> built_;
  int32_t keptEdges_ = 0, edge_ = -1;
};

// Doors and Swinging Door: the source rows of an output row for every edge
// its doors show (lanes, in ascending e), as the index of their first pixel.
// They are kept from one output row to the next, whose r mostly differs by
// one: a step of r adds cellSize / (cellSize - 2e) to the offset
// sr = (r - e) * cellSize / (cellSize - 2e), a quotient and a remainder per
// lane, four lanes at a time. Exact where SourceOffsets::At is: no product
// (r - e) * cellSize wraps, and every pixel index (below twice the frame's)
// fits 32 bits.
class RowSources {
 public:
  RowSources(const int32_t* edges, int32_t count, int32_t cellSize, int32_t half, int32_t width, int32_t height)
      : count_(count), cellSize_(cellSize), width_(width), height_(height) {
    if (int64_t{half} * cellSize > INT32_MAX || 2 * int64_t{width} * height > INT32_MAX) return;
    const size_t padded = (static_cast<size_t>(count) + 3) & ~size_t{3};
    for (Scratch<int32_t>* lane : {&edge_, &remainder_, &offset_, &stepRemainder_, &stepOffset_, &visible_,
                                   &carryAbove_, &starts_}) {
      *lane = AllocateScratch<int32_t>(padded);
      if (!*lane) return;
    }
    for (size_t i = 0; i < padded; ++i) {
      const int32_t e = i < static_cast<size_t>(count) ? edges[i] : half + 1;
      const int32_t visible = cellSize - 2 * e;
      edge_[i] = e;
      remainder_[i] = offset_[i] = 0;
      if (visible > 0) {
        stepRemainder_[i] = cellSize % visible;
        stepOffset_[i] = cellSize / visible * width;
        visible_[i] = visible;
        carryAbove_[i] = visible - 1;
      } else {  // only r = e shows this edge: the offset stays 0
        stepRemainder_[i] = stepOffset_[i] = visible_[i] = 0;
        carryAbove_[i] = INT32_MAX;
      }
    }
    usable_ = true;
  }

  bool usable() const { return usable_; }

  // The lanes' source rows for the output row `row` (r >= 0), valid for the lanes with e <= r.
  const int32_t* Starts(const AcrossPlace& row) {
    const int32_t r = row.r;
    if (r == r_ + 1) {
      Step(true);
      if (valid_ < count_ && edge_[static_cast<size_t>(valid_)] == r) {  // a lane starts: sr(e, e) = 0
        remainder_[static_cast<size_t>(valid_)] = offset_[static_cast<size_t>(valid_)] = 0;
        ++valid_;
      }
    } else if (r == r_ - 1) {
      if (valid_ > 0 && edge_[static_cast<size_t>(valid_) - 1] == r_) --valid_;
      Step(false);
    } else if (r != r_) {
      valid_ = 0;
      while (valid_ < count_ && edge_[static_cast<size_t>(valid_)] <= r) {
        const size_t i = static_cast<size_t>(valid_++);
        if (visible_[i] == 0) {
          remainder_[i] = offset_[i] = 0;
          continue;
        }
        const int64_t product = int64_t{r - edge_[i]} * cellSize_;
        remainder_[i] = static_cast<int32_t>(product % visible_[i]);
        offset_[i] = static_cast<int32_t>(product / visible_[i] * width_);
      }
    }
    r_ = r;
    // The offset held to the cell's last place, then the row to the frame's.
    const __m128i most = _mm_set1_epi32((cellSize_ - 1) * width_);
    const __m128i top = _mm_set1_epi32((height_ - 1) * width_);
    if (row.first >= height_ - 1) {  // a cell at or past the frame's last row: every source is held to it
      for (int32_t i = 0; i < valid_; i += 4) Store(starts_, i, top);
      return starts_.get();
    }
    const bool held = row.last > height_ - 1;
    const __m128i origin = _mm_set1_epi32(static_cast<int32_t>((row.far ? row.last : row.first) * width_));
    for (int32_t i = 0; i < valid_; i += 4) {
      __m128i sr = Load(offset_, i);
      sr = Min(sr, most);
      __m128i start = row.far ? _mm_sub_epi32(origin, sr) : _mm_add_epi32(origin, sr);
      if (held) start = Min(start, top);
      Store(starts_, i, start);
    }
    return starts_.get();
  }

 private:
  static __m128i Load(const Scratch<int32_t>& lane, int32_t i) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(lane.get() + i));
  }
  static void Store(Scratch<int32_t>& lane, int32_t i, __m128i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lane.get() + i), v);
  }
  static __m128i Min(__m128i a, __m128i b) {
    const __m128i above = _mm_cmpgt_epi32(a, b);
    return _mm_or_si128(_mm_andnot_si128(above, a), _mm_and_si128(above, b));
  }

  // One step of r up or down for the valid lanes (the lanes past them in
  // the last four change as well: they start anew when r reaches them).
  void Step(bool up) {
    const __m128i row = _mm_set1_epi32(width_), zero = _mm_setzero_si128();
    for (int32_t i = 0; i < valid_; i += 4) {
      __m128i remainder = Load(remainder_, i), offset = Load(offset_, i);
      const __m128i stepRemainder = Load(stepRemainder_, i), stepOffset = Load(stepOffset_, i);
      const __m128i visible = Load(visible_, i);
      if (up) {
        remainder = _mm_add_epi32(remainder, stepRemainder);
        const __m128i carry = _mm_cmpgt_epi32(remainder, Load(carryAbove_, i));
        remainder = _mm_sub_epi32(remainder, _mm_and_si128(carry, visible));
        offset = _mm_add_epi32(offset, _mm_add_epi32(stepOffset, _mm_and_si128(carry, row)));
      } else {
        remainder = _mm_sub_epi32(remainder, stepRemainder);
        const __m128i borrow = _mm_cmpgt_epi32(zero, remainder);
        remainder = _mm_add_epi32(remainder, _mm_and_si128(borrow, visible));
        offset = _mm_sub_epi32(offset, _mm_add_epi32(stepOffset, _mm_and_si128(borrow, row)));
      }
      Store(remainder_, i, remainder);
      Store(offset_, i, offset);
    }
  }

  int32_t count_, cellSize_, width_, height_;
  bool usable_ = false;
  // Per lane: its edge, the quotient's remainder and the offset times the
  // width at r_, the steps, the visible height and the remainder that carries.
  Scratch<int32_t> edge_, remainder_, offset_, stepRemainder_, stepOffset_, visible_, carryAbove_, starts_;
  int32_t r_ = -2, valid_ = 0;  // no r yet: the first row starts its lanes anew
};

// Each byte (inside * (4 - q) + outside * q) >> 2.
uint32_t MixQuarters(uint32_t inside, uint32_t outside, int32_t q) {
  const uint32_t wi = static_cast<uint32_t>(4 - q), wo = static_cast<uint32_t>(q);
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const uint32_t a = (inside >> shift) & 0xFF, b = (outside >> shift) & 0xFF;
    out |= (((a * wi + b * wo) >> 2) & 0xFF) << shift;
  }
  return out;
}

// n / d for n <= 255 * d by a multiplication: with m = ceil(2^32 / d) the
// quotient is exact while n * d < 2^32, which 255 * d * d is for d < 4104.
class ByteDivider {
 public:
  uint32_t Of(uint32_t n, uint32_t d) {
    if (d >= 4104) return n / d;
    if (d != d_) {
      d_ = d;
      m_ = ((uint64_t{1} << 32) + d - 1) / d;
    }
    return static_cast<uint32_t>((n * m_) >> 32);
  }

 private:
  uint32_t d_ = 0;
  uint64_t m_ = 0;
};

// The source pixel line[centre * stride], averaged along the door with the
// pixels line[k * stride] for k in boxLo .. boxHi: the centre counts twice.
uint32_t BoxAverage(const PixelWord* line, size_t stride, int32_t centre, int32_t boxLo, int32_t boxHi,
                    ByteDivider& divider) {
  const uint32_t middle = line[static_cast<size_t>(centre) * stride];
  if (boxLo > boxHi) return middle;
  const uint32_t count = static_cast<uint32_t>(boxHi - boxLo) + 2;
  if (count <= 257) {  // blue and red, green and alpha side by side: 257 x 255 fits 16 bits
    uint32_t blueRed = middle & 0x00FF00FF, greenAlpha = (middle >> 8) & 0x00FF00FF;
    for (int32_t k = boxLo; k <= boxHi; ++k) {
      const uint32_t px = line[static_cast<size_t>(k) * stride];
      blueRed += px & 0x00FF00FF;
      greenAlpha += (px >> 8) & 0x00FF00FF;
    }
    return divider.Of(blueRed & 0xFFFF, count) | divider.Of(greenAlpha & 0xFFFF, count) << 8 |
           divider.Of(blueRed >> 16, count) << 16 | divider.Of(greenAlpha >> 16, count) << 24;
  }
  uint32_t sum[4] = {middle & 0xFF, (middle >> 8) & 0xFF, (middle >> 16) & 0xFF, middle >> 24};
  for (int32_t k = boxLo; k <= boxHi; ++k) {
    const uint32_t px = line[static_cast<size_t>(k) * stride];
    sum[0] += px & 0xFF;
    sum[1] += (px >> 8) & 0xFF;
    sum[2] += (px >> 16) & 0xFF;
    sum[3] += px >> 24;
  }
  return divider.Of(sum[0], count) | divider.Of(sum[1], count) << 8 | divider.Of(sum[2], count) << 16 |
         divider.Of(sum[3], count) << 24;
}

// Counts the anti-aliasing divides by in 16-bit lanes: every byte sum of up
// to kLaneCounts pixels fits a lane, and so does the reciprocal below.
constexpr int32_t kLaneCounts = 181;

// n / d for n <= 255 * d as ((n * m) >> 16) >> shift, m = ceil(2^(16 + shift) / d):
// the product exceeds n / d by less than n / 2^(16 + shift), below 1 / d
// while n * d < 2^(16 + shift), so the quotient is exact. The shift is the
// least that makes 255 * d * d fit; m then still fits 16 bits for d <= 181.
struct LaneReciprocal {
  uint16_t m = 0, shift = 0;
};

constexpr std::array<LaneReciprocal, kLaneCounts + 1> kLaneReciprocals = [] {
  std::array<LaneReciprocal, kLaneCounts + 1> table{};
  for (uint32_t d = 2; d <= kLaneCounts; ++d) {
    uint32_t shift = 0;
    while (255 * d * d >= (uint32_t{1} << (16 + shift))) ++shift;
    const uint32_t m = ((uint32_t{1} << (16 + shift)) + d - 1) / d;
    if (m <= 0xFFFF) table[d] = {static_cast<uint16_t>(m), static_cast<uint16_t>(shift)};
  }
  return table;
}();
static_assert(std::all_of(kLaneReciprocals.begin() + 2, kLaneReciprocals.end(),
                          [](LaneReciprocal r) { return r.m != 0; }),
              "every count up to kLaneCounts has a reciprocal that fits a lane");

// The four byte sums of a pixel, side by side in the low four 16-bit lanes.
inline __m128i Widened(uint32_t px) {
  return _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(px)), _mm_setzero_si128());
}

// Divides 16-bit lanes of byte sums by one count d (2 <= d <= kLaneCounts).
class LaneDivider {
 public:
  LaneDivider() = default;
  explicit LaneDivider(int32_t d)
      : m_(_mm_set1_epi16(static_cast<int16_t>(kLaneReciprocals[static_cast<size_t>(d)].m))),
        shift_(_mm_cvtsi32_si128(kLaneReciprocals[static_cast<size_t>(d)].shift)) {}
  __m128i Of(__m128i sums) const { return _mm_srl_epi16(_mm_mulhi_epu16(sums, m_), shift_); }

 private:
  __m128i m_ = _mm_setzero_si128(), shift_ = _mm_setzero_si128();
};

// The pixel of the quotients in the low four lanes.
inline uint32_t PackedPixel(__m128i quotients) {
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(quotients, quotients)));
}

// BoxAverage along a row for a box of n pixels from `box` (0 < n < kLaneCounts):
// the sums in 16-bit lanes, four pixels a load where the box has them.
inline uint32_t BoxMean(const PixelWord* box, int32_t n, uint32_t middle, const LaneDivider& divider) {
  const __m128i zero = _mm_setzero_si128();
  __m128i pairs = zero;  // two pixels' sums side by side
  int32_t k = 0;
  for (; k + 4 <= n; k += 4) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(box + k));
    pairs = _mm_add_epi16(pairs, _mm_add_epi16(_mm_unpacklo_epi8(v, zero), _mm_unpackhi_epi8(v, zero)));
  }
  if (k + 2 <= n) {
    pairs = _mm_add_epi16(pairs, _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(box + k)), zero));
    k += 2;
  }
  __m128i sums = _mm_add_epi16(Widened(middle), _mm_add_epi16(pairs, _mm_srli_si128(pairs, 8)));
  if (k < n) sums = _mm_add_epi16(sums, Widened(box[k]));
  return PackedPixel(divider.Of(sums));
}

// The box sums of BoxMean for a box of N = 3, 5 or 7 pixels, unrolled and
// left in two halves: the sums are the low four lanes and the high four added.
template <int32_t N>
inline __m128i BoxHalves(const PixelWord* box, uint32_t middle) {
  static_assert(N == 3 || N == 5 || N == 7);
  const __m128i zero = _mm_setzero_si128();
  // The last pixel and the middle side by side, then the rest two or four at a time.
  const __m128i ends = _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(box[N - 1])),
                                          _mm_cvtsi32_si128(static_cast<int>(middle)));
  __m128i pairs = _mm_unpacklo_epi8(ends, zero);
  if constexpr (N == 3) {
    pairs = _mm_add_epi16(pairs, _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(box)), zero));
  } else {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(box));
    pairs = _mm_add_epi16(pairs, _mm_add_epi16(_mm_unpacklo_epi8(v, zero), _mm_unpackhi_epi8(v, zero)));
    if constexpr (N == 7) {
      pairs = _mm_add_epi16(pairs, _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(box + 4)), zero));
    }
  }
  return pairs;
}

// BoxAverage down the columns c0 .. c1 at once, into to[c0 .. c1]: the pixel
// of the row `middle` twice with those of the n rows from `first`
// (0 < n < kLaneCounts), rows `stride` pixels apart; read row by row, the
// even bytes of four pixels summed in one register and the odd in another.
void AverageRows(PixelWord* to, const PixelWord* middle, const PixelWord* first, size_t stride, int32_t n, int32_t c0,
                 int32_t c1, const LaneDivider& divider) {
  const __m128i evenBytes = _mm_set1_epi16(0x00FF);
  int32_t c = c0;
  for (; c + 3 <= c1; c += 4) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(middle + c));
    __m128i even = _mm_and_si128(v, evenBytes), odd = _mm_srli_epi16(v, 8);
    size_t at = static_cast<size_t>(c);
    for (int32_t k = 0; k < n; ++k, at += stride) {
      const __m128i u = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first + at));
      even = _mm_add_epi16(even, _mm_and_si128(u, evenBytes));
      odd = _mm_add_epi16(odd, _mm_srli_epi16(u, 8));
    }
    // Each quotient fits its lane's low byte.
    const __m128i quotients = _mm_or_si128(divider.Of(even), _mm_slli_epi16(divider.Of(odd), 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + c), quotients);
  }
  for (; c <= c1; ++c) {
    __m128i sums = Widened(middle[c]);
    size_t at = static_cast<size_t>(c);
    for (int32_t k = 0; k < n; ++k, at += stride) sums = _mm_add_epi16(sums, Widened(first[at]));
    to[c] = PackedPixel(divider.Of(sums));
  }
}

// Places [begin, end) of an output row in which a door place's distance
// steps by one and the tests below are monotone, so that from the end where
// the doors are (goodAtBegin or not) they show door, then pen, then B.
struct Segment {
  int32_t begin, end;
  bool written;
  bool goodAtBegin;
};

// Splits [0, length) into segments: key(x) the distance, aux(x) a value that
// must not move against it (the edge e along, r + ph across); the doors lie
// at the small keys when smallKeyFirst.
template <typename Written, typename Key, typename Aux>
int32_t Segments(Segment* out, int32_t length, bool smallKeyFirst, Written written, Key key, Aux aux) {
  int32_t count = 0;
  for (int32_t x = 0; x < length;) {
    const int32_t start = x++;
    if (!written(start)) {
      while (x < length && !written(x)) ++x;
      out[count++] = {start, x, false, true};
      continue;
    }
    int64_t step = 0;
    for (; x < length && written(x); ++x) {
      const int64_t dk = int64_t{key(x)} - key(x - 1), da = int64_t{aux(x)} - aux(x - 1);
      if ((dk != 1 && dk != -1) || (step != 0 && dk != step) || (da != 0 && (da > 0) != (dk > 0))) break;
      step = dk;
    }
    out[count++] = {start, x, true, (step >= 0) == smallKeyFirst};
  }
  return count;
}

// How many places from the segment's door end pass the test (which holds
// for a first stretch of them only).
template <typename Test>
int32_t CountFromDoorEnd(const Segment& s, Test test) {
  int32_t lo = 0, hi = s.end - s.begin;
  while (lo < hi) {
    const int32_t mid = (lo + hi + 1) / 2;
    if (test(s.goodAtBegin ? s.begin + mid - 1 : s.end - mid)) {
      lo = mid;
    } else {
      hi = mid - 1;
    }
  }
  return lo;
}

struct Stretches {
  int32_t doorBegin, doorEnd, penBegin, penEnd, revealedBegin, revealedEnd;
};

Stretches Split(const Segment& s, int32_t doors, int32_t covered) {
  if (s.goodAtBegin) {
    return {s.begin, s.begin + doors, s.begin + doors, s.begin + covered, s.begin + covered, s.end};
  }
  return {s.end - doors, s.end, s.end - covered, s.end - doors, s.begin, s.end - covered};
}

// A door place along as the gathers read it: the source row of its edge e
// and its source place along; with anti-aliasing its box instead, n places
// from lo (n = 0: none) and the source place `middle` places on from lo.
struct DoorColumn {
  int32_t lane, source;  // the lane of RowSources that holds e
};

struct DoorBox {
  int32_t lane, lo, n, middle;
};

// Places along that read one lane, up to `end`.
struct LaneRun {
  int32_t end, lane;
};

// A place across as the vertical members' column fill reads it: the source
// column for a cell offset sr is (width - 1) - max(k -+ sr, 0), sr negated
// (flip = -1) on the near side: there min(first + sr, width - 1), on the far
// side min(last - sr, width - 1).
struct AcrossColumn {
  int32_t r, k, flip;
};

// The source columns a door stretch shows, from its first place on.
struct ColumnRange {
  int32_t lo, hi;
};

struct DoorScene {
  FrameRows rows;  // inputA: the doors' picture D, inputB: the revealed R
  bool aa = false;
  uint32_t pen = 0;
  int32_t pw = 0;
  const AlongPlace* along = nullptr;
  const AcrossPlace* across = nullptr;
  SourceOffsets* offsets = nullptr;
  Segment* segments = nullptr;
  const LaneDivider* dividers = nullptr;  // anti-aliasing: by count, up to kLaneCounts

  // Doors, Swinging Door.
  RowSources* rowSources = nullptr;        // null where each source is worked out in full
  const DoorColumn* doorColumns = nullptr;  // along[x]'s lane and source, packed for the gathers
  const int32_t* sources = nullptr;         // along[x].source
  const LaneRun* runs = nullptr;            // the places along in runs of one lane
  const int32_t* runOf = nullptr;           // the run of each place along
  bool byRuns = false;                      // the door places' runs are long enough to gather run by run
  const DoorBox* boxes = nullptr;           // anti-aliasing: along[x]'s box
  bool boxed = false;                       // anti-aliasing: some door place averages a box
  int32_t commonBox = 0;                    // anti-aliasing: the box size of places no cell edge clips
  const int32_t* unclippedUntil = nullptr;  // anti-aliasing: where such boxes stop from a place on (itself: none)

  // Vertical Doors, Vertical Swinging Door.
  int32_t* columnSources = nullptr;          // the source column of each door place for the edge `columnsEdge`
  int32_t columnsEdge = INT32_MIN;
  const AcrossColumn* acrossColumns = nullptr;  // across[x] for the fill (null: each column worked out in full)
  ColumnRange* ranges = nullptr;                // by the first place of each door stretch
  PixelWord* averaged = nullptr;                // anti-aliasing: the row's box averages by source column
};

// The outside a door's cut edge is mixed with: the pen, or B where it is drawn.
uint32_t Outside(const DoorScene& s, uint32_t revealed) { return s.pw != 0 ? s.pen : revealed; }

// One output row's segments: B copied, the pen filled (where the pen's own
// edge is cut, penQuarter(x) gives the quarter of B it mixes in), and each
// door stretch handed to paintDoors.
template <typename IsDoor, typename IsCovered, typename PenQuarter, typename PaintDoors>
void PaintSegments(const DoorScene& s, int32_t y, int32_t segmentCount, IsDoor isDoor, IsCovered isCovered,
                   PenQuarter penQuarter, PaintDoors paintDoors) {
  PixelWord* out = s.rows.Out(y);
  const PixelWord* revealed = s.rows.B(y);
  for (int32_t i = 0; i < segmentCount; ++i) {
    const Segment& seg = s.segments[i];
    if (!seg.written) continue;
    const Stretches st = Split(seg, CountFromDoorEnd(seg, isDoor), CountFromDoorEnd(seg, isCovered));
    CopyRun(out + st.revealedBegin, revealed + st.revealedBegin, st.revealedEnd - st.revealedBegin);
    if (!s.aa) {
      FillRun(out + st.penBegin, s.pen, st.penEnd - st.penBegin);
    } else {
      // A quarter of 0 leaves the pen as it is.
      for (int32_t x = st.penBegin; x < st.penEnd; ++x) {
        const int32_t q = penQuarter(x);
        out[x] = q == 0 ? s.pen : MixQuarters(s.pen, revealed[x], q);
      }
    }
    // An empty stretch has nothing to gather; at the row's end its begin
    // lies past the per-place tables.
    if (st.doorBegin < st.doorEnd) paintDoors(st.doorBegin, st.doorEnd);
  }
}

// The BoxAverage of a door place's box of any size in the source row `line`.
inline uint32_t AnyBox(const PixelWord* line, const DoorBox& box, const LaneDivider* dividers, ByteDivider& divider) {
  const PixelWord* at = line + box.lo;
  if (box.n == 0) return at[box.middle];
  if (box.n < kLaneCounts) return BoxMean(at, box.n, at[box.middle], dividers[box.n + 1]);
  return BoxAverage(line, 1, box.lo + box.middle, box.lo, box.lo + box.n - 1, divider);
}

// The anti-aliased doors [begin, end) of a row: each pixel the BoxAverage of
// its box in the source row of its edge. Runs of boxes of the unclipped size
// N (3, 5 or 7; 0: none of these), up to unclippedUntil[x], take the
// unrolled sums two pixels at a time.
template <int32_t N>
void GatherBoxes(PixelWord* to, int32_t begin, int32_t end, const DoorBox* boxes, const int32_t* unclippedUntil,
                 const PixelWord* from, const int32_t* starts, const LaneDivider* dividers, uintptr_t ahead,
                 ByteDivider& divider) {
  auto prefetch = [ahead](const PixelWord* at) {
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(at) + ahead));
  };
  int32_t x = begin;
  if constexpr (N != 0) {
    const LaneDivider common = dividers[N + 1];
    while (x < end) {
      const int32_t stop = std::min(unclippedUntil[x], end);
      if (stop <= x) {
        const PixelWord* line = from + starts[boxes[x].lane];
        prefetch(line + boxes[x].lo);
        to[x] = AnyBox(line, boxes[x], dividers, divider);
        ++x;
        continue;
      }
      for (; x + 1 < stop; x += 2) {
        const DoorBox b0 = boxes[x], b1 = boxes[x + 1];
        const PixelWord* at0 = from + (starts[b0.lane] + b0.lo);
        const PixelWord* at1 = from + (starts[b1.lane] + b1.lo);
        prefetch(at0);
        const __m128i h0 = BoxHalves<N>(at0, at0[b0.middle]), h1 = BoxHalves<N>(at1, at1[b1.middle]);
        const __m128i q = common.Of(_mm_add_epi16(_mm_unpacklo_epi64(h0, h1), _mm_unpackhi_epi64(h0, h1)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + x), _mm_packus_epi16(q, q));
      }
      if (x < stop) {
        const PixelWord* at = from + (starts[boxes[x].lane] + boxes[x].lo);
        const __m128i h = BoxHalves<N>(at, at[boxes[x].middle]);
        to[x] = PackedPixel(common.Of(_mm_add_epi16(h, _mm_srli_si128(h, 8))));
        ++x;
      }
    }
  }
  for (; x < end; ++x) {
    const PixelWord* line = from + starts[boxes[x].lane];
    prefetch(line + boxes[x].lo);
    to[x] = AnyBox(line, boxes[x], dividers, divider);
  }
}

// Doors, Swinging Door: an output row is one place across; along runs with
// x. A door place reads the source row of its edge e: the row's source rows
// for every e up to r are worked out first (RowSources), so the door's
// pixels are a gather by two tables.
void PaintRowAlongX(const DoorScene& s, int32_t y, int32_t segmentCount, ByteDivider& divider) {
  const AcrossPlace& row = s.across[y];
  if (row.r == kUnwritten) return;
  PixelWord* out = s.rows.Out(y);
  const PixelWord* revealed = s.rows.B(y);
  const AlongPlace* along = s.along;
  auto isDoor = [&](int32_t x) { return along[x].door && row.r >= along[x].e; };
  auto isCovered = [&](int32_t x) { return isDoor(x) || (along[x].pen && row.rPen >= along[x].e); };
  const int32_t* starts = s.rowSources != nullptr ? s.rowSources->Starts(row) : nullptr;
  const PixelWord* from = s.rows.inputA;
  auto penQuarter = [&](int32_t x) { return row.rPen == along[x].e ? along[x].q : 0; };
  PaintSegments(s, y, segmentCount, isDoor, isCovered, penQuarter, [&](int32_t doorBegin, int32_t doorEnd) {
    // Sources worked out in full: huge frames, or an edge below 0 where 32-bit products wrapped.
    if (starts == nullptr) {
      for (int32_t x = doorBegin; x < doorEnd; ++x) {
        const AlongPlace& p = along[x];
        const PixelWord* source = s.rows.A(row.Source(s.offsets->At(row.r, p.e), s.rows.height));
        uint32_t v = s.aa ? BoxAverage(source, 1, p.source, p.boxLo, p.boxHi, divider) : source[p.source];
        if (s.aa && row.r == p.e && p.q != 0) v = MixQuarters(v, Outside(s, revealed[x]), p.q);
        out[x] = v;
      }
      return;
    }
    // The reads jump between as many source rows as the row has edges, too many
    // streams for the processor to foresee; the rows two further on are asked for ahead.
    const uintptr_t ahead = 8 * static_cast<uintptr_t>(s.rows.width);
    if ((!s.aa || !s.boxed) && !s.byRuns) {
      // Locals: a pixel store may alias anything that lives in memory.
      const PixelWord* const source = from;
      const int32_t* const rows = starts;
      const DoorColumn* column = s.doorColumns + doorBegin;
      for (PixelWord *to = out + doorBegin, *end = out + doorEnd; to != end; ++to, ++column) {
        const PixelWord* at = source + (rows[column->lane] + column->source);
        __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(at) + ahead));
        *to = *at;
      }
      if (!s.aa) return;
    } else if (!s.aa || !s.boxed) {
      // Run by run of one source row: the first and the last pixel asked for ahead.
      PixelWord* const to = out;
      const int32_t* const sources = s.sources;
      const LaneRun* run = s.runs + s.runOf[doorBegin];
      for (int32_t x = doorBegin; x < doorEnd; ++run) {
        const int32_t stop = std::min(run->end, doorEnd);
        const PixelWord* line = from + starts[run->lane];
        for (const int32_t at : {sources[x], sources[stop - 1]}) {
          __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(line + at) + ahead));
        }
        for (; x < stop; ++x) to[x] = line[sources[x]];
      }
      if (!s.aa) return;
    } else {
      auto gather = [&](auto unrolled) {
        GatherBoxes<decltype(unrolled)::value>(out, doorBegin, doorEnd, s.boxes, s.unclippedUntil, from, starts,
                                               s.dividers, ahead, divider);
      };
      switch (s.commonBox) {
        case 3: gather(std::integral_constant<int32_t, 3>()); break;
        case 5: gather(std::integral_constant<int32_t, 5>()); break;
        case 7: gather(std::integral_constant<int32_t, 7>()); break;
        default: gather(std::integral_constant<int32_t, 0>()); break;
      }
    }
    // The cut edge (r = e): e does not fall from a segment's door end on, and
    // no door place has e > r, so the places on the edge close the stretch.
    auto onEdge = [&](int32_t x) { return along[x].e == row.r; };
    auto cut = [&](int32_t x) {
      if (along[x].q != 0) out[x] = MixQuarters(out[x], Outside(s, revealed[x]), along[x].q);
    };
    int32_t x = doorEnd - 1;
    for (; x >= doorBegin && onEdge(x); --x) cut(x);
    for (int32_t z = doorBegin; z <= x && onEdge(z); ++z) cut(z);
  });
}

// The source columns of the door places [begin, end) for the offsets of one
// edge by distance, and (kRange) the columns they span.
template <bool kRange>
ColumnRange FillColumns(int32_t* columnSources, const AcrossColumn* acrossColumns, const int32_t* offsets,
                        int32_t begin, int32_t end, int32_t lastColumn) {
  int32_t lo = INT32_MAX, hi = INT32_MIN;
  for (int32_t x = begin; x < end; ++x) {
    const AcrossColumn a = acrossColumns[x];
    const int32_t sr = offsets[a.r];
    const int32_t sx = lastColumn - std::max(((sr ^ a.flip) - a.flip) + a.k, 0);
    columnSources[x] = sx;
    if constexpr (kRange) {
      lo = std::min(lo, sx);
      hi = std::max(hi, sx);
    }
  }
  return {lo, hi};
}

// Vertical Doors, Vertical Swinging Door: an output row is one place along.
// The source column of a door place depends on the row's edge e only, and
// neighbouring rows mostly share it: the columns are worked out when e
// changes (columnSources), and the doors are a gather from one source row,
// with anti-aliasing from the row's box averages, taken down the source
// columns the doors show, row by row.
void PaintRowAcrossX(DoorScene& s, int32_t y, int32_t segmentCount, ByteDivider& divider) {
  const AlongPlace& row = s.along[y];
  if (row.c == kUnwritten) return;
  PixelWord* out = s.rows.Out(y);
  const PixelWord* revealed = s.rows.B(y);
  const AcrossPlace* across = s.across;
  auto isDoor = [&](int32_t x) { return row.door && across[x].r >= row.e; };
  auto isCovered = [&](int32_t x) { return isDoor(x) || (row.pen && across[x].rPen >= row.e); };
  const PixelWord* source = s.rows.A(row.source);
  const bool fill = row.door && s.columnsEdge != row.e;
  if (row.door) s.columnsEdge = row.e;
  const size_t stride = static_cast<size_t>(s.rows.width);
  const int32_t boxCount = row.boxLo <= row.boxHi ? row.boxHi - row.boxLo + 1 : 0;
  auto penQuarter = [&](int32_t x) { return across[x].rPen == row.e ? row.q : 0; };
  PaintSegments(s, y, segmentCount, isDoor, isCovered, penQuarter, [&](int32_t doorBegin, int32_t doorEnd) {
    // The door places of a row are those with r >= e: rows of one e share them.
    int32_t* columnSources = s.columnSources;
    if (fill && doorBegin < doorEnd) {
      const int32_t* offsets = s.offsets->OfEdge(row.e);
      if (offsets != nullptr && s.acrossColumns != nullptr) {
        s.ranges[doorBegin] = s.aa ? FillColumns<true>(columnSources, s.acrossColumns, offsets, doorBegin, doorEnd,
                                                       s.rows.width - 1)
                                   : FillColumns<false>(columnSources, s.acrossColumns, offsets, doorBegin, doorEnd,
                                                        s.rows.width - 1);
      } else {
        int32_t lo = INT32_MAX, hi = INT32_MIN;
        for (int32_t x = doorBegin; x < doorEnd; ++x) {
          const int32_t sx = across[x].Source(s.offsets->At(across[x].r, row.e), s.rows.width);
          columnSources[x] = sx;
          lo = std::min(lo, sx);
          hi = std::max(hi, sx);
        }
        s.ranges[doorBegin] = {lo, hi};
      }
    }
    if (s.aa && boxCount >= kLaneCounts) {
      for (int32_t x = doorBegin; x < doorEnd; ++x) {
        out[x] = BoxAverage(s.rows.inputA + columnSources[x], stride, row.source, row.boxLo, row.boxHi, divider);
      }
    } else {
      const PixelWord* from = source;
      if (s.aa && boxCount > 0 && doorBegin < doorEnd) {
        const ColumnRange range = s.ranges[doorBegin];
        AverageRows(s.averaged, source, s.rows.A(row.boxLo), stride, boxCount, range.lo, range.hi,
                    s.dividers[boxCount + 1]);
        from = s.averaged;
      }
      PixelWord* const to = out;  // a local: a pixel store may alias anything that lives in memory
      for (int32_t x = doorBegin; x < doorEnd; ++x) to[x] = from[columnSources[x]];
    }
    if (s.aa && row.q != 0 && doorBegin < doorEnd) {
      // Within a segment r steps by one, so only an end of the doors can lie on the edge (r = e).
      auto cut = [&](int32_t x) {
        if (across[x].r == row.e) out[x] = MixQuarters(out[x], Outside(s, revealed[x]), row.q);
      };
      cut(doorBegin);
      if (doorEnd - 1 != doorBegin) cut(doorEnd - 1);
    }
  });
}

// Doors, Swinging Door: the per-place tables the rows' gathers read.
struct AlongTables {
  Scratch<DoorColumn> columns;
  Scratch<int32_t> sources;
  Scratch<LaneRun> runs;
  Scratch<int32_t> runOf;
  bool byRuns = false;
  Scratch<DoorBox> boxes;  // anti-aliasing
  int32_t commonBox = 0;
  Scratch<int32_t> unclippedUntil;
  bool complete = false;  // every table could be had

  static AlongTables Of(const AlongPlace* along, int32_t length, const int32_t* laneOf, int32_t halfAcross, bool aa,
                        int32_t commonBox) {
    AlongTables t;
    const size_t places = static_cast<size_t>(length), boxed = aa ? places : 1;
    t.columns = AllocateScratch<DoorColumn>(places);
    t.sources = AllocateScratch<int32_t>(places);
    t.runs = AllocateScratch<LaneRun>(places);
    t.runOf = AllocateScratch<int32_t>(places);
    t.boxes = AllocateScratch<DoorBox>(boxed);
    t.unclippedUntil = AllocateScratch<int32_t>(boxed);
    if (!t.columns || !t.sources || !t.runs || !t.runOf || !t.boxes || !t.unclippedUntil) return t;
    t.commonBox = commonBox;
    int32_t runCount = 0, doorPlaces = 0, doorRuns = 0;
    for (int32_t i = 0; i < length; ++i) {
      const AlongPlace& a = along[i];
      // Places that never show a door keep lane 0, unread.
      const int32_t lane = a.e >= 0 && a.e <= halfAcross ? std::max(laneOf[static_cast<size_t>(a.e)], 0) : 0;
      t.columns[i] = {lane, a.source};
      t.sources[i] = a.source;
      const bool door = a.c != kUnwritten && a.door;
      if (i == 0 || lane != t.columns[i - 1].lane) {
        t.runs[runCount++] = {i, lane};
        doorRuns += door;
      }
      t.runs[runCount - 1].end = i + 1;
      t.runOf[i] = runCount - 1;
      doorPlaces += door;
      if (!aa) continue;
      const int32_t n = a.boxLo <= a.boxHi ? a.boxHi - a.boxLo + 1 : 0;
      t.boxes[i] = n > 0 ? DoorBox{lane, a.boxLo, n, a.source - a.boxLo} : DoorBox{lane, a.source, 0, 0};
    }
    t.byRuns = doorPlaces >= 4 * int64_t{doorRuns};
    for (int32_t i = length - 1; aa && i >= 0; --i) {
      const bool unclipped = t.boxes[i].n == commonBox, next = i + 1 < length && t.boxes[i + 1].n == commonBox;
      t.unclippedUntil[i] = !unclipped ? i : next ? t.unclippedUntil[i + 1] : i + 1;
    }
    t.complete = true;
    return t;
  }

  void Into(DoorScene& s) const {
    s.doorColumns = columns.get();
    s.sources = sources.get();
    s.runs = runs.get();
    s.runOf = runOf.get();
    s.byRuns = byRuns;
    s.boxes = boxes.get();
    s.commonBox = commonBox;
    s.unclippedUntil = unclippedUntil.get();
  }
};

}  // namespace

int32_t RenderDoorPanels(t_KrRenderInfo* ri, const DoorPanelFields& fields, DoorAxis axis, DoorCount count) {
  if (!BeginRender(ri, fields.clip.transType)) return 0;
  const HostCalls host(ri);
  const int32_t dx = host.Field(fields.divideX);
  const int32_t dy = host.Field(fields.divideY);
  const uint32_t pen = host.PenColor(fields.color);
  const int32_t borderWidth = host.Field(fields.borderWidth);
  const bool closing = host.Field(fields.closing) != 0;
  const bool hingeFar = count == DoorCount::One && host.Field(fields.hinge) == 0;
  const bool aa = host.Field(fields.antiAlias) != 0;

  int32_t p = TruncToInt32(10000.0L * static_cast<long double>(ri->Progress));
  if (closing) {
    p = WrappingSubtract(10000, p);
    std::swap(ri->InputA, ri->InputB);  // the doors carry the other clip and close over the first
  }
  const int32_t width = ri->Width, height = ri->Height;
  if (width <= 0 || height <= 0) return 1;
  if (dx < 1 || dy < 1) return 1;  // a division below 1 would divide the frame by zero: nothing is drawn
  const int32_t cw = WrappingAdd(WrappingMultiply(width, 16) / dx, 15) >> 4;
  const int32_t ch = WrappingAdd(WrappingMultiply(height, 16) / dy, 15) >> 4;
  if (cw < 1 || ch < 1) return 1;  // a division beyond 16 x the frame (or a side past 2^27): cells of no place

  // A negative thickness draws no pen; one beyond 2^20 draws as 2^20, wider than any cell that fits in memory.
  const int32_t pw = std::clamp(borderWidth, 0, 1 << 20);
  const bool columns = axis == DoorAxis::Columns;
  const bool twoDoors = count == DoorCount::Two;
  const int32_t lengthAlong = columns ? width : height, lengthAcross = columns ? height : width;
  const int32_t cellAlong = columns ? cw : ch, cellAcross = columns ? ch : cw;
  const int32_t cellsAlong = columns ? dx : dy, cellsAcross = columns ? dy : dx;
  const int32_t halfAlong = (cellAlong + 1) >> 1, halfAcross = (cellAcross + 1) >> 1;
  const DoorTurn turn = TurnDoors(p, twoDoors ? halfAlong : cellAlong, twoDoors, cellsAlong, cellsAcross, pw);

  // Allocation fails only for frames too large to draw: they are left as they are.
  Scratch<AxisPlace> alongWrites = AllocateScratch<AxisPlace>(static_cast<size_t>(lengthAlong));
  Scratch<AxisPlace> acrossWrites = AllocateScratch<AxisPlace>(static_cast<size_t>(lengthAcross));
  Scratch<AlongPlace> along = AllocateScratch<AlongPlace>(static_cast<size_t>(lengthAlong));
  Scratch<AcrossPlace> across = AllocateScratch<AcrossPlace>(static_cast<size_t>(lengthAcross));
  Scratch<Segment> segments = AllocateScratch<Segment>(static_cast<size_t>(width));
  if (!alongWrites || !acrossWrites || !along || !across || !segments) return 1;

  PlayAxis(alongWrites.get(), lengthAlong, cellAlong, cellsAlong, twoDoors ? Placing::Mirrored : Placing::Single,
           hingeFar);
  PlayAxis(acrossWrites.get(), lengthAcross, cellAcross, cellsAcross,
           twoDoors ? Placing::Mirrored : Placing::MirroredClamped, false);
  // The edges the doors show: a door place's r lies between e and the half cell.
  Scratch<int32_t> laneOf = AllocateScratch<int32_t>(static_cast<size_t>(halfAcross) + 1);
  Scratch<int32_t> edges = AllocateScratch<int32_t>(static_cast<size_t>(halfAcross) + 1);
  if (!laneOf || !edges) return 1;
  std::fill_n(laneOf.get(), static_cast<size_t>(halfAcross) + 1, -1);
  int32_t lowestEdge = 0, mostInBox = 0;
  for (int32_t i = 0; i < lengthAlong; ++i) {
    const AlongPlace& a = along[i] = Along(alongWrites[i], turn, lengthAlong, cellAlong, pw, aa);
    if (a.c == kUnwritten || !a.door) continue;
    lowestEdge = std::min(lowestEdge, a.e);
    if (a.e >= 0 && a.e <= halfAcross) laneOf[static_cast<size_t>(a.e)] = 0;
    if (aa && a.boxLo <= a.boxHi) mostInBox = std::max(mostInBox, a.boxHi - a.boxLo + 1);
  }
  int32_t lanes = 0;
  for (int32_t e = 0; e <= halfAcross; ++e) {
    if (laneOf[static_cast<size_t>(e)] < 0) continue;
    laneOf[static_cast<size_t>(e)] = lanes;
    edges[static_cast<size_t>(lanes++)] = e;
  }
  for (int32_t i = 0; i < lengthAcross; ++i) {
    const AxisPlace& a = acrossWrites[i];
    across[i] = {a.distance, WrappingAdd(a.distance, turn.ph), a.far, a.first, a.last};
  }
  SourceOffsets offsets(cellAcross, halfAcross, lanes > 0 ? edges[static_cast<size_t>(lanes) - 1] : 0);
  LaneDivider dividers[kLaneCounts + 1];
  for (int32_t d = 2; d <= std::min(mostInBox + 1, kLaneCounts); ++d) dividers[d] = LaneDivider(d);

  DoorScene scene;
  scene.rows = FrameRows::Of(ri);
  scene.aa = aa;
  scene.pen = pen;
  scene.pw = pw;
  scene.along = along.get();
  scene.across = across.get();
  scene.offsets = &offsets;
  scene.segments = segments.get();
  scene.dividers = dividers;
  ByteDivider divider;
  if (columns) {
    RowSources rowSources(edges.get(), lanes, cellAcross, halfAcross, width, height);
    const AlongTables tables = AlongTables::Of(along.get(), lengthAlong, laneOf.get(), halfAcross, aa,
                                               std::clamp(2 * turn.radius + 1, 1, kLaneCounts - 1));
    if (!tables.complete) return 1;
    tables.Into(scene);
    scene.rowSources = lowestEdge >= 0 && rowSources.usable() ? &rowSources : nullptr;
    scene.boxed = mostInBox > 0;
    const int32_t n = Segments(
        segments.get(), width, true, [&](int32_t x) { return along[x].c != kUnwritten; },
        [&](int32_t x) { return along[x].c; }, [&](int32_t x) { return along[x].e; });
    for (int32_t y = 0; y < height; ++y) PaintRowAlongX(scene, y, n, divider);
    return 1;
  }
  Scratch<int32_t> columnSources = AllocateScratch<int32_t>(static_cast<size_t>(width));
  Scratch<uint32_t> averaged = AllocateScratch<uint32_t>(aa ? static_cast<size_t>(width) : 1);
  Scratch<ColumnRange> ranges = AllocateScratch<ColumnRange>(static_cast<size_t>(width));
  // Below 2^30 columns every value of the lean fill fits 32 bits.
  const bool leanFill = width < (1 << 30);
  Scratch<AcrossColumn> acrossColumns = AllocateScratch<AcrossColumn>(leanFill ? static_cast<size_t>(width) : 1);
  if (!columnSources || !averaged || !ranges || !acrossColumns) return 1;
  for (int32_t i = 0; leanFill && i < width; ++i) {
    const AcrossPlace& a = across[i];
    const int64_t k = int64_t{width} - 1 - (a.far ? a.last : a.first);  // at most width - 1; held above -2^30
    acrossColumns[i] = {a.r, static_cast<int32_t>(std::max<int64_t>(k, -(int64_t{1} << 30))), a.far ? 0 : -1};
  }
  scene.columnSources = columnSources.get();
  scene.acrossColumns = leanFill ? acrossColumns.get() : nullptr;
  scene.ranges = ranges.get();
  scene.averaged = averaged.get();
  const int32_t n = Segments(
      segments.get(), width, false, [&](int32_t x) { return across[x].r != kUnwritten; },
      [&](int32_t x) { return across[x].r; }, [&](int32_t x) { return across[x].rPen; });
  for (int32_t y = 0; y < height; ++y) PaintRowAcrossX(scene, y, n, divider);
  return 1;
}

}  // namespace krl
