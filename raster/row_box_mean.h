// The k x k mean of the output around a pixel, coordinates held to the frame,
// taken in place along a row: bytes 0 to 2 summed and divided by k * k with
// truncation, byte 3 opaque. Column sums over the k rows are gathered once per
// row and kept up to date as that row's pixels are replaced, so each mean
// costs k additions; the results are those of summing all k * k pixels.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

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

class RowBoxMean {
 public:
  // Blue and red are summed side by side in one word: 13 x 13 x 255 fits 16 bits.
  static constexpr int32_t kMaxSide = 13;

  RowBoxMean(const FrameRows& rows, int32_t k)
      : rows_(rows),
        k_(std::clamp(k, 1, kMaxSide)),
        half_(k_ / 2),
        blueRed_(AllocateScratch<uint32_t>(static_cast<size_t>(rows.width))),
        green_(AllocateScratch<uint32_t>(static_cast<size_t>(rows.width))) {}

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
      const PixelWord* leaving = rows_.Out(y - 1 - half_);
      const PixelWord* entering = rows_.Out(y + half_);
      for (int32_t c = first; c <= last; ++c) {
        blueRed_[c] += (entering[c] & 0x00FF00FF) - (leaving[c] & 0x00FF00FF);
        green_[c] += ((entering[c] >> 8) & 0xFF) - ((leaving[c] >> 8) & 0xFF);
      }
      return;
    }
    for (int32_t c = first; c <= last; ++c) {
      uint32_t blueRed = 0, green = 0;
      for (int32_t i = 0; i < k_; ++i) {
        blueRed += window[i][c] & 0x00FF00FF;
        green += (window[i][c] >> 8) & 0xFF;
      }
      blueRed_[c] = blueRed;
      green_[c] = green;
    }
  }

  // Replaces pixel x of the row by the mean around it.
  void Replace(int32_t x) {
    PixelWord& px = rows_.Out(y_)[x];
    const uint32_t old = px;
    if (!Summed()) {
      px = MeanByPixels(x);
      return;
    }
    px = MeanFromSums(x);
    // The row counts weight_ times in its columns' sums (more at the frame's
    // edges). Packed lanes: exact modulo 2^32, and the true sums fit.
    const uint32_t blueRed = weight_ * ((px & 0x00FF00FF) - (old & 0x00FF00FF));
    const uint32_t green = weight_ * (((px >> 8) & 0xFF) - ((old >> 8) & 0xFF));
    blueRed_[x] += blueRed;
    green_[x] += green;
    if (slidePossible_) {  // column x lies once in the window of x
      windowBlueRed_ += blueRed;
      windowGreen_ += green;
    }
  }

 private:
  // Without the sums (a width too large to hold them) every mean reads its pixels.
  bool Summed() const { return blueRed_ != nullptr && green_ != nullptr; }

  // n / (k * k) for n below 2^16 as a multiplication: with m = ceil(2^32 / d)
  // the error stays below 1 / d for every n < 2^32 / d^2, which 2^16 is.
  uint32_t PerArea(uint32_t n) const { return static_cast<uint32_t>((uint64_t{n} * reciprocal_) >> 32); }

  uint32_t Mean(uint32_t blueRed, uint32_t green) const {
    return 0xFF000000u | PerArea(blueRed >> 16) << 16 | PerArea(green) << 8 | PerArea(blueRed & 0xFFFF);
  }

  // The window's sums: kept from the last mean when x is that pixel or a
  // neighbour (a row may be taken in either direction) and no column is held
  // to the frame's edge, summed anew otherwise.
  uint32_t MeanFromSums(int32_t x) {
    const bool interior = x - half_ >= 0 && x + half_ < rows_.width;
    if (interior && slidePossible_ && x == windowX_ + 1) {
      windowBlueRed_ += blueRed_[x + half_] - blueRed_[x - 1 - half_];
      windowGreen_ += green_[x + half_] - green_[x - 1 - half_];
    } else if (interior && slidePossible_ && x == windowX_ - 1) {
      windowBlueRed_ += blueRed_[x - half_] - blueRed_[x + 1 + half_];
      windowGreen_ += green_[x - half_] - green_[x + 1 + half_];
    } else if (!(interior && slidePossible_ && x == windowX_)) {
      windowBlueRed_ = windowGreen_ = 0;
      for (int32_t c = x - half_; c <= x + half_; ++c) {
        const int32_t column = std::clamp(c, 0, rows_.width - 1);
        windowBlueRed_ += blueRed_[column];
        windowGreen_ += green_[column];
      }
    }
    windowX_ = x;
    slidePossible_ = interior;
    return Mean(windowBlueRed_, windowGreen_);
  }

  uint32_t MeanByPixels(int32_t x) const {
    uint32_t blueRed = 0, green = 0;
    for (int32_t r = y_ - half_; r <= y_ + half_; ++r) {
      const PixelWord* row = rows_.Out(std::clamp(r, 0, rows_.height - 1));
      for (int32_t c = x - half_; c <= x + half_; ++c) {
        const uint32_t px = row[std::clamp(c, 0, rows_.width - 1)];
        blueRed += px & 0x00FF00FF;
        green += (px >> 8) & 0xFF;
      }
    }
    return Mean(blueRed, green);
  }

  const FrameRows& rows_;
  int32_t k_, half_;
  uint64_t reciprocal_ = ((uint64_t{1} << 32) + static_cast<uint64_t>(k_ * k_) - 1) / static_cast<uint64_t>(k_ * k_);
  Scratch<uint32_t> blueRed_, green_;  // per column: the sums over the k rows
  int32_t y_ = -2, first_ = 0, last_ = -1;  // the row gathered last and its columns
  uint32_t weight_ = 0;
  int32_t windowX_ = 0;  // the pixel whose window the sums below hold
  uint32_t windowBlueRed_ = 0, windowGreen_ = 0;
  bool slidePossible_ = false;
};

}  // namespace krl
