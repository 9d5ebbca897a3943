// Sliding Doors: in every cell A splits down the middle into two doors that
// slide apart, each door's inner edge carrying a pen band, and B shows in
// place between them.
#include "host/transition.h"
#include "host/render_prologue.h"
#include "transitions/pengrid/door_spans.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Sliding Doors", .signature = "Sliding Doors (ZE plug-in SDK effect)",
                             .displayName = "Sliding Doors", .description = "Va opens like sliding doors."};

PenGridFields fields;

constexpr SelectorItem kOpeningItems[] = {{"Horizontal", 0}, {"Vertical", 1}};

// The init sets no pen colour or thickness: a new instance draws with the
// host's own values for both.
constexpr auto kFields = PenGridFieldTable(fields, "Specifies whether the doors are vertically or horizontally opened.",
                                           kOpeningItems, PenDefaults::HostsOwn);

// The doors of one side of a cell: they meet at start + half, half being
// rounded down, so with an odd size the last column (row) stays with the far
// door even at p = 1.
DoorSpans Doors(int32_t start, int32_t end, double p, int32_t t) {
  const int32_t half = (end - start) >> 1;
  const int32_t n = SingleRoundedShare(half, p);
  const int32_t middle = start + half;
  return DoorSpans::PenOutside(start, end, {middle - n, middle + n}, t, n);
}

int32_t SlidingDoorsRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const PenReads reads = ReadPen(host, fields);
  const bool vertical = host.Field(fields.direction) == 1;  // any other value opens sideways
  if (!DrawableFrame(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const double p = ShapeProgress(ri->Progress);
  const int32_t t = PenThickness(reads.thickness);
  const uint32_t pen = reads.pen;
  ForEachWholeCell(rows.width, rows.height, reads.divideX, reads.divideY, [&](const Cell& c) {
    if (vertical) {
      const int32_t w = c.Width();
      ForEachDoorRow(Doors(c.y0, c.y1, p, t), [&](DoorPart part, int32_t y, int32_t from) {
        PixelWord* out = rows.Out(y) + c.x0;
        switch (part) {
          case DoorPart::Door: CopyRun(out, rows.A(from) + c.x0, w); break;
          case DoorPart::Pen: FillRun(out, pen, w); break;
          case DoorPart::Opening: CopyRun(out, rows.B(y) + c.x0, w); break;
        }
      });
    } else {
      const DoorSpans columns = Doors(c.x0, c.x1, p, t);
      for (int32_t y = c.y0; y < c.y1; ++y) PaintDoorRow(rows.Out(y), rows.A(y), rows.B(y), columns, pen);
    }
  }, CellOrder::AlongRows);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(SlidingDoors, kTexts, kFields)
KR_TEST_PROFILE("Sliding Doors", .heavier = {"Divide_X=4", "Divide_Y=3", "BorderWidth=6", "Color=#FF2000"})
