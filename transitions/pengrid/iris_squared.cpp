// Iris Squared: in every cell a rectangle centred in the cell opens on B (or
// closes on A), the pen outside its edge.
#include "host/transition.h"
#include "transitions/pengrid/iris_frame.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Iris/Iris Squared", .signature = "Iris Squared (ZE plug-in SDK effect)",
                             .displayName = "Iris Squared", .description = "Va opens like a squared iris showing Vb."};

PenGridFields fields;

constexpr auto kFields = PenGridFieldTable(fields, kIrisDirectionHelp, kOpenCloseItems);

// Half-size from the nominal cell size (not the clipped cell): the extended
// product rounded to single, truncated.
int32_t HalfSize(int32_t nominal, double p, bool close) {
  const long double half = static_cast<long double>(nominal) * 0.5;
  const int32_t open = TruncToInt32(RoundToSingle(half * p));
  return close ? TruncToInt32(half - open) : open;
}

class SquaredShape {
 public:
  explicit SquaredShape(const IrisFrame& f)
      : f_(f), a_(HalfSize(f.cellWidth, f.progress, f.close)), b_(HalfSize(f.cellHeight, f.progress, f.close)) {}

  void Paint(const Cell& c) const {
    const int32_t cx = c.x0 + f_.centreX, cy = c.y0 + f_.centreY;
    const int32_t ao = a_ + f_.penThickness, bo = b_ + f_.penThickness;
    const Vertex inner[] = {{cx - a_, cy - b_}, {cx + a_, cy - b_}, {cx + a_, cy + b_}, {cx - a_, cy + b_}};
    const Vertex outer[] = {{cx - ao, cy - bo}, {cx + ao, cy - bo}, {cx + ao, cy + bo}, {cx - ao, cy + bo}};
    PaintPolygonPair(f_, c, inner, outer);
  }

 private:
  const IrisFrame& f_;
  int32_t a_, b_;  // half-sizes of the inner rectangle
};

int32_t IrisSquaredRender(t_KrRenderInfo* ri) { return RenderIris<SquaredShape>(ri, fields, PenWidening::ByTwo); }

}  // namespace
}  // namespace krl

KR_TRANSITION(IrisSquared, kTexts, kFields)
KR_TEST_PROFILE("Iris Squared", .heavier = {"Divide_X=3", "Divide_Y=3", "BorderWidth=4", "Color=#FF2000", "Direction=1"})
