// Center Zoom: a centred rectangle showing one clip shrunk grows out of the
// centre over the other ("Zoom In") or shrinks into it ("Zoom Out"), framed
// by a pen.
#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/numeric.h"
#include "transitions/pengrid/pen_grid.h"
#include "transitions/pengrid/zoom_frame.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Zoom/Center Zoom", .signature = "Center Zoom (ZE plug-in SDK effect)",
                             .displayName = "Center Zoom", .description = "Zooms Vb out of the center of Va."};

ZoomFields fields;

constexpr auto kFields = ZoomFieldTable(fields, "Color");

int32_t CenterZoomRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.clip.transType)) return 0;
  const ZoomReads reads = ReadZoom(HostCalls(ri), fields);
  if (!DrawableFrame(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const double p = ShapeProgress(ri->Progress);
  const double t = reads.zoomOut ? 1.0 - p : p;  // the rectangle's size relative to the frame
  const double inv = t > 0 ? 1.0 / t : 0.0;  // with t = 0 the rectangle is empty and nothing is sampled
  const int32_t y0 = TruncToInt32(rows.height * (1.0 - t) * 0.5), y1 = y0 + TruncToInt32(rows.height * t);
  const int32_t x0 = TruncToInt32(0.5 * rows.width * (1.0 - t)), x1 = x0 + TruncToInt32(rows.width * t);
  // "Zoom In" includes the lower bounds; "Zoom Out" leaves the rectangle's
  // first row and column to the pen (or, without one, to the surround).
  const int64_t first = reads.zoomOut ? 1 : 0, bw = reads.borderWidth;
  const ZoomLayout layout{.penColumns = {x0 - bw + first, x1 + bw},
                          .penRows = {y0 - bw + first, y1 + bw},
                          .pictureColumns = {x0 + first, x1},
                          .pictureRows = {y0 + first, y1},
                          .anchorX = x0,
                          .anchorY = y0};
  PaintZoom(rows, reads, layout, [inv](int32_t offset) { return TruncToInt32(offset * inv); });
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(CenterZoom, kTexts, kFields)
KR_TEST_PROFILE("Center Zoom", .heavier = {"ZoomType=1", "BorderWidth=10", "Color=#FFFF00"})
