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
#include <cstdint>

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
  // from the row before when that was gathered over the same columns and no
  // row of either window is held to the frame's edge, summed anew otherwise.
  void StartRow(int32_t y, int32_t begin, int32_t end) {
    const int32_t first = std::max(begin - half_, 0), last = std::min(end - 1 + half_, rows_.width - 1);
    const bool slide = Summed() && y == y_ + 1 && first == first_ && last == last_ && y - 1 - half_ >= 0 &&
                       y + half_ < rows_.height;
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
      SlideColumns(rows_.Out(y + half_), rows_.Out(y - 1 - half_), first, last);
      return;
    }
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

  // Columns [first, last] take row `entering` in and row `leaving` out.
  void SlideColumns(const PixelWord* entering, const PixelWord* leaving, int32_t first, int32_t last) {
    int32_t c = first;
    for (; c + 3 <= last; c += 4) {  // four columns a step
      const __m128i in = _mm_loadu_si128(reinterpret_cast<const __m128i*>(entering + c));
      const __m128i out = _mm_loadu_si128(reinterpret_cast<const __m128i*>(leaving + c));
      const __m128i zero = _mm_setzero_si128();
      const __m128i low = _mm_sub_epi16(_mm_unpacklo_epi8(in, zero), _mm_unpacklo_epi8(out, zero));
      const __m128i high = _mm_sub_epi16(_mm_unpackhi_epi8(in, zero), _mm_unpackhi_epi8(out, zero));
      __m128i* sums = reinterpret_cast<__m128i*>(&columns_[c]);
      _mm_storeu_si128(sums, _mm_add_epi16(_mm_loadu_si128(sums), low));
      _mm_storeu_si128(sums + 1, _mm_add_epi16(_mm_loadu_si128(sums + 1), high));
    }
    for (; c <= last; ++c) {
      StoreColumn(c, _mm_add_epi16(LoadColumn(c), _mm_sub_epi16(Unpack(entering[c]), Unpack(leaving[c]))));
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

  const FrameRows& rows_;
  int32_t k_, half_;
  LaneDivision division_;
  Scratch<uint64_t> columns_;  // per column: the sums over the k rows, a 16-bit lane a byte
  int32_t y_ = -2, first_ = 0, last_ = -1;  // the row gathered last and its columns
  int32_t weight_ = 0;
  int32_t windowX_ = 0;  // the pixel whose window the sums below hold
  __m128i window_ = _mm_setzero_si128();
  bool slidePossible_ = false;
};

}  // namespace krl
