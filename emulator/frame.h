// A frame as the host holds it: Width x Height pixels of 4 bytes, rows
// bottom-up with no padding, each pixel the word 0xAARRGGBB.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krl::emu {

struct Frame {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint32_t> pixels;  // exactly width * height, so any stray access is caught

  Frame() = default;
  Frame(int32_t w, int32_t h, uint32_t fill = 0)
      : width(w), height(h), pixels(static_cast<size_t>(w > 0 && h > 0 ? w : 0) * (h > 0 ? h : 0), fill) {}

  uint32_t& At(int32_t x, int32_t y) { return pixels[static_cast<size_t>(y) * width + x]; }
  uint32_t At(int32_t x, int32_t y) const { return pixels[static_cast<size_t>(y) * width + x]; }
  uint8_t* Bytes() { return reinterpret_cast<uint8_t*>(pixels.data()); }
  const uint8_t* Bytes() const { return reinterpret_cast<const uint8_t*>(pixels.data()); }
  size_t ByteCount() const { return pixels.size() * 4; }
  bool SameSize(const Frame& other) const { return width == other.width && height == other.height; }
};

inline uint32_t Pixel(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha = 255) {
  return (uint32_t{alpha} << 24) | (uint32_t{red} << 16) | (uint32_t{green} << 8) | blue;
}

}  // namespace krl::emu
