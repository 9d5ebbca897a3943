#include "cli/image_io.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "cli/staging.h"

#define STB_IMAGE_IMPLEMENTATION
#define STBI_FAILURE_USERMSG
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace krl::cli {

emu::Frame FromRgbaRows(const uint8_t* rgba, int32_t w, int32_t h) {
  emu::Frame frame(w, h);
  for (int32_t y = 0; y < h; ++y) {
    const uint8_t* row = rgba + static_cast<size_t>(h - 1 - y) * w * 4;
    uint32_t* out = &frame.pixels[static_cast<size_t>(y) * w];
    for (int32_t x = 0; x < w; ++x) {
      const uint8_t* p = row + x * 4;
      out[x] = emu::Pixel(p[0], p[1], p[2], p[3]);
    }
  }
  return frame;
}

std::vector<uint8_t> ToRgbaRows(const emu::Frame& frame) {
  std::vector<uint8_t> rgba(frame.ByteCount());
  for (int32_t y = 0; y < frame.height; ++y) {
    uint8_t* row = rgba.data() + static_cast<size_t>(frame.height - 1 - y) * frame.width * 4;
    const uint32_t* in = &frame.pixels[static_cast<size_t>(y) * frame.width];
    for (int32_t x = 0; x < frame.width; ++x) {
      row[x * 4 + 0] = static_cast<uint8_t>(in[x] >> 16);
      row[x * 4 + 1] = static_cast<uint8_t>(in[x] >> 8);
      row[x * 4 + 2] = static_cast<uint8_t>(in[x]);
      row[x * 4 + 3] = static_cast<uint8_t>(in[x] >> 24);
    }
  }
  return rgba;
}

emu::Frame ReadImage(const std::string& path) {
  int w = 0, h = 0, channels = 0;
  std::unique_ptr<stbi_uc, void (*)(void*)> rgba(stbi_load(path.c_str(), &w, &h, &channels, 4), stbi_image_free);
  if (!rgba) throw std::runtime_error("cannot read " + path + ": " + stbi_failure_reason());
  return FromRgbaRows(rgba.get(), w, h);
}

namespace {

void Append(void* context, void* data, int size) {
  auto* bytes = static_cast<std::vector<uint8_t>*>(context);
  bytes->insert(bytes->end(), static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + size);
}

// The picture encoded in memory by `encode`, then written whole (staged) or
// to standard output for "-"; errors name the file and the reason.
template <typename Encode>
void WriteEncoded(const emu::Frame& frame, const std::string& path, Encode encode) {
  if (frame.pixels.empty()) throw std::runtime_error("cannot write " + path + ": the picture is empty");
  const std::vector<uint8_t> rgba = ToRgbaRows(frame);
  std::vector<uint8_t> bytes;
  if (!encode(&bytes, rgba.data())) throw std::runtime_error("cannot write " + path + ": the picture cannot be encoded");
  if (path == "-") {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || std::fflush(stdout) != 0) {
      throw std::runtime_error("cannot write to standard output: " + std::string(std::strerror(errno)));
    }
    return;
  }
  StagedFile file(path);
  FILE* out = std::fopen(file.path().c_str(), "wb");
  if (out == nullptr) throw std::runtime_error(CannotWrite(path, errno));
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
  const int error = errno;
  if (std::fclose(out) != 0 || !written) throw std::runtime_error(CannotWrite(path, written ? errno : error));
  file.Commit();
}

std::string LowerExtension(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext;
}

}  // namespace

void WritePng(const emu::Frame& frame, const std::string& path) {
  WriteEncoded(frame, path, [&](std::vector<uint8_t>* bytes, const uint8_t* rgba) {
    return stbi_write_png_to_func(Append, bytes, frame.width, frame.height, 4, rgba, frame.width * 4) != 0;
  });
}

void WriteJpeg(const emu::Frame& frame, const std::string& path, int quality) {
  WriteEncoded(frame, path, [&](std::vector<uint8_t>* bytes, const uint8_t* rgba) {
    return stbi_write_jpg_to_func(Append, bytes, frame.width, frame.height, 4, rgba, quality) != 0;
  });
}

std::string ImageFormatOf(const std::string& path) {
  if (path == "-") return "PNG";
  const std::string ext = LowerExtension(path);
  if (ext == ".png") return "PNG";
  if (ext == ".jpg" || ext == ".jpeg") return "JPEG";
  if (ext == ".bmp") return "BMP";
  if (ext == ".tga") return "TGA";
  return "";
}

void WriteImage(const emu::Frame& frame, const std::string& path) {
  const std::string format = ImageFormatOf(path);
  if (format == "PNG") return WritePng(frame, path);
  if (format == "JPEG") return WriteJpeg(frame, path, 95);
  if (format == "BMP" || format == "TGA") {
    return WriteEncoded(frame, path, [&](std::vector<uint8_t>* bytes, const uint8_t* rgba) {
      return (format == "BMP" ? stbi_write_bmp_to_func(Append, bytes, frame.width, frame.height, 4, rgba)
                              : stbi_write_tga_to_func(Append, bytes, frame.width, frame.height, 4, rgba)) != 0;
    });
  }
  throw std::runtime_error("cannot write " + path + ": krl writes a frame as PNG (.png), JPEG (.jpg), BMP (.bmp) or " +
                           "TGA (.tga), or as PNG to standard output (-o -)");
}

emu::Frame Strip(const std::vector<const emu::Frame*>& frames, bool horizontal, int32_t gap, uint32_t background) {
  if (frames.empty()) return {};
  const int32_t w = frames[0]->width, h = frames[0]->height, n = static_cast<int32_t>(frames.size());
  emu::Frame out(horizontal ? n * w + (n - 1) * gap : w, horizontal ? h : n * h + (n - 1) * gap, background);
  for (int32_t i = 0; i < n; ++i) {
    // Stacked frames run top to bottom, so the first lies highest (rows count from the bottom).
    const int32_t x0 = horizontal ? i * (w + gap) : 0;
    const int32_t y0 = horizontal ? 0 : (n - 1 - i) * (h + gap);
    for (int32_t y = 0; y < h; ++y) {
      std::memcpy(&out.At(x0, y0 + y), &frames[i]->pixels[static_cast<size_t>(y) * w], static_cast<size_t>(w) * 4);
    }
  }
  return out;
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
