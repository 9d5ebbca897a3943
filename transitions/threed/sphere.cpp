// Sphere: A curls up into a ball, the ball turns so that its picture scrolls
// over to B in the chosen direction, and the ball opens out again into B.
// Every source pixel is projected forward onto the ball and written where it
// lands; what no pixel reaches keeps the background colour.
#include <emmintrin.h>

#include <algorithm>
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "raster/travel.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Sphere", .signature = "Sphere (Kr plug-in SDK effect)",
                             .displayName = "Sphere", .description = "Va turns into a spinning sphere showing Vb."};

ClipFields clip;
FieldIndex direction, color;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Spin Direction", kTravelItems)
        .Help("Specifies the direction of the spinning process.")
        .Default(0),
    Color(&color, "Color", "Background Color").Help("Defines the background color.").DefaultColor(0, 0, 0));

// The radius factors at the start and end (2.1) and of the ball (0.6366).
constexpr double kOpen = 2.1, kBall = 0.6366;

// The ball at one Progress: its radii and what its picture shows. The phase
// follows the horizontal travel whatever the direction; a vertical scroll
// follows the vertical travel.
struct Ball {
  enum class Shows { A, Scroll, B };
  double rX, rY;
  Shows shows;
  int64_t o;  // the scroll, in columns or rows
};

Ball BallAt(double w, double h, double progress, bool vertical) {
  const double Rx = kOpen * w - kBall * w, Ry = kOpen * h - kBall * h;
  const int32_t P = TruncToInt32(10000.0 * progress);
  const int32_t pos = TruncToInt32((2.0 * Rx + w) / 10000.0 * P);
  const int32_t posY = TruncToInt32(P * (2.0 * Ry + h) / 10000.0);
  Ball ball{};
  if (pos <= Rx) {
    ball.rX = kOpen * w - pos;
    ball.rY = kOpen * h - posY;
  } else if (pos <= Rx + w) {
    ball.rX = kBall * w;
    ball.rY = kBall * h;
  } else {
    ball.rX = kBall * w + (pos - (Rx + w));
    ball.rY = kBall * h + (posY - (Ry + h));
  }
  ball.shows = pos < Rx ? Ball::Shows::A : pos >= Rx + w ? Ball::Shows::B : Ball::Shows::Scroll;
  ball.o = TruncToInt32(vertical ? posY - Ry : pos - Rx);
  return ball;
}

// Columns [begin, end) of a source row read row[x + shift].
struct SourceRun {
  int32_t begin, end;
  const PixelWord* row;
  int64_t shift;
};

// The source pixels of row y, as at most two runs in column order.
int SourceRuns(const FrameRows& f, const Ball& ball, Travel travel, int32_t y, SourceRun runs[2]) {
  const int32_t W = f.width, H = f.height;
  const auto row = [&](int64_t r) { return static_cast<int32_t>(std::clamp<int64_t>(r, 0, H - 1)); };
  if (ball.shows != Ball::Shows::Scroll) {
    runs[0] = {0, W, ball.shows == Ball::Shows::A ? f.A(y) : f.B(y), 0};
    return 1;
  }
  // The vertical scroll can pass H on tall frames (the two travels truncate
  // apart): its rows are held to the frame. A horizontal one stays in 0..W.
  const int64_t o = ball.o;
  const int32_t oc = static_cast<int32_t>(std::clamp<int64_t>(o, 0, W));
  switch (travel) {
    case Travel::LeftToRight:
      runs[0] = {0, oc, f.B(y), W - oc};
      runs[1] = {oc, W, f.A(y), -oc};
      return 2;
    case Travel::RightToLeft:
      runs[0] = {0, W - oc, f.A(y), oc};
      runs[1] = {W - oc, W, f.B(y), oc - W};
      return 2;
    case Travel::TopToBottom:
      runs[0] = {0, W, y < H - o ? f.A(row(y + o)) : f.B(row(y - H + o)), 0};
      return 1;
    case Travel::BottomToTop:
      runs[0] = {0, W, y >= o ? f.A(row(y - o)) : f.B(row(H - o + y)), 0};
      return 1;
  }
  return 0;
}

// Projected coordinates as columns or rows: rounded up from the centre on,
// then truncated. A NaN or a value past 32 bits (a Progress outside 0..1 can
// throw the picture off the frame) truncates to INT32_MIN, as the processor
// does, which like every other place outside 0 .. limit - 1 is not written.
struct Projection {
  const double* factor;
  double scale, centre;
  double At(int32_t i) const { return centre - factor[i] * scale; }
  int32_t Place(int32_t i) const {
    const double v = At(i);
    const int32_t t = TruncToInt32(v);
    return WrappingAdd(t, v >= centre && t < v ? 1 : 0);
  }
};

// What is stored of each place: the place itself or, on a row whose places
// all lie inside the frame (and W and H below 2^15), its pixel's index. There
// a row's place is stored times W, the start of its row, and a column's place
// plus the start of its row, which is stored for the columns 0 .. W / 2 alone
// (columns x and W - x land on the same row).
enum class Stored { kPlace, kRowStart, kIndex };
struct Output {
  int32_t* to;
  int32_t width = 0;
  const int32_t* rowStart = nullptr;
  int32_t RowStartOf(int32_t x) const { return rowStart[std::min(x, width - x)]; }
};

template <Stored kStored>
int32_t Finished(int32_t place, const Output& out, int32_t i) {
  if constexpr (kStored == Stored::kRowStart) return place * out.width;
  if constexpr (kStored == Stored::kIndex) return place + out.RowStartOf(i);
  return place;
}

// Four places v0, v1 truncated, or rounded up where they lie at or past the
// centre; in SSE2, which both builds have.
__m128i Truncated(__m128d v0, __m128d v1) { return _mm_unpacklo_epi64(_mm_cvttpd_epi32(v0), _mm_cvttpd_epi32(v1)); }
__m128i RoundedUp(__m128d v0, __m128d v1) {
  const __m128i t0 = _mm_cvttpd_epi32(v0), t1 = _mm_cvttpd_epi32(v1);
  const __m128d up0 = _mm_cmplt_pd(_mm_cvtepi32_pd(t0), v0), up1 = _mm_cmplt_pd(_mm_cvtepi32_pd(t1), v1);
  const __m128i ones = _mm_castps_si128(_mm_shuffle_ps(_mm_castpd_ps(up0), _mm_castpd_ps(up1), _MM_SHUFFLE(2, 0, 2, 0)));
  return _mm_sub_epi32(_mm_unpacklo_epi64(t0, t1), ones);
}
__m128i Load4(const int32_t* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
void Store4(int32_t* to, __m128i t) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), t); }
__m128i Reversed(__m128i t) { return _mm_shuffle_epi32(t, _MM_SHUFFLE(0, 1, 2, 3)); }

// The places [begin, end) of `p`, all short of the centre (or NaN) or all at
// or past it: the first only truncated, the second rounded up. Four at a time;
// the same one by one for the last few.
template <bool kUp, Stored kStored>
void PlacesOneSide(const Projection& p, int32_t begin, int32_t end, const Output& out) {
  // Locals: a store of a place may alias anything, `out` included.
  const double* const factor = p.factor;
  int32_t* const to = out.to;
  const int32_t* const rowStart = out.rowStart;
  const int32_t W = out.width, half = W / 2;
  const __m128d c = _mm_set1_pd(p.centre), s = _mm_set1_pd(p.scale);
  const __m128i width = _mm_set1_epi32(W);
  int32_t i = begin;
  for (; i + 4 <= end; i += 4) {
    const __m128d v0 = _mm_sub_pd(c, _mm_mul_pd(_mm_loadu_pd(factor + i), s));
    const __m128d v1 = _mm_sub_pd(c, _mm_mul_pd(_mm_loadu_pd(factor + i + 2), s));
    __m128i t = kUp ? RoundedUp(v0, v1) : Truncated(v0, v1);
    // Both factors below 2^15, their upper halves 0: one multiply of 16 bits.
    if constexpr (kStored == Stored::kRowStart) t = _mm_madd_epi16(t, width);
    if constexpr (kStored == Stored::kIndex) {
      if (i + 3 <= half) {
        t = _mm_add_epi32(t, Load4(rowStart + i));
      } else if (i > half) {  // of columns W - i - 3 .. W - i, in reverse
        t = _mm_add_epi32(t, Reversed(Load4(rowStart + (W - i - 3))));
      } else {
        t = _mm_add_epi32(t, _mm_setr_epi32(out.RowStartOf(i), out.RowStartOf(i + 1), out.RowStartOf(i + 2), out.RowStartOf(i + 3)));
      }
    }
    Store4(to + i, t);
  }
  for (; i < end; ++i) to[i] = Finished<kStored>(kUp ? p.Place(i) : TruncToInt32(p.At(i)), out, i);
}

// The pixel indices of columns [begin, end), short of the centre, and of
// their mirrors W - x, past it, where the sines are odd (factor[W - x] is
// -factor[x]): a mirror's place is centre + factor[x] scale, from the same
// product, on the same row.
void MirroredIndices(const Projection& p, int32_t begin, int32_t end, const Output& out) {
  const double* const factor = p.factor;
  int32_t* const to = out.to;
  const int32_t* const rowStart = out.rowStart;
  const int32_t W = out.width;
  const __m128d c = _mm_set1_pd(p.centre), s = _mm_set1_pd(p.scale);
  int32_t x = begin;
  for (; x + 4 <= end; x += 4) {
    const __m128d s0 = _mm_mul_pd(_mm_loadu_pd(factor + x), s), s1 = _mm_mul_pd(_mm_loadu_pd(factor + x + 2), s);
    const __m128i start = Load4(rowStart + x);
    Store4(to + x, _mm_add_epi32(Truncated(_mm_sub_pd(c, s0), _mm_sub_pd(c, s1)), start));
    Store4(to + (W - x - 3), Reversed(_mm_add_epi32(RoundedUp(_mm_add_pd(c, s0), _mm_add_pd(c, s1)), start)));
  }
  for (; x < end; ++x) {
    to[x] = TruncToInt32(p.At(x)) + rowStart[x];
    to[W - x] = p.Place(W - x) + rowStart[x];
  }
}

// With `factor` monotone, so are the places (each rounding is monotone,
// whatever the scale's sign): those at or past the centre are a run at one
// end, found by bisection, and each side needs only its own rounding.
// Otherwise every place is tested.
template <Stored kStored>
void Places(const Projection& p, bool monotone, int32_t count, const Output& out, bool odd = false) {
  if (count == 0) return;
  const auto past = [&](int32_t i) { return p.At(i) >= p.centre; };
  if (!monotone) {
    for (int32_t i = 0; i < count; ++i) out.to[i] = Finished<kStored>(p.Place(i), out, i);
    return;
  }
  const bool first = past(0), last = past(count - 1);
  int32_t split = first == last ? count : 0;  // past() changes between split - 1 and split
  if (first != last) {
    int32_t lo = 0, hi = count - 1;
    // A row's columns change sides in the middle (θ changes sign there):
    // tried first.
    const int32_t middle = count - count / 2;
    if (past(middle) == first) {
      lo = middle;
    } else {
      hi = middle;
      if (past(middle - 1) == first) lo = middle - 1;
    }
    while (hi - lo > 1) {
      const int32_t mid = lo + (hi - lo) / 2;
      (past(mid) == first ? lo : hi) = mid;
    }
    split = hi;
  }
  if (first) {
    PlacesOneSide<true, kStored>(p, 0, split, out);
    PlacesOneSide<false, kStored>(p, split, count, out);
    return;
  }
  // Columns 1 .. pairs - 1, short of the centre, go with their mirrors, past it.
  int32_t pairs = 1;
  if constexpr (kStored == Stored::kIndex) {
    if (odd) pairs = std::max(1, std::min(split, count - split + 1));
  }
  PlacesOneSide<false, kStored>(p, 0, std::min(1, split), out);
  if constexpr (kStored == Stored::kIndex) MirroredIndices(p, 1, pairs, out);
  PlacesOneSide<false, kStored>(p, pairs, split, out);
  PlacesOneSide<true, kStored>(p, split, count - pairs + 1, out);
}

// Sine and cosine in extended precision rounded to double, alike on every build.
double Sine(double a) { return static_cast<double>(std::sin(static_cast<long double>(a))); }
double Cosine(double a) { return static_cast<double>(std::cos(static_cast<long double>(a))); }

int32_t SphereRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const uint32_t background = host.PenColor(color);
  const Travel travel = DecodeTravel(host.Field(direction));
  if (FramePixelCount(ri) == 0) return 1;

  const FrameRows f = FrameRows::Of(ri);
  const int32_t W = f.width, H = f.height;
  // The background goes in bottom-up, each row just before the first pixel
  // can land in it (then still in the cache for the pixels that follow).
  int32_t filled = 0;  // rows below it hold the background
  const auto fillBelow = [&](int32_t end) {
    if (filled >= end) return;
    FillPixels(reinterpret_cast<uint8_t*>(f.Out(filled)), static_cast<size_t>(end - filled) * static_cast<size_t>(W), background);
    filled = end;
  };

  const double w = W, h = H, cx = w / 2, cy = h / 2;
  const Ball ball = BallAt(w, h, ri->Progress, !AcrossColumns(travel));
  // θ depends on the column alone: its sine and cosine once per column; a
  // row's places go to two more tables before its pixels are written.
  Scratch<double> trig = AllocateScratch<double>(2 * static_cast<size_t>(W));
  Scratch<int32_t> places = AllocateScratch<int32_t>(2 * static_cast<size_t>(W));
  if (!trig || !places) {  // without the tables only the background is drawn
    fillBelow(H);
    return 1;
  }
  double* sinTheta = trig.get();
  double* cosTheta = trig.get() + W;
  int32_t* columns = places.get();
  int32_t* rows = places.get() + W;
  const double perRX = RoundToSingle(1.0 / ball.rX), perRY = RoundToSingle(1.0 / ball.rY);
  // A row's places are cy - cos θ S for one S: monotone in cos θ, the
  // highest lies at the column of its least or greatest cosine.
  // So are its columns in sin θ.
  int32_t leastSin = 0, greatestSin = 0, leastCos = 0, greatestCos = 0;
  for (int32_t x = 0; x < W; ++x) {
    const double theta = (cx - x) * perRX;
    sinTheta[x] = Sine(theta);
    cosTheta[x] = Cosine(theta);
    if (sinTheta[x] < sinTheta[leastSin]) leastSin = x;
    if (sinTheta[x] > sinTheta[greatestSin]) greatestSin = x;
    if (cosTheta[x] < cosTheta[leastCos]) leastCos = x;
    if (cosTheta[x] > cosTheta[greatestCos]) greatestCos = x;
  }
  // The radius is never below 0.6366 W, so θ stays within ±π/4 and a bit:
  // the sines fall from column to column and the cosines rise up to the
  // middle. Checked all the same (a NaN counts as not), as Places relies on it.
  const int32_t firstHalf = W / 2 + 1;
  bool sinFalls = true, cosRises = true;
  for (int32_t x = 1; x < W; ++x) sinFalls = sinFalls && sinTheta[x] <= sinTheta[x - 1];
  for (int32_t x = 1; x < firstHalf && x < W; ++x) cosRises = cosRises && cosTheta[x] >= cosTheta[x - 1];
  sinFalls = sinFalls && sinTheta[0] == sinTheta[0];
  cosRises = cosRises && cosTheta[0] == cosTheta[0];
  // θ of columns x and W - x are exact negatives: their sines are alike but
  // for the sign (checked too).
  bool sinOdd = true;
  for (int32_t x = 1; x < W; ++x) sinOdd = sinOdd && sinTheta[W - x] == -sinTheta[x];

  // Where every place of a row lies inside the frame, the places are stored
  // as pixel indices (see Stored).
  const bool indexable = W < 32768 && H < 32768;
  for (int32_t y = 0; y < H; ++y) {
    const double phi = (cy - y) * perRY;
    const Projection columnsOf{sinTheta, Cosine(phi) * ball.rX, cx}, rowsOf{cosTheta, Sine(phi) * ball.rY, cy};
    // Columns x and W - x have the same cos θ (their θ are exact negatives,
    // and the cosine is even): the rows of the first half serve both.
    const auto rowOf = [&](int32_t x) { return rowsOf.Place(std::min(x, W - x)); };
    const int32_t lowest = rowOf(rowsOf.scale > 0 ? greatestCos : leastCos);
    const int32_t highest = rowOf(rowsOf.scale > 0 ? leastCos : greatestCos);
    fillBelow(std::min(std::max(0, highest), H - 1) + 1);
    const int32_t left = columnsOf.Place(columnsOf.scale > 0 ? greatestSin : leastSin);
    const int32_t right = columnsOf.Place(columnsOf.scale > 0 ? leastSin : greatestSin);
    // Most rows land wholly inside the frame: there no place needs a test.
    const bool inside = indexable && left >= 0 && right < W && lowest >= 0 && highest < H;
    if (inside) {
      Places<Stored::kRowStart>(rowsOf, cosRises, firstHalf, {rows, W});
      Places<Stored::kIndex>(columnsOf, sinFalls, W, {columns, W, rows}, sinOdd);
    } else {
      Places<Stored::kPlace>(rowsOf, cosRises, firstHalf, {rows});
      for (int32_t x = firstHalf; x < W; ++x) rows[x] = rows[W - x];
      Places<Stored::kPlace>(columnsOf, sinFalls, W, {columns});
    }
    SourceRun runs[2];
    const int count = SourceRuns(f, ball, travel, y, runs);
    for (int r = 0; r < count; ++r) {
      // Locals: a pixel store may alias anything, the run's members included.
      const PixelWord* const from = runs[r].row;
      const int64_t shift = runs[r].shift;
      PixelWord* const out = f.output;
      if (inside) {  // columns[x] is the pixel's index
        for (int32_t x = runs[r].begin, end = runs[r].end; x < end; ++x) out[static_cast<uint32_t>(columns[x])] = from[x + shift];
        continue;
      }
      const size_t stride = static_cast<size_t>(W);
      for (int32_t x = runs[r].begin, end = runs[r].end; x < end; ++x) {
        if (static_cast<uint32_t>(columns[x]) < static_cast<uint32_t>(W) && static_cast<uint32_t>(rows[x]) < static_cast<uint32_t>(H)) {
          out[static_cast<size_t>(rows[x]) * stride + static_cast<size_t>(columns[x])] = from[x + shift];
        }
      }
    }
  }
  fillBelow(H);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Sphere, kTexts, kFields)
KR_TEST_PROFILE("Sphere", .heavier = {"Direction=2", "Color=#FF2000"})
