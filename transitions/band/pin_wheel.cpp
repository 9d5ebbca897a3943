// Pin Wheel: N blades turn together about the frame centre like the vanes of
// a paper pinwheel. Each sweeps its own sector of 360/N degrees from one of N
// evenly spaced start rays, the first at 12 o'clock; B shows in the swept
// wedges, A elsewhere, both in place.
//
// Every pixel is decided by the signed distances of its centre from the start
// rays and from its sector's hand, from per-frame direction vectors, as
// written. Along a row each distance only rises or only falls, so each
// changes its side (and its blend) at a few columns, found by binary search
// over the same arithmetic; between them every pixel has the same sector and
// the same sides, and a run of A or B is copied whole.
#include <algorithm>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/band/edge_runs.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/Pin Wheel", .signature = "Pin Wheel (ZE plug-in SDK effect)",
                             .displayName = "Pin Wheel", .description = "Vb becomes visible through a pinwheel."};

ClipFields clip;
FieldIndex direction, bladesField, antiAliasing;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction", kTurnItems)
        .Help("Specifies the direction in which the blades turn.")
        .Default(0),
    Long(&bladesField, "Blades", "Number of Blades (2..12)", 2.0, 12.0)
        .Limits()
        .Help("Defines the number of blades of the pinwheel.")
        .Default(4),
    AntiAliasingField(&antiAliasing));

// Fewer than 2 blades would divide the turn by zero; more than 360 (far
// beyond the 12 offered) are held there, since every frame costs 2N sines
// and every run of pixels a search through N rays.
constexpr int32_t kFewestBlades = 2, kMostBlades = 360;

// Start ray u_k = (ux, uy) and hand d_k = (dx, dy) of blade k.
struct Blade {
  double ux, uy, dx, dy;
};

class Pinwheel {
 public:
  // `blades` holds n blades; `cuts` has room for 3n + 1 entries, `clockwise` for n.
  Pinwheel(const FrameRows& rows, const Blade* blades, int32_t n, bool counterClockwise, bool antiAlias, int64_t* cuts,
           bool* clockwise)
      : rows_(rows),
        blades_(blades),
        n_(n),
        counterClockwise_(counterClockwise),
        antiAlias_(antiAlias),
        cuts_(cuts),
        clockwise_(clockwise) {}

  void PaintRow(int32_t y) const {
    const double Y = (y + 0.5) - rows_.height * 0.5;
    const int32_t w = rows_.width;
    // Every column where a start ray's zone changes, with the ray (a column
    // in the high bits, the ray in the low 16), in order along the row.
    int64_t* end = cuts_;
    for (int32_t k = 0; k < n_; ++k) {
      ForEachZoneChange(
          0, w, [&](int32_t x) { return EdgeZone(Sd(k, X(x), Y), antiAlias_); },
          [&](int32_t x) { *end++ = (int64_t{x} << 16) | k; });
    }
    std::sort(cuts_, end);
    // Which side of each ray the current run lies on, kept up to date at the cuts.
    const double X0 = X(0);
    for (int32_t k = 0; k < n_; ++k) clockwise_[k] = Sd(k, X0, Y) >= 0;
    int32_t from = 0;
    for (const int64_t* cut = cuts_;; ++cut) {
      const int32_t to = cut < end ? static_cast<int32_t>(*cut >> 16) : w;
      if (to > from) PaintSector(y, Y, from, to);
      if (cut == end) break;
      const int32_t k = static_cast<int32_t>(*cut & 0xFFFF);
      clockwise_[k] = Sd(k, X(to), Y) >= 0;
      from = to;
    }
  }

 private:
  // X of the pixel centre from the frame centre, mirrored for counter-clockwise.
  double X(int32_t x) const {
    const double v = (x + 0.5) - rows_.width * 0.5;
    return counterClockwise_ ? -v : v;
  }
  // Positive clockwise of start ray k.
  double Sd(int32_t k, double X, double Y) const { return blades_[k].uy * X - blades_[k].ux * Y; }
  // Positive behind hand k.
  double Hd(int32_t k, double X, double Y) const { return blades_[k].dx * Y - blades_[k].dy * X; }
  int32_t Next(int32_t k) const { return k + 1 == n_ ? 0 : k + 1; }

  // The first k with the run clockwise of ray k and not of ray k + 1; 0
  // when there is none (the exact centre).
  int32_t Sector() const {
    for (int32_t k = 0; k < n_; ++k) {
      if (clockwise_[k] && !clockwise_[Next(k)]) return k;
    }
    return 0;
  }

  // Columns [from, to) of row y, in one sector, cut where its hand's zone changes.
  void PaintSector(int32_t y, double Y, int32_t from, int32_t to) const {
    const int32_t k = Sector();
    ForEachZoneChange(
        from, to, [&](int32_t x) { return EdgeZone(-Hd(k, X(x), Y), antiAlias_); },
        [&](int32_t x) {
          PaintRun(y, Y, k, from, x);
          from = x;
        });
    PaintRun(y, Y, k, from, to);
  }

  // edge(edge(A, B, sd_k), edge(A, B, sd_k+1), -hd): behind the hand the
  // wedge's own start ray decides, ahead of it the next wedge's.
  uint32_t Pixel(uint32_t a, uint32_t b, int32_t k, double X, double Y) const {
    return Edge(Edge(a, b, Sd(k, X, Y), antiAlias_), Edge(a, b, Sd(Next(k), X, Y), antiAlias_), -Hd(k, X, Y),
                antiAlias_);
  }

  // Columns [from, to) of row y in sector k, in which no distance changes its zone.
  void PaintRun(int32_t y, double Y, int32_t k, int32_t from, int32_t to) const {
    const double X0 = X(from);
    const int hand = EdgeZone(-Hd(k, X0, Y), antiAlias_);
    const int side = hand == 0 ? EdgeZone(Sd(k, X0, Y), antiAlias_)
                     : hand == 3 ? EdgeZone(Sd(Next(k), X0, Y), antiAlias_)
                                 : 1;
    PixelWord* out = rows_.Out(y);
    if (side == 0 || side == 3) {
      CopyRun(out + from, (side == 0 ? rows_.A(y) : rows_.B(y)) + from, to - from);
      return;
    }
    const PixelWord* a = rows_.A(y);
    const PixelWord* b = rows_.B(y);
    for (int32_t x = from; x < to; ++x) out[x] = Pixel(a[x], b[x], k, X(x), Y);
  }

  const FrameRows& rows_;
  const Blade* blades_;
  int32_t n_;
  bool counterClockwise_, antiAlias_;
  int64_t* cuts_;
  bool* clockwise_;
};

int32_t PinWheelRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const bool counterClockwise = host.Field(direction) == 1;
  const int32_t n = std::clamp(host.Field(bladesField), kFewestBlades, kMostBlades);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (FrameDoneAtTheEnds(ri)) return 1;

  const Scratch<Blade> blades = AllocateScratch<Blade>(static_cast<size_t>(n));
  const Scratch<int64_t> cuts = AllocateScratch<int64_t>(3 * static_cast<size_t>(n) + 1);
  const Scratch<bool> clockwise = AllocateScratch<bool>(static_cast<size_t>(n));
  if (!blades || !cuts || !clockwise) {  // without room for its tables the frame shows A
    CopyPixels(ri->Output, ri->InputA, 0, FramePixelCount(ri));
    return 1;
  }
  const double delta = (2 * kPi) / n, phi = ri->Progress * delta;
  for (int32_t k = 0; k < n; ++k) {
    const double start = k * delta;
    blades[k] = {Sin(start), Cos(start), Sin(start + phi), Cos(start + phi)};
  }
  const FrameRows rows = FrameRows::Of(ri);
  const Pinwheel wheel(rows, blades.get(), n, counterClockwise, antiAlias, cuts.get(), clockwise.get());
  for (int32_t y = 0; y < rows.height; ++y) wheel.PaintRow(y);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(PinWheel, kTexts, kFields)
KR_TEST_PROFILE("Pin Wheel", .heavier = {"Blades=12", "Anti-Aliasing=on"})
