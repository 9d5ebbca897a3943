// The four directions of travel that a "Direction" selector of the wipes,
// slides and the shredder names, and how its value decodes.
#pragma once

#include <cstdint>

#include "host/declare.h"

namespace krl {

enum class Travel : uint8_t { LeftToRight, RightToLeft, TopToBottom, BottomToTop };

// The items of "Direction", in the order of the values Travel decodes.
inline constexpr SelectorItem kTravelItems[] = {
    {"Left > Right", 0}, {"Right > Left", 1}, {"Top > Bottom", 2}, {"Bottom > Top", 3}};

// Any value but 1, 2 and 3 is the first item.
inline Travel DecodeTravel(int32_t direction) {
  switch (direction) {
    case 1: return Travel::RightToLeft;
    case 2: return Travel::TopToBottom;
    case 3: return Travel::BottomToTop;
    default: return Travel::LeftToRight;
  }
}

inline bool AcrossColumns(Travel travel) { return travel == Travel::LeftToRight || travel == Travel::RightToLeft; }

// B enters at the cell's lowest column or row index.
inline bool EntersAtLowEnd(Travel travel) { return travel == Travel::LeftToRight || travel == Travel::BottomToTop; }

}  // namespace krl
