// Cube Stretch: the strips of Cross Stretch drawn as the two visible faces
// of a cube turning in every cell. The seam is the cube's near edge and keeps
// the full extent across the travel; each face turns away from the viewer,
// so its far edge is shorter the more the face is squeezed, and its picture
// is compressed toward that edge. The wedges beside the shortened faces show
// the background colour, blended along the slanted edges with anti-aliasing.
#include <cmath>

#include "host/transition.h"
#include "raster/edge_profile.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/pengrid/stretch_strips.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Stretch/Cube Stretch",
                             .signature = "Cube Stretch (ZE plug-in SDK effect)", .displayName = "Cube Stretch",
                             .description = "Like Cross Stretch but looks 3-dimensional."};

PenGridFields fields;
FieldIndex backColor, antiAliasing;

// The fields of Cross Stretch, then the background and anti-aliasing.
constexpr std::array<FieldSpec, kPenGridFieldCount + 2> CubeFieldTable() {
  std::array<FieldSpec, kPenGridFieldCount + 2> table{};
  const std::array<FieldSpec, kPenGridFieldCount> stretch = StretchFieldTable(fields);
  for (size_t i = 0; i < kPenGridFieldCount; ++i) table[i] = stretch[i];
  table[kPenGridFieldCount] =
      Color(&backColor, "BackColor", "Background Color").Help("Defines the background color.").DefaultColor(0, 0, 0);
  table[kPenGridFieldCount + 1] = Bool(&antiAliasing, "Anti-Aliasing", "Anti-Aliasing")
                                      .Help("This option offers an improvement of quality.")
                                      .Default(0);
  return table;
}

constexpr auto kFields = CubeFieldTable();

// One strip drawn as a face turned away from the viewer.
struct Face {
  Strip strip;
  bool seamHigh;  // the seam, the cube's near edge, is at the strip's high end
  double g;       // 1 / sqrt(1 + k x k) for the slope k of the slanted edges
};

// What one along-index of a face shows: hc x sc (its half height, the local
// scale sc times half the across extent), 1 / sc, and the along-index it
// reads in the cell.
struct Slice {
  double halfExtent;
  double inverseScale;
  int32_t from;
};

// A face of the fraction f of the cell: the far-edge scale q of a face turned
// by the angle whose cosine is f, seen from two cell lengths away, and the
// perspective-correct reads of its along-indices into `slices`.
Face FaceOf(const Strip& s, bool seamHigh, double f, int32_t length, double hc, Slice* slices) {
  const int32_t j = s.Length();
  if (j == 0) return {s, seamHigh, 0.0};  // an empty face is skipped
  const double q = 1 / (1 + 0.5 * std::sqrt(1 - f * f));
  const double k = (hc * (1 - q)) / j;
  for (int32_t i = s.begin; i < s.end; ++i) {
    const double a = i + 0.5;
    // 0 at the seam, 1 at the far edge.
    const double sigma = seamHigh ? ((s.begin + j) - a) / j : (a - s.begin) / j;
    const double sc = 1 - sigma * (1 - q);
    const double alpha = (sigma * q) / sc;
    const double u = seamHigh ? length * (1 - alpha) : length * alpha;
    // u lies in 0..L: the conversion truncates as floor does.
    slices[i] = {hc * sc, 1 / sc, std::clamp(static_cast<int32_t>(u), 0, length - 1)};
  }
  return {s, seamHigh, 1 / std::sqrt(1 + k * k)};
}

// Pixels of a line running away from where a face is widest: index
// first + step x k for k = 0 .. count - 1, their distance r to the slanted
// edge falling with k.
struct Run {
  int32_t first, step, count;
  int32_t At(int32_t k) const { return first + step * k; }
  // The indices of k0 .. k1 - 1, ascending.
  Strip Part(int32_t k0, int32_t k1) const { return step > 0 ? Strip{At(k0), At(k1)} : Strip{At(k1) + 1, At(k0) + 1}; }
};

// The first k of begin .. count - 1 where `past` holds, for a test that
// stays true once true; count when there is none.
template <typename Past>
int32_t FirstWhere(int32_t begin, int32_t count, Past past) {
  int32_t lo = begin, hi = count;
  while (lo < hi) {
    const int32_t mid = lo + (hi - lo) / 2;
    if (past(mid)) {
      hi = mid;
    } else {
      lo = mid + 1;
    }
  }
  return lo;
}

// The edge blend decides alone whether a pixel shows only the face, only
// the background, or both; r falls along a run, so each of the three is one
// part of it, found from the blend of black and white.
template <typename Distance, typename Sample>
void PaintRun(PixelWord* out, const Run& run, Distance r, Sample sample, uint32_t back, bool antiAlias) {
  constexpr uint32_t kBlack = 0, kWhite = 0xFFFFFFFF;
  auto blended = [&](int32_t k) { return Edge(kBlack, kWhite, r(run.At(k)), antiAlias); };
  const int32_t faceEnd = FirstWhere(0, run.count, [&](int32_t k) { return blended(k) != kWhite; });
  const int32_t backFrom = FirstWhere(faceEnd, run.count, [&](int32_t k) { return blended(k) == kBlack; });
  const Strip face = run.Part(0, faceEnd), edge = run.Part(faceEnd, backFrom), rest = run.Part(backFrom, run.count);
  for (int32_t i = face.begin; i < face.end; ++i) out[i] = sample(i);
  for (int32_t i = edge.begin; i < edge.end; ++i) out[i] = Edge(back, sample(i), r(i), antiAlias);
  FillRun(out + rest.begin, back, rest.Length());
}

// The across source index of v = hc + (b - hc) x ic. On a face v lies within
// -C..2.5 C (ic is at most 1.5), far inside 32 bits; truncation and floor
// differ only between -1 and 0, where both clamp to 0.
inline int32_t AcrossFrom(double hc, double offset, double inverseScale, int32_t extent) {
  return std::clamp(static_cast<int32_t>(hc + offset * inverseScale), 0, extent - 1);
}

struct CubeCell {
  const FrameRows& rows;
  const Cell& cell;
  const Slice* slices;
  int32_t extent;  // C, across the travel
  double hc;       // C x 0.5
  uint32_t back;
  bool antiAlias;
};

// Travelling along columns: in every row the face runs from its seam.
void PaintFaceAcrossColumns(const CubeCell& c, const Face& face, const PixelWord* clip) {
  const Run run{face.seamHigh ? face.strip.end - 1 : face.strip.begin, face.seamHigh ? -1 : 1, face.strip.Length()};
  const int32_t x0 = c.cell.x0, y0 = c.cell.y0;
  const size_t width = static_cast<size_t>(c.rows.width);
  for (int32_t y = y0; y < c.cell.y1; ++y) {
    const double offset = ((y - y0) + 0.5) - c.hc, distance = std::abs(offset);
    PaintRun(
        c.rows.Out(y) + x0, run, [&](int32_t i) { return (c.slices[i].halfExtent - distance) * face.g; },
        [&](int32_t i) {
          const int32_t row = y0 + AcrossFrom(c.hc, offset, c.slices[i].inverseScale, c.extent);
          return uint32_t{clip[static_cast<size_t>(row) * width + static_cast<size_t>(x0 + c.slices[i].from)]};
        },
        c.back, c.antiAlias);
  }
}

// Travelling along rows: every row of the face runs out from the middle of
// the cell's columns both ways.
void PaintFaceAcrossRows(const CubeCell& c, const Face& face, const PixelWord* clip) {
  const int32_t x0 = c.cell.x0, y0 = c.cell.y0, middle = c.extent / 2;
  const Run halves[] = {{middle, 1, c.extent - middle}, {middle - 1, -1, middle}};
  const size_t width = static_cast<size_t>(c.rows.width);
  for (int32_t i = face.strip.begin; i < face.strip.end; ++i) {
    const Slice& slice = c.slices[i];
    const PixelWord* from = clip + static_cast<size_t>(y0 + slice.from) * width + static_cast<size_t>(x0);
    for (const Run& run : halves) {
      PaintRun(
          c.rows.Out(y0 + i) + x0, run,
          [&](int32_t col) { return (slice.halfExtent - std::abs((col + 0.5) - c.hc)) * face.g; },
          [&](int32_t col) { return uint32_t{from[AcrossFrom(c.hc, (col + 0.5) - c.hc, slice.inverseScale, c.extent)]}; },
          c.back, c.antiAlias);
    }
  }
}

int32_t CubeStretchRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const StretchReads reads = ReadStretch(host, fields);
  const uint32_t back = host.PenColor(backColor);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (!DrawsBetweenEnds(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const bool acrossColumns = AcrossColumns(reads.travel);
  const Scratch<Slice> slices = AllocateScratch<Slice>(static_cast<size_t>(acrossColumns ? rows.width : rows.height));
  if (!slices) return 1;  // no memory for the table: the output stays as it was
  const uint32_t pen = reads.pen.pen;
  // Every cell spans the frame across the travel; cells of the same length
  // have the same faces and slices.
  const int32_t extent = acrossColumns ? rows.height : rows.width;
  const double hc = extent * 0.5;
  int32_t slicedLength = -1;
  Face faces[2] = {};
  ForEachStretchCell(ri, reads, [&](const Cell& cell, const StretchStrips& s) {
    const int32_t n = s.b.Length();
    if (s.length != slicedLength) {
      const double fb = static_cast<double>(n) / s.length, fa = static_cast<double>(s.length - n) / s.length;
      // The lower strip has its seam at its high end.
      faces[0] = FaceOf(s.b, s.bLow, fb, s.length, hc, slices.get());
      faces[1] = FaceOf(s.a, !s.bLow, fa, s.length, hc, slices.get());
      slicedLength = s.length;
    }
    const CubeCell c{rows, cell, slices.get(), extent, hc, back, antiAlias};
    const PixelWord* clips[2] = {rows.inputB, rows.inputA};
    for (int32_t f = 0; f < 2; ++f) {
      if (faces[f].strip.Length() == 0) continue;
      if (acrossColumns) {
        PaintFaceAcrossColumns(c, faces[f], clips[f]);
      } else {
        PaintFaceAcrossRows(c, faces[f], clips[f]);
      }
    }
    if (acrossColumns) {
      for (int32_t y = cell.y0; y < cell.y1; ++y) FillRun(rows.Out(y) + cell.x0 + s.pen.begin, pen, s.pen.Length());
    } else {
      for (int32_t i = s.pen.begin; i < s.pen.end; ++i) FillRun(rows.Out(cell.y0 + i) + cell.x0, pen, extent);
    }
  });
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(CubeStretch, kTexts, kFields)
KR_TEST_PROFILE("Cube Stretch", .heavier = {"Divide_X=4", "BorderWidth=6", "Color=#FF2000", "Direction=1", "Anti-Aliasing=on"}, .drawsNothingWith = {{"Divide_X=0"}})
