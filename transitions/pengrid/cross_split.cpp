// Cross Split: in every cell a cross of B grows from the centre, outlined by
// a pen on the inside of its bars, and pushes the four quarters of A that
// remain outwards towards the cell's corners. "Close Vb" runs it backwards:
// a cross of A closes over B.
#include "host/transition.h"
#include "host/render_prologue.h"
#include "transitions/pengrid/door_spans.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Cross Split", .signature = "Cross Split (ZE plug-in SDK effect)",
                             .displayName = "Cross Split", .description = "Va splits into four rectangles sliding out."};

PenGridFields fields;

constexpr auto kFields = PenGridFieldTable(fields, "Specifies whether the cross opens or closes.", kOpenCloseItems);

// The bar across one side of the cell, size * p thick, with the pen on its
// inside; A on either side moves outwards by half the bar.
DoorSpans Bar(int32_t size, double p, int32_t t) {
  const int32_t thickness = SingleRoundedShare(size, p);
  return DoorSpans::PenInside(0, size, CentredBar(size, thickness), t, thickness >> 1);
}

// Spans measured from the cell's corner, moved to the cell.
DoorSpans Moved(DoorSpans s, int32_t origin) {
  return {s.begin + origin, s.nearEnd + origin, s.openBegin + origin, s.openEnd + origin, s.farBegin + origin,
          s.end + origin, s.shift};
}

int32_t CrossSplitRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const PenReads reads = ReadPen(host, fields);
  int32_t t = PenThickness(reads.thickness);
  if (t != 0) t += 2;  // a pen is drawn at least 3 pixels deep
  const bool close = host.Field(fields.direction) == 1;  // any other value opens
  // Closing runs the opening backwards, from B to A: the inputs are exchanged
  // in the record once more.
  if (close) std::swap(ri->InputA, ri->InputB);
  if (!DrawableFrame(ri) || reads.divideX < 1 || reads.divideY < 1) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const double progress = ShapeProgress(ri->Progress);
  const double p = close ? 1.0 - progress : progress;
  // Every cell is whole: the bars are the same in each.
  const int32_t cw = NominalCellSize(rows.width, reads.divideX), ch = NominalCellSize(rows.height, reads.divideY);
  const DoorSpans cellColumns = Bar(cw, p, t), cellRows = Bar(ch, p, t);
  const uint32_t pen = reads.pen;
  ForEachWholeCell(rows.width, rows.height, reads.divideX, reads.divideY, [&](const Cell& c) {
    const DoorSpans columns = Moved(cellColumns, c.x0);
    ForEachDoorRow(Moved(cellRows, c.y0), [&](DoorPart part, int32_t y, int32_t from) {
      PixelWord* out = rows.Out(y);
      switch (part) {
        case DoorPart::Door: PaintDoorRow(out, rows.A(from), rows.B(y), columns, pen); break;
        case DoorPart::Pen: PaintPenRow(out, rows.B(y), columns, pen); break;
        case DoorPart::Opening: CopyRun(out + c.x0, rows.B(y) + c.x0, cw); break;
      }
    });
  }, CellOrder::AlongRows);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(CrossSplit, kTexts, kFields)
KR_TEST_PROFILE("Cross Split", .heavier = {"Divide_X=4", "Divide_Y=3", "BorderWidth=6", "Color=#FF2000"})
