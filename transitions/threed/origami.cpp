// Origami Unfold: B is a sheet folded into a packet (top and bottom quarters
// behind, left and right quarters of the middle band over the front) that
// unfolds over the still A: the packet grows out of the centre, the side
// flaps swing open toward the viewer, then the top and bottom flaps tilt down
// into place. A flap seen from behind shows the back colour.
#include <algorithm>
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/clamped_frame.h"
#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/threed/sheet.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Origami Unfold",
                             .signature = "Origami Unfold (ZE plug-in SDK effect)",
                             .displayName = "Origami Unfold", .description = "Vb unfolds origami style."};

ClipFields clip;
FieldIndex color, antiAlias;

constexpr auto kFields = FieldTable(clip,
    Color(&color, "Color", "Back Color").Help("Defines the color of the back of the paper.").DefaultColor(224, 224, 224),
    AntiAliasingField(&antiAlias, "IsAntiAlias"));

// The frame's constants, the flap angle of the current phase and how it is lit.
struct Paper {
  FrameRows rows;
  bool antiAlias;
  double w, h, cx, cy, dc, xl, yb, yt, fw, fh;
  double co = 0, si = 1;
  uint32_t shade = 256;     // the weight of shade(., hf)
  bool front = false;       // the flaps' fronts face the viewer
  uint32_t shadedBack = 0;  // shade(back colour, hf)

  Paper(const FrameRows& f, bool aa)
      : rows(f), antiAlias(aa), w(f.width), h(f.height) {
    cx = w * 0.5;
    cy = h * 0.5;
    dc = 2 * std::max(w, h);
    xl = w * 0.25;
    yb = h * 0.25;
    yt = h * 0.75;
    fw = w * 0.25;
    fh = h * 0.25;
  }

  void Turn(double psi, uint32_t back) {
    co = Cos(psi);
    si = Sin(psi);
    shade = ShadeWeight(0.6 + 0.4 * std::abs(co));
    shadedBack = ShadeWeighted(back, shade);
  }

  // Where edge(P, Q, r) gives P whatever Q is.
  bool OnlyBeneath(double r) const { return antiAlias ? r <= -0.5 : r < 0; }

  // edge(beneath, flap, e), the flap read only where it shows; flapAt() gives
  // the flap's front (unshaded) where that faces the viewer.
  template <typename FlapAt>
  uint32_t OverFlap(uint32_t beneath, double e, FlapAt flapAt) const {
    if (OnlyBeneath(e)) return beneath;
    const uint32_t flap = front ? ShadeWeighted(flapAt(), shade) : shadedBack;
    return !antiAlias || e >= 0.5 ? flap : Edge(beneath, flap, e, antiAlias);  // from 0.5 on the flap covers it all
  }
};

// Phase 0: the packet, the back colour, grows out of the centre.
void DrawPacket(const Paper& k, double p, uint32_t back) {
  const FrameRows& f = k.rows;
  const double g = p * 5;
  const double halfW = g * k.w * 0.25, halfH = g * k.h * 0.25;
  Scratch<double> across = AllocateScratch<double>(static_cast<size_t>(f.width));
  if (!across) {  // no memory for the column table: the frame shows A
    ShowA(f);
    return;
  }
  int32_t first = f.width, last = 0;  // the columns the packet may reach
  for (int32_t x = 0; x < f.width; ++x) {
    across[x] = halfW - std::abs((x + 0.5) - k.cx);
    if (!k.OnlyBeneath(across[x])) first = std::min(first, x), last = x + 1;
  }
  for (int32_t y = 0; y < f.height; ++y) {
    const double up = halfH - std::abs((y + 0.5) - k.cy);
    PixelWord* out = f.Out(y);
    const PixelWord* rowA = f.A(y);
    if (k.OnlyBeneath(up) || first >= last) {
      CopyRun(out, rowA, f.width);
      continue;
    }
    CopyRun(out, rowA, first);
    for (int32_t x = first; x < last; ++x) out[x] = Edge(rowA[x], back, std::min(across[x], up), k.antiAlias);
    CopyRun(out + last, rowA + last, f.width - last);
  }
}

// A column of phase 1: a flap column shows the flap where its edge lets it.
struct FlapColumn {
  bool middle = false;  // xl <= xs < W - xl: B is revealed here in the band
  bool flap = false;
  double ratio = 0, scale = 0;  // dz / Dc and Dc / dz
  int32_t source = 0;           // B's column floor(mc), held to the frame
  int32_t runEnd = 0;           // no flap: where the run of such columns of one kind ends
};

// Phase 1: the side flaps swing open about their hinges at W/4 and 3W/4.
void DrawSideFlaps(const Paper& k) {
  const FrameRows& f = k.rows;
  Scratch<FlapColumn> columns = AllocateScratch<FlapColumn>(static_cast<size_t>(f.width));
  if (!columns) {  // no memory for the column table: the frame shows A
    ShowA(f);
    return;
  }
  for (int32_t x = 0; x < f.width; ++x) {
    const double xs = x + 0.5;
    const bool right = xs >= k.cx;
    const double mirrored = right ? k.w - xs : xs;
    FlapColumn c;
    c.middle = k.xl <= xs && xs < k.w - k.xl;
    const double den = k.dc * k.co - (mirrored - k.cx) * k.si;
    if (den != 0) {
      const double rho = (k.dc * (k.xl - mirrored)) / den;
      if (0 <= rho && rho <= k.fw) {
        const double dz = k.dc - rho * k.si;
        c.flap = true;
        c.scale = k.dc / dz;
        c.ratio = dz / k.dc;
        c.source = ClampedFrame::Clamp(FloorToInt32(right ? k.w - (k.xl - rho) : k.xl - rho), f.width - 1);
      }
    }
    columns[x] = c;
  }
  // The runs without a flap are the same in every row: found once.
  for (int32_t x = f.width - 1; x >= 0; --x) {
    FlapColumn& c = columns[x];
    const bool joins = x + 1 < f.width && !columns[x + 1].flap && columns[x + 1].middle == c.middle;
    c.runEnd = joins ? columns[x + 1].runEnd : x + 1;
  }
  for (int32_t y = 0; y < f.height; ++y) {
    const double ys = y + 0.5;
    const bool band = k.yb <= ys && ys < k.yt;
    const double fromCentre = ys - k.cy;
    PixelWord* out = f.Out(y);
    const PixelWord* rowA = f.A(y);
    const PixelWord* rowB = f.B(y);
    for (int32_t x = 0; x < f.width;) {
      const FlapColumn& c = columns[x];
      const PixelWord* beneath = band && c.middle ? rowB : rowA;
      if (!c.flap) {
        CopyRun(out + x, beneath + x, c.runEnd - x);
        x = c.runEnd;
        continue;
      }
      const double y3 = k.cy + fromCentre * c.ratio;  // the point's height on the flap
      const double e = std::min(y3 - k.yb, k.yt - y3) * c.scale;
      out[x] = k.OverFlap(beneath[x], e, [&] { return f.B(ClampedFrame::Clamp(FloorToInt32(y3), f.height - 1))[c.source]; });
      ++x;
    }
  }
}

// Phase 2: the top and bottom flaps tilt down from behind the band.
void DrawEndFlaps(const Paper& k) {
  const FrameRows& f = k.rows;
  for (int32_t y = 0; y < f.height; ++y) {
    const double ys = y + 0.5;
    PixelWord* out = f.Out(y);
    const PixelWord* rowA = f.A(y);
    if (k.yb <= ys && ys < k.yt) {
      CopyRun(out, f.B(y), f.width);
      continue;
    }
    const bool top = ys >= k.cy;
    const double mirrored = top ? ys : k.h - ys;
    const double den = k.dc * k.co - (mirrored - k.cy) * k.si;
    const double rho = den != 0 ? (k.dc * (mirrored - k.yt)) / den : -1;
    if (!(0 <= rho && rho <= k.fh)) {
      CopyRun(out, rowA, f.width);
      continue;
    }
    const double dz = k.dc + rho * k.si;
    const double scale = k.dc / dz, ratio = dz / k.dc;
    // B's row floor(mr), held to the frame.
    const PixelWord* source = f.B(ClampedFrame::Clamp(FloorToInt32(top ? k.yt + rho : k.h - (k.yt + rho)), f.height - 1));
    for (int32_t x = 0; x < f.width; ++x) {
      const double x3 = k.cx + ((x + 0.5) - k.cx) * ratio;
      const double e = std::min(x3, k.w - x3) * scale;
      out[x] = k.OverFlap(rowA[x], e, [&] { return source[ClampedFrame::Clamp(FloorToInt32(x3), f.width - 1)]; });
    }
  }
}

int32_t OrigamiRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const uint32_t back = host.PenColor(color);
  const bool aa = host.Field(antiAlias) != 0;
  if (FrameDoneAtTheEnds(ri)) return 1;
  const double p = ri->Progress;
  Paper k(FrameRows::Of(ri), aa);
  if (p < 0.2) {
    DrawPacket(k, p, back);
  } else if (p < 0.6) {
    // From pi (folded over the middle) to 0 (flat).
    k.Turn(kPi * (1 - (p - 0.2) / 0.4), back);
    k.front = k.dc * k.co + (k.cx - k.xl) * k.si > 0;
    DrawSideFlaps(k);
  } else {
    // From upright behind the band to flat.
    k.Turn((kPi * 0.5) * (1 - (p - 0.6) / 0.4), back);
    k.front = k.dc * k.co - (k.yt - k.cy) * k.si > 0;
    DrawEndFlaps(k);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Origami, kTexts, kFields)
KR_TEST_PROFILE("Origami Unfold", .heavier = {"IsAntiAlias=on"})
