// Rotation: A turns away about one of its top corners like a swinging sign,
// through a quarter turn, uncovering the still B behind it.
#include <algorithm>
#include <climits>
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Rotation", .signature = "Rotation (ZE plug-in SDK effect)",
                             .displayName = "Rotation", .description = "Va rotates to the side showing Vb."};

ClipFields clip;
FieldIndex direction;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction", {{"Top Left", 0}, {"Top Right", 1}})
        .Help("Defines the position of the hinge or linchpin.")
        .Default(0));

// A turned frame wider or higher than 2^24, or of 2^31 pixels or more, is
// left as it was: up to there every coordinate is exact in single precision
// and a pixel's index fits 32 bits.
bool TurnableFrame(const t_KrRenderInfo* ri) {
  constexpr int32_t kMaxSide = 1 << 24;
  return ri->Width <= kMaxSide && ri->Height <= kMaxSide && FramePixelCount(ri) <= INT32_MAX;
}

constexpr double kHalfTurn = 1.5707963267948966;  // pi / 2 as the angle reaches it at Progress 1

// trunc(v + 0.5) of a column bound, held to -1 .. W + 1 first: beyond the
// frame every bound decides alike, and a bound past 32 bits (a tangent near
// the quarter turn) must not wrap to the other side.
int32_t ColumnBound(long double v, int32_t w) {
  return static_cast<int32_t>(std::clamp<long double>(v + 0.5L, -1.0L, w + 1.0L));
}

// A's turned picture: s, c rounded to single, t in extended precision.
class TurnedA {
 public:
  TurnedA(const FrameRows& rows, double theta, bool hingeRight)
      : rows_(rows),
        hingeRight_(hingeRight),
        s_(RoundToSingle(std::sin(static_cast<long double>(theta)))),
        c_(RoundToSingle(std::cos(static_cast<long double>(theta)))),
        t_(std::tan(static_cast<long double>(theta))),
        yb_(TruncToInt32(rows.height - rows.width * static_cast<double>(s_) + 0.5)) {}

  // Rotated A in columns [first, last) of each row, B in place elsewhere.
  // Bands of rows are sampled in tiles of columns, so that the A pixels a
  // tile reads, which lie along a turned strip of A, stay in the caches.
  void Paint() const {
    constexpr int32_t kBandRows = 64, kTileColumns = 64;
    int32_t first[kBandRows], last[kBandRows];
    for (int32_t m0 = 0; m0 < rows_.height; m0 += kBandRows) {
      const int32_t n = std::min(kBandRows, rows_.height - m0);
      for (int32_t i = 0; i < n; ++i) {
        const int32_t m = m0 + i;
        ARun(m, first[i], last[i]);
        PixelWord* out = rows_.Out(m);
        CopyRun(out, rows_.B(m), first[i]);
        CopyRun(out + last[i], rows_.B(m) + last[i], rows_.width - last[i]);
      }
      for (int32_t x0 = 0; x0 < rows_.width; x0 += kTileColumns) {
        for (int32_t i = 0; i < n; ++i) {
          const int32_t from = std::max(first[i], x0), to = std::min(last[i], x0 + kTileColumns);
          if (from < to) SampleA(rows_.Out(m0 + i), m0 + i, from, to);
        }
      }
    }
  }

 private:
  // The columns [first, last) of memory row m that show rotated A.
  void ARun(int32_t m, int32_t& first, int32_t& last) const {
    const int32_t w = rows_.width, d = rows_.height - 1 - m;
    if (!hingeRight_) {
      first = 0;
      last = m >= yb_ ? ColumnBound(d / t_, w)  // above the turned top edge: B from there
                      : ColumnBound(TruncToInt32(w * static_cast<double>(c_) + 0.5) - (yb_ - 1 - m) * t_, w) + 1;
    } else {
      first = m >= yb_ ? ColumnBound((w - 1) - d / t_, w) + 1
                       : ColumnBound((yb_ - 1 - m) * t_ + TruncToInt32(w - w * static_cast<double>(c_) + 0.5), w);
      last = w;
    }
    first = std::clamp(first, 0, w);
    last = std::clamp(last, first, w);
  }

  void SampleA(PixelWord* out, int32_t m, int32_t first, int32_t last) const {
    if (hingeRight_) {
      SampleA<true>(out, m, first, last);
    } else {
      SampleA<false>(out, m, first, last);
    }
  }

  // Each sample in single precision, rounded half up and clamped to the
  // frame: rounding can reach one column past A's right edge. The
  // coordinates are held in single precision before they are truncated, so
  // no frame size can take a conversion out of range.
  template <bool kHingeRight>
  void SampleA(PixelWord* out, int32_t m, int32_t first, int32_t last) const {
    constexpr int32_t kChunk = 512;
    uint32_t at[kChunk];  // row * W + column: the frame holds fewer than 2^31 pixels
    const float fd = RoundToSingle(rows_.height - 1 - m);
    const float top = RoundToSingle(rows_.height - 1), right = RoundToSingle(rows_.width - 1);
    const float dc = fd * c_, ds = fd * s_;
    const uint32_t w = static_cast<uint32_t>(rows_.width);
    const uint32_t maxRow = static_cast<uint32_t>(rows_.height - 1), maxColumn = w - 1;
    const float rowLimit = RoundToSingle(rows_.height - 1), columnLimit = RoundToSingle(rows_.width - 1);
    const PixelWord* a = rows_.inputA;  // in a local: a store through `out` may alias any word
    constexpr float kAhead = 16.0f;
    const int64_t columnAhead = static_cast<int64_t>(kAhead * s_);
    const int64_t prefetchShift = static_cast<int64_t>(kAhead * c_) * w + (kHingeRight ? columnAhead : -columnAhead);
    const int64_t lastPixel = int64_t{w} * rows_.height - 1;
    for (int32_t x0 = first; x0 < last; x0 += kChunk) {
      const int32_t n = std::min(kChunk, last - x0);
      // e: the distance from the hinge's side of the frame.
      const int32_t e0 = kHingeRight ? rows_.width - 1 - x0 : x0;
      for (int32_t i = 0; i < n; ++i) {
        const float e = RoundToSingle(kHingeRight ? e0 - i : e0 + i);
        const float r = top + e * s_ - dc + 0.5f;
        const float k = kHingeRight ? right - e * c_ - ds + 0.5f : e * c_ + ds + 0.5f;
        const uint32_t row = std::min(static_cast<uint32_t>(static_cast<int32_t>(std::clamp(r, 0.0f, rowLimit))), maxRow);
        const uint32_t column = std::min(static_cast<uint32_t>(static_cast<int32_t>(std::clamp(k, 0.0f, columnLimit))), maxColumn);
        at[i] = row * w + column;
      }
      // The rows a few lines later in the tile read near here: ask for them ahead.
      for (int32_t i = 0; i < n; i += 8) {
        const int64_t ahead = std::clamp<int64_t>(int64_t{at[i]} + prefetchShift, 0, lastPixel);
        __builtin_prefetch(a + ahead);
      }
      for (int32_t i = 0; i < n; ++i) out[x0 + i] = a[at[i]];
    }
  }

  const FrameRows& rows_;
  bool hingeRight_;
  float s_, c_;
  long double t_;
  int32_t yb_;  // the memory row of the turned far top corner
};

int32_t RotationRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const bool hingeRight = HostCalls(ri).Field(direction) == 1;
  if (FramePixelCount(ri) == 0) return 1;
  const double theta = ri->Progress * 3.141592653589793 * 0.5;
  if (theta == 0.0) {
    CopyPixels(ri->Output, ri->InputA, 0, FramePixelCount(ri));
  } else if (theta == kHalfTurn) {
    CopyPixels(ri->Output, ri->InputB, 0, FramePixelCount(ri));
  } else if (theta > 0.0 && theta < kHalfTurn && TurnableFrame(ri)) {
    const FrameRows rows = FrameRows::Of(ri);
    const TurnedA turned(rows, theta, hingeRight);
    turned.Paint();
  }
  return 1;  // any other angle (negative, beyond the quarter turn, NaN) leaves Output as it was
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Rotation, kTexts, kFields)
KR_TEST_PROFILE("Rotation", .heavier = {"Direction=1"})
