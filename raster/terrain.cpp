// The fractal terrain generator (see terrain.h). Integer sums and
// displacements wrap in 32 bits as the machine's would; scale factors are
// extended precision; every conversion truncates.
#include "raster/terrain.h"

#include "host/entry.h"

#include <cstddef>
#include <cstdlib>

#include "raster/numeric.h"

namespace krl {
namespace {

constexpr double kRandMax = 2147483647.0;

constexpr auto Add = WrappingAdd;
constexpr auto Multiply = WrappingMultiply;
// A zero range or amplitude gives 0 where a remainder by it is asked for.
constexpr auto Quotient = TruncatingQuotient;
constexpr auto Remainder = TruncatingRemainder;

// One draw scaled to -spectrum .. +spectrum.
int32_t SpectrumDraw(int32_t spectrum) {
  const int r = std::rand();
  return TruncToInt32(((2.0 * r) / kRandMax - 1.0) * spectrum);
}

// The square map the arguments describe: n = size - 1, entries (row, col)
// with both in 0..n.
struct Map {
  int32_t* entries;
  int64_t size, n;
  bool Inside(int64_t row, int64_t col) const { return row >= 0 && col >= 0 && row <= n && col <= n; }
  size_t Index(int64_t row, int64_t col) const { return static_cast<size_t>(row * size + col); }
  int32_t& operator()(int64_t row, int64_t col) const { return entries[Index(row, col)]; }
};

bool Usable(const int32_t* map, int32_t size) { return map != nullptr && size >= 1; }

// The four corners, (0, 0), (0, n), (n, n), (n, 0) in this order.
template <typename Value>
void SetCorners(const Map& m, Value value) {
  const int64_t corners[4][2] = {{0, 0}, {0, m.n}, {m.n, m.n}, {m.n, 0}};
  for (const auto& at : corners) m(at[0], at[1]) = value(at[0], at[1]);
}

// One level of the triangle subdivision; `displace(row, col, amplitude)` is
// what is added to the half-sum of the entry written at (row, col).
template <typename Displace>
void Subdivide(const Map& m, int64_t half, int64_t step, int32_t roughness, Displace displace) {
  if (step <= 0) return;  // a step that does not advance would never end
  const int32_t amplitude = Add(static_cast<int32_t>(step), roughness);
  const int64_t n = m.n;
  // The entry (row, col) from (r1, c1) and (r2, c2); skipped where any of
  // them lies outside the map (the draw is made all the same).
  const auto set = [&](int64_t row, int64_t col, int64_t r1, int64_t c1, int64_t r2, int64_t c2) {
    const bool inside = m.Inside(row, col) && m.Inside(r1, c1) && m.Inside(r2, c2);
    const int32_t d = displace(inside, row, col, amplitude);
    if (inside) m(row, col) = Add(Add(m(r1, c1), m(r2, c2)) >> 1, d);
  };
  for (int64_t i = 0; i < n; i += step) {
    for (int64_t j = half; j <= n - i; j += step) {
      set(i, j, i, j - half, i, j + half);
      set(n - i, n - j, n - i, n - j - half, n - i, n - j + half);
      set(i + half, j - half, i, j - half, i + step, j - half);
      set(n - i - half, n - j + half, n - i - step, n - j + half, n - i, n - j + half);
      set(i + half, j, i, j + half, i + step, j - half);
      set(n - i - half, n - j, n - i, n - j - half, n - i - step, n - j + half);
    }
  }
}

int32_t DrawnDisplacement(bool, int64_t, int64_t, int32_t amplitude) {
  return Add(-Quotient(amplitude, 2), Remainder(std::rand(), amplitude));
}

// The subdivision of bxglGenerateTerrain(2), levels from step n down.
template <typename Displace>
int32_t GenerateByTriangles(const Map& m, int32_t levels, int32_t range, int32_t roughness, Displace displace) {
  SetCorners(m, [&](int64_t, int64_t) { return Add(Remainder(std::rand(), range), -Quotient(range, 2)); });
  int64_t step = m.n;
  if (levels < 1) return static_cast<int32_t>(step);
  int64_t half = step >> 1;
  while (step != 0 && levels > 0) {
    Subdivide(m, half, step, roughness, displace);
    step = half;
    half = step >> 1;
    --levels;
  }
  return static_cast<int32_t>(step);
}

}  // namespace
}  // namespace krl

using krl::Add;
using krl::Map;
using krl::TruncToInt32;

void krl::GenerateTerrainDS(int32_t* map, int32_t size, int32_t levels, int32_t roughness, int32_t spectrum,
                            const int32_t* noise) {
  if (!krl::Usable(map, size)) return;  // no map: nothing to fill, no draws
  const Map m{map, size, size - 1};
  const Map table{const_cast<int32_t*>(noise), size, size - 1};  // read only
  if (noise != nullptr) {
    krl::SetCorners(m, [&](int64_t row, int64_t col) { return table(row, col); });
  } else {
    krl::SetCorners(m, [&](int64_t, int64_t) { return krl::SpectrumDraw(spectrum); });
  }
  if (levels <= 0) return;
  // A first step of 2^30 already spans every map an address space can hold;
  // more levels would only shift out of range.
  if (levels > 30) levels = 30;
  const long double scale = roughness / 255.0L;
  long double f = scale;
  // The displacement of (row, col); the draw is made before the neighbours
  // are read and also where the write is skipped.
  const auto displacement = [&](int64_t row, int64_t col, bool inside) -> int32_t {
    if (noise == nullptr) return TruncToInt32(krl::SpectrumDraw(spectrum) * f);
    return inside ? TruncToInt32(table(row, col) * f) : 0;
  };
  const int64_t n = m.n;
  for (int32_t level = 0; level < levels; ++level) {
    const int64_t step = int64_t{1} << (levels - level), half = step / 2;
    for (int64_t x = 0; x < n; x += step) {
      for (int64_t y = 0; y < n; y += step) {
        // A cell reaching past the map (more levels than the map has) is skipped.
        const bool inside = half > 0 && m.Inside(y + step, x + step);
        const int32_t d = displacement(y + half, x + half, inside);
        if (!inside) continue;
        const uint32_t sum = static_cast<uint32_t>(m(y, x)) + static_cast<uint32_t>(m(y, x + step)) +
                             static_cast<uint32_t>(m(y + step, x + step)) + static_cast<uint32_t>(m(y + step, x));
        m(y + half, x + half) = Add(static_cast<int32_t>(sum) / 4, d);
      }
    }
    for (int64_t c = 0; c <= n; c += half) {
      for (int64_t r = (c + half) % step; r <= n; r += step) {
        const int32_t d = displacement(r, c, true);
        uint32_t sum = 0;
        int32_t count = 0;
        const int64_t neighbours[4][2] = {{r, c - half}, {r - half, c}, {r, c + half}, {r + half, c}};
        for (const auto& at : neighbours) {
          if (m.Inside(at[0], at[1])) {
            sum += static_cast<uint32_t>(m(at[0], at[1]));
            ++count;
          }
        }
        if (count > 0) m(r, c) = Add(static_cast<int32_t>(sum) / count, d);
      }
    }
    f *= scale;
  }
}

namespace krl {
// The bodies of the exported functions below.
int32_t TerrainByTriangles(int32_t* map, int32_t size, int32_t levels, int32_t range, int32_t roughness);
int32_t TerrainByTriangles2(int32_t* map, int32_t size, int32_t levels, int32_t range, int32_t roughness,
                            int32_t* noise);
void SubdivideOnce(int32_t* map, int32_t size, int32_t half, int32_t step, int32_t roughness);
void SubdivideOnce2(int32_t* map, int32_t size, int32_t half, int32_t step, int32_t roughness, int32_t* noise);
void LerpColorInPlace(int32_t* dst, int32_t src, int32_t alpha);
}  // namespace krl

int32_t krl::TerrainByTriangles(int32_t* map, int32_t size, int32_t levels, int32_t range, int32_t roughness) {
  if (!krl::Usable(map, size)) return 0;  // no map: nothing to fill, no draws
  return krl::GenerateByTriangles(Map{map, size, size - 1}, levels, range, roughness, krl::DrawnDisplacement);
}

// (A * noise) / n, the noise read at the entry written.
namespace krl {
namespace {
struct NoiseDisplacement {
  Map table;
  int32_t operator()(bool inside, int64_t row, int64_t col, int32_t amplitude) const {
    if (!inside) return 0;
    return Quotient(Multiply(amplitude, table(row, col)), static_cast<int32_t>(table.n));
  }
};
}  // namespace
}  // namespace krl

int32_t krl::TerrainByTriangles2(int32_t* map, int32_t size, int32_t levels, int32_t range, int32_t roughness,
                             int32_t* noise) {
  if (!krl::Usable(map, size) || noise == nullptr) return 0;  // nothing to fill from
  const Map m{map, size, size - 1};
  return krl::GenerateByTriangles(m, levels, range, roughness, krl::NoiseDisplacement{Map{noise, size, size - 1}});
}

void krl::SubdivideOnce(int32_t* map, int32_t size, int32_t half, int32_t step, int32_t roughness) {
  if (!krl::Usable(map, size)) return;
  krl::Subdivide(Map{map, size, size - 1}, half, step, roughness, krl::DrawnDisplacement);
}

void krl::SubdivideOnce2(int32_t* map, int32_t size, int32_t half, int32_t step, int32_t roughness,
                           int32_t* noise) {
  if (!krl::Usable(map, size) || noise == nullptr) return;
  krl::Subdivide(Map{map, size, size - 1}, half, step, roughness, krl::NoiseDisplacement{Map{noise, size, size - 1}});
}

void krl::LerpColorInPlace(int32_t* dst, int32_t src, int32_t alpha) {
  if (dst == nullptr) return;
  *dst = static_cast<int32_t>(krl::LerpColor(static_cast<uint32_t>(*dst), static_cast<uint32_t>(src), alpha));
}

// The exported toolkit: each entry realigns the stack and puts the library's
// floating-point state in place around the work (host/entry.h).
KR_ENTRY_POINT void bxglGenerateTerrainDS(int32_t* map, int32_t size, int32_t levels, int32_t roughness,
                                          int32_t spectrum, int32_t* noise) {
  krl::Guarded<krl::GenerateTerrainDS>(map, size, levels, roughness, spectrum, static_cast<const int32_t*>(noise));
}
KR_ENTRY_POINT int32_t bxglGenerateTerrain(int32_t* map, int32_t size, int32_t levels, int32_t range,
                                           int32_t roughness) {
  return krl::Guarded<krl::TerrainByTriangles>(map, size, levels, range, roughness);
}
KR_ENTRY_POINT int32_t bxglGenerateTerrain2(int32_t* map, int32_t size, int32_t levels, int32_t range,
                                            int32_t roughness, int32_t* noise) {
  return krl::Guarded<krl::TerrainByTriangles2>(map, size, levels, range, roughness, noise);
}
KR_ENTRY_POINT void bxglSubdivideTerrain(int32_t* map, int32_t size, int32_t half, int32_t step, int32_t roughness) {
  krl::Guarded<krl::SubdivideOnce>(map, size, half, step, roughness);
}
KR_ENTRY_POINT void bxglSubdivideTerrain2(int32_t* map, int32_t size, int32_t half, int32_t step, int32_t roughness,
                                          int32_t* noise) {
  krl::Guarded<krl::SubdivideOnce2>(map, size, half, step, roughness, noise);
}
KR_ENTRY_POINT void bxglLerpColor(int32_t* dst, int32_t src, int32_t alpha) {
  krl::Guarded<krl::LerpColorInPlace>(dst, src, alpha);
}
