// Peel: A is a sheet lying on B, peeled off from a corner. The fold line runs
// across the frame's diagonal; at the fold the sheet curls round a cylinder of
// radius R (up, over the top, then back flat with its back upward). From the
// start corner one sees B (with a soft shadow near the curl), the curl's rim
// and top, the flat flap showing the back, and the unpeeled A.
#include <emmintrin.h>

#include <algorithm>
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/clamped_frame.h"
#include "raster/exact_trig.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_mix.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/threed/sheet.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Peel", .signature = "Peel (Kr plug-in SDK transition)",
                             .displayName = "Peel", .description = "Peels Va like a sheet and shows Vb."};

ClipFields clip;
FieldIndex corner, color, transparent, shadow, antiAlias;

constexpr auto kFields = FieldTable(clip,
    Selector(&corner, "Corner", "Corner",
             {{"Top Left", 0}, {"Top Right", 1}, {"Bottom Left", 2}, {"Bottom Right", 3}})
        .Help("Specifies the starting point for the transition.")
        .Default(3),
    Color(&color, "Color", "Back Color").Help("Defines the color of the back of the sheet.").DefaultColor(224, 224, 224),
    Bool(&transparent, "Transparent", "Transparent")
        .HideCurve()
        .Help("Shows Va mirrored and see-through on the back of the sheet.")
        .Default(0),
    Bool(&shadow, "Shadow", "Shadow").Help("Casts a soft shadow of the curl onto Vb.").Default(1),
    AntiAliasingField(&antiAlias, "IsAntiAlias"));

// The weight of shade(P, 1), which keeps P.
constexpr uint32_t kUnshaded = 256;

struct Settings {
  int32_t corner;
  uint32_t back;
  bool transparent, shadow, antiAlias;
};

// asin(q) for 0 <= q <= 1 within a few ulps (below 4e-16), from SSE2
// arithmetic alone: the library's double arc sine costs far more on the
// 32-bit build. Up to 1/2, q + q^3 P(q^2) with P fitted to (asin(s) - s) / s^3
// on [0, 1/4] (error below 3e-16); above, asin(q) = pi/2 - 2 asin(s) with
// s = sqrt((1 - q) / 2), again at most 1/2. A NaN gives a NaN. Two at a
// time, each lane rounded as the same double arithmetic one at a time rounds.
__m128d QuickAsin(__m128d q) {
  auto series = [](__m128d s) {
    // P's coefficients from the constant term up, summed in pairs, fours
    // and eights (independent products, not one long chain of them).
    static constexpr double c[] = {0.1666666666666665,   0.07500000000020764,  0.044642857103423646,
                                   0.03038194736709848,  0.02237204763174451,  0.017355259955786323,
                                   0.013929652902326633, 0.011875494382636922, 0.0078029494773533175,
                                   0.01603551434914882,  -0.010749050339697808, 0.028169218060881414};
    auto pair = [&](int i, __m128d z) { return _mm_add_pd(_mm_set1_pd(c[i]), _mm_mul_pd(_mm_set1_pd(c[i + 1]), z)); };
    const __m128d z = _mm_mul_pd(s, s), z2 = _mm_mul_pd(z, z), z4 = _mm_mul_pd(z2, z2);
    const __m128d p0to3 = _mm_add_pd(pair(0, z), _mm_mul_pd(pair(2, z), z2));
    const __m128d p4to7 = _mm_add_pd(pair(4, z), _mm_mul_pd(pair(6, z), z2));
    const __m128d p8to11 = _mm_add_pd(pair(8, z), _mm_mul_pd(pair(10, z), z2));
    const __m128d p = _mm_add_pd(_mm_add_pd(p0to3, _mm_mul_pd(p4to7, z4)), _mm_mul_pd(p8to11, _mm_mul_pd(z4, z4)));
    return _mm_add_pd(s, _mm_mul_pd(s, _mm_mul_pd(z, p)));
  };
  // Lanes up to 1/2 take the series of q, the others (a NaN among them) that of s.
  const __m128d low = _mm_cmple_pd(q, _mm_set1_pd(0.5));
  const __m128d s = _mm_sqrt_pd(_mm_mul_pd(_mm_sub_pd(_mm_set1_pd(1), q), _mm_set1_pd(0.5)));
  const __m128d summed = series(_mm_or_pd(_mm_and_pd(low, q), _mm_andnot_pd(low, s)));
  const __m128d high = _mm_sub_pd(_mm_set1_pd(kPi / 2), _mm_mul_pd(_mm_set1_pd(2), summed));
  return _mm_or_pd(_mm_and_pd(low, summed), _mm_andnot_pd(low, high));
}

// mix(P, Q, f), with the two ends of an edge without anti-aliasing taken at once.
uint32_t Over(uint32_t p, uint32_t q, double f) {
  if (f == 0) return p;
  if (f == 1) return q;
  return Mix(p, q, f);
}

// The first column x in [0, count) with reached(x) (below).
template <typename Reached>
int32_t FirstColumn(int32_t count, Reached reached);

class Sheet {
 public:
  Sheet(const Settings& s, const FrameRows& f, double p)
      : s_(s), a_{f.inputA, f.width, f.height}, w_(f.width), h_(f.height) {
    // Start corner K0 and opposite corner K1; a corner beyond 2 is Bottom Right.
    const double w = w_, h = h_;
    double k0x = w, k0y = 0, k1x = 0, k1y = h;
    if (s.corner == 0) k0x = 0, k0y = h, k1x = w, k1y = 0;
    if (s.corner == 1) k0x = w, k0y = h, k1x = 0, k1y = 0;
    if (s.corner == 2) k0x = 0, k0y = 0, k1x = w, k1y = h;
    const double d = std::sqrt(w * w + h * h);
    nx_ = (k0x - k1x) / d;
    ny_ = (k0y - k1y) / d;
    r_ = d / 16;
    piR_ = kPi * r_;
    const double s0 = k0x * nx_ + k0y * ny_;
    f_ = s0 - p * ((d + r_) + 1);
    clearOfFlap_ = f_ + piR_ - s0 - 2;
    margin_ = 1e-9 * (d + 1024);
  }

  double Nx() const { return nx_; }
  double Ny() const { return ny_; }
  double Fold() const { return f_; }

  // What a pixel at distance delta from the fold surely shows, whatever the
  // rest: A where the sheet still lies (delta <= 0) and even the flat flap's
  // material would lie beyond the start corner (S(m).n = F + pi R - delta
  // exceeds the frame's reach s0 by more than a pixel), B from 2R + 1 on
  // (past the curl and its shadow). Where the sheet has lifted, B and the
  // lower curl show whatever the flap does.
  enum class Sure { A, Either, B };
  Sure Surely(double delta) const {
    if (delta <= 0 && delta < clearOfFlap_) return Sure::A;
    return delta >= 2 * r_ + 1 ? Sure::B : Sure::Either;
  }

  // Of a pixel of the curl band: q = min(delta, R) / R, the quick arc sine
  // of q, the weight of the shade 1/2 + sqrt(1 - q^2) / 2 and that of the
  // shadow beneath, 1/2 + clamp((delta - R) / R, 0, 1) / 2.
  struct Arc {
    double q, quickAsin;
    uint32_t shade, shadow;
  };

  // The arcs of two pixels, delta from the fold line each.
  void Arcs(__m128d delta, Arc* two) const {
    const __m128d r = _mm_set1_pd(r_), half = _mm_set1_pd(0.5);
    const __m128d q = _mm_div_pd(_mm_min_pd(r, delta), r);  // minpd(R, delta) is std::min(delta, R)
    const __m128d g = _mm_add_pd(half, _mm_mul_pd(half, _mm_sqrt_pd(_mm_sub_pd(_mm_set1_pd(1), _mm_mul_pd(q, q)))));
    // Clamped as max, then min: (delta - R) / R is never a NaN here, nor -0.
    const __m128d dark = _mm_div_pd(_mm_sub_pd(delta, r), r);
    const __m128d darkClamped = _mm_min_pd(_mm_max_pd(dark, _mm_setzero_pd()), _mm_set1_pd(1));
    const __m128d beneath = _mm_add_pd(half, _mm_mul_pd(half, darkClamped));
    double qs[2], as[2], gs[2], ss[2];
    _mm_storeu_pd(qs, q);
    _mm_storeu_pd(as, QuickAsin(q));
    _mm_storeu_pd(gs, g);
    _mm_storeu_pd(ss, beneath);
    for (int i = 0; i < 2; ++i) two[i] = {qs[i], as[i], ShadeWeight(gs[i]), ShadeWeight(ss[i])};
  }

  // Columns [x0, x1) of a row, all with delta <= 0: where the sheet still
  // lies: A, under the flat flap's top layer (unshaded) where the flap
  // reaches. A loop of its own holds only what the flap needs; four columns
  // at a time where the flap covers all four whole.
  template <bool kTransparent, bool kAntiAlias>
  __attribute__((noinline)) void FlapRun(PixelWord* out, const PixelWord* rowA, const double* along, double across,
                                         double vy, int32_t x0, int32_t x1) const {
    const double fold = f_, piR = piR_, nx = nx_, ny = ny_, w = w_, h = h_;
    const uint32_t back = s_.back;
    const ClampedFrame a = a_;
    auto one = [&](int32_t x) {
      const double delta = (along[x] + across) - fold;
      const double m = (piR - delta) - delta;  // At(vx, vy, piR - delta, delta)
      const double sx = (x + 0.5) + m * nx, sy = vy + m * ny;
      double coverage;
      if (kAntiAlias) {
        coverage = std::clamp(std::min(std::min(sx, w - sx), std::min(sy, h - sy)) + 0.5, 0.0, 1.0);
      } else {
        coverage = 0 <= sx && sx < w && 0 <= sy && sy < h ? 1 : 0;
      }
      const uint32_t col = rowA[x];
      if (coverage == 0) {
        out[x] = col;
      } else if (kTransparent) {  // the shade of weight 256 keeps A's pixel
        out[x] = Over(col, MixWeighted(col, a.Nearest(sx, sy), 128), coverage);
      } else {
        out[x] = Over(col, back, coverage);
      }
    };
    // S(m) of two columns, and whether the flap covers both whole: then
    // S(m) lies in [0, w) x [0, h), where truncation is the floor and the
    // frame's clamp keeps the place. minpd(b, a) is std::min(a, b), NaNs
    // included; a NaN fails every test and goes the single way.
    const __m128d vFold = _mm_set1_pd(fold), vPiR = _mm_set1_pd(piR), vAcross = _mm_set1_pd(across);
    const __m128d vNx = _mm_set1_pd(nx), vNy = _mm_set1_pd(ny), vVy = _mm_set1_pd(vy);
    const __m128d vW = _mm_set1_pd(w), vH = _mm_set1_pd(h), vHalf = _mm_set1_pd(0.5), vOne = _mm_set1_pd(1);
    auto two = [&](int32_t x, __m128i* place) {
      const __m128d delta = _mm_sub_pd(_mm_add_pd(_mm_loadu_pd(along + x), vAcross), vFold);
      const __m128d m = _mm_sub_pd(_mm_sub_pd(vPiR, delta), delta);
      const __m128d sx = _mm_add_pd(_mm_add_pd(_mm_set1_pd(x), _mm_setr_pd(0.5, 1.5)), _mm_mul_pd(m, vNx));
      const __m128d sy = _mm_add_pd(vVy, _mm_mul_pd(m, vNy));
      __m128d whole;
      if (kAntiAlias) {
        const __m128d nearest = _mm_min_pd(_mm_min_pd(_mm_sub_pd(vH, sy), sy), _mm_min_pd(_mm_sub_pd(vW, sx), sx));
        const __m128d c = _mm_add_pd(nearest, vHalf);
        whole = _mm_cmpge_pd(c, vOne);
      } else {
        whole = _mm_and_pd(_mm_and_pd(_mm_cmple_pd(_mm_setzero_pd(), sx), _mm_cmplt_pd(sx, vW)),
                           _mm_and_pd(_mm_cmple_pd(_mm_setzero_pd(), sy), _mm_cmplt_pd(sy, vH)));
      }
      if (kTransparent) {
        const __m128i col = _mm_cvttpd_epi32(sx), row = _mm_cvttpd_epi32(sy);
        *place = _mm_unpacklo_epi32(col, row);  // col0 row0 col1 row1
      }
      return _mm_movemask_pd(whole);
    };
    const __m128i vBack = _mm_set1_epi32(static_cast<int32_t>(back));
    int32_t x = x0;
    for (; x + 4 <= x1; x += 4) {
      __m128i p01 = _mm_setzero_si128(), p23 = _mm_setzero_si128();
      if ((two(x, &p01) & two(x + 2, &p23)) != 3) {
        for (int32_t i = 0; i < 4; ++i) one(x + i);
        continue;
      }
      if (!kTransparent) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), vBack);
        continue;
      }
      // Coverage 1: Over gives mix(col, A(S), 1/2), each byte (col + A + 1) >> 1.
      alignas(16) int32_t at[8];
      _mm_store_si128(reinterpret_cast<__m128i*>(at), p01);
      _mm_store_si128(reinterpret_cast<__m128i*>(at + 4), p23);
      const size_t stride = static_cast<size_t>(a.width);
      auto read = [&](int i) {
        const size_t place = static_cast<size_t>(at[2 * i + 1]) * stride + static_cast<size_t>(at[2 * i]);
        return static_cast<int32_t>(a.pixels[place]);
      };
      const __m128i flap = _mm_setr_epi32(read(0), read(1), read(2), read(3));
      const __m128i col = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rowA + x));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), _mm_avg_epu8(col, flap));
    }
    for (; x < x1; ++x) one(x);
  }

  // Columns [x0, x1) of a row, all with delta > 0: the curl's, painted by
  // Pixel, then (beyond the curl, where the rim has no weight; delta rises
  // or falls along the row) B under the shadow, four columns at a time.
  __attribute__((noinline)) void LiftedRun(PixelWord* out, const PixelWord* rowB,
                                           const double* along, double across, double vy, int32_t x0,
                                           int32_t x1) const {
    const bool rising = nx_ > 0;
    auto beyond = [&](int32_t x) { return MixWeight(Rim((along[x] + across) - f_)) == 0; };
    const int32_t split = x0 + FirstColumn(x1 - x0, [&](int32_t i) { return beyond(x0 + i) == rising; });
    const int32_t curl0 = rising ? x0 : split, curl1 = rising ? split : x1;
    const int32_t shadow0 = rising ? split : x0, shadow1 = rising ? x1 : split;
    // The curl's arcs a stretch of columns at a time, two at a time (the
    // last of an odd stretch twice, only a stretch short of kStretch being
    // odd), ahead of the pixels that use them.
    const __m128d vAcross = _mm_set1_pd(across), fold = _mm_set1_pd(f_);
    constexpr int32_t kStretch = 32;
    Arc arcs[kStretch];
    for (int32_t c = curl0; c < curl1; c += kStretch) {
      const int32_t n = std::min(kStretch, curl1 - c);
      for (int32_t i = 0; i < n; i += 2) {
        const int32_t next = i + 1 < n ? c + i + 1 : c + i;
        Arcs(_mm_sub_pd(_mm_add_pd(_mm_setr_pd(along[c + i], along[next]), vAcross), fold), arcs + i);
      }
      for (int32_t i = 0; i < n; ++i) {
        const int32_t x = c + i;
        out[x] = Pixel(x + 0.5, vy, (along[x] + across) - f_, rowB[x], &arcs[i]);
      }
    }
    if (!s_.shadow) {
      CopyRun(out + shadow0, rowB + shadow0, shadow1 - shadow0);
      return;
    }
    // Two columns: the shade weight beneath, 256 (which keeps the pixel)
    // where S(0) lies outside the frame and casts no shadow.
    const __m128d r = _mm_set1_pd(r_), half = _mm_set1_pd(0.5);
    const __m128d nx = _mm_set1_pd(nx_), ny = _mm_set1_pd(ny_), vVy = _mm_set1_pd(vy), w = _mm_set1_pd(w_);
    const __m128d h = _mm_set1_pd(h_), zero = _mm_setzero_pd();
    auto weights = [&](int32_t x) {
      const __m128d delta = _mm_sub_pd(_mm_add_pd(_mm_loadu_pd(along + x), vAcross), fold);
      const __m128d back = _mm_sub_pd(zero, delta);  // At(vx, vy, 0, delta)
      const __m128d sx = _mm_add_pd(_mm_add_pd(_mm_set1_pd(x), _mm_setr_pd(0.5, 1.5)), _mm_mul_pd(back, nx));
      const __m128d sy = _mm_add_pd(vVy, _mm_mul_pd(back, ny));
      const __m128d inside = _mm_and_pd(_mm_and_pd(_mm_cmple_pd(zero, sx), _mm_cmplt_pd(sx, w)),
                                        _mm_and_pd(_mm_cmple_pd(zero, sy), _mm_cmplt_pd(sy, h)));
      // Inside the frame delta is finite: (delta - R) / R is no NaN, nor -0,
      // and clamped as max, then min; g lies in [1/2, 1], where MixWeight
      // is the truncation of g x 256 + 1/2.
      const __m128d dark = _mm_div_pd(_mm_sub_pd(delta, r), r);
      const __m128d g = _mm_add_pd(half, _mm_mul_pd(half, _mm_min_pd(_mm_max_pd(dark, zero), _mm_set1_pd(1))));
      const __m128d a = _mm_add_pd(_mm_mul_pd(g, _mm_set1_pd(256)), half);
      return _mm_cvttpd_epi32(_mm_or_pd(_mm_and_pd(inside, a), _mm_andnot_pd(inside, _mm_set1_pd(256))));
    };
    const __m128i alpha = _mm_set1_epi32(static_cast<int32_t>(0xFF000000u)), round = _mm_set1_epi16(128);
    int32_t x = shadow0;
    for (; x + 4 <= shadow1; x += 4) {
      // a0 a1 a2 a3, each spread over the four 16-bit lanes of its pixel.
      const __m128i a = _mm_unpacklo_epi64(weights(x), weights(x + 2));
      const __m128i a01 = _mm_unpacklo_epi32(a, a), a23 = _mm_unpackhi_epi32(a, a);
      const __m128i lo = _mm_shufflelo_epi16(_mm_shufflehi_epi16(a01, 0xA0), 0xA0);
      const __m128i hi = _mm_shufflelo_epi16(_mm_shufflehi_epi16(a23, 0xA0), 0xA0);
      const __m128i col = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rowB + x));
      // Each byte P x a + 128 stays below 2^16 (a <= 256), so 16-bit lanes hold it.
      const __m128i colLo = _mm_unpacklo_epi8(col, _mm_setzero_si128());
      const __m128i colHi = _mm_unpackhi_epi8(col, _mm_setzero_si128());
      const __m128i shadedLo = _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(colLo, lo), round), 8);
      const __m128i shadedHi = _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(colHi, hi), round), 8);
      const __m128i shaded = _mm_packus_epi16(shadedLo, shadedHi);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x),
                       _mm_or_si128(_mm_and_si128(col, alpha), _mm_andnot_si128(alpha, shaded)));
    }
    for (; x < shadow1; ++x) out[x] = Pixel(x + 0.5, vy, (along[x] + across) - f_, rowB[x], nullptr);
  }

  // The weight of the curl's layers at distance delta from the fold: 1
  // inside the curl's band, 0 beyond, with a soft edge when anti-aliased.
  double Rim(double delta) const {
    return s_.antiAlias ? std::clamp((r_ - delta) + 0.5, 0.0, 1.0) : (delta < r_ ? 1.0 : 0.0);
  }

  // The pixel at centre (vx, vy) where the sheet has lifted, delta from
  // the fold line (above 0, or a NaN), over B; the column's arcs are read
  // only within the curl band (none need be given beyond it).
  __attribute__((always_inline)) uint32_t Pixel(double vx, double vy, double delta, uint32_t pixelB,
                                                const Arc* arc) const {
    uint32_t col = pixelB;
    const bool shadowed = s_.shadow && Inside(At(vx, vy, 0, delta));
    const double rim = Rim(delta);
    // Beyond the curl band no layer gets any weight: mix with 0 keeps col.
    if (MixWeight(rim) == 0) {
      return shadowed ? ShadeWeighted(col, ShadeWeight(0.5 + 0.5 * std::clamp((delta - r_) / r_, 0.0, 1.0))) : col;
    }
    if (shadowed) col = ShadeWeighted(col, arc->shadow);
    // The quick arc sine lies within a few ulps of the exact one, which
    // moves S(m) by far less than the margin: unless a floor or a weight of
    // the result lies within the margin of its step, both give this pixel.
    Watch watch(margin_);
    const uint32_t quick = Curl(col, vx, vy, delta, arc->quickAsin, arc->shade, rim, &watch);
    return watch.Close() ? Curl(col, vx, vy, delta, Asin(arc->q), arc->shade, rim, nullptr) : quick;
  }

 private:
  struct Point {
    double x, y;
  };

  // Notes a value whose floor, or whose comparison with a whole number,
  // decides the pixel when it lies within the margin of a whole number.
  class Watch {
   public:
    explicit Watch(double margin) : margin_(margin) {}
    void Whole(double v) {
      // Below 2^51 adding and taking off 1.5 x 2^52 rounds to the nearest
      // whole number (the render runs with rounding to nearest).
      constexpr double kRound = 6755399441055744.0;
      if (!(std::abs(v) < 1e9) || std::abs(v - ((v + kRound) - kRound)) < margin_) close_ = true;
    }
    bool Close() const { return close_; }

   private:
    double margin_;
    bool close_ = false;
  };

  // S(m): where the material at distance m from the fold came from.
  Point At(double vx, double vy, double m, double delta) const {
    return {vx + (m - delta) * nx_, vy + (m - delta) * ny_};
  }

  bool Inside(Point s) const { return 0 <= s.x && s.x < w_ && 0 <= s.y && s.y < h_; }

  double Coverage(Point s) const {
    if (!s_.antiAlias) return Inside(s) ? 1 : 0;
    return std::clamp(std::min(std::min(s.x, w_ - s.x), std::min(s.y, h_ - s.y)) + 0.5, 0.0, 1.0);
  }

  // The coverage of the material at s, times `rim`, watched when asked.
  double Covered(Point s, double rim, Watch* watch) const {
    const double coverage = Coverage(s) * rim;
    if (watch) {
      watch->Whole(s.x);
      watch->Whole(s.y);
      // Without anti-aliasing the coverage is 0 or 1, never close to a step.
      if (s_.antiAlias) watch->Whole(coverage * 256 + 0.5);
    }
    return coverage;
  }

  // The curl at arc angle `as`: the lower curl, front side up, where the top curl has no material; then the top.
  __attribute__((always_inline)) uint32_t Curl(uint32_t col, double vx, double vy, double delta, double as,
                                               uint32_t shade, double rim, Watch* watch) const {
    const Point lower = At(vx, vy, r_ * as, delta);
    const double lowerCoverage = Covered(lower, rim, watch);
    if (MixWeight(lowerCoverage) != 0) col = Over(col, ShadeWeighted(a_.Nearest(lower.x, lower.y), shade), lowerCoverage);
    return Top(col, At(vx, vy, r_ * (kPi - as), delta), shade, rim, watch);
  }

  // The top layer (material at s, shade weight, coverage factor) over col.
  __attribute__((always_inline)) uint32_t Top(uint32_t col, Point s, uint32_t shade, double rim, Watch* watch) const {
    const double coverage = Covered(s, rim, watch);
    if (coverage == 0) return col;
    if (!s_.transparent) return Over(col, shade == kUnshaded ? s_.back : ShadeWeighted(s_.back, shade), coverage);
    return Over(col, MixWeighted(col, ShadeWeighted(a_.Nearest(s.x, s.y), shade), 128), coverage);
  }

  Settings s_;
  ClampedFrame a_;
  int32_t w_, h_;
  double nx_ = 0, ny_ = 0, r_ = 0, piR_ = 0, f_ = 0;
  double clearOfFlap_ = 0;
  double margin_ = 0;  // far beyond what an ulp of the arc sine moves, far below a pixel
};

// The first column x in [0, count) with reached(x), for reached false up to
// some column and true from there on; count when there is none.
template <typename Reached>
int32_t FirstColumn(int32_t count, Reached reached) {
  int32_t lo = 0, hi = count;
  while (lo < hi) {
    const int32_t mid = lo + (hi - lo) / 2;
    if (reached(mid)) {
      hi = mid;
    } else {
      lo = mid + 1;
    }
  }
  return lo;
}

int32_t PeelRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  Settings s{};
  s.corner = host.Field(corner);
  s.back = host.PenColor(color);
  s.transparent = host.Field(transparent) != 0;
  s.shadow = host.Field(shadow) != 0;
  s.antiAlias = host.Field(antiAlias) != 0;
  if (FrameDoneAtTheEnds(ri)) return 1;
  const double p = ri->Progress;
  const FrameRows f = FrameRows::Of(ri);
  const Sheet sheet(s, f, p);
  // delta = ((vx nx) + (vy ny)) - F: the first product per column, the second per row.
  Scratch<double> along = AllocateScratch<double>(static_cast<size_t>(f.width));
  if (!along) {  // no memory for the column table: the frame shows A
    ShowA(f);
    return 1;
  }
  for (int32_t x = 0; x < f.width; ++x) along[x] = (x + 0.5) * sheet.Nx();
  // delta is monotone along a row (nx is never 0), so the pixels it surely
  // decides form a run at each end.
  const bool rising = sheet.Nx() > 0;
  auto flapRun = s.transparent ? (s.antiAlias ? &Sheet::FlapRun<true, true> : &Sheet::FlapRun<true, false>)
                               : (s.antiAlias ? &Sheet::FlapRun<false, true> : &Sheet::FlapRun<false, false>);
  for (int32_t y = 0; y < f.height; ++y) {
    const double vy = y + 0.5;
    const double across = vy * sheet.Ny();
    const PixelWord* rowA = f.A(y);
    const PixelWord* rowB = f.B(y);
    PixelWord* out = f.Out(y);
    auto delta = [&](int32_t x) { return (along[x] + across) - sheet.Fold(); };
    auto rank = [&](int32_t x) {  // rises along the row
      const Sheet::Sure sure = sheet.Surely(delta(x));
      return rising ? static_cast<int>(sure) : 2 - static_cast<int>(sure);
    };
    const int32_t begin = FirstColumn(f.width, [&](int32_t x) { return rank(x) >= 1; });
    const int32_t end = FirstColumn(f.width, [&](int32_t x) { return rank(x) >= 2; });
    CopyRun(out, rising ? rowA : rowB, begin);
    // Within [begin, end) the columns with delta <= 0 (the flap's) form a
    // run at one end, the curl's and the shadow's the rest.
    const int32_t lifted = begin + FirstColumn(end - begin, [&](int32_t i) {
                             return !(delta(begin + i) <= 0) == rising;
                           });
    const int32_t flap0 = rising ? begin : lifted, flap1 = rising ? lifted : end;
    const int32_t curl0 = rising ? lifted : begin, curl1 = rising ? end : lifted;
    (sheet.*flapRun)(out, rowA, along.get(), across, vy, flap0, flap1);
    sheet.LiftedRun(out, rowB, along.get(), across, vy, curl0, curl1);
    CopyRun(out + end, (rising ? rowB : rowA) + end, f.width - end);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Peel, kTexts, kFields)
KR_TEST_PROFILE("Peel", .heavier = {"Transparent=on", "Shadow=on", "IsAntiAlias=on", "Corner=0"})
