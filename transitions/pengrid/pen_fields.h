// The fields the pen-grid transitions declare with the same texts: the grid
// divisions, the pen colour and the pen thickness, and the table they form
// with the inputs, "TransType" and the transition's own "Direction".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "host/declare.h"

namespace krl {

constexpr FieldSpec DivideXField(FieldIndex* index) {
  return Long(index, "Divide_X", "X-division (1..8)", 1.0, 8.0)
      .Limits()
      .Help("Increases the number of pens on the x-axis.")
      .Default(1);
}

constexpr FieldSpec DivideYField(FieldIndex* index) {
  return Long(index, "Divide_Y", "Y-division (1..8)", 1.0, 8.0)
      .Limits()
      .Help("Increases the number of pens on the y-axis.")
      .Default(1);
}

constexpr FieldSpec PenColorField(FieldIndex* index) {
  return Color(index, "Color", "Pen Color").Help("Defines the color of the pens.").DefaultColor(0, 0, 0);
}

constexpr FieldSpec PenThicknessField(FieldIndex* index) {
  return Long(index, "BorderWidth", "Pen Thickness (0..10)", 0.0, 10.0)
      .Limits()
      .Help("Specifies the thickness of the individual pens.")
      .Default(0);
}

// A selector whose items are a shared list, the first item the default.
constexpr FieldSpec SelectorOf(FieldIndex* index, const char* key, const char* label, const char* help,
                               std::span<const SelectorItem> items) {
  FieldSpec f = Selector(index, key, label, {});
  for (const SelectorItem& item : items) f.items[f.itemCount++] = item;
  return f.Help(help).Default(0);
}

// "Direction": the transition's own help and items.
constexpr FieldSpec DirectionField(FieldIndex* index, const char* help, std::span<const SelectorItem> items) {
  return SelectorOf(index, "Direction", "Direction", help, items);
}

// The corners Inset and Corner Zoom start from.
inline constexpr SelectorItem kCornerItems[] = {
    {"Top Left", 0}, {"Top Right", 1}, {"Bottom Left", 2}, {"Bottom Right", 3}};

// Whether the init sets the pen's colour and thickness (black, 0) or leaves
// both at the host's own values.
enum class PenDefaults : uint8_t { Set, HostsOwn };

// The host's indices of the shared fields of one transition.
struct PenGridFields {
  FieldIndex inputA, inputB, transType, direction, divideX, divideY, color, borderWidth;
};

inline constexpr size_t kPenGridFieldCount = 8;

// Inputs, TransType, Direction, the divisions, the pen colour and thickness.
constexpr std::array<FieldSpec, kPenGridFieldCount> PenGridFieldTable(PenGridFields& f, const char* directionHelp,
                                                                      std::span<const SelectorItem> items,
                                                                      PenDefaults pen = PenDefaults::Set) {
  const bool setPen = pen == PenDefaults::Set;
  return {
      InputAField(&f.inputA),
      InputBField(&f.inputB),
      TransTypeField(&f.transType),
      DirectionField(&f.direction, directionHelp, items),
      DivideXField(&f.divideX),
      DivideYField(&f.divideY),
      setPen ? PenColorField(&f.color) : PenColorField(&f.color).WithoutDefault(),
      setPen ? PenThicknessField(&f.borderWidth) : PenThicknessField(&f.borderWidth).WithoutDefault(),
  };
}

// The table with one more field of the transition's own behind it.
constexpr std::array<FieldSpec, kPenGridFieldCount + 1> WithField(const std::array<FieldSpec, kPenGridFieldCount>& table,
                                                                   const FieldSpec& extra) {
  std::array<FieldSpec, kPenGridFieldCount + 1> out{};
  for (size_t i = 0; i < kPenGridFieldCount; ++i) out[i] = table[i];
  out[kPenGridFieldCount] = extra;
  return out;
}

}  // namespace krl
