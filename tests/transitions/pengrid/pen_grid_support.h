// Helpers for the pen-grid tests: clips whose every pixel names its clip and
// position, so an output pixel tells where it was read from, and rows or
// columns of the output written as runs ("B16 P4 A13").
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "test_support.h"

namespace krl::test {

inline constexpr uint8_t kTagA = 0xA1, kTagB = 0xB2;
// The host delivers the pen with alpha 0; it must be drawn opaque.
inline constexpr KrColor kPenFromHost{0x00, 0x20, 0xFF, 0x00};
inline constexpr uint32_t kPen = 0xFFFF2000;
inline constexpr uint32_t kUntouched = 0xDEADBEEF;

// Pixel (x, y) of a coded clip: tag, row and column (each below 4096).
inline uint32_t Code(uint8_t tag, int32_t x, int32_t y) {
  return (uint32_t{tag} << 24) | (static_cast<uint32_t>(y & 0xFFF) << 12) | static_cast<uint32_t>(x & 0xFFF);
}
inline int32_t CodedX(uint32_t pixel) { return static_cast<int32_t>(pixel & 0xFFF); }
inline int32_t CodedY(uint32_t pixel) { return static_cast<int32_t>((pixel >> 12) & 0xFFF); }

inline emu::Frame Coded(int32_t w, int32_t h, uint8_t tag) {
  emu::Frame f(w, h);
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) f.At(x, y) = Code(tag, x, y);
  }
  return f;
}

inline char SourceOf(uint32_t pixel) {
  if (pixel == kPen) return 'P';
  if (pixel == kUntouched) return '.';
  if (pixel >> 24 == kTagA) return 'A';
  if (pixel >> 24 == kTagB) return 'B';
  return '?';
}

// The sources along a row (from the left) or a column (from the bottom) with
// where each run reads: "B50@50 P4 A46@0" is 50 pixels of B from B's column
// (or row) 50 on, 4 of pen, then A from 0. A run breaks where the reads
// jump; a read off the line's own row (column) shows as '!', or with both
// coordinates its row ("B3@7,2") when asked. With the sources only, the
// runs are "B16 P4 A13". (The band and raster tests use these too.)
inline std::string Reads(const emu::Frame& f, bool alongRow, int32_t line, bool bothCoordinates = false,
                         bool sourcesOnly = false) {
  const int32_t count = alongRow ? f.width : f.height;
  auto pixel = [&](int32_t i) { return alongRow ? f.At(i, line) : f.At(line, i); };
  auto along = [&](uint32_t px) { return alongRow ? CodedX(px) : CodedY(px); };
  auto across = [&](uint32_t px) { return alongRow ? CodedY(px) : CodedX(px); };
  auto coded = [&](uint32_t px) { return !sourcesOnly && (SourceOf(px) == 'A' || SourceOf(px) == 'B'); };
  std::string out;
  for (int32_t i = 0; i < count;) {
    const uint32_t first = pixel(i);
    int32_t j = i + 1;
    while (j < count && SourceOf(pixel(j)) == SourceOf(first) &&
           (!coded(first) || along(pixel(j)) == along(first) + (j - i))) {
      ++j;
    }
    if (!out.empty()) out += ' ';
    out += SourceOf(first) + std::to_string(j - i);
    if (coded(first)) {
      out += "@" + std::to_string(along(first));
      if (bothCoordinates) {
        out += "," + std::to_string(across(first));
      } else if (across(first) != line) {
        out += "!";
      }
    }
    i = j;
  }
  return out;
}
inline std::string RowRuns(const emu::Frame& f, int32_t y) { return Reads(f, true, y, false, true); }
inline std::string ColumnRuns(const emu::Frame& f, int32_t x) { return Reads(f, false, x, false, true); }
inline std::string RowReads(const emu::Frame& f, int32_t y) { return Reads(f, true, y); }
inline std::string RowReadsWithRows(const emu::Frame& f, int32_t y) { return Reads(f, true, y, true); }
inline std::string ColumnReads(const emu::Frame& f, int32_t x) { return Reads(f, false, x); }

using FieldValues = std::vector<std::pair<std::string, int32_t>>;

// One render of a coded A and B into an output that starts as kUntouched,
// with the pen colour kPenFromHost (in whichever colour field the effect
// has) and the given field values.
inline emu::Frame RenderCoded(const std::string& effect, int32_t w, int32_t h, double progress,
                              const FieldValues& values = {}) {
  emu::Instance instance(Library(), Effect(Library(), effect));
  for (const emu::DeclaredField& f : instance.effect().fields) {
    if (f.kind == "RGBcolor") instance.SetColor(f.key, kPenFromHost);
  }
  for (const auto& [key, value] : values) instance.SetValue(key, value);
  emu::Frame out(w, h, kUntouched);
  EXPECT_EQ(instance.Render(Coded(w, h, kTagA), Coded(w, h, kTagB), out, progress), 1);
  EXPECT_TRUE(instance.diagnostics().empty());
  return out;
}

using LineText = std::string (*)(const emu::Frame&, int32_t);

inline std::vector<std::string> RowsFromTop(const emu::Frame& out, LineText line = RowRuns) {
  std::vector<std::string> rows;
  for (int32_t y = out.height - 1; y >= 0; --y) rows.push_back(line(out, y));
  return rows;
}

// A render and every row it must give, from the top (highest index) down.
struct RowsCase {
  const char* what;
  int32_t w, h;
  double progress;
  FieldValues values;
  std::vector<std::string> rows;
};

inline void ExpectRows(const std::string& effect, std::span<const RowsCase> cases, LineText line = RowRuns) {
  for (const RowsCase& c : cases) {
    EXPECT_EQ(RowsFromTop(RenderCoded(effect, c.w, c.h, c.progress, c.values), line), c.rows) << c.what;
  }
}

// The k x k mean around (x, y) as the "Gauss Filter" takes it: coordinates
// held to the frame, bytes 0 to 2 summed and divided with truncation, opaque.
inline uint32_t BoxMean(const emu::Frame& f, int32_t x, int32_t y, int32_t k) {
  uint32_t sum[3] = {0, 0, 0};
  for (int32_t v = y - k / 2; v <= y + k / 2; ++v) {
    for (int32_t u = x - k / 2; u <= x + k / 2; ++u) {
      const uint32_t px = f.At(std::clamp(u, 0, f.width - 1), std::clamp(v, 0, f.height - 1));
      for (int c = 0; c < 3; ++c) sum[c] += (px >> (8 * c)) & 0xFF;
    }
  }
  const uint32_t area = static_cast<uint32_t>(k * k);
  return 0xFF000000u | (sum[2] / area) << 16 | (sum[1] / area) << 8 | sum[0] / area;
}

// A transition's display name as the name of a parameterised test: its
// blanks dropped.
inline std::string NameOfMember(const testing::TestParamInfo<std::string>& member) {
  std::string name = member.param;
  name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
  return name;
}

}  // namespace krl::test
