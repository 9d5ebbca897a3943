// Pictures in and out of the previewer: image files to and from host frames.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "emulator/frame.h"

namespace krl::cli {

// Reads a PNG (or JPEG, BMP, ...) file; throws with a clear message.
emu::Frame ReadImage(const std::string& path);
// Writes a PNG or a JPEG (quality 1..100) whole or not at all; "-" writes
// to standard output. Errors name the file and the reason.
void WritePng(const emu::Frame& frame, const std::string& path);
void WriteJpeg(const emu::Frame& frame, const std::string& path, int quality);
// The format the name asks for: "PNG", "JPEG", "BMP", "TGA" ("-": PNG);
// empty for a name krl cannot write a picture as.
std::string ImageFormatOf(const std::string& path);
// Writes the frame in the format its name asks for; throws for any other name.
void WriteImage(const emu::Frame& frame, const std::string& path);
// Bilinear scaling to another size, in integer arithmetic.
emu::Frame Scale(const emu::Frame& frame, int32_t width, int32_t height);

// Files hold pictures top-down as R, G, B, A bytes; host frames bottom-up.
emu::Frame FromRgbaRows(const uint8_t* rgba, int32_t width, int32_t height);
std::vector<uint8_t> ToRgbaRows(const emu::Frame& frame);

// Frames side by side (horizontal) or stacked top to bottom, `gap` pixels of
// `background` between them; all frames the size of the first.
emu::Frame Strip(const std::vector<const emu::Frame*>& frames, bool horizontal, int32_t gap, uint32_t background);

}  // namespace krl::cli
