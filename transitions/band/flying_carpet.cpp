// Flying Carpet: B flies in over the still A from the chosen side, its
// leading edge reaching the far side at the end. Ripples run along it from
// its leading edge to its trailing edge, displacing it across the flight by a
// sine wave, so that its two long edges undulate and A shows in the troughs;
// they calm down as B lands and are gone at the end.
//
// Everything that depends only on the position along the flight (the
// displacement, the slope of the edge, the leading edge, B's column or row)
// is worked out once per column (or row); each pixel then needs a
// subtraction, two comparisons and one blend (in a horizontal flight four
// pixels at a time in SSE2).
#include <emmintrin.h>

#include <algorithm>
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/clamped_frame.h"
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

  // False when there is no room for the values of a row or of the columns.
  bool Paint() const {
    const auto w = static_cast<size_t>(rows_.width);
    if (horizontal_) {
      const Scratch<size_t> column = AllocateScratch<size_t>(w);
      const Scratch<double> lead = AllocateScratch<double>(w), dc = AllocateScratch<double>(w);
      const Scratch<double> gs = AllocateScratch<double>(w);
      if (!lead || !dc || !gs || !column) return false;
      PaintColumns({lead.get(), dc.get(), gs.get(), column.get()});
      return true;
    }
    const Scratch<double> distances = AllocateScratch<double>(2 * w);
    if (!distances) return false;
    const Row row{distances.get(), distances.get() + w};
    for (int32_t y = 0; y < rows_.height; ++y) PaintRow(y, row);
    return true;
  }

 private:
  // Per pixel of a row: e, and B's across index floor(cb) held to the frame
  // (as a double: clamp(cb, 0, last) truncated is the same index).
  struct Row {
    double* e;
    double* across;
  };

  double E(double cb, double lead, double gs) const { return std::min(lead, std::min(cb, c_ - cb) * gs); }
  double Across(double cb) const { return std::min(std::max(cb, 0.0), lastAcross_); }

  void Distances(const Row& row, int32_t i, double cb, double lead, double gs) const {
    row.e[i] = E(cb, lead, gs);
    row.across[i] = Across(cb);
  }

  // edge(A, sample, e) along a row of n pixels, B's pixel i read on `line(i)`.
  template <typename Line>
  void Blend(PixelWord* out, const PixelWord* a, const Row& row, int32_t n, Line line) const {
    auto sample = [&](int32_t i) { return line(i)[static_cast<size_t>(static_cast<int32_t>(row.across[i])) * acrossStride_]; };
    if (antiAlias_) {
      for (int32_t i = 0; i < n; ++i) out[i] = SoftEdge(a[i], [&] { return sample(i); }, row.e[i]);
    } else {
      for (int32_t i = 0; i < n; ++i) out[i] = row.e[i] < 0 ? a[i] : sample(i);
    }
  }

  // Horizontal flight: each column's values worked out once and used by
  // every row, a value to an array so that a row takes two columns of each
  // in one SSE2 register.
  struct Columns {
    double *lead, *dc, *gs;
    size_t* column;  // B's column, line - B
  };

  void PaintColumns(const Columns& columns) const {
    constexpr int32_t kPrefetchRows = 6;
    // Behind the leading edge only (e <= L - m): the other columns are plainly A.
    const ColumnRange carpet =
        HoldingRange(0, rows_.width, [&](int32_t x) { return EdgeZone(At(x).lead, antiAlias_) != 0; });
    const int32_t n = carpet.end - carpet.begin;
    for (int32_t i = 0; i < n; ++i) {
      const Along at = At(carpet.begin + i);
      columns.lead[i] = at.lead;
      columns.dc[i] = at.dc;
      columns.gs[i] = at.gs;
      columns.column[i] = static_cast<size_t>(at.line - rows_.inputB);
    }
    for (int32_t y = 0; y < rows_.height; ++y) {
      PixelWord* out = rows_.Out(y);
      const PixelWord* a = rows_.A(y);
      CopyRun(out, a, carpet.begin);
      CopyRun(out + carpet.end, a + carpet.end, rows_.width - carpet.end);
      // Each column reads B a wave's height above or below its own row: ask
      // for the lines a few rows on, which no prefetcher foresees.
      const double ahead = std::min(y + kPrefetchRows, rows_.height - 1) + 0.5;
      for (int32_t i = 0; i < n; i += 8) {
        // Held to 0..last, the row fits an int32_t, whose conversion is one
        // instruction on i386 too (not so a size_t's).
        const double row = std::min(std::max(ahead - columns.dc[i], 0.0), lastAcross_);
        const auto at = static_cast<size_t>(static_cast<int32_t>(row));
        __builtin_prefetch(rows_.inputB + columns.column[i] + at * acrossStride_);
      }
      PaintCarpetRow(y + 0.5, columns, n, out + carpet.begin, a + carpet.begin);
    }
  }

  // edge(A, sample, e) along a row of the carpet at c, four pixels at a time:
  // e and B's row as E and Across form them and the weight as SoftEdge (or,
  // without anti-aliasing, the plain choice) takes it, two at a time in SSE2
  // doubles rounded as the scalar formulas round; minpd(b, a) is
  // std::min(a, b) and maxpd(b, a) std::max(a, b), NaNs and zeros alike.
  // One blend then gives every pixel: weight 0 is B's sample and 256 is A,
  // exactly. B's row is held to the frame, so the sample, read even where
  // A shows, lies in B.
  void PaintCarpetRow(double c, const Columns& columns, int32_t n, PixelWord* out, const PixelWord* a) const {
    const __m128d cs = _mm_set1_pd(c), across = _mm_set1_pd(c_), last = _mm_set1_pd(lastAcross_);
    const __m128d zero = _mm_setzero_pd(), half = _mm_set1_pd(0.5), one = _mm_set1_pd(1), scale = _mm_set1_pd(256);
    auto weightsAndRows = [&](int32_t i, int32_t* rowOf) {
      const __m128d cb = _mm_sub_pd(cs, _mm_loadu_pd(columns.dc + i));
      const __m128d normal = _mm_mul_pd(_mm_min_pd(_mm_sub_pd(across, cb), cb), _mm_loadu_pd(columns.gs + i));
      const __m128d e = _mm_min_pd(normal, _mm_loadu_pd(columns.lead + i));
      _mm_storel_epi64(reinterpret_cast<__m128i*>(rowOf), _mm_cvttpd_epi32(_mm_min_pd(last, _mm_max_pd(zero, cb))));
      if (!antiAlias_) return _mm_cvttpd_epi32(_mm_and_pd(_mm_cmplt_pd(e, zero), scale));
      const __m128d weight = _mm_min_pd(_mm_max_pd(_mm_sub_pd(half, e), zero), one);
      return _mm_cvttpd_epi32(_mm_add_pd(_mm_mul_pd(weight, scale), half));
    };
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
      int32_t rowOf[4];
      const __m128i weights = _mm_unpacklo_epi64(weightsAndRows(i, rowOf), weightsAndRows(i + 2, rowOf + 2));
      const int zeroWeights = _mm_movemask_epi8(_mm_cmpeq_epi32(weights, _mm_setzero_si128()));
      const int fullWeights = _mm_movemask_epi8(_mm_cmpeq_epi32(weights, _mm_set1_epi32(256)));
      if (fullWeights == 0xFFFF) {  // A alone
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i)));
        continue;
      }
      auto sample = [&](int32_t k) { return static_cast<int>(Sample(columns, i + k, rowOf[k])); };
      const __m128i b = _mm_setr_epi32(sample(0), sample(1), sample(2), sample(3));
      if (zeroWeights == 0xFFFF) {  // B alone
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), b);
        continue;
      }
      const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), MixFour(b, p, weights));
    }
    for (; i < n; ++i) {  // the last few, one at a time
      const double cb = c - columns.dc[i];
      const double e = E(cb, columns.lead[i], columns.gs[i]);
      const auto row = static_cast<int32_t>(Across(cb));
      if (antiAlias_) {
        out[i] = SoftEdge(a[i], [&] { return Sample(columns, i, row); }, e);
      } else {
        out[i] = e < 0 ? a[i] : Sample(columns, i, row);
      }
    }
  }

  uint32_t Sample(const Columns& columns, int32_t i, int32_t row) const {
    return rows_.inputB[columns.column[i] + static_cast<size_t>(row) * acrossStride_];
  }

  // MixWeighted(p, q, a) of four pixels with their own weights: each byte
  // (P x (256 - a) + Q x a + 128) >> 8, below 2^16 in 16-bit lanes.
  static __m128i MixFour(__m128i p, __m128i q, __m128i a) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i a16 = _mm_packs_epi32(a, a);                // a0 a1 a2 a3 a0 a1 a2 a3
    const __m128i pairs = _mm_unpacklo_epi16(a16, a16);       // a0 a0 a1 a1 a2 a2 a3 a3
    const __m128i low = _mm_unpacklo_epi32(pairs, pairs);     // a0 x4, a1 x4
    const __m128i high = _mm_unpackhi_epi32(pairs, pairs);    // a2 x4, a3 x4
    auto mix = [&](__m128i p16, __m128i q16, __m128i w) {
      const __m128i sum = _mm_add_epi16(_mm_mullo_epi16(p16, _mm_sub_epi16(_mm_set1_epi16(256), w)), _mm_mullo_epi16(q16, w));
      return _mm_srli_epi16(_mm_add_epi16(sum, _mm_set1_epi16(128)), 8);
    };
    return _mm_packus_epi16(mix(_mm_unpacklo_epi8(p, zero), _mm_unpacklo_epi8(q, zero), low),
                            mix(_mm_unpackhi_epi8(p, zero), _mm_unpackhi_epi8(q, zero), high));
  }

  // Vertical flight: one row's values serve the whole row.
  void PaintRow(int32_t y, const Row& row) const {
    const Along s = At(y);
    PixelWord* out = rows_.Out(y);
    const PixelWord* a = rows_.A(y);
    if (EdgeZone(s.lead, antiAlias_) == 0) {  // ahead of the leading edge: plainly A
      CopyRun(out, a, rows_.width);
      return;
    }
    for (int32_t x = 0; x < rows_.width; ++x) Distances(row, x, (x + 0.5) - s.dc, s.lead, s.gs);
    Blend(out, a, row, rows_.width, [&](int32_t) -> const PixelWord* { return s.line; });
  }

  const FrameRows& rows_;
  bool horizontal_, fromFar_;
  int32_t k_;
  double p_, l_, c_, o_, amp_;
  bool antiAlias_;
  double lastAcross_;    // the last row (horizontal flight) or column of B
  size_t acrossStride_;  // pixels from one such row or column to the next
};

int32_t FlyingCarpetRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  int32_t flight = host.Field(direction);
  if (flight < kLeftRight || flight > kBottomTop) flight = kLeftRight;
  const int32_t k = host.Field(waves), am = host.Field(amplitude);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (FrameDoneAtTheEnds(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  if (!Carpet(rows, flight, k, am, ri->Progress, antiAlias).Paint()) {
    CopyPixels(ri->Output, ri->InputA, 0, FramePixelCount(ri));  // no room for a row's values: A stays
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(FlyingCarpet, kTexts, kFields)
KR_TEST_PROFILE("Flying Carpet", .heavier = {"Waves=8", "Amplitude=25", "Anti-Aliasing=on"})
