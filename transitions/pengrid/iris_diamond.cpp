// Iris Diamond: in every cell a diamond centred in the cell opens on B (or
// closes on A), the pen outside its edge.
#include <cmath>

#include "host/transition.h"
#include "transitions/pengrid/iris_frame.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Iris/Iris Diamond", .signature = "Iris Diamond (ZE plug-in SDK effect)",
                             .displayName = "Iris Diamond", .description = "Va opens like a diamond iris showing Vb."};

PenGridFields fields;

constexpr auto kFields = PenGridFieldTable(fields, kIrisDirectionHelp, kOpenCloseItems);

// The reach: from the integer quarters of the squared cell sides, divided by
// 0.71 and rooted in extended precision, stored as single. It is only about
// 0.84 of the half-diagonal sum, so a square cell keeps A in its corners
// even fully open.
float Reach(int32_t cw, int32_t ch) {
  const int64_t quarters = int64_t{cw} * cw / 4 + int64_t{ch} * ch / 4;
  return RoundToSingle(std::sqrt(static_cast<long double>(quarters) / 0.71));
}

int32_t Radius(float reach, double p, bool close) {
  const int32_t open = TruncToInt32(RoundToSingle(p * static_cast<long double>(reach)));
  return close ? TruncToInt32(static_cast<long double>(reach) - open) : open;
}

class DiamondShape {
 public:
  explicit DiamondShape(const IrisFrame& f) : f_(f), r_(Radius(Reach(f.cellWidth, f.cellHeight), f.progress, f.close)) {}

  void Paint(const Cell& c) const {
    const int32_t cx = c.x0 + f_.centreX, cy = c.y0 + f_.centreY, ro = r_ + f_.penThickness;
    const Vertex inner[] = {{cx, cy - r_}, {cx + r_, cy}, {cx, cy + r_}, {cx - r_, cy}};
    const Vertex outer[] = {{cx, cy - ro}, {cx + ro, cy}, {cx, cy + ro}, {cx - ro, cy}};
    PaintPolygonPair(f_, c, inner, outer);
  }

 private:
  const IrisFrame& f_;
  int32_t r_;  // the inner diamond's radius
};

int32_t IrisDiamondRender(t_KrRenderInfo* ri) { return RenderIris<DiamondShape>(ri, fields, PenWidening::ByTwo); }

}  // namespace
}  // namespace krl

KR_TRANSITION(IrisDiamond, kTexts, kFields)
KR_TEST_PROFILE("Iris Diamond", .heavier = {"Divide_X=2", "Divide_Y=2", "BorderWidth=6", "Color=#FF2000"})
