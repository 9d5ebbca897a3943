// Windscreen Wiper: in every cell of the full grid a wiper blade pivots at
// the middle of the cell's bottom edge and sweeps across it; what it has
// wiped shows B, the rest A, and a pen band runs along the blade's leading
// side. One blade sweeps from one side over the top to the other, or two
// blades sweep the cell's halves as mirror images.
#include "host/transition.h"
#include "raster/exact_trig.h"
#include "raster/full_grid.h"
#include "transitions/pengrid/pen_grid.h"
#include "transitions/pengrid/sweep_band.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/Windscreen Wiper",
                             .signature = "Windscreen Wiper (ZE plug-in SDK effect)",
                             .displayName = "Windscreen Wiper",
                             .description = "A windscreen wiper cleans Va making Vb visible."};

PenGridFields fields;
FieldIndex antiAliasing;

constexpr SelectorItem kSweeps[] = {
    {"Left > Right", 0}, {"Right > Left", 1}, {"Center > Sides", 2}, {"Sides > Center", 3}};

constexpr auto kFields = WithField(PenGridFieldTable(fields, "Specifies how the wiper blades sweep.", kSweeps),
                                   AntiAliasingField(&antiAliasing));

// Any other value is Left > Right.
enum class Sweep : int32_t { LeftToRight, RightToLeft, CenterToSides, SidesToCenter };

Sweep DecodeSweep(int32_t value) { return value >= 1 && value <= 3 ? static_cast<Sweep>(value) : Sweep::LeftToRight; }

bool TwoBlades(Sweep sweep) { return sweep == Sweep::CenterToSides || sweep == Sweep::SidesToCenter; }

// The blade's direction and side sign at Progress p.
SweepBand::Line Blade(Sweep sweep, double p) {
  const double phi = TwoBlades(sweep) ? (p * kPi) * 0.5 : p * kPi;
  const double c = Cos(phi), s = Sin(phi);
  switch (sweep) {
    case Sweep::RightToLeft: return SweepBand::Line::Blade(c, s, -1);
    case Sweep::CenterToSides: return SweepBand::Line::Blade(s, c, 1);
    case Sweep::SidesToCenter: return SweepBand::Line::Blade(c, s, -1);
    default: return SweepBand::Line::Blade(-c, s, 1);
  }
}

int32_t WindscreenWiperRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const Sweep sweep = DecodeSweep(host.Field(fields.direction));
  const PenReads reads = ReadPen(host, fields);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (FrameDoneAtTheEnds(ri)) return 1;

  const bool twoBlades = TwoBlades(sweep);
  const FrameRows rows = FrameRows::Of(ri);
  // The wiped side B lies behind the blade, A ahead of it.
  const SweepBand band(rows, Blade(sweep, ri->Progress), BandSide::B, BandSide::A, reads.pen,
                       reads.thickness > 0 ? reads.thickness : 0, antiAlias);
  ForEachFullGridRow(rows.width, rows.height, reads.divideX, reads.divideY, [&](const Cell& c, int32_t y) {
    const double px = c.x0 + (c.x1 - c.x0) * 0.5;
    const double Y = (y + 0.5) - c.y0;
    if (twoBlades) {
      // |X|: the left half is the mirror of the right; its first column with X >= 0 starts the right.
      const int32_t middle = c.x0 + (c.x1 - c.x0) / 2;
      band.PaintRow(y, Y, c.x0, middle, px, true);
      band.PaintRow(y, Y, middle, c.x1, px, false);
    } else {
      band.PaintRow(y, Y, c.x0, c.x1, px, false);
    }
  });
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(WindscreenWiper, kTexts, kFields)
KR_TEST_PROFILE("Windscreen Wiper", .heavier = {"Divide_X=3", "Divide_Y=2", "BorderWidth=6", "Color=#FF2000", "Anti-Aliasing=on", "Direction=2"})
