#include "cli/image_io.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <vector>

#define STB_IMAGE_IMPLEMENTATION
#define STBI_FAILURE_USERMSG
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace krl::cli {

emu::Frame ReadImage(const std::string& path) {
  int w = 0, h = 0, channels = 0;
  std::unique_ptr<stbi_uc, void (*)(void*)> rgba(stbi_load(path.c_str(), &w, &h, &channels, 4), stbi_image_free);
  if (!rgba) throw std::runtime_error("cannot read " + path + ": " + stbi_failure_reason());
  emu::Frame frame(w, h);
  for (int y = 0; y < h; ++y) {
    const stbi_uc* row = rgba.get() + static_cast<size_t>(h - 1 - y) * w * 4;  // files run top-down
    for (int x = 0; x < w; ++x) {
      const stbi_uc* p = row + x * 4;
      frame.At(x, y) = emu::Pixel(p[0], p[1], p[2], p[3]);
    }
  }
  return frame;
}

void WritePng(const emu::Frame& frame, const std::string& path) {
  std::vector<uint8_t> rgba(frame.ByteCount());
  for (int32_t y = 0; y < frame.height; ++y) {
    uint8_t* row = rgba.data() + static_cast<size_t>(frame.height - 1 - y) * frame.width * 4;
    for (int32_t x = 0; x < frame.width; ++x) {
      const uint32_t px = frame.At(x, y);
      row[x * 4 + 0] = static_cast<uint8_t>(px >> 16);
      row[x * 4 + 1] = static_cast<uint8_t>(px >> 8);
      row[x * 4 + 2] = static_cast<uint8_t>(px);
      row[x * 4 + 3] = static_cast<uint8_t>(px >> 24);
    }
  }
  const std::string partial = path + ".partial";
  if (!stbi_write_png(partial.c_str(), frame.width, frame.height, 4, rgba.data(), frame.width * 4) ||
      std::rename(partial.c_str(), path.c_str()) != 0) {
    std::remove(partial.c_str());
    throw std::runtime_error("cannot write " + path);
  }
}

emu::Frame Scale(const emu::Frame& in, int32_t width, int32_t height) {
  emu::Frame out(width, height);
  if (in.pixels.empty()) return out;
  // Source position of each target pixel centre, in 1/256 pixel.
  auto source = [](int32_t i, int32_t from, int32_t to) {
    const int64_t s = ((2 * int64_t{i} + 1) * from * 256 / (2 * int64_t{to})) - 128;
    return s < 0 ? int64_t{0} : s;
  };
  for (int32_t y = 0; y < height; ++y) {
    const int64_t sy = source(y, in.height, height);
    const int32_t y0 = static_cast<int32_t>(std::min<int64_t>(sy >> 8, in.height - 1));
    const int32_t y1 = std::min(y0 + 1, in.height - 1);
    const uint32_t fy = static_cast<uint32_t>(sy & 255);
    for (int32_t x = 0; x < width; ++x) {
      const int64_t sx = source(x, in.width, width);
      const int32_t x0 = static_cast<int32_t>(std::min<int64_t>(sx >> 8, in.width - 1));
      const int32_t x1 = std::min(x0 + 1, in.width - 1);
      const uint32_t fx = static_cast<uint32_t>(sx & 255);
      uint32_t px = 0;
      for (int shift = 0; shift < 32; shift += 8) {
        auto c = [&](int32_t cx, int32_t cy) { return (in.At(cx, cy) >> shift) & 255u; };
        const uint32_t top = c(x0, y0) * (256 - fx) + c(x1, y0) * fx;
        const uint32_t bottom = c(x0, y1) * (256 - fx) + c(x1, y1) * fx;
        px |= ((top * (256 - fy) + bottom * fy + 32768) >> 16) << shift;
      }
      out.At(x, y) = px;
    }
  }
  return out;
}

}  // namespace krl::cli
