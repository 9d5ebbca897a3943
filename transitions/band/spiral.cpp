// Spiral: A turns about the frame centre while it shrinks into it, so every
// point of A travels on a spiral to the centre; B lies still behind it. A
// makes "Turns" full turns and is half its size at the middle.
//
// Each output pixel maps back into A by the frame's turn and scale, computed
// per pixel as written (the products of a row's Y once per row). Along a row
// the mapped u and v only rise or only fall, so the pixels inside A (or, with
// anti-aliasing, not plainly B) form one run of columns, found by binary
// search over that arithmetic; B is copied on either side of it.
#include <algorithm>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/clamped_frame.h"
#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "raster/pixel_rows.h"
#include "transitions/band/edge_runs.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/Spiral", .signature = "Spiral (ZE plug-in SDK effect)",
                             .displayName = "Spiral", .description = "Va turns spirally to Vb."};

ClipFields clip;
FieldIndex direction, turnsField, antiAliasing;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction", kTurnItems)
        .Help("Specifies the direction in which Va turns.")
        .Default(0),
    Long(&turnsField, "Turns", "Turns (0..4)", 0.0, 4.0)
        .Limits()
        .Help("Defines how often Va turns while it shrinks.")
        .Default(1),
    AntiAliasingField(&antiAliasing));

// A turned clockwise by theta and scaled by g about the frame centre.
class TurnedA {
 public:
  TurnedA(const FrameRows& rows, double theta, double g, bool antiAlias)
      : rows_(rows),
        a_{rows.inputA, rows.width, rows.height},
        g_(g),
        k1_(Cos(theta) / g),
        k2_(Sin(theta) / g),
        cx_(rows.width * 0.5),
        cy_(rows.height * 0.5),
        antiAlias_(antiAlias) {}

  void PaintRow(int32_t y) const {
    const double Y = (y + 0.5) - cy_;
    const Row r{Y * k2_, Y * k1_};
    const double w = rows_.width, h = rows_.height;
    const int32_t width = rows_.width;
    ColumnRange run{0, width};
    if (antiAlias_) {
      // Plainly B where e <= -0.5: e is the least of the four distances times
      // g, and a product with g > 0 keeps their order, so each distance must
      // leave B on its own.
      auto blended = [&](double d) { return MixWeight(0.5 - d * g_) < 256; };
      run = Intersect(run, HoldingRange(0, width, [&](int32_t x) { return blended(U(x, r)); }));
      run = Intersect(run, HoldingRange(0, width, [&](int32_t x) { return blended(w - U(x, r)); }));
      run = Intersect(run, HoldingRange(0, width, [&](int32_t x) { return blended(V(x, r)); }));
      run = Intersect(run, HoldingRange(0, width, [&](int32_t x) { return blended(h - V(x, r)); }));
    } else {
      run = Intersect(run, HoldingRange(0, width, [&](int32_t x) { return 0 <= U(x, r); }));
      run = Intersect(run, HoldingRange(0, width, [&](int32_t x) { return U(x, r) < w; }));
      run = Intersect(run, HoldingRange(0, width, [&](int32_t x) { return 0 <= V(x, r); }));
      run = Intersect(run, HoldingRange(0, width, [&](int32_t x) { return V(x, r) < h; }));
    }
    PixelWord* out = rows_.Out(y);
    const PixelWord* b = rows_.B(y);
    CopyRun(out, b, run.begin);
    CopyRun(out + run.end, b + run.end, width - run.end);
    if (antiAlias_) {
      for (int32_t x = run.begin; x < run.end; ++x) {
        const double u = U(x, r), v = V(x, r);
        const double e = std::min(std::min(u, w - u), std::min(v, h - v)) * g_;
        out[x] = Edge(b[x], a_.Bilinear(u, v), e, true);
      }
    } else {
      for (int32_t x = run.begin; x < run.end; ++x) out[x] = a_.Nearest(U(x, r), V(x, r));
    }
  }

 private:
  struct Row {
    double yk2, yk1;  // Y x k2 and Y x k1
  };

  double X(int32_t x) const { return (x + 0.5) - cx_; }
  double U(int32_t x, const Row& r) const { return cx_ + (X(x) * k1_ - r.yk2); }
  double V(int32_t x, const Row& r) const { return cy_ + (X(x) * k2_ + r.yk1); }

  const FrameRows& rows_;
  ClampedFrame a_;
  double g_, k1_, k2_, cx_, cy_;
  bool antiAlias_;
};

int32_t SpiralRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const bool counterClockwise = host.Field(direction) == 1;
  const int32_t turns = host.Field(turnsField);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (ri->Width <= 0 || ri->Height <= 0 || DrawEnds(ri)) return 1;

  const double p = ri->Progress;
  const double theta = ((p * turns) * 2) * kPi;
  const FrameRows rows = FrameRows::Of(ri);
  const TurnedA turned(rows, counterClockwise ? -theta : theta, 1 - p, antiAlias);
  for (int32_t y = 0; y < rows.height; ++y) turned.PaintRow(y);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Spiral, kTexts, kFields)
KR_TEST_PROFILE("Spiral", .heavier = {"Turns=4", "Anti-Aliasing=on"})
