// frei0r frames are top-down rows of R, G, B, A bytes; the library's are
// bottom-up rows of B, G, R, A. Turning one into the other flips the rows and
// exchanges red and blue; both steps undo themselves, so one function serves
// both ways.
#pragma once

#include <cstddef>
#include <cstdint>

namespace krl::frei0r {

// Writes `from` (width x height pixels of 4 bytes, rows without padding) to
// `to` with its rows in the opposite order and bytes 0 and 2 of every pixel
// exchanged. The two must not overlap.
void FlipRowsSwapRedBlue(const uint8_t* from, uint8_t* to, size_t width, size_t height);

}  // namespace krl::frei0r
