// Builder: the frame is cut into tiles, and in every tile B is laid course
// by course like a wall, each course in the other direction than the last.
#include <algorithm>
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "transitions/pengrid/pen_fields.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/Builder", .signature = "Builder (ZE plug-in SDK effect)",
                             .displayName = "Builder", .description = "Vb builds up like a wall."};

ClipFields clip;
FieldIndex direction, divideX, divideY;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction", {{"Build Vb Up", 0}, {"Build Va Down", 1}})
        .Help("Specifies whether Vb is built up or Va built down.")
        .Default(0),
    DivideXField(&divideX),
    DivideYField(&divideY));

// Columns x0..x1 - 1 of rows y0..y1 - 1: B on bx0..bx1 - 1, A on the rest.
void PaintCourseRows(const FrameRows& rows, int32_t y0, int32_t y1, int32_t x0, int32_t x1, int32_t bx0,
                     int32_t bx1) {
  for (int32_t y = y0; y < y1; ++y) {
    PixelWord* out = rows.Out(y);
    CopyRun(out + x0, rows.A(y) + x0, bx0 - x0);
    CopyRun(out + bx0, rows.B(y) + bx0, bx1 - bx0);
    CopyRun(out + bx1, rows.A(y) + bx1, x1 - bx1);
  }
}

// One tile: columns x0..x1 - 1, th rows from `edge` on, upwards where the
// wall is built up from the tile's bottom, downwards where it comes down
// from its top.
struct Tile {
  int32_t x0, x1;
  int32_t edge, th;
  bool upwards;
};

void BuildTile(const FrameRows& rows, const Tile& t, double p) {
  const int32_t tw = t.x1 - t.x0;
  const int32_t bh = static_cast<int32_t>(std::ceil(t.th / 10.0));  // course height, 1 at least
  const int32_t nb = static_cast<int32_t>(std::ceil(static_cast<double>(t.th) / bh));
  const int64_t length = int64_t{nb} * tw;
  // The built length: length times Progress rounded to single, truncated;
  // held to 0..length for a Progress outside 0..1 (or NaN).
  const int64_t built = TruncToRange(RoundToSingle(static_cast<double>(length) * p), int64_t{0}, length);
  const int32_t course = built < length ? static_cast<int32_t>(built / tw) + 1 : nb;  // 1-based
  const int32_t laid = static_cast<int32_t>(built - int64_t{course - 1} * tw);
  const int32_t done = (course - 1) * bh, courseEnd = std::min(t.th, course * bh);
  // Odd courses are laid from the tile's left edge, even ones from its right.
  const int32_t bx0 = course % 2 == 1 ? t.x0 : t.x1 - laid;
  // Rows counted from the wall's starting edge, turned into row indices.
  auto paint = [&](int32_t from, int32_t to, int32_t b0, int32_t b1) {
    if (t.upwards) {
      PaintCourseRows(rows, t.edge + from, t.edge + to, t.x0, t.x1, b0, b1);
    } else {
      PaintCourseRows(rows, t.edge - to + 1, t.edge - from + 1, t.x0, t.x1, b0, b1);
    }
  };
  paint(0, done, t.x0, t.x1);
  paint(done, courseEnd, bx0, bx0 + laid);
  paint(courseEnd, t.th, t.x0, t.x0);
}

int32_t BuilderRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const int32_t dir = host.Field(direction);
  const int32_t nx = host.Field(divideX), ny = host.Field(divideY);
  // A Direction other than 0 and 1 builds nothing; so do divisions below 1,
  // which would divide by zero or lay tiles of no size.
  if ((dir != 0 && dir != 1) || nx < 1 || ny < 1) return 1;
  if (ri->Width <= 0 || ri->Height <= 0) return 1;
  const FrameRows rows = FrameRows::Of(ri);
  const int32_t w = rows.width, h = rows.height;
  const int32_t cw = static_cast<int32_t>(std::ceil(static_cast<double>(w) / nx));
  const int32_t ch = static_cast<int32_t>(std::ceil(static_cast<double>(h) / ny));
  // Tiles that ceil rounding puts at or beyond the frame's edge hold no
  // pixel and draw nothing; the loops stop before them. Each tile is laid
  // from the inputs alone, so they go along each row of tiles: neighbouring
  // tiles' rows share memory pages, which then stay in the cache and the TLB.
  for (int64_t j = 0; j < ny && j * ch < h; ++j) {
    const int32_t top = static_cast<int32_t>(j * ch), th = std::min(ch, h - top);
    for (int64_t i = 0; i < nx && i * cw < w; ++i) {
      const int32_t x0 = static_cast<int32_t>(i * cw), x1 = static_cast<int32_t>(std::min<int64_t>(i * cw + cw, w));
      // Built up: picture rows from the top, so the tile's bottom row is
      // h - top - th; built down: the tile's top row is top + th - 1.
      const Tile tile = dir == 0 ? Tile{x0, x1, h - top - th, th, true} : Tile{x0, x1, top + th - 1, th, false};
      BuildTile(rows, tile, ri->Progress);
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Builder, kTexts, kFields)
KR_TEST_PROFILE("Builder", .heavier = {"Divide_X=8", "Divide_Y=8", "Direction=1"})
