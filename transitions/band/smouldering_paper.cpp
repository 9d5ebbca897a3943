// Smouldering Paper: a burn-through. A random 16-bit height field (a plasma)
// is made for the frame by rectangle subdivision, and a threshold rising with
// the transition turns its lowest parts into B first; a band 2000 height
// units wide around the threshold is painted with a gradient between two
// colours, the glowing rim of the burning paper.
//
// The field is cached as the instance's user data, made lazily by the render
// and made anew only when the frame size, the truncated "Degree of Accident"
// or the variation changes; then rand() is reseeded with the variation, so
// renders must not overlap. "TransType" exchanges the clips in locals only.
// The record and the field are taken with malloc (the library is built
// without exceptions or the C++ runtime) and freed by the deleter.
#include <emmintrin.h>

#include <cstdlib>
#include <cstring>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/process_rand.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/SmoulderingPaper",
                             .signature = "It looks like smouldering paper",
                             .displayName = "Smouldering Paper",
                             .description = "It looks like smouldering paper."};

ClipFields clip;
FieldIndex randomSettings, color1, color2, variation;

constexpr auto kFields = FieldTable(clip,
    FloatA(&randomSettings, "RandomSettings", "Degree of Accident", 0.0, 255.0)
        .Limits()
        .Help("Specifies the appearance of the smouldering paper.")
        .DefaultCurve({{0.5, 128.0}}),
    Color(&color1, "Color1", "First Color")
        .Help("Defines one color for the smouldering paper.")
        .DefaultColor(170, 170, 170),
    Color(&color2, "Color2", "Second color")
        .Help("Defines another color for the smouldering paper.")
        .DefaultColor(0, 0, 0),
    Long(&variation, "Variations of Transition", "Variation (1..5000)", 1.0, 5000.0)
        .Limits()
        .Help("Choose different types of smouldering paper.")
        .Default(2002));

// The init sets its defaults in an order of its own: TransType, the
// variation, the two colours, then the curve.
constexpr std::array<FieldSpec, 5> kInitOrder{kFields[2], kFields[6], kFields[4], kFields[5], kFields[3]};

int32_t SmoulderingPaperInit(t_KrRenderInfo* ri) { return InitDefaults(ri, kInitOrder); }

// The instance's cache: the height field (MapWidth x MapHeight values, row
// by row, 0 = not computed yet while it is made) and what it was made with.
struct SmoulderingPaperCache {
  uint16_t* Map;
  int32_t Degree;
  int32_t Seed;
  int32_t MapWidth;
  int32_t MapHeight;
};

void SmoulderingPaperDeleteUserData(t_KrRenderInfo* ri) {
  auto* cache = static_cast<SmoulderingPaperCache*>(HostCalls(ri).UserData());
  if (cache == nullptr) return;
  std::free(cache->Map);
  std::free(cache);
}

// A draw r scaled to 0..65535, trunc(r * 65535.0 / 2147483647.0), formed in
// integers: with n = r * 65535, the quotient by 2^31 - 1 is
// (n + (n >> 31) + 1) >> 31. The double quotient never rounds across a whole
// number (2^31 - 1 is prime, so the true one lies at least 2^-31 off any),
// and for every draw 0 .. 2^31 - 1 the two agree (checked for all of them).
int32_t Draw16(ProcessRand& draws) {
  const uint64_t n = static_cast<uint64_t>(draws.Next()) * 65535u;
  return static_cast<int32_t>((n + (n >> 31) + 1) >> 31);
}

// The height field of one generation, with the weight of a rectangle.
struct Field {
  uint16_t* map;
  int32_t degree, width, height;
  ProcessRand& draws;

  uint16_t& At(int32_t x, int32_t y) const { return map[static_cast<size_t>(y) * static_cast<size_t>(width) + x]; }

  // The midpoint of (p, q) displaced by one draw, in 32-bit arithmetic:
  // the products wrap for any degree, the first division truncates toward
  // zero, the shift is logical, the store keeps 16 bits.
  uint16_t Midpoint(int32_t p, int32_t q, int32_t a, int32_t b) const {
    const int32_t mixed = WrappingMultiply(p + q, b) / 2;
    const uint32_t sum = static_cast<uint32_t>(mixed) + static_cast<uint32_t>(WrappingMultiply(Draw16(draws), a));
    return static_cast<uint16_t>(sum >> 8);
  }
  void SetMidpoint(int32_t x, int32_t y, int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t a, int32_t b) const {
    uint16_t& v = At(x, y);
    if (v == 0) v = Midpoint(At(x1, y1), At(x2, y2), a, b);
  }

  // A rectangle's weights a and b: the two sides' shares (extent * 0.5) /
  // frame side in single precision, summed, times the degree, truncated.
  // They depend on the two extents alone, and rectangles of one depth have
  // at most two extents a side: the weights of the last extent pairs are
  // kept instead of being formed anew for every rectangle.
  class Weights {
   public:
    Weights(int32_t degree, int32_t width, int32_t height) : degree_(degree), width_(width), height_(height) {
      for (Entry& e : entry_) e = {-1, -1, 0};
    }
    int32_t A(int32_t extentX, int32_t extentY) {
      Entry& e = entry_[(extentX & 15) << 4 | (extentY & 15)];
      if (e.extentX != extentX || e.extentY != extentY) {
        const float share = Share(extentY, height_) + Share(extentX, width_);
        e = {extentX, extentY, TruncToInt32(static_cast<double>(static_cast<float>(degree_) * share))};
      }
      return e.a;
    }

   private:
    static float Share(int32_t extent, int32_t side) {
      return static_cast<float>(extent) * 0.5f / static_cast<float>(side);
    }
    struct Entry {
      int32_t extentX, extentY, a;
    };
    int32_t degree_, width_, height_;
    Entry entry_[256];
  };

  // The rectangle (x0, y0)-(x1, y1), corners included: its edge midpoints and
  // centre, then its quadrants, the fourth by the loop. Every call halves
  // both sides (rounding up) until both are below 2, and a quadrant that
  // small is not entered, so calls nest at most 32 deep for any frame size
  // (11 at 1920 x 1080), a few dozen bytes each.
  void Subdivide(int32_t x0, int32_t y0, int32_t x1, int32_t y1, Weights& weights) const {
    while (x1 - x0 >= 2 || y1 - y0 >= 2) {
      const int32_t xm = x0 + (x1 - x0) / 2, ym = y0 + (y1 - y0) / 2;
      Points(x0, y0, x1, y1, xm, ym, weights);
      // Sides of at most 3 give quadrants of at most 2, whose own quadrants
      // are below 2: the last level is done here without further calls.
      if (x1 - x0 <= 3 && y1 - y0 <= 3) {
        LastLevel(x0, ym, xm, y1, weights);
        LastLevel(xm, ym, x1, y1, weights);
        LastLevel(x0, y0, xm, ym, weights);
        LastLevel(xm, y0, x1, ym, weights);
        return;
      }
      Quadrant(x0, ym, xm, y1, weights);
      Quadrant(xm, ym, x1, y1, weights);
      Quadrant(x0, y0, xm, ym, weights);
      x0 = xm;
      y1 = ym;
    }
  }
  // A quadrant below 2 on both sides has nothing to compute.
  void Quadrant(int32_t x0, int32_t y0, int32_t x1, int32_t y1, Weights& weights) const {
    if (x1 - x0 >= 2 || y1 - y0 >= 2) Subdivide(x0, y0, x1, y1, weights);
  }
  void LastLevel(int32_t x0, int32_t y0, int32_t x1, int32_t y1, Weights& weights) const {
    if (x1 - x0 >= 2 || y1 - y0 >= 2) Points(x0, y0, x1, y1, x0 + (x1 - x0) / 2, y0 + (y1 - y0) / 2, weights);
  }

  // The rectangle's four edge midpoints and its centre (xm, ym).
  void Points(int32_t x0, int32_t y0, int32_t x1, int32_t y1, int32_t xm, int32_t ym, Weights& weights) const {
    const int32_t a = weights.A(x1 - x0, y1 - y0);
    const int32_t b = WrappingSubtract(256, a);
    SetMidpoint(x0, ym, x0, y0, x0, y1, a, b);  // left
    SetMidpoint(x1, ym, x1, y0, x1, y1, a, b);  // right
    SetMidpoint(xm, y0, x0, y0, x1, y0, a, b);  // top
    SetMidpoint(xm, y1, x0, y1, x1, y1, a, b);  // bottom
    uint16_t& centre = At(xm, ym);
    if (centre == 0) {
      draws.Next();  // drawn and not used
      centre = static_cast<uint16_t>((At(x0, ym) + At(x1, ym) + At(xm, y0) + At(xm, y1)) >> 2);
    }
  }
};

// Makes the field for a width x height frame (both positive) anew. When the
// memory cannot be had, Map stays null and the frames are left untouched.
// A field of the same size is made in the memory of the last one (taking it
// anew would cost the fresh pages' faults on every variation or degree).
void Regenerate(SmoulderingPaperCache& cache, int32_t width, int32_t height) {
  const size_t w = static_cast<size_t>(width), h = static_cast<size_t>(height);
  if (cache.Map == nullptr || cache.MapWidth != width || cache.MapHeight != height) {
    std::free(cache.Map);
    cache.Map = nullptr;
    if (w <= SIZE_MAX / sizeof(uint16_t) / h) cache.Map = static_cast<uint16_t*>(std::malloc(w * h * sizeof(uint16_t)));
  }
  if (cache.Map != nullptr) {
    std::srand(static_cast<unsigned>(cache.Seed));
    std::memset(cache.Map, 0, w * h * sizeof(uint16_t));
    ProcessRand draws;
    const Field field{cache.Map, cache.Degree, width, height, draws};
    field.At(0, 0) = static_cast<uint16_t>(Draw16(draws));
    field.At(width - 1, 0) = static_cast<uint16_t>(Draw16(draws));
    field.At(0, height - 1) = static_cast<uint16_t>(Draw16(draws));
    field.At(width - 1, height - 1) = static_cast<uint16_t>(Draw16(draws));
    Field::Weights weights(cache.Degree, width, height);
    field.Subdivide(0, 0, width - 1, height - 1, weights);
  }
  cache.MapWidth = width;
  cache.MapHeight = height;
}

// The rim's 2001 pixels, from Color2 at T - 1000 to Color1 at T + 1000: each
// byte trunc(C2 + (C1 - C2) * f) in single precision, f = i / 2000.
struct Rim {
  uint32_t pixel[2001];

  Rim(uint32_t c1, uint32_t c2) {
    for (int32_t i = 0; i <= 2000; ++i) {
      const float f = static_cast<float>(i) / 2000.0f;
      uint32_t out = 0;
      for (int shift = 0; shift < 32; shift += 8) {
        const int32_t one = (c1 >> shift) & 0xFF, two = (c2 >> shift) & 0xFF;
        const float v = static_cast<float>(two) + static_cast<float>(one - two) * f;
        out |= (static_cast<uint32_t>(TruncToInt32(static_cast<double>(v))) & 0xFF) << shift;
      }
      pixel[i] = out;
    }
  }
};

int32_t SmoulderingPaperRender(t_KrRenderInfo* ri) {
  const uint8_t *inputA, *inputB;
  if (!BeginRenderInLocals(ri, clip.transType, &inputA, &inputB)) return 0;
  const HostCalls host(ri);
  const int32_t width = ri->Width, height = ri->Height;
  const int32_t degree = TruncToInt32(host.Curve(randomSettings));
  const int32_t seed = host.Field(variation);

  auto* cache = static_cast<SmoulderingPaperCache*>(host.UserData());
  if (cache == nullptr) {
    cache = static_cast<SmoulderingPaperCache*>(std::malloc(sizeof(SmoulderingPaperCache)));
    if (cache == nullptr) return 1;  // no memory for the cache: the frame is left as it was
    *cache = {nullptr, 128, 2002, 0, 0};
    host.SetUserData(cache);
  }
  // An empty frame has no pixels to make a field for: nothing is drawn, and
  // the cache stays as it was.
  if (width <= 0 || height <= 0) return 1;
  if (cache->Map == nullptr || cache->MapWidth != width || cache->MapHeight != height || cache->Degree != degree ||
      cache->Seed != seed) {
    cache->Degree = degree;
    cache->Seed = seed;
    Regenerate(*cache, width, height);
    host.SetUserData(cache);
  }
  if (cache->Map == nullptr) return 1;

  const Rim rim(host.PenColor(color1), host.PenColor(color2));
  // A threshold below -1000 leaves every value above the rim, one above
  // 66535 every value below it: clamped there, the comparisons stay exact
  // and the sums below fit in 32 bits.
  int32_t t = TruncToInt32(static_cast<double>(RoundToSingle(ri->Progress)) * 65535.0);
  t = t < -2000 ? -2000 : (t > 70000 ? 70000 : t);

  const FrameRows f{reinterpret_cast<const PixelWord*>(inputA), reinterpret_cast<const PixelWord*>(inputB),
                    reinterpret_cast<PixelWord*>(ri->Output), width, height};
  // Four pixels at a time where all four lie off the rim (A above it, B
  // below), one by one where any lies on it. Frames may lie at any address.
  const __m128i aboveRim = _mm_set1_epi32(t + 1000), belowRim = _mm_set1_epi32(t - 1000);
  for (int32_t y = 0; y < height; ++y) {
    const uint16_t* heights = cache->Map + f.RowStart(y);
    const PixelWord* a = f.A(y);
    const PixelWord* b = f.B(y);
    PixelWord* out = f.Out(y);
    const auto one = [&](int32_t x) {
      const int32_t i = heights[x] - t + 1000;  // 0 at T - 1000, 2000 at T + 1000
      out[x] = i > 2000 ? a[x] : (i < 0 ? b[x] : rim.pixel[i]);
    };
    int32_t x = 0;
    for (; x + 4 <= width; x += 4) {
      const __m128i h = _mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(heights + x)),
                                           _mm_setzero_si128());
      const __m128i showsA = _mm_cmpgt_epi32(h, aboveRim), showsB = _mm_cmplt_epi32(h, belowRim);
      if (_mm_movemask_epi8(_mm_or_si128(showsA, showsB)) != 0xFFFF) {
        for (int32_t k = x; k < x + 4; ++k) one(k);
        continue;
      }
      const __m128i fromA = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + x));
      const __m128i fromB = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + x));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x),
                       _mm_or_si128(_mm_and_si128(showsA, fromA), _mm_and_si128(showsB, fromB)));
    }
    for (; x < width; ++x) one(x);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION_WITH_USER_DATA(SmoulderingPaper, kTexts, kFields)
KR_TEST_PROFILE("Smouldering Paper", .heavier = {"RandomSettings=255"}, .sharedState = true, .exchangesInLocals = true)
