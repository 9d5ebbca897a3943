// Pictures in and out of the previewer: PNG files to and from host frames.
#pragma once

#include <string>

#include "emulator/frame.h"

namespace krl::cli {

// Reads a PNG (or JPEG, BMP, ...) file; throws with a clear message.
emu::Frame ReadImage(const std::string& path);
// Writes a PNG atomically: a failed write leaves nothing under `path`.
void WritePng(const emu::Frame& frame, const std::string& path);
// Bilinear scaling to another size, in integer arithmetic.
emu::Frame Scale(const emu::Frame& frame, int32_t width, int32_t height);

}  // namespace krl::cli
