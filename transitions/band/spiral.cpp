// Spiral: A turns about the frame centre while it shrinks into it, so every
// point of A travels on a spiral to the centre; B lies still behind it. A
// makes "Turns" full turns and is half its size at the middle.
//
// Each output pixel maps back into A by the frame's turn and scale, computed
// per pixel as written (the products of a row's Y once per row, those of a
// column's X once per band of rows). Along a row the mapped u and v only rise
// or only fall, so the pixels inside A (or, with anti-aliasing, not plainly
// B) form one run of columns, found by binary search over that arithmetic; B
// is copied on either side of it. With anti-aliasing the same search finds
// the columns that show A's bilinear sample alone, four pixels inside A:
// there the samples are worked out two at a time in SSE2, the arithmetic
// before any read, and only the few columns at A's border are blended one
// by one.
#include <emmintrin.h>

#include <algorithm>
#include <iterator>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/clamped_frame.h"
#include "raster/exact_trig.h"
#include "raster/pixel_rows.h"
#include "transitions/band/edge_runs.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/Spiral", .signature = "Spiral (ZE plug-in SDK effect)",
                             .displayName = "Spiral", .description = "Va turns spirally to Vb."};

ClipFields clip;
FieldIndex direction, turnsField, antiAliasing;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction", kTurnItems)
        .Help("Specifies the direction in which Va turns.")
        .Default(0),
    Long(&turnsField, "Turns", "Turns (0..4)", 0.0, 4.0)
        .Limits()
        .Help("Defines how often Va turns while it shrinks.")
        .Default(1),
    AntiAliasingField(&antiAliasing));

// A turned clockwise by theta and scaled by g about the frame centre.
class TurnedA {
 public:
  TurnedA(const FrameRows& rows, double theta, double g, bool antiAlias)
      : rows_(rows),
        a_{rows.inputA, rows.width, rows.height},
        g_(g),
        k1_(Cos(theta) / g),
        k2_(Sin(theta) / g),
        cx_(rows.width * 0.5),
        cy_(rows.height * 0.5),
        antiAlias_(antiAlias),
        scaledTaps_(rows.width <= kScaledTapsSide && rows.height <= kScaledTapsSide) {}

  // Bands of rows, each painted in tiles of columns: the turned A pixels a
  // tile reads lie close together and stay in the caches.
  void Paint() const {
    constexpr int32_t kBandRows = 64;
    RowRuns runs[kBandRows];
    // Where each of the eight searches of a row found its change, the guess
    // for the next row: A's edges move little from one row to the next.
    int32_t changes[8];
    std::fill(std::begin(changes), std::end(changes), rows_.width / 2);
    for (int32_t y0 = 0; y0 < rows_.height; y0 += kBandRows) {
      const int32_t n = std::min(kBandRows, rows_.height - y0);
      for (int32_t i = 0; i < n; ++i) {
        const int32_t y = y0 + i;
        const Row r = RowOf(y);
        runs[i] = {RunOf(r, changes), antiAlias_ ? WholeRunOf(r, changes + 4) : ColumnRange{0, 0}};
        PixelWord* out = rows_.Out(y);
        const PixelWord* b = rows_.B(y);
        CopyRun(out, b, runs[i].shown.begin);
        CopyRun(out + runs[i].shown.end, b + runs[i].shown.end, rows_.width - runs[i].shown.end);
      }
      for (int32_t x0 = 0; x0 < rows_.width; x0 += kTileColumns) {
        const ColumnRange tile{x0, std::min(x0 + kTileColumns, rows_.width)};
        if (antiAlias_) {
          PaintSoftTile(y0, runs, n, tile);
          continue;
        }
        for (int32_t i = 0; i < n; ++i) {
          const ColumnRange span = Intersect(runs[i].shown, tile);
          if (span.begin < span.end) PaintNearest(y0 + i, span);
        }
      }
    }
  }

 private:
  static constexpr int32_t kTileColumns = 128;
  static constexpr int32_t kTapRows = 8;  // rows of taps in flight in a tile
  // The widest and tallest frame whose taps come from one truncation: far
  // beyond any video frame, yet small enough for a test to reach the other way.
  static constexpr int32_t kScaledTapsSide = 1 << 16;

  struct Row {
    double yk2, yk1;  // Y x k2 and Y x k1
  };

  // The columns of a row that show A (or, with anti-aliasing, not plainly B),
  // and among them those that show A's sample alone.
  struct RowRuns {
    ColumnRange shown, whole;
  };

  Row RowOf(int32_t y) const {
    const double Y = (y + 0.5) - cy_;
    return {Y * k2_, Y * k1_};
  }

  // The columns of a row that show A (or, with anti-aliasing, not plainly B),
  // sought from four guesses.
  ColumnRange RunOf(const Row& r, int32_t* changes) const {
    const double w = rows_.width, h = rows_.height;
    const int32_t width = rows_.width;
    ColumnRange run{0, width};
    if (antiAlias_) {
      // Plainly B where e <= -0.5: e is the least of the four distances times
      // g, and a product with g > 0 keeps their order, so each distance must
      // leave B on its own.
      auto blended = [&](double d) { return MixWeight(0.5 - d * g_) < 256; };
      run = Intersect(run, HoldingRangeFrom(0, width, changes[0], [&](int32_t x) { return blended(U(x, r)); }));
      run = Intersect(run, HoldingRangeFrom(0, width, changes[1], [&](int32_t x) { return blended(w - U(x, r)); }));
      run = Intersect(run, HoldingRangeFrom(0, width, changes[2], [&](int32_t x) { return blended(V(x, r)); }));
      run = Intersect(run, HoldingRangeFrom(0, width, changes[3], [&](int32_t x) { return blended(h - V(x, r)); }));
    } else {
      run = Intersect(run, HoldingRangeFrom(0, width, changes[0], [&](int32_t x) { return 0 <= U(x, r); }));
      run = Intersect(run, HoldingRangeFrom(0, width, changes[1], [&](int32_t x) { return U(x, r) < w; }));
      run = Intersect(run, HoldingRangeFrom(0, width, changes[2], [&](int32_t x) { return 0 <= V(x, r); }));
      run = Intersect(run, HoldingRangeFrom(0, width, changes[3], [&](int32_t x) { return V(x, r) < h; }));
    }
    return run;
  }

  // With anti-aliasing, the columns whose e leaves no weight to B and whose
  // four sample pixels lie inside A: by the same order argument each
  // distance must do so on its own, together with its side's inside test,
  // and both rise (or fall) with the distance. Sought from four guesses.
  ColumnRange WholeRunOf(const Row& r, int32_t* changes) const {
    const double w = rows_.width, h = rows_.height;
    const double lastColumn = rows_.width - 1, lastRow = rows_.height - 1;
    const int32_t width = rows_.width;
    auto whole = [&](double d) { return MixWeight(0.5 - d * g_) == 0; };
    auto lowU = [&](int32_t x) { return whole(U(x, r)) && U(x, r) - 0.5 >= 0; };
    auto highU = [&](int32_t x) { return whole(w - U(x, r)) && U(x, r) - 0.5 < lastColumn; };
    auto lowV = [&](int32_t x) { return whole(V(x, r)) && V(x, r) - 0.5 >= 0; };
    auto highV = [&](int32_t x) { return whole(h - V(x, r)) && V(x, r) - 0.5 < lastRow; };
    ColumnRange run{0, width};
    run = Intersect(run, HoldingRangeFrom(0, width, changes[0], lowU));
    run = Intersect(run, HoldingRangeFrom(0, width, changes[1], highU));
    run = Intersect(run, HoldingRangeFrom(0, width, changes[2], lowV));
    return Intersect(run, HoldingRangeFrom(0, width, changes[3], highV));
  }

  // Inside A, where 0 <= u < W and 0 <= v < H: floor(u) and floor(v) are
  // their truncations. The places are worked out for a stretch of the row
  // before any is read, so that the reads, which cross A's rows, overlap.
  void PaintNearest(int32_t y, ColumnRange run) const {
    const Row r = RowOf(y);
    PixelWord* out = rows_.Out(y);
    constexpr int32_t kChunk = 256;
    size_t at[kChunk];
    const PixelWord* a = rows_.inputA;
    const size_t w = static_cast<size_t>(rows_.width);
    for (int32_t x0 = run.begin; x0 < run.end; x0 += kChunk) {
      const int32_t n = std::min(kChunk, run.end - x0);
      for (int32_t i = 0; i < n; ++i) {
        const auto column = static_cast<size_t>(static_cast<int32_t>(U(x0 + i, r)));
        at[i] = static_cast<size_t>(static_cast<int32_t>(V(x0 + i, r))) * w + column;
      }
      for (int32_t i = 0; i < n; ++i) out[x0 + i] = a[at[i]];
    }
  }

  // edge(B, bilinear sample of A, e) over a tile of a band's rows: the
  // taps of a row's part that shows the sample alone are found, and their
  // pixels asked of the cache, kTapRows - 1 rows before they are weighed:
  // the reads of a turned A cross its rows, and one row ahead leaves them
  // waiting on the memory.
  void PaintSoftTile(int32_t y0, const RowRuns* runs, int32_t n, ColumnRange tile) const {
    TapPair taps[kTapRows][kTileColumns / 2 + 1];
    const TileColumns columns = ColumnsOf(tile);
    // Within the tile even where the row shows nothing of A there.
    auto wholeOf = [&](int32_t i) {
      const ColumnRange span = Intersect(runs[i].shown, tile), whole = Intersect(runs[i].whole, span);
      if (span.begin >= span.end) return ColumnRange{tile.begin, tile.begin};
      return whole.begin < whole.end ? whole : ColumnRange{span.end, span.end};
    };
    for (int32_t i = 0; i < std::min(kTapRows - 1, n); ++i) FindTaps(y0 + i, wholeOf(i), columns, taps[i]);
    for (int32_t i = 0; i < n; ++i) {
      const int32_t later = i + kTapRows - 1;
      if (later < n) FindTaps(y0 + later, wholeOf(later), columns, taps[later % kTapRows]);
      const ColumnRange span = Intersect(runs[i].shown, tile);
      if (span.begin >= span.end) continue;
      const ColumnRange whole = wholeOf(i);
      PaintBlended(y0 + i, {span.begin, whole.begin});
      WeighTaps(y0 + i, whole, taps[i % kTapRows]);
      PaintBlended(y0 + i, {whole.end, span.end});
    }
  }

  // Pixel by pixel, where B or the frame's edge may weigh in.
  void PaintBlended(int32_t y, ColumnRange run) const {
    const Row r = RowOf(y);
    PixelWord* out = rows_.Out(y);
    const PixelWord* b = rows_.B(y);
    const double w = rows_.width, h = rows_.height;
    for (int32_t x = run.begin; x < run.end; ++x) {
      const double u = U(x, r), v = V(x, r);
      const double e = std::min(std::min(u, w - u), std::min(v, h - v)) * g_;
      out[x] = SoftEdge(b[x], [&] { return Bilinear(u, v); }, e);
    }
  }

  // Where the samples of two columns side by side lie: the places row x W
  // + c of the first of each one's four pixels in A, then their weights in
  // 256ths across (both) and up (both), each pair (256 - f) | f << 16 as
  // pmaddwd takes it.
  struct TapPair {
    uint64_t at[2];
    int32_t weights[4];
  };

  static int32_t WeightPair(int32_t f) { return (256 - f) | (f << 16); }
  static __m128i WeightPairs(__m128i f) {
    return _mm_or_si128(_mm_sub_epi32(_mm_set1_epi32(256), f), _mm_slli_epi32(f, 16));
  }

  // X x k1 and X x k2 of a tile's columns and the one after it, which the
  // taps found two at a time may reach; times 256 where the taps come from
  // u x 256 (a power of two: the same rounding throughout, scaled).
  struct TileColumns {
    int32_t begin;
    double xk1[kTileColumns + 1], xk2[kTileColumns + 1];
  };

  TileColumns ColumnsOf(ColumnRange tile) const {
    TileColumns columns;
    columns.begin = tile.begin;
    const double scale = scaledTaps_ ? 256.0 : 1.0;
    for (int32_t i = 0; i <= kTileColumns; ++i) {
      columns.xk1[i] = (X(tile.begin + i) * k1_) * scale;
      columns.xk2[i] = (X(tile.begin + i) * k2_) * scale;
    }
    return columns;
  }

  // The taps of a run of at most a tile, two columns at a time in SSE2
  // doubles, each value rounded as the scalar formulas round it; their
  // pixels are asked of the cache as they are found.
  //
  // Inside A, u - 0.5 >= 0 is exact, and so are (u - 0.5 - c) x 256 and that
  // plus 0.5: c x 256 + the weight is floor(u x 256 - 127.5), the difference
  // also exact while u x 256 stays below 2^52, and an int32 while the frame
  // is at most kScaledTapsSide pixels across and down. One truncation gives
  // both c and the weight, but for the weight 256, which it reads as c + 1 with
  // weight 0: the same sample, the next pixel weighed alone either way. It
  // is taken so wherever the pixel after c + 1 still lies in A (where it
  // does not, c is taken back), so no read leaves A.
  void FindTaps(int32_t y, ColumnRange run, const TileColumns& columns, TapPair* taps) const {
    const Row r = RowOf(y);
    const __m128d cx = _mm_set1_pd(cx_), cy = _mm_set1_pd(cy_);
    const __m128d yk2 = _mm_set1_pd(r.yk2), yk1 = _mm_set1_pd(r.yk1);
    const __m128i width = _mm_set1_epi32(rows_.width), zero = _mm_setzero_si128();
    const double* xk1 = columns.xk1 + (run.begin - columns.begin);
    const double* xk2 = columns.xk2 + (run.begin - columns.begin);
    const int32_t n = run.end - run.begin;
    const PixelWord* a = rows_.inputA;
    const size_t w = static_cast<size_t>(rows_.width);
    auto store = [&](int32_t i, __m128i at, __m128i fractions) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(taps[i / 2].at), at);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(taps[i / 2].weights), WeightPairs(fractions));
      // Only the first of the two is asked for: the second's pixels lie
      // beside them, or on lines the next pair asks for.
      const PixelWord* p0 = a + FirstPlace(at);
      __builtin_prefetch(p0);
      __builtin_prefetch(p0 + w);
    };
    // Row x W + c of the first pixels, c in lanes 0 and 1, rows in 2 and 3,
    // formed in 64 bits.
    auto places = [&](__m128i wholes) {
      const __m128i rowStart = _mm_mul_epu32(_mm_shuffle_epi32(wholes, _MM_SHUFFLE(3, 3, 2, 2)), width);
      return _mm_add_epi64(rowStart, _mm_unpacklo_epi32(wholes, zero));
    };
    if (scaledTaps_) {
      // u x 256 and v x 256, exactly, from the products times 256.
      const __m128d cx256 = _mm_set1_pd(cx_ * 256.0), cy256 = _mm_set1_pd(cy_ * 256.0);
      const __m128d yk2256 = _mm_set1_pd(r.yk2 * 256.0), yk1256 = _mm_set1_pd(r.yk1 * 256.0);
      const __m128d offset = _mm_set1_pd(127.5);
      const __m128i lastFirst = _mm_setr_epi32(rows_.width - 2, rows_.width - 2, rows_.height - 2, rows_.height - 2);
      for (int32_t i = 0; i < n; i += 2) {
        const __m128d u256 = _mm_add_pd(cx256, _mm_sub_pd(_mm_loadu_pd(xk1 + i), yk2256));
        const __m128d v256 = _mm_add_pd(cy256, _mm_add_pd(_mm_loadu_pd(xk2 + i), yk1256));
        const __m128i scaled = _mm_unpacklo_epi64(_mm_cvttpd_epi32(_mm_sub_pd(u256, offset)),
                                                  _mm_cvttpd_epi32(_mm_sub_pd(v256, offset)));
        __m128i wholes = _mm_srli_epi32(scaled, 8);
        wholes = _mm_add_epi32(wholes, _mm_cmpgt_epi32(wholes, lastFirst));
        store(i, places(wholes), _mm_sub_epi32(scaled, _mm_slli_epi32(wholes, 8)));
      }
      return;
    }
    const __m128d half = _mm_set1_pd(0.5), scale = _mm_set1_pd(256.0);
    for (int32_t i = 0; i < n; i += 2) {
      const __m128d us = _mm_sub_pd(_mm_add_pd(cx, _mm_sub_pd(_mm_loadu_pd(xk1 + i), yk2)), half);
      const __m128d vs = _mm_sub_pd(_mm_add_pd(cy, _mm_add_pd(_mm_loadu_pd(xk2 + i), yk1)), half);
      // Inside A both are positive: truncation is floor.
      const __m128i c = _mm_cvttpd_epi32(us), row = _mm_cvttpd_epi32(vs);
      auto fraction256 = [&](__m128d s, __m128i whole) {
        return _mm_cvttpd_epi32(_mm_add_pd(_mm_mul_pd(_mm_sub_pd(s, _mm_cvtepi32_pd(whole)), scale), half));
      };
      store(i, places(_mm_unpacklo_epi64(c, row)), _mm_unpacklo_epi64(fraction256(us, c), fraction256(vs, row)));
    }
  }

  // The place in the low 64 bits, all of which size_t holds.
  static size_t FirstPlace(__m128i at) {
#if defined(__x86_64__)
    return static_cast<size_t>(_mm_cvtsi128_si64(at));
#else
    return static_cast<size_t>(_mm_cvtsi128_si32(at));  // a 32-bit place: the upper half is 0
#endif
  }

  // The samples of a run's taps, two at a time.
  void WeighTaps(int32_t y, ColumnRange run, const TapPair* taps) const {
    const PixelWord* a = rows_.inputA;
    const size_t width = static_cast<size_t>(rows_.width);
    PixelWord* out = rows_.Out(y) + run.begin;
    const int32_t n = run.end - run.begin;
    const TapPair* t = taps;
    for (const PixelWord* end = out + (n & ~1); out != end; out += 2, ++t) {
      const __m128i w = _mm_loadu_si128(reinterpret_cast<const __m128i*>(t->weights));
      const __m128i first = Weigh(a + static_cast<size_t>(t->at[0]), width,
                                  _mm_shuffle_epi32(w, _MM_SHUFFLE(0, 0, 0, 0)),
                                  _mm_shuffle_epi32(w, _MM_SHUFFLE(2, 2, 2, 2)));
      const __m128i second = Weigh(a + static_cast<size_t>(t->at[1]), width,
                                   _mm_shuffle_epi32(w, _MM_SHUFFLE(1, 1, 1, 1)),
                                   _mm_shuffle_epi32(w, _MM_SHUFFLE(3, 3, 3, 3)));
      const __m128i bytes = _mm_packs_epi32(first, second);
      _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(bytes, bytes));
    }
    if (n & 1) {
      *out = Pixel(Weigh(a + static_cast<size_t>(t->at[0]), width, _mm_set1_epi32(t->weights[0]),
                         _mm_set1_epi32(t->weights[2])));
    }
  }

  // The bilinear sample of A; where its four pixels all lie inside the frame
  // no read needs holding.
  uint32_t Bilinear(double u, double v) const {
    const double us = u - 0.5, vs = v - 0.5;
    if (!(us >= 0 && us < rows_.width - 1 && vs >= 0 && vs < rows_.height - 1)) return a_.Bilinear(u, v);
    const int32_t c = static_cast<int32_t>(us), row = static_cast<int32_t>(vs);
    const int32_t fx = static_cast<int32_t>((us - c) * 256.0 + 0.5);
    const int32_t fy = static_cast<int32_t>((vs - row) * 256.0 + 0.5);
    const size_t width = static_cast<size_t>(rows_.width);
    const size_t at = static_cast<size_t>(row) * width + static_cast<size_t>(c);
    return Pixel(Weigh(rows_.inputA + at, width, _mm_set1_epi32(WeightPair(fx)), _mm_set1_epi32(WeightPair(fy))));
  }

  static uint32_t Pixel(__m128i bytes) {
    const __m128i words = _mm_packs_epi32(bytes, bytes);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
  }

  // The four pixels of taps inside A weighed, a byte in each 32-bit lane.
  // The sum of the four products is exact in whichever order it is formed:
  // first up, each byte of the left and of the right pixels as
  // P0 x (256 - fy) + P1 x fy; then across. Both sums are below 2^16, and
  // less 2^15 they fit pmaddwd's signed halves; the 2^15 x 256 so taken off
  // comes back with the 2^15 of the rounding.
  static __m128i Weigh(const PixelWord* p0, size_t width, __m128i wx, __m128i wy) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i rows = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p0)),
                                           _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p0 + width)));
    const __m128i left = _mm_madd_epi16(_mm_unpacklo_epi8(rows, zero), wy);
    const __m128i right = _mm_madd_epi16(_mm_unpackhi_epi8(rows, zero), wy);
    const __m128i pairs = _mm_xor_si128(_mm_or_si128(left, _mm_slli_epi32(right, 16)), _mm_set1_epi16(INT16_MIN));
    const __m128i sum = _mm_add_epi32(_mm_madd_epi16(pairs, wx), _mm_set1_epi32(32768 * 257));
    return _mm_srli_epi32(sum, 16);
  }

  double X(int32_t x) const { return (x + 0.5) - cx_; }
  double U(int32_t x, const Row& r) const { return cx_ + (X(x) * k1_ - r.yk2); }
  double V(int32_t x, const Row& r) const { return cy_ + (X(x) * k2_ + r.yk1); }

  const FrameRows& rows_;
  ClampedFrame a_;
  double g_, k1_, k2_, cx_, cy_;
  bool antiAlias_;
  bool scaledTaps_;  // c x 256 + the weight is found as an int32
};

int32_t SpiralRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const bool counterClockwise = host.Field(direction) == 1;
  const int32_t turns = host.Field(turnsField);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (FrameDoneAtTheEnds(ri)) return 1;

  const double p = ri->Progress;
  const double theta = ((p * turns) * 2) * kPi;
  const FrameRows rows = FrameRows::Of(ri);
  const TurnedA turned(rows, counterClockwise ? -theta : theta, 1 - p, antiAlias);
  turned.Paint();
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Spiral, kTexts, kFields)
KR_TEST_PROFILE("Spiral", .heavier = {"Turns=4", "Anti-Aliasing=on"})
