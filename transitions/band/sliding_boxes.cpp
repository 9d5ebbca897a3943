// Sliding Boxes: B is cut into eight vertical stripes, the boxes, which
// slide in one after another from the left edge over A. The first travels
// to the right edge, each later one stops at the left side of the one
// before, all at one constant speed, until B is complete.
#include <algorithm>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/numeric.h"
#include "transitions/band/clipped_copy.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Sliding Boxes", .signature = "Sliding Boxes (ZE plug-in SDK effect)",
                             .displayName = "Sliding Boxes", .description = "Vb slides as stripes into Va from one side."};

ClipFields clip;
// The direction is read (and its default set) through this index, but no
// statement declares it: the host never stores an index here, so it stays 0
// and the host answers for its field 0. Only values other than 1, 2 and 3
// draw, from left to right.
FieldIndex direction;

constexpr auto kFields = FieldTable(clip);

int32_t SlidingBoxesInit(t_KrRenderInfo* ri) {
  InitDefaults(ri, kFields);
  HostCalls(ri).SetDefault(direction, 0);
  return 1;
}

constexpr int32_t kBoxes = 8;

// The box that moves and where its right edge stands.
struct Stage {
  int32_t box;     // s: boxes 0 .. s - 1 are in place
  int64_t offset;  // o: the column of the moving box's right edge
};

// The total travel T runs the boxes one after another: box i moves its right
// edge from column 0 to W - i * bw.
Stage StageOf(int64_t w, int64_t bw, int64_t travel) {
  int64_t before = 0;
  for (int32_t i = 0; i < kBoxes; ++i) {
    const int64_t distance = w - i * bw;
    if (travel <= before + distance) return {i, travel - before};
    before += distance;
  }
  return {kBoxes - 1, w - (kBoxes - 1) * bw};  // beyond the sum, as only rounding could go
}

int32_t SlidingBoxesRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const int32_t dir = HostCalls(ri).Field(direction);
  if (dir == 1 || dir == 2 || dir == 3) return 1;
  if (ri->Width <= 0 || ri->Height <= 0) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const int64_t w = rows.width;
  // The box width, W / 8 rounded half up, and the total travel, in single precision.
  const int64_t bw = TruncToInt32(RoundToSingle(rows.width) * 0.125f + 0.5f);
  const float sum = RoundToSingle(static_cast<double>(kBoxes * w - 28 * bw));  // the eight distances
  const Stage stage = StageOf(w, bw, TruncToInt32(sum * RoundToSingle(ri->Progress)));
  const int64_t o = stage.offset, bound = w - stage.box * bw;  // boxes from `bound` on are in place

  // Every row alike: A left of the box, the box (B's stripe, its right part
  // while it enters), A up to the boxes in place, then B in place.
  for (int32_t y = 0; y < rows.height; ++y) {
    PixelWord* out = rows.Out(y);
    const PixelWord *a = rows.A(y), *b = rows.B(y);
    CopyColumnsClipped(out, a, 0, o - bw, 0, rows.width);
    CopyColumnsClipped(out, b, std::max<int64_t>(o - bw, 0), o, bound - o, rows.width);
    CopyColumnsClipped(out, a, o, bound, 0, rows.width);
    CopyColumnsClipped(out, b, bound, w, 0, rows.width);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION_WITH_OWN_INIT(SlidingBoxes, kTexts, kFields)
KR_TEST_PROFILE("Sliding Boxes", .readsFieldZero = true)
