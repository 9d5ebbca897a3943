// Fractal: a dissolve shaped by a fractal landscape. A 129 x 129 height map
// is built by diamond-square subdivision every frame and a zero line rises
// through it; each pixel blends from A to B by how far the terrain under it
// stands above the line, so B floods in from the peaks down, with soft shores.
//
// The terrain's displacements come from a noise table that the init makes as
// the instance's user data (freed by FractalDeleteUserData; the library
// allocates with malloc, as it is built without exceptions or the C++ runtime). Without one the
// generator draws from rand(), seeded with "Random Seed" every render; the
// init draws the table from rand() unseeded. Either way the process-wide
// rand() state is used, so renders must not overlap.
#include <cstdlib>
#include <cstring>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "raster/terrain.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Fractal", .signature = "Fractal (Kr plug-in SDK effect)",
                             .displayName = "Fractal", .description = "Fractal landscape."};

ClipFields clip;
FieldIndex roughness, spectrum, zeroLine, randomSeed;

constexpr auto kFields = FieldTable(clip,
    FloatA(&roughness, "Roughness", "Roughness", 1.0, 255.0)
        .Limits()
        .Help("Specifies the granularity of the whole fractal.")
        .DefaultCurve({{1.0, 100.0}}),
    FloatA(&spectrum, "Spectrum", "Spectrum", 1.0, 1024.0)
        .Limits()
        .Help("Defines the strength of the gradients at the fractal's borders.")
        .DefaultCurve({{1.0, 1024.0}}),
    FloatA(&zeroLine, "Zero Line", "Zero Line", -255.0, 255.0)
        .Limits()
        .Help("Specifies the visibility of the clips connected by the transition.")
        .DefaultCurve({{0.0, -128.0}, {1.0, 128.0}}),
    Long(&randomSeed, "Random Seed", "Variation (1..30000)", 1.0, 30000.0)
        .Limits()
        .Help("Defines different types of fractals.")
        .Default(2002));

constexpr int32_t kSide = 129, kLevels = 7;
constexpr size_t kEntries = size_t{kSide} * kSide;

// The defaults, then a fresh noise table in place of the previous one: one
// rand() draw per entry in index order, (draw mod S) - S / 2 with S the
// Spectrum at this Progress (S = 0 gives a flat table of zeros). When the
// table cannot be had the instance keeps none, and renders draw instead.
int32_t FractalInit(t_KrRenderInfo* ri) {
  InitDefaults(ri, kFields);
  const HostCalls host(ri);
  const int32_t s = TruncToInt32(host.Curve(spectrum));
  std::free(host.UserData());
  auto* table = static_cast<int32_t*>(std::malloc(kEntries * sizeof(int32_t)));
  if (table != nullptr) {
    for (size_t i = 0; i < kEntries; ++i) {
      table[i] = WrappingSubtract(TruncatingRemainder(std::rand(), s), TruncatingQuotient(s, 2));
    }
  }
  host.SetUserData(table);
  return 1;
}

// Frees the table; the host's pointer is left as it is.
void FractalDeleteUserData(t_KrRenderInfo* ri) { std::free(HostCalls(ri).UserData()); }

// bxglLerpColor on runs of bytes with one alpha in 1..254: the same sum per
// byte, written so the loop vectorises.
void LerpBytes(const uint8_t* dst, const uint8_t* src, uint8_t* out, size_t count, int32_t alpha) {
  const int32_t a = alpha * 257;
  for (size_t i = 0; i < count; ++i) {
    const int32_t d = dst[i], s = src[i];
    out[i] = static_cast<uint8_t>(((d << 16) + (s - d) * a + 32895) >> 16);
  }
}

int32_t FractalRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const double r = host.Curve(roughness), s = host.Curve(spectrum), z = host.Curve(zeroLine);
  std::srand(static_cast<unsigned>(host.Field(randomSeed)));
  const int32_t* noise = static_cast<const int32_t*>(host.UserData());
  Scratch<int32_t> map = AllocateScratch<int32_t>(kEntries);
  if (!map) return 1;  // no memory for the height map: the frame is left as it was
  std::memset(map.get(), 0, kEntries * sizeof(int32_t));
  GenerateTerrainDS(map.get(), kSide, kLevels, TruncToInt32(r), TruncToInt32(s), noise);

  const FrameRows f = FrameRows::Of(ri);
  if (f.width <= 0 || f.height <= 0) return 1;
  // Nearest-lower sampling, map column (x * 129) / width: column k of the
  // map covers x from ceil(k * width / 129) on. Products are taken in 64
  // bits, so no frame size wraps them.
  int32_t columnStart[kSide + 1];
  for (int32_t k = 0; k <= kSide; ++k) {
    columnStart[k] = static_cast<int32_t>((int64_t{k} * f.width + kSide - 1) / kSide);
  }
  const int32_t base = WrappingMultiply(TruncToInt32(z), 10);
  for (int32_t y = 0; y < f.height; ++y) {
    const int32_t* heights = map.get() + int64_t{y} * kSide / f.height * kSide;
    const PixelWord* a = f.A(y);
    const PixelWord* b = f.B(y);
    PixelWord* out = f.Out(y);
    for (int32_t k = 0; k < kSide; ++k) {
      const int32_t x = columnStart[k], count = columnStart[k + 1] - x;
      if (count <= 0) continue;
      const int32_t v = WrappingAdd(base, heights[k]);
      if (v <= 0) {
        CopyRun(out + x, a + x, count);  // alpha 0 keeps A exactly
      } else if (v >= 255) {
        CopyRun(out + x, b + x, count);  // alpha 255 gives B exactly
      } else {
        LerpBytes(reinterpret_cast<const uint8_t*>(a + x), reinterpret_cast<const uint8_t*>(b + x),
                  reinterpret_cast<uint8_t*>(out + x), 4 * static_cast<size_t>(count), v);
      }
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION_WITH_USER_DATA(Fractal, kTexts, kFields)
KR_TEST_PROFILE("Fractal", .heavier = {"Roughness=255", "Spectrum=1024"}, .sharedState = true)
