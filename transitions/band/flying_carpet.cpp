// Flying Carpet: B flies in over the still A from the chosen side, its
// leading edge reaching the far side at the end. Ripples run along it from
// its leading edge to its trailing edge, displacing it across the flight by a
// sine wave, so that its two long edges undulate and A shows in the troughs;
// they calm down as B lands and are gone at the end.
//
// Everything that depends only on the position along the flight (the
// displacement, the slope of the edge, the leading edge, B's column or row)
// is worked out once per column (or row); each pixel then needs a
// subtraction, two comparisons and one blend.
#include <algorithm>
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/clamped_frame.h"
#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/band/edge_runs.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Flying Carpet", .signature = "Flying Carpet (ZE plug-in SDK effect)",
                             .displayName = "Flying Carpet", .description = "Vb flies into over Va like magic carpet."};

ClipFields clip;
FieldIndex direction, waves, amplitude, antiAliasing;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction",
             {{"Left > Right", 0}, {"Right > Left", 1}, {"Top > Bottom", 2}, {"Bottom > Top", 3}})
        .Help("Specifies the position where Vb starts to move in.")
        .Default(0),
    Long(&waves, "Waves", "Waves (1..8)", 1.0, 8.0)
        .Limits()
        .Help("Defines the number of waves along the carpet.")
        .Default(2),
    Long(&amplitude, "Amplitude", "Amplitude (0..25 %)", 0.0, 25.0)
        .Limits()
        .Help("Defines the height of the waves in percent of the picture.")
        .Default(5),
    AntiAliasingField(&antiAliasing));

enum Flight : int32_t { kLeftRight, kRightLeft, kTopBottom, kBottomTop };

// What one position along the flight gives every pixel across it.
struct Along {
  double lead;     // L - m, the distance behind B's leading edge
  double dc;       // B's displacement across the flight
  double gs;       // 1 / sqrt(1 + slope^2), turning an across distance into one normal to the edge
  const PixelWord* line;  // B's column (or row) along the flight, held to the frame
};

class Carpet {
 public:
  Carpet(const FrameRows& rows, int32_t flight, int32_t k, int32_t am, double p, bool antiAlias)
      : rows_(rows),
        horizontal_(flight == kLeftRight || flight == kRightLeft),
        fromFar_(flight == kRightLeft || flight == kTopBottom),
        k_(k),
        p_(p),
        l_(horizontal_ ? rows.width : rows.height),
        c_(horizontal_ ? rows.height : rows.width),
        o_((1 - p) * l_),
        // Am x C in 32 bits, wrapping for frames far beyond any picture.
        amp_((WrappingMultiply(am, horizontal_ ? rows.height : rows.width) / 100.0) * (1 - p)),
        antiAlias_(antiAlias),
        lastAcross_((horizontal_ ? rows.height : rows.width) - 1),
        acrossStride_(horizontal_ ? static_cast<size_t>(rows.width) : 1) {}

  // Position i along the flight: memory column i, or memory row i.
  Along At(int32_t i) const {
    const double centre = i + 0.5;
    const double a = fromFar_ ? l_ - centre : centre;
    const double m = a + o_;
    const double xi = (l_ - m) / l_;
    const double omega = (2 * kPi) * ((k_ * xi) - (2 * p_));
    const double dc = amp_ * Sin(omega);
    const double slope = (amp_ * Cos(omega) * 2 * kPi * k_) / l_;
    const double gs = 1 / std::sqrt(1 + slope * slope);
    const int32_t source = ClampedFrame::Clamp(FloorToInt32(fromFar_ ? l_ - m : m), (horizontal_ ? rows_.width : rows_.height) - 1);
    return {l_ - m, dc, gs, horizontal_ ? rows_.inputB + source : rows_.B(source)};
  }

  void Paint() const {
    if (horizontal_) {
      PaintColumns();
    } else {
      for (int32_t y = 0; y < rows_.height; ++y) PaintRow(y);
    }
  }

 private:
  // The pixel at across coordinate c of position `s`, over A's pixel `a`;
  // B's across index floor(cb) held to the frame.
  template <bool kAntiAlias>
  uint32_t Pixel(uint32_t a, const Along& s, double c) const {
    const double cb = c - s.dc;
    const double e = std::min(s.lead, std::min(cb, c_ - cb) * s.gs);
    if (!kAntiAlias && e < 0) return a;
    const auto across = static_cast<size_t>(ClampedFrame::Clamp(FloorToInt32(cb), lastAcross_));
    const uint32_t sample = s.line[across * acrossStride_];
    return kAntiAlias ? Edge(a, sample, e, true) : sample;
  }

  template <bool kAntiAlias>
  void PaintColumnsOfRow(PixelWord* out, const PixelWord* a, const Along* along, int32_t n, double c) const {
    for (int32_t i = 0; i < n; ++i) out[i] = Pixel<kAntiAlias>(a[i], along[i], c);
  }

  template <bool kAntiAlias>
  void PaintRowAt(PixelWord* out, const PixelWord* a, const Along& s) const {
    for (int32_t x = 0; x < rows_.width; ++x) out[x] = Pixel<kAntiAlias>(a[x], s, x + 0.5);
  }

  // Horizontal flight: each column's values computed once and used by every
  // row; the rows are written whole, unless there is no room for the values
  // of a whole row, when they go in blocks of columns.
  void PaintColumns() const {
    constexpr int32_t kPrefetchRows = 6, kSmallBlock = 256;
    Along small[kSmallBlock];
    const Scratch<Along> whole = AllocateScratch<Along>(static_cast<size_t>(rows_.width));
    Along* along = whole ? whole.get() : small;
    const int32_t block = whole ? rows_.width : kSmallBlock;
    // Behind the leading edge only (e <= L - m): the other columns are plainly A.
    const ColumnRange carpet =
        HoldingRange(0, rows_.width, [&](int32_t x) { return EdgeZone(At(x).lead, antiAlias_) != 0; });
    for (int32_t y = 0; y < rows_.height; ++y) {
      CopyRun(rows_.Out(y), rows_.A(y), carpet.begin);
      CopyRun(rows_.Out(y) + carpet.end, rows_.A(y) + carpet.end, rows_.width - carpet.end);
    }
    for (int32_t x0 = carpet.begin; x0 < carpet.end; x0 += block) {
      const int32_t n = std::min(block, carpet.end - x0);
      for (int32_t i = 0; i < n; ++i) along[i] = At(x0 + i);
      for (int32_t y = 0; y < rows_.height; ++y) {
        const double c = y + 0.5;
        // Each column reads B a wave's height above or below its own row:
        // ask for the lines a few rows on, which no prefetcher foresees.
        const double ahead = std::min(y + kPrefetchRows, rows_.height - 1) + 0.5;
        for (int32_t i = 0; i < n; i += 8) {
          const int32_t row = ClampedFrame::Clamp(FloorToInt32(ahead - along[i].dc), lastAcross_);
          __builtin_prefetch(along[i].line + static_cast<size_t>(row) * acrossStride_);
        }
        PixelWord* out = rows_.Out(y) + x0;
        const PixelWord* a = rows_.A(y) + x0;
        if (antiAlias_) {
          PaintColumnsOfRow<true>(out, a, along, n, c);
        } else {
          PaintColumnsOfRow<false>(out, a, along, n, c);
        }
      }
    }
  }

  // Vertical flight: one row's values serve the whole row.
  void PaintRow(int32_t y) const {
    const Along s = At(y);
    PixelWord* out = rows_.Out(y);
    const PixelWord* a = rows_.A(y);
    if (EdgeZone(s.lead, antiAlias_) == 0) {  // ahead of the leading edge: plainly A
      CopyRun(out, a, rows_.width);
      return;
    }
    if (antiAlias_) {
      PaintRowAt<true>(out, a, s);
    } else {
      PaintRowAt<false>(out, a, s);
    }
  }

  const FrameRows& rows_;
  bool horizontal_, fromFar_;
  int32_t k_;
  double p_, l_, c_, o_, amp_;
  bool antiAlias_;
  int32_t lastAcross_;   // the last row (horizontal flight) or column of B
  size_t acrossStride_;  // pixels from one such row or column to the next
};

int32_t FlyingCarpetRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  int32_t flight = host.Field(direction);
  if (flight < kLeftRight || flight > kBottomTop) flight = kLeftRight;
  const int32_t k = host.Field(waves), am = host.Field(amplitude);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (ri->Width <= 0 || ri->Height <= 0 || DrawEnds(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  Carpet(rows, flight, k, am, ri->Progress, antiAlias).Paint();
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(FlyingCarpet, kTexts, kFields)
KR_TEST_PROFILE("Flying Carpet", .heavier = {"Waves=8", "Amplitude=25", "Anti-Aliasing=on"})
