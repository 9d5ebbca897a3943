// The k x k mean of the output around a pixel, coordinates held to the frame,
// taken in place along a row: bytes 0 to 2 summed and divided by k * k with
// truncation, byte 3 opaque. Column sums over the k rows are gathered once per
// row and kept up to date as that row's pixels are replaced, and a window of k
// column sums slides along the row, so a mean costs two column sums and a
// division; the results are those of summing all k * k pixels.
//
// A column sum holds the four bytes of a pixel in four 16-bit lanes (SSE2);
// byte 3's lane is carried along and never read. 13 x 13 x 255 fits 16 bits,
// so the lanes wrap modulo 2^16 on the way but every true sum fits.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

#include "host/declare.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"

namespace krl {

// The items of a "Gauss Filter" selector, and the box side each gives: 5, 9
// or 13, and 0 (no blur) for "None" and any unknown value.
inline constexpr SelectorItem kGaussFilterItems[] = {{"None", 0}, {"Small", 1}, {"Medium", 2}, {"Large", 3}};

inline int32_t GaussFilterBox(int32_t smoothing) {
  switch (smoothing) {
    case 1: return 5;
    case 2: return 9;
    case 3: return 13;
    default: return 0;
  }
}

// n / d with truncation for every n <= 255 d as (n * multiplier) >> 16 >>
// shift, multiplier below 2^16: what one 16-bit high multiply of a lane and a
// shift give. The largest shift that keeps the multiplier in 16 bits.
struct LaneDivision {
  uint16_t multiplier;
  int32_t shift;
};

constexpr LaneDivision LaneDivisionBy(uint32_t d) {
  int32_t shift = 0;
  while ((((uint64_t{1} << (17 + shift)) + d - 1) / d) < 0x10000) ++shift;
  return {static_cast<uint16_t>(((uint64_t{1} << (16 + shift)) + d - 1) / d), shift};
}

// Checked for every numerator a lane can hold a true sum of.
constexpr bool LaneDivisionExact(uint32_t d) {
  const LaneDivision m = LaneDivisionBy(d);
  for (uint32_t n = 0; n <= 255 * d; ++n) {
    if ((((n * m.multiplier) >> 16) >> m.shift) != n / d) return false;
  }
  return true;
}
static_assert(LaneDivisionExact(3 * 3) && LaneDivisionExact(5 * 5) && LaneDivisionExact(7 * 7) &&
              LaneDivisionExact(9 * 9) && LaneDivisionExact(11 * 11) && LaneDivisionExact(13 * 13));

// For how often the two pixels of a pair are replaced, a and b (0 to 2 each,
// at 3 a + b): the lanes of a pixel replaced at least once and twice, and
// the opaque byte of a pixel replaced.
struct PairLanes {
  alignas(16) int32_t once[4];
  alignas(16) int32_t twice[4];
  alignas(16) int32_t opaque[4];
  bool anyTwice;
};

constexpr std::array<PairLanes, 9> MakePairLanes() {
  std::array<PairLanes, 9> table{};
  for (int32_t a = 0; a < 3; ++a) {
    for (int32_t b = 0; b < 3; ++b) {
      PairLanes& l = table[static_cast<size_t>(3 * a + b)];
      for (int32_t i = 0; i < 2; ++i) {
        l.once[i] = a >= 1 ? -1 : 0;
        l.once[2 + i] = b >= 1 ? -1 : 0;
        l.twice[i] = a >= 2 ? -1 : 0;
        l.twice[2 + i] = b >= 2 ? -1 : 0;
      }
      l.opaque[0] = a >= 1 ? static_cast<int32_t>(0xFF000000u) : 0;
      l.opaque[1] = b >= 1 ? static_cast<int32_t>(0xFF000000u) : 0;
      l.anyTwice = a >= 2 || b >= 2;
    }
  }
  return table;
}
inline constexpr std::array<PairLanes, 9> kPairLanes = MakePairLanes();

class RowBoxMean {
 public:
  static constexpr int32_t kMaxSide = 13;

  // The side is odd, the window centred on its pixel: an even side is taken
  // as the next odd one. A side of 1 needs no sums.
  RowBoxMean(const FrameRows& rows, int32_t k)
      : rows_(rows),
        k_(std::clamp(k, 1, kMaxSide) | 1),
        half_(k_ / 2),
        division_(LaneDivisionBy(static_cast<uint32_t>(k_ * k_))),
        columns_(k_ > 1 ? AllocateScratch<uint64_t>(static_cast<size_t>(rows.width)) : nullptr) {}

  // Gathers the sums of row y for means over columns [begin, end): slid down
  // from the row before where that gathered them too and no row of either
  // window is held to the frame's edge, summed anew elsewhere.
  void StartRow(int32_t y, int32_t begin, int32_t end) {
    const int32_t first = std::max(begin - half_, 0), last = std::min(end - 1 + half_, rows_.width - 1);
    const bool slide = Summed() && y == y_ + 1 && first <= last_ && first_ <= last && y - 1 - half_ >= 0 &&
                       y + half_ < rows_.height;
    const int32_t slidFirst = slide ? std::max(first, first_) : last + 1;
    const int32_t slidLast = slide ? std::min(last, last_) : last;
    y_ = y;
    first_ = first;
    last_ = last;
    slidePossible_ = false;
    const PixelWord* window[kMaxSide];
    weight_ = 0;
    for (int32_t i = 0; i < k_; ++i) {
      const int32_t r = std::clamp(y - half_ + i, 0, rows_.height - 1);
      window[i] = rows_.Out(r);
      weight_ += r == y;
    }
    if (!Summed()) return;
    if (slide) {
      SlideColumns(columns_.get(), columns_.get(), rows_.Out(y + half_), rows_.Out(y - 1 - half_), slidFirst, slidLast);
    }
    Gather(window, first, slidFirst - 1);
    Gather(window, slidLast + 1, last);
  }

  // Replaces pixel x of the row by the mean around it.
  void Replace(int32_t x) {
    PixelWord& px = rows_.Out(y_)[x];
    if (!Summed()) {
      px = Pack(MeanByPixels(x));
      return;
    }
    const __m128i window = WindowAt(x);
    const __m128i mean = Divide(window);
    // The row counts weight_ times in its columns' sums (more at the frame's
    // edges).
    const __m128i change =
        _mm_mullo_epi16(_mm_sub_epi16(mean, Unpack(px)), _mm_set1_epi16(static_cast<int16_t>(weight_)));
    StoreColumn(x, _mm_add_epi16(LoadColumn(x), change));
    if (slidePossible_) window_ = _mm_add_epi16(window, change);  // column x lies once in the window of x
    px = Pack(mean);
  }

  // Replaces pixels begin, begin + 1, ..., end - 1, each `times` times over:
  // the same as Replace(x) called `times` times for each x in turn.
  void ReplaceRun(int32_t begin, int32_t end, int32_t times) { Run<1>(begin, end, times); }

  // Replaces pixels end - 1 down to begin, each once.
  void ReplaceRunDown(int32_t begin, int32_t end) { Run<-1>(begin, end, 1); }

  // Pixels [begin, end) of one row, each replaced `times` times over.
  struct Span {
    int32_t begin, end, times;
  };

  // Rows y and y + 1 over columns [begin, end), each its spans in ascending
  // order: the same as StartRow and ReplaceRun of every span for row y, then
  // for row y + 1 (a row without spans is not started). Where both rows'
  // windows lie inside the frame's rows, the rows go side by side, row y + 1
  // a few pixels behind: a mean of row y + 1 needs row y done only up to
  // its window's last column, and two means at a time halve the chain that
  // bounds a single row.
  void ReplaceRowPair(int32_t y, int32_t begin, int32_t end, std::span<const Span> first,
                      std::span<const Span> second) {
    // Pixel u of row y + 1 needs row y final up to column u + half_ + 1, the
    // one its window slides in next: row y runs lag pixels ahead. Side by
    // side from the first pixel of either row to the last, where both rows'
    // windows lie inside the frame; one row at a time before and after.
    const int32_t lag = half_ + 2;
    int32_t from = 0, to = 0;
    if (PairPossible(y, begin, end, first, second)) {
      from = std::max({std::min(first.front().begin, second.front().begin + lag), begin + lag, half_ + lag});
      to = std::min({std::max(first.back().end, second.back().end + lag), end, rows_.width - half_});
    }
    if (from >= to) {
      for (const auto& [row, spans] : {std::pair{y, first}, std::pair{y + 1, second}}) {
        if (spans.empty()) continue;
        StartRow(row, begin, end);
        for (const Span& s : spans) ReplaceRun(s.begin, s.end, s.times);
      }
      return;
    }
    const PixelWord* entering = rows_.Out(y + 1 + half_);
    const PixelWord* leaving = rows_.Out(y - half_);
    StartRow(y, begin, end);
    ReplaceSpans(first, begin, from);
    // Row y's sums moved up into row y + 1's; where row y is still to come
    // side by side its changes are added to both.
    SlideColumns(columns_.get(), spare_.get(), entering, leaving, first_, to - 1);
    SwitchRow(y + 1);
    ReplaceSpans(second, begin, from - lag);
    switch (half_) {
      case 2: PairedInterior<2>(from, to, first, second); break;
      case 4: PairedInterior<4>(from, to, first, second); break;
      default: PairedInterior<6>(from, to, first, second); break;
    }
    SwitchRow(y);
    ReplaceSpans(first, to, end);
    SlideColumns(columns_.get(), spare_.get(), entering, leaving, to, last_);
    SwitchRow(y + 1);
    ReplaceSpans(second, to - lag, end);
  }

 private:
  // Without the sums (a side of 1, or a width too large to hold them) every
  // mean reads its pixels.
  bool Summed() const { return columns_ != nullptr; }

  static __m128i Unpack(uint32_t px) {
    return _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int32_t>(px)), _mm_setzero_si128());
  }
  static __m128i Unpack2(const PixelWord* px) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(px)), _mm_setzero_si128());
  }
  static uint32_t Pack(__m128i mean) {
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(mean, mean))) | 0xFF000000u;
  }
  __m128i LoadColumn(int32_t c) const { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&columns_[c])); }
  void StoreColumn(int32_t c, __m128i sum) { _mm_storel_epi64(reinterpret_cast<__m128i*>(&columns_[c]), sum); }

  __m128i Divide(__m128i sums) const {
    if (k_ == 1) return sums;
    return _mm_srl_epi16(_mm_mulhi_epu16(sums, _mm_set1_epi16(static_cast<int16_t>(division_.multiplier))),
                         _mm_cvtsi32_si128(division_.shift));
  }

  // The sums of columns [first, last] over the rows of `window`.
  void Gather(const PixelWord* const* window, int32_t first, int32_t last) {
    int32_t c = first;
    for (; c + 1 <= last; c += 2) {  // two columns a step
      __m128i sum = _mm_setzero_si128();
      for (int32_t i = 0; i < k_; ++i) sum = _mm_add_epi16(sum, Unpack2(window[i] + c));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(&columns_[c]), sum);
    }
    if (c <= last) {
      __m128i sum = _mm_setzero_si128();
      for (int32_t i = 0; i < k_; ++i) sum = _mm_add_epi16(sum, Unpack(window[i][c]));
      StoreColumn(c, sum);
    }
  }

  // Columns [first, last] take row `entering` in and row `leaving` out: the
  // sums `from` moved a row up into `to` (which may be `from`).
  static void SlideColumns(const uint64_t* from, uint64_t* to, const PixelWord* entering, const PixelWord* leaving,
                           int32_t first, int32_t last) {
    int32_t c = first;
    for (; c + 1 <= last; c += 2) {  // two columns a step
      const __m128i change = _mm_sub_epi16(Unpack2(entering + c), Unpack2(leaving + c));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to + c),
                       _mm_add_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + c)), change));
    }
    if (c <= last) {
      const __m128i change = _mm_sub_epi16(Unpack(entering[c]), Unpack(leaving[c]));
      _mm_storel_epi64(reinterpret_cast<__m128i*>(to + c),
                       _mm_add_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from + c)), change));
    }
  }

  // The window's sums for pixel x: kept from the last mean when x is that
  // pixel or a neighbour (a row may be taken in either direction) and no
  // column is held to the frame's edge, summed anew otherwise.
  __m128i WindowAt(int32_t x) {
    const bool interior = x - half_ >= 0 && x + half_ < rows_.width;
    __m128i window = window_;
    if (interior && slidePossible_ && x == windowX_ + 1) {
      window = _mm_add_epi16(window, _mm_sub_epi16(LoadColumn(x + half_), LoadColumn(x - 1 - half_)));
    } else if (interior && slidePossible_ && x == windowX_ - 1) {
      window = _mm_add_epi16(window, _mm_sub_epi16(LoadColumn(x - half_), LoadColumn(x + 1 + half_)));
    } else if (!(interior && slidePossible_ && x == windowX_)) {
      window = _mm_setzero_si128();
      for (int32_t c = x - half_; c <= x + half_; ++c) {
        window = _mm_add_epi16(window, LoadColumn(std::clamp(c, 0, rows_.width - 1)));
      }
    }
    windowX_ = x;
    slidePossible_ = interior;
    return window;
  }

  __m128i MeanByPixels(int32_t x) const {
    __m128i sums = _mm_setzero_si128();
    for (int32_t r = y_ - half_; r <= y_ + half_; ++r) {
      const PixelWord* row = rows_.Out(std::clamp(r, 0, rows_.height - 1));
      for (int32_t c = x - half_; c <= x + half_; ++c) {
        sums = _mm_add_epi16(sums, Unpack(row[std::clamp(c, 0, rows_.width - 1)]));
      }
    }
    return Divide(sums);
  }

  // Pixels begin to end - 1 in the order kStep gives, each `times` times:
  // where every window column lies inside the frame a tight loop, elsewhere
  // Replace.
  template <int kStep>
  void Run(int32_t begin, int32_t end, int32_t times) {
    if (begin >= end || times <= 0) return;
    const auto each = [&](int32_t from, int32_t to) {  // [from, to) in kStep's order
      for (int32_t i = 0; i < to - from; ++i) {
        const int32_t x = kStep > 0 ? from + i : to - 1 - i;
        for (int32_t t = 0; t < times; ++t) Replace(x);
      }
    };
    const int32_t lo = std::max(begin, half_), hi = std::min(end, rows_.width - half_);
    if (!Summed() || lo >= hi) {
      each(begin, end);
      return;
    }
    each(kStep > 0 ? begin : hi, kStep > 0 ? lo : end);
    if (weight_ == 1) {
      Interior<kStep, true>(lo, hi, times);
    } else {
      Interior<kStep, false>(lo, hi, times);
    }
    each(kStep > 0 ? hi : begin, kStep > 0 ? end : lo);
  }

  // Replace over [lo, hi) for pixels whose windows lie inside the frame.
  // The window slides from pixel to pixel; a pixel's replacements change its
  // column sum and the window by weight x (last mean - pixel), whatever came
  // between. The chain from one mean to the next bounds the loop, so with a
  // weight of 1 it holds the division and one addition only: the rest of the
  // next window is summed beside it.
  template <int kStep, bool kUnitWeight>
  void Interior(int32_t lo, int32_t hi, int32_t times) {
    PixelWord* row = rows_.Out(y_);
    const __m128i multiplier = _mm_set1_epi16(static_cast<int16_t>(division_.multiplier));
    const __m128i shift = _mm_cvtsi32_si128(division_.shift);
    const __m128i weight = _mm_set1_epi16(static_cast<int16_t>(weight_));
    const auto divide = [&](__m128i sums) { return _mm_srl_epi16(_mm_mulhi_epu16(sums, multiplier), shift); };
    const int32_t first = kStep > 0 ? lo : hi - 1, stop = kStep > 0 ? hi : lo - 1;
    // Columns entering and leaving the window of x + kStep, relative to x.
    const int32_t entering = kStep > 0 ? 1 + half_ : -1 - half_, leaving = kStep > 0 ? -half_ : half_;
    __m128i window = WindowAt(first);
    for (int32_t x = first;; x += kStep) {
      const bool last = x + kStep == stop;
      const __m128i slide =
          last ? _mm_setzero_si128() : _mm_sub_epi16(LoadColumn(x + entering), LoadColumn(x + leaving));
      const __m128i pixel = Unpack(row[x]);
      __m128i mean = divide(window), change;
      if (kUnitWeight) {
        const __m128i rest = _mm_sub_epi16(window, pixel);  // the window without pixel x
        __m128i next = _mm_add_epi16(rest, slide);
        asm("" : "+x"(next));  // kept apart, so that the compiler adds the mean last
        for (int32_t t = 1; t < times; ++t) mean = divide(_mm_add_epi16(rest, mean));
        window = _mm_add_epi16(next, mean);
        change = _mm_sub_epi16(mean, pixel);
      } else {
        __m128i previous = pixel;
        for (int32_t t = 0;;) {
          window = _mm_add_epi16(window, _mm_mullo_epi16(_mm_sub_epi16(mean, previous), weight));
          if (++t == times) break;
          previous = mean;
          mean = divide(window);
        }
        window = _mm_add_epi16(window, slide);
        change = _mm_mullo_epi16(_mm_sub_epi16(mean, pixel), weight);
      }
      StoreColumn(x, _mm_add_epi16(LoadColumn(x), change));
      row[x] = Pack(mean);
      if (last) {
        window_ = window;
        windowX_ = x;
        return;
      }
    }
  }

  void ReplaceSpans(std::span<const Span> spans, int32_t from, int32_t to) {
    for (const Span& s : spans) {
      const int32_t b = std::max(s.begin, from), e = std::min(s.end, to);
      if (b < e) ReplaceRun(b, e, s.times);
    }
  }

  // Side by side needs the sums for both rows, rows y - half_ to y + 1 +
  // half_ inside the frame (each row counts once), and spans ascending
  // inside [begin, end) and replaced at most twice.
  bool PairPossible(int32_t y, int32_t begin, int32_t end, std::span<const Span> first, std::span<const Span> second) {
    if (!Summed() || first.empty() || second.empty() || y - half_ < 0 || y + 1 + half_ >= rows_.height) return false;
    if (half_ != 2 && half_ != 4 && half_ != 6) return false;  // the sides of the Gauss Filter items
    if (begin < 0 || end > rows_.width) return false;
    for (const auto spans : {first, second}) {
      int32_t from = begin;
      for (const Span& s : spans) {
        if (s.begin < from || s.end < s.begin || s.end > end || s.times < 0 || s.times > 2) return false;
        from = s.end;
      }
    }
    if (!spare_) {
      spare_ = AllocateScratch<uint64_t>(static_cast<size_t>(rows_.width));
      timesFirst_ = AllocateScratch<uint8_t>(static_cast<size_t>(rows_.width));
      timesSecond_ = AllocateScratch<uint8_t>(static_cast<size_t>(rows_.width));
    }
    return spare_ != nullptr && timesFirst_ != nullptr && timesSecond_ != nullptr;
  }

  // The sums of the other row of a pair become the current ones; the window
  // is summed anew at the next mean.
  void SwitchRow(int32_t y) {
    std::swap(columns_, spare_);
    y_ = y;
    slidePossible_ = false;
  }

  // Row y (sums in spare_) over [from, to) beside row y + 1 (the current
  // sums) kLag pixels behind, every column of both windows inside the frame:
  // the two windows are the two halves of one register. The half side is a
  // constant, so that the columns around x are fixed offsets.
  template <int32_t kHalf>
  void PairedInterior(int32_t from, int32_t to, std::span<const Span> first, std::span<const Span> second) {
    constexpr int32_t kLag = kHalf + 2;
    // How often each pixel of the two rows is replaced.
    uint8_t* timesFirst = timesFirst_.get();
    uint8_t* timesSecond = timesSecond_.get();
    std::memset(timesFirst + from, 0, static_cast<size_t>(to - from));
    std::memset(timesSecond + from - kLag, 0, static_cast<size_t>(to - from));
    for (const Span& s : first) std::memset(timesFirst + s.begin, s.times, static_cast<size_t>(s.end - s.begin));
    for (const Span& s : second) std::memset(timesSecond + s.begin, s.times, static_cast<size_t>(s.end - s.begin));

    PixelWord* rowFirst = rows_.Out(y_ - 1);
    PixelWord* rowSecond = rows_.Out(y_);
    uint64_t* sumsFirst = spare_.get();
    uint64_t* sumsSecond = columns_.get();
    constexpr uint16_t kMultiplier = LaneDivisionBy((2 * kHalf + 1) * (2 * kHalf + 1)).multiplier;
    constexpr int32_t kShift = LaneDivisionBy((2 * kHalf + 1) * (2 * kHalf + 1)).shift;
    const auto divide = [](__m128i sums) {
      return _mm_srli_epi16(_mm_mulhi_epu16(sums, _mm_set1_epi16(static_cast<int16_t>(kMultiplier))), kShift);
    };
    const auto sumOf = [&](const uint64_t* sums, int32_t x) {
      __m128i window = _mm_setzero_si128();
      for (int32_t c = x - kHalf; c <= x + kHalf; ++c) window = _mm_add_epi16(window, Load(sums + c));
      return window;
    };
    // Lanes 0 to 3 hold row y's window, 4 to 7 row y + 1's.
    __m128i window = _mm_unpacklo_epi64(sumOf(sumsFirst, from), sumOf(sumsSecond, from - kLag));
    for (int32_t x = from;; ++x) {
      const int32_t u = x - kLag;  // row y + 1's pixel
      const PairLanes& lanes = kPairLanes[static_cast<size_t>(3 * timesFirst[x] + timesSecond[u])];
      const __m128i pixel = _mm_unpacklo_epi8(
          _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int32_t>(rowFirst[x])),
                             _mm_cvtsi32_si128(static_cast<int32_t>(rowSecond[u]))),
          _mm_setzero_si128());
      const __m128i rest = _mm_sub_epi16(window, pixel);
      // A pixel replaced no time keeps its value; one replaced twice takes
      // the mean of its window with the first mean in.
      const __m128i firstMean = divide(window);
      __m128i mean = Select(lanes.once, firstMean, pixel);
      if (lanes.anyTwice) mean = Select(lanes.twice, divide(_mm_add_epi16(rest, firstMean)), mean);
      // Row y's change reaches both rows' sums: row y lies in both windows.
      const __m128i change = _mm_sub_epi16(mean, pixel);
      Store(sumsFirst + x, _mm_add_epi16(Load(sumsFirst + x), change));
      Store(sumsSecond + x, _mm_add_epi16(Load(sumsSecond + x), change));
      Store(sumsSecond + u, _mm_add_epi16(Load(sumsSecond + u), _mm_unpackhi_epi64(change, change)));
      const __m128i packed = _mm_or_si128(_mm_packus_epi16(mean, mean), Lanes(lanes.opaque));
      rowFirst[x] = static_cast<uint32_t>(_mm_cvtsi128_si32(packed));
      rowSecond[u] = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(packed, 4)));
      if (x + 1 == to) return;
      // Both windows slide one column: row y's takes column x + half_ + 1
      // in, row y + 1's column x - 1.
      const __m128i slide = _mm_sub_epi16(
          _mm_unpacklo_epi64(Load(sumsFirst + x + 1 + kHalf), Load(sumsSecond + u + 1 + kHalf)),
          _mm_unpacklo_epi64(Load(sumsFirst + x - kHalf), Load(sumsSecond + u - kHalf)));
      __m128i next = _mm_add_epi16(rest, slide);
      asm("" : "+x"(next));  // kept apart, so that the compiler adds the mean last
      window = _mm_add_epi16(next, mean);
    }
  }

  static __m128i Load(const uint64_t* sums) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(sums)); }
  static void Store(uint64_t* sums, __m128i value) { _mm_storel_epi64(reinterpret_cast<__m128i*>(sums), value); }
  static __m128i Lanes(const int32_t (&lanes)[4]) { return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes)); }
  // a in the lanes of `mask`, b elsewhere.
  static __m128i Select(const int32_t (&mask)[4], __m128i a, __m128i b) {
    return _mm_xor_si128(b, _mm_and_si128(_mm_xor_si128(a, b), Lanes(mask)));
  }

  const FrameRows& rows_;
  int32_t k_, half_;
  LaneDivision division_;
  Scratch<uint64_t> columns_;  // per column: the sums over the k rows, a 16-bit lane a byte
  Scratch<uint64_t> spare_;    // the other row's sums while two rows go side by side
  Scratch<uint8_t> timesFirst_, timesSecond_;  // how often each pixel of the two rows is replaced
  int32_t y_ = -2, first_ = 0, last_ = -1;  // the row gathered last and its columns
  int32_t weight_ = 0;
  int32_t windowX_ = 0;  // the pixel whose window the sums below hold
  __m128i window_ = _mm_setzero_si128();
  bool slidePossible_ = false;
};

}  // namespace krl
