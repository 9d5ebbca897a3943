// The frame Band Push, Band Slide and Band Wipe share: the picture is cut
// into equal parallel bands, and B enters every band from alternating sides,
// all bands by the same amount. The three differ only in where they read B
// and A, which a BandCopyRule tells.
#pragma once

#include <array>

#include "host/declare.h"

namespace krl {

// The host's indices of the fields the three declare alike.
struct BandFields {
  FieldIndex inputA, inputB, transType, direction, bandCount;
};

constexpr std::array<FieldSpec, 5> BandFieldTable(BandFields& f) {
  return {
      InputAField(&f.inputA),
      InputBField(&f.inputB),
      TransTypeField(&f.transType),
      Selector(&f.direction, "Direction", "Direction", {{"Horizontal", 0}, {"Vertical", 1}})
          .Help("Specifies whether the bands move horizontal or vertical.")
          .Default(0),
      Long(&f.bandCount, "BandCount", "Number of Bands (2..50)", 2.0, 50.0)
          .Limits()
          .Help("Defines the partition of the image.")
          .Default(7),
  };
}

// One band as B crosses it, along the travel (columns for horizontal bands,
// rows for vertical ones).
struct BandTravel {
  bool entersAtLowEnd;  // B comes in at column (row) 0, else at the far end
  int32_t extent;       // the band's length along the travel: Width or Height
  int32_t shift;        // how far B has come in: 0..extent
};

// Where the B range and the A range read their source: the output column
// (or row) plus the shift.
struct BandReads {
  int32_t bShift;
  int32_t aShift;
};

using BandCopyRule = BandReads (*)(const BandTravel&);

// B moved in by the shift instead of uncovered in place (Band Slide and Band Push).
constexpr int32_t BandMovedInShift(const BandTravel& t) {
  return t.entersAtLowEnd ? t.extent - t.shift : t.shift - t.extent;
}

// The whole render of a band transition; returns the render result.
int32_t RenderBands(t_KrRenderInfo* ri, const BandFields& fields, BandCopyRule rule);

}  // namespace krl
