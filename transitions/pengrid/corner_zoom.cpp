// Corner Zoom: B grows out of one corner over A as a shrunken copy of the
// whole frame ("Zoom In"), or A shrinks into the corner over B ("Zoom Out");
// a pen outlines the rectangle's two inner sides.
#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/numeric.h"
#include "transitions/pengrid/pen_fields.h"
#include "transitions/pengrid/pen_grid.h"
#include "transitions/pengrid/zoom_frame.h"

namespace krl {
namespace {

// The description is translated under "Clock", the other texts under the
// display name.
constexpr EffectTexts kTexts{.menuPath = "Transitions/Zoom/Corner Zoom", .signature = "Corner Zoom(ZE plug-in SDK effect)",
                             .displayName = "Corner Zoom", .description = "Vb zooms out of a corner of Va.",
                             .descriptionContext = "Clock"};

ZoomFields fields;
FieldIndex corner;

// The colour's key is the display name, not "Color": the host stores the
// value under it.
constexpr auto kFields = ZoomFieldTable(fields, "Corner Zoom",
                                        SelectorOf(&corner, "Corner", "Corner",
                                                   "Specifies the transition's starting point .", kCornerItems));

// The init sets Corner before the colour and the thickness.
constexpr FieldSpec kInitOrder[] = {kFields[2], kFields[3], kFields[6], kFields[4], kFields[5]};

int32_t CornerZoomRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.clip.transType)) return 0;
  const HostCalls host(ri);
  const ZoomReads reads = ReadZoom(host, fields);
  const Corner from = DecodeCorner(host.Field(corner));
  if (!DrawableFrame(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  // The pen is one pixel thicker than its field says; 0 or less draws none.
  const int64_t t = reads.borderWidth >= 1 ? int64_t{reads.borderWidth} + 1 : 0;
  double p = ShapeProgress(ri->Progress);
  if (reads.zoomOut) p = 1.0 - p;
  const double k = p > 0 ? 1.0 / p : 0.0;
  // Sizes from extended products, truncated.
  const long double shown = p, hidden = 1.0L - shown;
  const int32_t w = rows.width, h = rows.height;
  const Span64 columns = from.left ? Span64{0, TruncToInt32(w * shown)} : Span64{TruncToInt32(hidden * w), w};
  const Span64 rowSpan = from.top ? Span64{TruncToInt32(hidden * h), h} : Span64{0, TruncToInt32(h * shown)};
  const ZoomLayout layout{.penColumns = {columns.begin - t, columns.end + t},
                          .penRows = {rowSpan.begin - t, rowSpan.end + t},
                          .pictureColumns = columns,
                          .pictureRows = rowSpan,
                          .anchorX = static_cast<int32_t>(columns.begin),
                          .anchorY = static_cast<int32_t>(rowSpan.begin)};
  PaintZoom(rows, reads, layout, [k](int32_t offset) { return TruncToInt32(static_cast<long double>(offset) * k); });
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION_WITH_INIT_ORDER(CornerZoom, kTexts, kFields, kInitOrder)
KR_TEST_PROFILE("Corner Zoom", .heavier = {"ZoomType=1", "BorderWidth=10", "Corner Zoom=#FFFF00", "Corner=3"})
