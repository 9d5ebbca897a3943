// Shredder: a wipe whose edge is torn. Every row (or column) gets its own
// edge, jittered by one rand() draw around the nominal wipe position; the
// jitter shrinks towards the far side, and the edge is drawn afresh on every
// frame. The process-wide rand() decides; this transition never seeds it.
#include <algorithm>
#include <cstdlib>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/travel.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/Shredder", .signature = "Shredder (ZE plug-in SDK effect)",
                             .displayName = "Shredder", .description = "Va is shredded making Vb visible."};

ClipFields clip;
FieldIndex direction;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction", kTravelItems)
        .Help("Specifies the direction from where the shredder starts.")
        .Default(0));

// The edge of one line: `reach` = trunc(size x Progress), k the line's
// counter. One draw while the wipe is incomplete; the product wraps in 32
// bits, the remainder truncates toward zero.
int32_t TornEdge(int32_t reach, int32_t size, int32_t k) {
  if (reach >= size) return size;
  const int32_t product = static_cast<int32_t>(static_cast<uint32_t>(k) * static_cast<uint32_t>(std::rand()));
  // size - reach in 64 bits: a NaN Progress's reach (INT32_MIN) would overflow 32.
  const int64_t edge = reach - product % (int64_t{size} - reach);
  return static_cast<int32_t>(std::clamp<int64_t>(edge, 0, size));
}

// Left > Right and Right > Left: each row is one run of B and one of A.
void ShredRows(const FrameRows& rows, int32_t reach, bool fromLeft) {
  const int32_t w = rows.width;
  for (int32_t y = 0; y < rows.height; ++y) {
    const int32_t e = TornEdge(reach, w, rows.height - 1 - y);
    const int32_t split = fromLeft ? e : w - e;  // the first column of the right-hand run
    PixelWord* out = rows.Out(y);
    CopyRun(out, (fromLeft ? rows.B(y) : rows.A(y)), split);
    CopyRun(out + split, (fromLeft ? rows.A(y) : rows.B(y)) + split, w - split);
  }
}

// Bottom > Top and Top > Bottom: every column has its own edge, so the rows
// are painted in bands of columns: a row lying below every edge of the band
// or above every edge is one copy; the rows in between pick per pixel
// (a branchless select the compiler vectorises).
void ShredColumns(const FrameRows& rows, int32_t reach, bool fromBottom) {
  constexpr int32_t kBand = 2048;
  int32_t lowEnd[kBand];  // per column: the rows below this show `low`
  const PixelWord* low = fromBottom ? rows.inputB : rows.inputA;
  const PixelWord* high = fromBottom ? rows.inputA : rows.inputB;
  for (int32_t x0 = 0; x0 < rows.width; x0 += kBand) {
    const int32_t n = std::min(kBand, rows.width - x0);
    int32_t lowest = rows.height, highest = 0;
    for (int32_t i = 0; i < n; ++i) {
      const int32_t e = TornEdge(reach, rows.height, rows.width - 1 - (x0 + i));
      lowEnd[i] = fromBottom ? e : rows.height - e;
      lowest = std::min(lowest, lowEnd[i]);
      highest = std::max(highest, lowEnd[i]);
    }
    for (int32_t y = 0; y < rows.height; ++y) {
      const size_t at = rows.RowStart(y) + static_cast<size_t>(x0);
      PixelWord* out = rows.output + at;
      const PixelWord* l = low + at;
      const PixelWord* h = high + at;
      if (y < lowest || y >= highest) {
        CopyRun(out, y < lowest ? l : h, n);
        continue;
      }
      for (int32_t i = 0; i < n; ++i) {
        const uint32_t lp = l[i], hp = h[i];
        out[i] = y < lowEnd[i] ? lp : hp;
      }
    }
  }
}

int32_t ShredderRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const Travel travel = DecodeTravel(HostCalls(ri).Field(direction));
  if (FramePixelCount(ri) == 0) return 1;
  const FrameRows rows = FrameRows::Of(ri);
  const double p = ri->Progress;
  if (AcrossColumns(travel)) {
    ShredRows(rows, TruncToInt32(rows.width * p), travel == Travel::LeftToRight);
  } else {
    ShredColumns(rows, TruncToInt32(rows.height * p), travel == Travel::BottomToTop);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Shredder, kTexts, kFields)
KR_TEST_PROFILE("Shredder", .heavier = {"Direction=3"}, .sharedState = true)
