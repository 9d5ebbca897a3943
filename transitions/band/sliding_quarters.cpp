// Sliding Quarters: A is cut into four quarters that leave the frame one
// after another, bottom-left, top-right, bottom-right, top-left, each
// sliding diagonally out through its own corner and uncovering B behind it.
// The pixel work is the exported bxglVTRSlidingQuarters, which a host may
// call on its own frames.
#include "transitions/band/sliding_quarters.h"

#include <algorithm>
#include <climits>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/numeric.h"
#include "transitions/band/clipped_copy.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Sliding Quarters", .signature = "Sliding Quarters (ZE plug-in SDK effect)",
                             .displayName = "Sliding Quarters", .description = "Four quarters of Va slide out."};

ClipFields clip;

constexpr auto kFields = FieldTable(clip);

// The three frames of one call, every copy held to them.
struct QuarterFrames {
  PixelWord* out;
  const PixelWord* a;
  const PixelWord* b;
  FrameShape shape;

  void FromA(const Block& block, int64_t dx = 0, int64_t dy = 0) const { CopyBlockClipped(out, a, shape, block, dx, dy); }
  void FromB(const Block& block) const { CopyBlockClipped(out, b, shape, block); }
};

// The quarter that moves in phase k, 1..4: Q1 bottom-left, Q2 top-right,
// Q3 bottom-right, Q4 top-left (rows bottom-up).
Block Quarter(int32_t k, int64_t w, int64_t h, int64_t hw, int64_t hh) {
  switch (k) {
    case 1: return {0, hw, 0, hh};
    case 2: return {hw, w, hh, h};
    case 3: return {hw, w, 0, hh};
    default: return {0, hw, hh, h};
  }
}

// The moving quarter with its phase's own travel s, t. The trailing B fill
// of phases 1 and 3 covers t rows from where the first rows ended, and so
// runs into the quarter above when t exceeds hh; it is kept so.
void MoveQuarter(const QuarterFrames& f, int32_t phase, int64_t s, int64_t t, int64_t hw, int64_t hh) {
  const int64_t w = f.shape.width, h = f.shape.height;
  switch (phase) {
    case 1:
      f.FromA({0, hw - s, 0, hh - t}, s, t);
      f.FromB({hw - s, hw, 0, hh - t});
      f.FromB({0, hw, std::max<int64_t>(hh - t, 0), std::max<int64_t>(hh - t, 0) + t});
      break;
    case 2:
      f.FromB({hw, w, hh, hh + t});
      f.FromB({hw, hw + s, hh + t, h});
      f.FromA({hw + s, w, hh + t, h}, -s, -t);
      break;
    case 3:
      f.FromB({hw, hw + s, 0, hh - t});
      f.FromA({hw + s, w, 0, hh - t}, -s, t);
      f.FromB({hw, w, std::max<int64_t>(hh - t, 0), std::max<int64_t>(hh - t, 0) + t});
      break;
    case 4:
      f.FromB({0, hw, hh, hh + t});
      f.FromA({0, hw - s, hh + t, h}, s, -t);
      f.FromB({hw - s, hw, hh + t, h});
      break;
  }
}

void SlidingQuarters(unsigned char* out, const unsigned char* a, const unsigned char* b, int32_t rowBytes,
                     int32_t width, int32_t height, double progress) {
  const int32_t stride = rowBytes >> 2;
  // Nothing is drawn for an empty frame, for rows shorter than the width
  // (they would overlap and run past the frame; a width of 0 never divides),
  // or for more pixels than 32 bits count.
  if (width <= 0 || height <= 0 || stride < width) return;
  const int64_t area = int64_t{width} * height;
  if (area > INT32_MAX) return;
  const int64_t w = width, h = area / stride, hw = w / 2, hh = h / 2;
  int64_t s = TruncToInt32(static_cast<long double>(2 * w) * progress);
  int64_t t = TruncToInt32(static_cast<long double>(2 * h) * progress);

  // The phase by s alone; s and t reduced to the phase's own travel.
  int32_t phase = 0;  // beyond 2W (Progress above 1): every quarter from A
  if (s <= hw) {
    phase = 1;
  } else if (s <= w) {
    phase = 2, s -= hw, t -= hh;
  } else if (s <= w + hw) {
    phase = 3, s -= w, t -= h;
  } else if (s <= 2 * w) {
    phase = 4, s -= w + hw, t -= h + hh;
  }

  const QuarterFrames f{reinterpret_cast<PixelWord*>(out), reinterpret_cast<const PixelWord*>(a),
                        reinterpret_cast<const PixelWord*>(b),
                        FrameShape{static_cast<size_t>(stride), width, static_cast<int32_t>(h)}};
  // The quarters at rest: from B once their phase is over, from A before it.
  for (const int32_t k : {1, 3, 2, 4}) {
    if (k == phase) continue;
    const Block quarter = Quarter(k, w, h, hw, hh);
    if (k < phase) {
      f.FromB(quarter);
    } else {
      f.FromA(quarter);
    }
  }
  MoveQuarter(f, phase, s, t, hw, hh);
}

int32_t SlidingQuartersRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  // Width x 4 in 32 bits; a width so large that it wraps gives rows shorter than the width: nothing drawn.
  const int32_t rowBytes = static_cast<int32_t>(static_cast<uint32_t>(ri->Width) * 4u);
  SlidingQuarters(ri->Output, ri->InputA, ri->InputB, rowBytes, ri->Width, ri->Height, ri->Progress);
  return 1;
}

}  // namespace
}  // namespace krl

KR_EXPORT KR_ENTRY_POINT void bxglVTRSlidingQuarters(unsigned char* out, unsigned char* a, unsigned char* b, int32_t rowBytes,
                                      int32_t width, int32_t height, double progress) {
  krl::Guarded<krl::SlidingQuarters>(out, a, b, rowBytes, width, height, progress);
}

KR_TRANSITION(SlidingQuarters, kTexts, kFields)
KR_TEST_PROFILE("Sliding Quarters")
