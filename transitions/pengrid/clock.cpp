// Clock: in every cell of the full grid a hand turns once around the cell's
// centre from the chosen hour, clockwise or counter-clockwise. The area it
// has swept shows B, the rest A; a pen band runs along the hand's leading
// side, and the line where the hand started is a plain edge between B and A.
#include "host/transition.h"
#include "raster/exact_trig.h"
#include "raster/full_grid.h"
#include "transitions/pengrid/pen_grid.h"
#include "transitions/pengrid/sweep_band.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/Clock", .signature = "Clock (ZE plug-in SDK effect)",
                             .displayName = "Clock", .description = "Vb becomes visible clockwise."};

PenGridFields fields;
FieldIndex startPosition, antiAliasing;

constexpr SelectorItem kTurns[] = {{"Clockwise", 0}, {"Counter-Clockwise", 1}};
constexpr SelectorItem kHours[] = {{"12 o'clock", 0}, {"3 o'clock", 1}, {"6 o'clock", 2}, {"9 o'clock", 3}};

constexpr std::array<FieldSpec, 10> kFields{
    InputAField(&fields.inputA),
    InputBField(&fields.inputB),
    TransTypeField(&fields.transType),
    DirectionField(&fields.direction, "Specifies the direction in which the hand turns.", kTurns),
    SelectorOf(&startPosition, "StartPosition", "Start Position", "Specifies the position of the hand at the start.", kHours),
    DivideXField(&fields.divideX),
    DivideYField(&fields.divideY),
    PenColorField(&fields.color),
    PenThicknessField(&fields.borderWidth),
    AntiAliasingField(&antiAliasing),
};

struct Direction {
  double x, y;
};

// The hand at the start: 3, 6 and 9 o'clock as listed, any other value 12.
Direction StartDirection(int32_t hour) {
  switch (hour) {
    case 1: return {1, 0};
    case 2: return {0, -1};
    case 3: return {-1, 0};
    default: return {0, 1};
  }
}

int32_t ClockRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const bool counterClockwise = host.Field(fields.direction) == 1;  // any other value turns clockwise
  Direction u = StartDirection(host.Field(startPosition));
  const PenReads reads = ReadPen(host, fields);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (FrameDoneAtTheEnds(ri)) return 1;

  // Counter-clockwise is the mirror image of clockwise: u.x and every pixel's X negated.
  if (counterClockwise) u.x = -u.x;
  const double phi = ri->Progress * 2 * kPi;
  const double c = Cos(phi), s = Sin(phi);
  // The hand: u turned clockwise by phi. Behind it B, across the start line A.
  const SweepBand::Line hand{.dx = u.x * c + u.y * s, .dy = u.y * c - u.x * s, .k = 1, .ux = u.x, .uy = u.y};
  // Up to half a turn the swept wedge is where both lines agree, beyond it where either does.
  const bool firstHalf = phi <= kPi;
  const FrameRows rows = FrameRows::Of(ri);
  const SweepBand band(rows, hand, firstHalf ? BandSide::StartEdge : BandSide::B,
                       firstHalf ? BandSide::A : BandSide::StartEdge, reads.pen,
                       reads.thickness > 0 ? reads.thickness : 0, antiAlias);
  ForEachFullGridRow(rows.width, rows.height, reads.divideX, reads.divideY, [&](const Cell& cell, int32_t y) {
    const double cx = cell.x0 + (cell.x1 - cell.x0) * 0.5, cy = cell.y0 + (cell.y1 - cell.y0) * 0.5;
    band.PaintRow(y, (y + 0.5) - cy, cell.x0, cell.x1, cx, counterClockwise);
  });
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Clock, kTexts, kFields)
KR_TEST_PROFILE("Clock", .heavier = {"Divide_X=3", "Divide_Y=2", "BorderWidth=6", "Color=#FF2000", "Anti-Aliasing=on", "StartPosition=1"})
