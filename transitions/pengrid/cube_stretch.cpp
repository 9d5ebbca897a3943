// Cube Stretch: the strips of Cross Stretch drawn as the two visible faces
// of a cube turning in every cell. The seam is the cube's near edge and keeps
// the full extent across the travel; each face turns away from the viewer,
// so its far edge is shorter the more the face is squeezed, and its picture
// is compressed toward that edge. The wedges beside the shortened faces show
// the background colour, blended along the slanted edges with anti-aliasing.
#include <emmintrin.h>

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
  table[kPenGridFieldCount + 1] = AntiAliasingField(&antiAliasing);
  return table;
}

constexpr auto kFields = CubeFieldTable();

// One strip drawn as a face turned away from the viewer.
struct Face {
  Strip strip;
  bool seamHigh;  // the seam, the cube's near edge, is at the strip's high end
  double g;       // 1 / sqrt(1 + k x k) for the slope k of the slanted edges
};

// What the along-indices of a table show, one array each: hc x sc (the half
// extent of the face there, the local scale sc times hc), 1 / sc, and the
// along-index read in the cell.
struct Slices {
  double* halfExtent;
  double* inverseScale;
  int32_t* from;
  Slices From(int32_t start) const { return {halfExtent + start, inverseScale + start, from + start}; }
};

// A face of the fraction f of the cell: the far-edge scale q of a face turned
// by the angle whose cosine is f, seen from two cell lengths away, and the
// perspective-correct reads of its along-indices into `slices`.
Face FaceOf(const Strip& s, bool seamHigh, double f, int32_t length, double hc, const Slices& slices) {
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
    slices.halfExtent[i] = hc * sc;
    slices.inverseScale[i] = 1 / sc;
    slices.from[i] = std::clamp(static_cast<int32_t>(u), 0, length - 1);
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
// part of it, found from the blend of black and white. `paintFace` draws the
// part showing the face alone, `sample` single pixels of the face.
template <typename Distance, typename Sample, typename PaintFace>
void PaintRun(PixelWord* out, const Run& run, Distance r, Sample sample, PaintFace paintFace, uint32_t back,
              bool antiAlias) {
  constexpr uint32_t kBlack = 0, kWhite = 0xFFFFFFFF;
  auto blended = [&](int32_t k) { return Edge(kBlack, kWhite, r(run.At(k)), antiAlias); };
  const int32_t faceEnd = FirstWhere(0, run.count, [&](int32_t k) { return blended(k) != kWhite; });
  const int32_t backFrom = FirstWhere(faceEnd, run.count, [&](int32_t k) { return blended(k) == kBlack; });
  const Strip face = run.Part(0, faceEnd), edge = run.Part(faceEnd, backFrom), rest = run.Part(backFrom, run.count);
  paintFace(face);
  for (int32_t i = edge.begin; i < edge.end; ++i) out[i] = Edge(back, sample(i), r(i), antiAlias);
  FillRun(out + rest.begin, back, rest.Length());
}

// The across source index of v = hc + (b - hc) x ic. On a face v lies within
// -C..2.5 C (ic is at most 1.5), far inside 32 bits; truncation and floor
// differ only between -1 and 0, where both clamp to 0.
inline int32_t AcrossFrom(double hc, double offset, double inverseScale, int32_t extent) {
  return std::clamp(static_cast<int32_t>(hc + offset * inverseScale), 0, extent - 1);
}

// The B face and the A face of the cells of one length; their slices are
// those of the table kept for that length.
struct CellFaces {
  Face faces[2];
};

CellFaces FacesOf(const StretchStrips& s, double hc, const Slices& slices) {
  const int32_t n = s.b.Length();
  const double fb = static_cast<double>(n) / s.length, fa = static_cast<double>(s.length - n) / s.length;
  // The lower strip has its seam at its high end.
  return {{FaceOf(s.b, s.bLow, fb, s.length, hc, slices), FaceOf(s.a, !s.bLow, fa, s.length, hc, slices)}};
}

// What every cell of a frame shares.
struct CubeFrame {
  FrameRows rows;
  const StretchCells& cells;
  CellFaces regular, last;
  Slices slices;
  size_t* across;   // room for the places read in kRowsInFlight lines, or the across indices of one
  size_t line;      // the room of one line
  int32_t extent;   // C, across the travel: every cell spans the frame across it
  double hc;        // C x 0.5
  uint32_t pen, back;
  bool antiAlias;

  const CellFaces& FacesOfCell(int32_t i) const { return cells.IsLast(i) ? last : regular; }
  const PixelWord* Clip(int32_t face) const { return face == 0 ? rows.inputB : rows.inputA; }
};

// Travelling along columns the frames are walked row by row; in each cell's
// row a face runs from its seam. The places a row reads, relative to the
// cell, depend only on the along-index in the table, so they are found once
// per row for all cells of a length, in a loop of their own, kAhead rows
// before the row is painted:
// one row of a face reads from many rows of its clip, and the reads of that
// later row are announced to the cache face by face, as this row's are made.
constexpr int32_t kAhead = 2, kRowsInFlight = kAhead + 1;

// The places read for row y by the faces of every table, at their table
// index: the across index times the width plus the along-index.
void FindPlaces(const CubeFrame& f, int32_t y, size_t* places) {
  const double hc = f.hc, offset = (y + 0.5) - hc;
  const double* inverseScale = f.slices.inverseScale;
  const int32_t* from = f.slices.from;
  const int32_t extent = f.extent, width = f.rows.width;
  // With across indices and a width below 2^15, pmaddwd forms the products
  // of four columns at once and their sums stay below 2^31.
  const bool narrow = width < (1 << 15) && extent <= (1 << 15);
  const __m128d hcs = _mm_set1_pd(hc), offsets = _mm_set1_pd(offset), lastRow = _mm_set1_pd(extent - 1);
  const __m128i widths = _mm_set1_epi32(width);
  // Those of k and k + 1 in the low half, clamped before the truncation,
  // which gives what AcrossFrom gives.
  auto acrossPair = [&](int32_t k) {
    const __m128d v = _mm_add_pd(hcs, _mm_mul_pd(offsets, _mm_loadu_pd(inverseScale + k)));
    return _mm_cvttpd_epi32(_mm_max_pd(_mm_min_pd(v, lastRow), _mm_setzero_pd()));
  };
  auto run = [&](int32_t k, int32_t end) {
    if (narrow) {
      for (; k + 4 <= end; k += 4) {
        const __m128i rows = _mm_unpacklo_epi64(acrossPair(k), acrossPair(k + 2));
        const __m128i at = _mm_add_epi32(_mm_madd_epi16(rows, widths),
                                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + k)));
#if defined(__x86_64__)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(places + k), _mm_unpacklo_epi32(at, _mm_setzero_si128()));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(places + k + 2), _mm_unpackhi_epi32(at, _mm_setzero_si128()));
#else
        _mm_storeu_si128(reinterpret_cast<__m128i*>(places + k), at);
#endif
      }
    }
    for (; k < end; ++k) {
      places[k] = static_cast<size_t>(AcrossFrom(hc, offset, inverseScale[k], extent)) * static_cast<size_t>(width) +
                  static_cast<size_t>(from[k]);
    }
  };
  auto table = [&](const CellFaces& faces, int32_t start) {
    for (const Face& face : faces.faces) run(start + face.strip.begin, start + face.strip.end);
  };
  if (f.cells.count > 1) table(f.regular, 0);
  table(f.last, f.cells.LastTableStart());
}

// Asks the cache for every fourth pixel a face reads in a later row.
void AnnounceReads(const PixelWord* clip, const Strip& strip, const size_t* places) {
  for (int32_t k = strip.begin; k < strip.end; k += 4) __builtin_prefetch(&clip[places[k]]);
}

// The pixels of `strip` read at their places, four at a time.
void Gather(PixelWord* out, const PixelWord* clip, const size_t* places, const Strip& strip) {
  int32_t k = strip.begin;
  for (; k + 4 <= strip.end; k += 4) {
    const PixelWord p0 = clip[places[k]], p1 = clip[places[k + 1]], p2 = clip[places[k + 2]], p3 = clip[places[k + 3]];
    out[k] = p0;
    out[k + 1] = p1;
    out[k + 2] = p2;
    out[k + 3] = p3;
  }
  for (; k < strip.end; ++k) out[k] = clip[places[k]];
}

void PaintAcrossColumns(const CubeFrame& f) {
  auto placesOf = [&](int32_t y) { return f.across + static_cast<size_t>(y % kRowsInFlight) * f.line; };
  for (int32_t y = 0; y < std::min(kAhead, f.rows.height); ++y) FindPlaces(f, y, placesOf(y));
  for (int32_t y = 0; y < f.rows.height; ++y) {
    const bool announce = y + kAhead < f.rows.height;
    if (announce) FindPlaces(f, y + kAhead, placesOf(y + kAhead));
    const double distance = std::abs((y + 0.5) - f.hc);
    PixelWord* out = f.rows.Out(y);
    for (int32_t i = f.cells.First(); i < f.cells.count; ++i) {
      const int32_t x0 = f.cells.Origin(i);
      const Slices slices = f.slices.From(f.cells.TableStart(i));
      const size_t* places = placesOf(y) + f.cells.TableStart(i);
      const size_t* later = placesOf(y + kAhead) + f.cells.TableStart(i);
      for (int32_t side = 0; side < 2; ++side) {
        const Face& face = f.FacesOfCell(i).faces[side];
        if (face.strip.Length() == 0) continue;
        const Run run{face.seamHigh ? face.strip.end - 1 : face.strip.begin, face.seamHigh ? -1 : 1,
                      face.strip.Length()};
        const PixelWord* clip = f.Clip(side) + x0;
        if (announce) AnnounceReads(clip, face.strip, later);
        auto read = [&](int32_t k) { return uint32_t{clip[places[k]]}; };
        PaintRun(
            out + x0, run, [&](int32_t k) { return (slices.halfExtent[k] - distance) * face.g; }, read,
            [&](const Strip& s) { Gather(out + x0, clip, places, s); },
            f.back, f.antiAlias);
      }
      const Strip& pen = f.cells.Strips(i).pen;
      FillRun(out + x0 + pen.begin, f.pen, pen.Length());
    }
  }
}

// Travelling along rows: every row of a face runs out from the middle of the
// columns both ways, reading one source row.
void PaintAcrossRows(const CubeFrame& f) {
  const int32_t middle = f.extent / 2;
  const Run halves[] = {{middle, 1, f.extent - middle}, {middle - 1, -1, middle}};
  size_t* across = f.across;
  for (int32_t i = f.cells.First(); i < f.cells.count; ++i) {
    const int32_t y0 = f.cells.Origin(i);
    const Slices slices = f.slices.From(f.cells.TableStart(i));
    for (int32_t side = 0; side < 2; ++side) {
      const Face& face = f.FacesOfCell(i).faces[side];
      for (int32_t k = face.strip.begin; k < face.strip.end; ++k) {
        const double halfExtent = slices.halfExtent[k], inverseScale = slices.inverseScale[k];
        const PixelWord* from = f.Clip(side) + f.rows.RowStart(y0 + slices.from[k]);
        PixelWord* out = f.rows.Out(y0 + k);
        auto acrossAt = [&](int32_t x) { return AcrossFrom(f.hc, (x + 0.5) - f.hc, inverseScale, f.extent); };
        for (const Run& run : halves) {
          PaintRun(
              out, run, [&](int32_t x) { return (halfExtent - std::abs((x + 0.5) - f.hc)) * face.g; },
              [&](int32_t x) { return uint32_t{from[acrossAt(x)]}; },
              [&](const Strip& s) {
                for (int32_t x = s.begin; x < s.end; ++x) across[x] = static_cast<size_t>(acrossAt(x));
                for (int32_t x = s.begin; x < s.end; ++x) out[x] = from[across[x]];
              },
              f.back, f.antiAlias);
        }
      }
    }
    const Strip& pen = f.cells.Strips(i).pen;
    for (int32_t k = pen.begin; k < pen.end; ++k) FillRun(f.rows.Out(y0 + k), f.pen, f.extent);
  }
}

int32_t CubeStretchRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const StretchReads reads = ReadStretch(host, fields);
  const uint32_t back = host.PenColor(backColor);
  const bool antiAlias = host.Field(antiAliasing) != 0;
  if (FrameDoneAtTheEnds(ri) || !DrawableFrame(ri)) return 1;

  const StretchCells cells = CellsAlong(ri, reads);
  if (cells.count == 0) return 1;
  const bool acrossColumns = AcrossColumns(reads.travel);
  const int32_t extent = acrossColumns ? ri->Height : ri->Width;
  // The tables, then the across indices of the lines in flight (a line is at most a table long or the extent).
  const size_t length = static_cast<size_t>(cells.TableLength());
  const size_t line = std::max(length, static_cast<size_t>(extent));
  const Scratch<double> reals = AllocateScratch<double>(2 * length);
  const Scratch<int32_t> indices = AllocateScratch<int32_t>(length);
  const Scratch<size_t> places = AllocateScratch<size_t>(kRowsInFlight * line);
  if (!reals || !indices || !places) return 1;  // no memory for the tables: the output stays as it was
  const Slices slices{reals.get(), reals.get() + length, indices.get()};
  const double hc = extent * 0.5;
  const CellFaces regular = cells.count > 1 ? FacesOf(cells.regular, hc, slices) : CellFaces{};
  const CellFaces last = FacesOf(cells.last, hc, slices.From(cells.LastTableStart()));
  const CubeFrame frame{FrameRows::Of(ri), cells, regular, last, slices, places.get(), line, extent, hc,
                        reads.pen.pen, back, antiAlias};
  if (acrossColumns) {
    PaintAcrossColumns(frame);
  } else {
    PaintAcrossRows(frame);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(CubeStretch, kTexts, kFields)
KR_TEST_PROFILE("Cube Stretch", .heavier = {"Divide_X=4", "BorderWidth=6", "Color=#FF2000", "Direction=1", "Anti-Aliasing=on"})
