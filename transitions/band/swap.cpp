// Swap: in every cell of a grid A and B slide past each other along one
// axis. In the first half A slides toward the cell's low end and the strip
// it uncovers shows B shifted toward the high end; in the second half B
// slides in from the high end while the rest shows A from there on.
#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/cell_grid.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "transitions/band/clipped_copy.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Swap", .signature = "Swap (ZE plug-in SDK effect)",
                             .displayName = "Swap", .description = "Vb swaps with Va from one side."};

ClipFields clip;
FieldIndex direction, divideX, divideY;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction", {{"Horizontal", 0}, {"Vertical", 1}})
        .Help("Specifies whether the clip is substituted vertically or horizontally.")
        .Default(0),
    Long(&divideX, "Divide_X", "X-division (1..8)", 1, 8).Limits().Help("Increases the number of pens on the x-axis.").Default(1),
    Long(&divideY, "Divide_Y", "Y-division (1..8)", 1, 8).Limits().Help("Increases the number of pens on the y-axis.").Default(1));

// One cell along its axis of movement: [low, high) with the shift s. The A
// part [low, m) and the B part [m, high) read `aShift` and `bShift` on.
struct SwapSpan {
  int64_t m, aShift, bShift;
};

SwapSpan SpanOf(int64_t low, int64_t high, int64_t s) {
  const int64_t m = high - s;
  if (s <= (high - low) / 2) return {m, s, -s};  // first half
  return {m, m - low, low - m};                  // second half
}

int32_t SwapRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const int32_t dx = host.Field(divideX), dy = host.Field(divideY);
  const bool vertical = host.Field(direction) == 1;
  if (FramePixelCount(ri) == 0) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const FrameShape shape{static_cast<size_t>(rows.width), rows.width, rows.height};
  const double p = ri->Progress;
  // The shifts of a Progress outside 0..1 reach past the cell; the copies
  // are held to the frame.
  ForEachWholeCell(rows.width, rows.height, dx, dy, [&](const Cell& c) {
    const int32_t size = vertical ? c.Height() : c.Width();
    // The nominal size times Progress, rounded to single, truncated (all cells are nominal).
    const int64_t s = TruncToInt32(RoundToSingle(static_cast<long double>(size) * p));
    if (vertical) {
      const SwapSpan span = SpanOf(c.y0, c.y1, s);
      CopyBlockClipped(rows.output, rows.inputA, shape, {c.x0, c.x1, c.y0, span.m}, 0, span.aShift);
      CopyBlockClipped(rows.output, rows.inputB, shape, {c.x0, c.x1, span.m, c.y1}, 0, span.bShift);
    } else {
      const SwapSpan span = SpanOf(c.x0, c.x1, s);
      CopyBlockClipped(rows.output, rows.inputA, shape, {c.x0, span.m, c.y0, c.y1}, span.aShift, 0);
      CopyBlockClipped(rows.output, rows.inputB, shape, {span.m, c.x1, c.y0, c.y1}, span.bShift, 0);
    }
  }, CellOrder::AlongRows);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Swap, kTexts, kFields)
KR_TEST_PROFILE("Swap", .heavier = {"Divide_X=8", "Divide_Y=8", "Direction=1"})
