// What Windscreen Wiper and Clock share: in every cell of the full grid a line
// turns about a pivot, a wiper blade or a clock hand. What it has swept shows
// one side, the rest the other, and a pen band runs along the line's leading
// side, only alongside the line and not behind its pivot.
//
// A pixel at (X, Y) from the pivot, the line of direction d and side sign k:
//   r = -(k x (d.x x Y - d.y x X))     the band's distance, the swept side below 0
//   d.x x X + d.y x Y >= 0             alongside the line: the pen is t deep, else 0
//   sd = u.y x X - u.x x Y             Clock's start line, for an edge between A and B
// and the pixel is band(behind, pen, ahead, r, t'). No angle is measured:
// each side is decided by these products with the per-frame directions, as
// written. Every one of them is monotone in X along a row (each product and
// difference rounds monotonically), and so is every weight of the edge
// profile built on them. A row is therefore cut where a weight reaches or
// leaves 0 or 256 (looked for where the straight line puts it, settled with
// the pixel's own arithmetic), and between the cuts it is a copy of A or B,
// a fill of pen, or a run blended pixel by pixel.
#pragma once

#include <cstdint>

#include "host/declare.h"
#include "host/render_prologue.h"
#include "raster/edge_profile.h"
#include "raster/frame.h"
#include "raster/pixel_mix.h"
#include "raster/pixel_rows.h"
#include "raster/pixel_runs.h"

namespace krl {

// What one side of the band shows: A, B, or Clock's start edge, edge(A, B, sd).
enum class BandSide : uint8_t { A, B, StartEdge };

class SweepBand {
 public:
  struct Line {
    double dx, dy;  // the direction d of the blade or hand
    double k;       // the side sign: +1 or -1
    double ux, uy;  // the start direction u (for StartEdge only)

    // A line with no start edge.
    static constexpr Line Blade(double dx, double dy, double k) { return {dx, dy, k, 0, 0}; }
  };

  SweepBand(const FrameRows& rows, const Line& line, BandSide behind, BandSide ahead, uint32_t pen, double t,
            bool antiAlias)
      : rows_(rows), line_(line), behind_(behind), ahead_(ahead), pen_(pen), t_(t), antiAlias_(antiAlias) {
    used_ = kBehindFull | kBehindNone;
    if (t > 0) used_ |= kAheadNone | kAheadFull | kAlongside;
    if (behind == BandSide::StartEdge || ahead == BandSide::StartEdge) used_ |= kStartA | kStartB;
  }

  // Columns [begin, end) of row y, Y the row's height above the pivot; a
  // pixel's X is (x + 0.5) - pivot, negated when `negated`.
  void PaintRow(int32_t y, double Y, int32_t begin, int32_t end, double pivot, bool negated) const {
    if (begin >= end) return;
    const RowTerms row{*this, Y, pivot, negated};
    int32_t cuts[kBits];
    int32_t count = 0;
    const uint32_t first = row.Signature(begin), last = row.Signature(end - 1);
    for (uint32_t flips = first ^ last; flips != 0; flips &= flips - 1) {
      cuts[count++] = row.FlipColumn(flips & (~flips + 1), first, begin, end - 1);
    }
    const PixelWord *a = rows_.A(y), *b = rows_.B(y);
    PixelWord* out = rows_.Out(y);
    ForEachRun(
        begin, end, std::span(cuts, static_cast<size_t>(count)),
        [&](int32_t x) { return Shows(row.Signature(x)); },
        [&](Show show, int32_t from, int32_t to) {
          switch (show) {
            case Show::A: CopyRun(out + from, a + from, to - from); break;
            case Show::B: CopyRun(out + from, b + from, to - from); break;
            case Show::Pen: FillRun(out + from, pen_, to - from); break;
            case Show::Blend:
              for (int32_t x = from; x < to; ++x) out[x] = row.Pixel(x, a[x], b[x]);
              break;
          }
        });
  }

 private:
  enum class Show : uint8_t { A, B, Pen, Blend };

  // The weights the pixel's class depends on, each monotone along a row.
  enum Bit : uint32_t {
    kBehindFull = 1,      // the behind side's weight is 256
    kBehindNone = 2,      // ... is 0
    kAheadNone = 4,       // the ahead side's weight, before the pen takes its share, is 0
    kAheadFull = 8,       // ... is 256
    kAlongside = 16,      // the pen band is t deep here
    kStartA = 32,         // the start edge shows A only
    kStartB = 64,         // ... B only
  };
  static constexpr int kBits = 7;

  // Weights of S7: the behind side's at r, the ahead side's at r - t, A's at sd.
  int32_t Below(double r) const { return antiAlias_ ? MixWeight(0.5 - r) : r < 0 ? 256 : 0; }
  int32_t AtOrAbove(double r, double t) const { return antiAlias_ ? MixWeight(r - t + 0.5) : r < t ? 0 : 256; }

  struct Terms {
    double r;
    bool alongside;
    double sd;
  };

  class RowTerms {
   public:
    RowTerms(const SweepBand& band, double Y, double pivot, bool negated)
        : band_(band), pivot_(pivot), negated_(negated),
          dxY_(band.line_.dx * Y), dyY_(band.line_.dy * Y), uxY_(band.line_.ux * Y) {}

    Terms At(int32_t x) const {
      const double offset = (x + 0.5) - pivot_;
      const double X = negated_ ? -offset : offset;
      const SweepBand::Line& l = band_.line_;
      return {-(l.k * (dxY_ - l.dy * X)), l.dx * X + dyY_ >= 0, l.uy * X - uxY_};
    }

    // The first column after lo where `bit` differs from `first`, given that
    // it does at hi: searched outwards from where the straight line puts it,
    // then by bisection, each step with the pixel's own arithmetic.
    int32_t FlipColumn(uint32_t bit, uint32_t first, int32_t lo, int32_t hi) const {
      auto flipped = [&](int32_t x) { return ((Signature(x, bit) ^ first) & bit) != 0; };
      const double guess = Guess(bit);
      const int32_t g = guess > lo && guess < hi ? static_cast<int32_t>(guess) + 1 : lo + (hi - lo) / 2;
      if (g > lo && g < hi) {
        const bool at = flipped(g);
        (at ? hi : lo) = g;
        for (int64_t step = 1;; step *= 2) {
          const int64_t next = at ? int64_t{hi} - step : int64_t{lo} + step;
          if (next <= lo || next >= hi) break;
          const int32_t n = static_cast<int32_t>(next);
          if (flipped(n) != at) {
            (at ? lo : hi) = n;
            break;
          }
          (at ? hi : lo) = n;
        }
      }
      while (hi - lo > 1) {
        const int32_t mid = lo + (hi - lo) / 2;
        (flipped(mid) ? hi : lo) = mid;
      }
      return hi;
    }

    // Where the bit's quantity, straight in X, meets its threshold: a column
    // (fractional, possibly out of range or NaN).
    double Guess(uint32_t bit) const {
      const SweepBand::Line& l = band_.line_;
      const bool aa = band_.antiAlias_;
      double slope = l.k * l.dy, offset = -(l.k * dxY_), threshold = 0;  // r
      switch (bit) {
        case kBehindFull: threshold = aa ? -0.5 : 0; break;
        case kBehindNone: threshold = aa ? 0.5 : 0; break;
        case kAheadNone: threshold = aa ? band_.t_ - 0.5 : band_.t_; break;
        case kAheadFull: threshold = aa ? band_.t_ + 0.5 : band_.t_; break;
        case kAlongside: slope = l.dx, offset = dyY_; break;
        default: slope = l.uy, offset = -uxY_, threshold = aa ? (bit == kStartA ? -0.5 : 0.5) : 0; break;
      }
      const double X = (threshold - offset) / slope;
      return (negated_ ? pivot_ - X : pivot_ + X) - 0.5;
    }

    // The bits of `mask` at column x.
    uint32_t Signature(int32_t x, uint32_t mask) const {
      const Terms at = At(x);
      uint32_t bits = 0;
      if (mask & (kBehindFull | kBehindNone)) {
        const int32_t behind = band_.Below(at.r);
        bits |= (behind == 256 ? kBehindFull : 0u) | (behind == 0 ? kBehindNone : 0u);
      }
      if (mask & (kAheadNone | kAheadFull)) {
        const int32_t ahead = band_.AtOrAbove(at.r, band_.t_);
        bits |= (ahead == 0 ? kAheadNone : 0u) | (ahead == 256 ? kAheadFull : 0u);
      }
      if (at.alongside) bits |= kAlongside;
      if (mask & (kStartA | kStartB)) {
        const int32_t startA = band_.Below(at.sd);
        bits |= (startA == 256 ? kStartA : 0u) | (startA == 0 ? kStartB : 0u);
      }
      return bits & mask;
    }
    uint32_t Signature(int32_t x) const { return Signature(x, band_.used_); }

    // The pixel exactly as the profile gives it.
    uint32_t Pixel(int32_t x, uint32_t a, uint32_t b) const {
      const Terms at = At(x);
      auto side = [&](BandSide s) {
        return s == BandSide::A ? a : s == BandSide::B ? b : Edge(a, b, at.sd, band_.antiAlias_);
      };
      return Band(side(band_.behind_), band_.pen_, side(band_.ahead_), at.r, at.alongside ? band_.t_ : 0.0,
                  band_.antiAlias_);
    }

   private:
    const SweepBand& band_;
    double pivot_;
    bool negated_;
    double dxY_, dyY_, uxY_;
  };

  Show SideShows(BandSide side, uint32_t bits) const {
    if (side == BandSide::A) return Show::A;
    if (side == BandSide::B) return Show::B;
    return bits & kStartA ? Show::A : bits & kStartB ? Show::B : Show::Blend;
  }

  // What a pixel shows, from its signature alone.
  Show Shows(uint32_t bits) const {
    if (bits & kBehindFull) return SideShows(behind_, bits);
    if (!(bits & kBehindNone)) return Show::Blend;
    if (!(bits & kAlongside)) return SideShows(ahead_, bits);  // no pen here (or none at all): ahead = 256 - behind
    if (bits & kAheadNone) return Show::Pen;
    return bits & kAheadFull ? SideShows(ahead_, bits) : Show::Blend;
  }

  FrameRows rows_;
  Line line_;
  BandSide behind_, ahead_;
  uint32_t pen_;
  double t_;
  bool antiAlias_;
  uint32_t used_;  // the bits a pixel's class depends on
};

}  // namespace krl
