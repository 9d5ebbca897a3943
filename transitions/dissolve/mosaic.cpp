// Mosaic: the frame is a grid of 10 x 10 tiles that turn from A to B one at a
// time in a fixed scrambled order, one more for every hundredth of the
// transition. Tile sizes are real numbers, so neighbouring tiles may overlap
// by a column or a row, and then the tile written last shows.
#include <array>
#include <array>

#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Mosaic", .signature = "Mosaic (ZE plug-in SDK effect)",
                             .displayName = "Mosaic", .description = "Vb becomes visible like a mosaic."};

ClipFields clip;

constexpr auto kFields = FieldTable(clip);

constexpr int32_t kTilesPerSide = 10;
constexpr int32_t kTiles = kTilesPerSide * kTilesPerSide;

// The order in which the tiles (column + 10 * row) turn to B.
constexpr int32_t kOrder[kTiles] = {
    38, 58, 13, 15, 51, 27, 10, 19, 86, 49,  //
    67, 84, 60, 25, 43, 89, 83, 37, 66, 78,  //
    95, 54, 31, 45, 82, 5,  94, 53, 61, 96,  //
    28, 88, 85, 6,  65, 3,  62, 34, 20, 44,  //
    18, 22, 57, 79, 70, 59, 48, 29, 90, 16,  //
    14, 81, 33, 36, 71, 75, 93, 39, 21, 2,   //
    17, 74, 73, 56, 97, 91, 99, 26, 52, 80,  //
    76, 87, 23, 98, 11, 46, 63, 41, 7,  42,  //
    47, 92, 35, 64, 40, 50, 68, 9,  77, 69,  //
    12, 55, 0,  30, 4,  32, 72, 1,  8,  24,
};

// When each tile is written within a pass: the order table inverted.
constexpr std::array<int32_t, kTiles> kTurnOf = [] {
  std::array<int32_t, kTiles> turn{};
  for (int32_t k = 0; k < kTiles; ++k) turn[kOrder[k]] = k;
  return turn;
}();

// The frame is drawn in passes, one per offset (x0, y0) inside a tile, rows
// of offsets outermost; each pass writes one pixel of every tile, at
// x0 + trunc(c x tileWidth) for tile column c, and the same in y. A pixel
// therefore keeps what the last pass that reaches it wrote: the pass with
// the highest y0, then the highest x0. The axes are independent, so each
// is worked out once, as runs of coordinates whose last pass writes the
// same tiles of that axis (bit c for tile column or row c; several when
// tiles are thinner than a pixel, none where no pass reaches).
struct AxisRun {
  int32_t first;
  int32_t end;
  uint32_t tiles;
};

// The last pass changes only where a tile starts or ends, so an axis has at
// most 2 x 10 + 1 runs: a fixed array, and no allocation in a render.
struct AxisRuns {
  std::array<AxisRun, 2 * kTilesPerSide + 1> run;
  size_t count = 0;

  bool empty() const { return count == 0; }
  AxisRun& back() { return run[count - 1]; }
  const AxisRun* begin() const { return run.data(); }
  const AxisRun* end() const { return run.data() + count; }
  size_t size() const { return count; }
  const AxisRun& operator[](size_t i) const { return run[i]; }
  // Past the bound (which no length reaches) the rest of the axis is left as it was.
  void push_back(const AxisRun& r) {
    if (count < run.size()) run[count++] = r;
  }
};

AxisRuns LastPassTiles(int32_t length) {
  const double tileSize = length / 10.0;
  int32_t start[kTilesPerSide];
  for (int32_t c = 0; c < kTilesPerSide; ++c) start[c] = TruncToInt32(c * tileSize);
  AxisRuns runs;
  for (int32_t i = 0; i < length; ++i) {
    int32_t lastOffset = -1;
    uint32_t tiles = 0;
    for (int32_t c = 0; c < kTilesPerSide; ++c) {
      const int32_t offset = i - start[c];
      if (offset < 0 || !(offset < tileSize) || offset < lastOffset) continue;
      if (offset > lastOffset) tiles = 0;
      lastOffset = offset;
      tiles |= 1u << c;
    }
    if (!runs.empty() && runs.back().tiles == tiles) {
      runs.back().end = i + 1;
    } else {
      runs.push_back({i, i + 1, tiles});
    }
  }
  return runs;
}

// Within a pass the tiles are written in turn order, those before `turns`
// from B and the rest from A, so the tile of the latest turn shows. Turns
// past the table (101 at Progress 1) write nothing. Null: no tile here.
const uint8_t* SourceOf(const t_KrRenderInfo* ri, uint32_t rows, uint32_t columns, int64_t turns) {
  int32_t latest = -1;
  for (int32_t r = 0; r < kTilesPerSide; ++r) {
    if ((rows >> r & 1u) == 0) continue;
    for (int32_t c = 0; c < kTilesPerSide; ++c) {
      if ((columns >> c & 1u) != 0 && kTurnOf[r * kTilesPerSide + c] > latest) latest = kTurnOf[r * kTilesPerSide + c];
    }
  }
  if (latest < 0) return nullptr;
  return latest < turns ? ri->InputB : ri->InputA;
}

int32_t MosaicRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  if (FramePixelCount(ri) == 0) return 1;
  const int64_t turns = int64_t{TruncToInt32(100.0 * ri->Progress)} + 1;
  const AxisRuns rows = LastPassTiles(ri->Height);
  const AxisRuns columns = LastPassTiles(ri->Width);
  std::array<const uint8_t*, 2 * kTilesPerSide + 1> sources{};
  const size_t width = static_cast<size_t>(ri->Width);
  for (const AxisRun& row : rows) {
    for (size_t i = 0; i < columns.size(); ++i) sources[i] = SourceOf(ri, row.tiles, columns[i].tiles, turns);
    for (int32_t y = row.first; y < row.end; ++y) {
      for (size_t i = 0; i < columns.size(); ++i) {
        if (sources[i] == nullptr) continue;  // no pass writes here: left as it was
        CopyPixels(ri->Output, sources[i], static_cast<size_t>(y) * width + static_cast<size_t>(columns[i].first),
                   static_cast<size_t>(columns[i].end - columns[i].first));
      }
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Mosaic, kTexts, kFields)
KR_TEST_PROFILE("Mosaic")
