#include "cli/inputs.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "cli/image_io.h"

namespace krl::cli {
namespace {

bool IsStillImage(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const char* still : {".png", ".jpg", ".jpeg", ".bmp", ".tga", ".ppm", ".pgm", ".pnm", ".psd", ".hdr"}) {
    if (ext == still) return true;
  }
  return false;
}

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", v);
  return text;
}

// A number of a PAM header ("\nWIDTH 320\n"); -1 when missing.
int HeaderValue(const std::string& header, const std::string& key) {
  const size_t at = header.find("\n" + key + " ");
  return at == std::string::npos ? -1 : std::atoi(header.c_str() + at + key.size() + 2);
}

// ffmpeg's last words on a file it could not read, in a user's terms.
std::string WhyUnreadable(const std::string& said) {
  if (said.empty() || said.find("does not contain any stream") != std::string::npos ||
      said.find("matches no streams") != std::string::npos) {
    return "it holds no video (no pictures; sound alone is not enough)";
  }
  if (said.find("Invalid data found") != std::string::npos) return "it is not a picture or video that ffmpeg can read";
  return "ffmpeg says \"" + said + "\"";
}

Size gFrameSize{0, 0};

}  // namespace

std::string FrameSizeText() {
  if (gFrameSize.width == 0) return "";
  const double mib = 4.0 * gFrameSize.width * gFrameSize.height / (1024.0 * 1024.0);
  char text[96];
  std::snprintf(text, sizeof text, " (%dx%d, %.0f MiB a frame)", gFrameSize.width, gFrameSize.height, mib);
  return text;
}

InputClip::InputClip(std::string path, SampleClip sample, double fps) : path_(std::move(path)), sample_(sample) {
  if (path_.empty()) return;
  std::error_code ec;
  const bool folder = std::filesystem::is_directory(path_, ec);
  if (folder || access(path_.c_str(), R_OK) != 0) {
    const std::string why = folder ? "it is a folder" : std::strerror(errno);
    throw std::runtime_error("cannot read " + path_ + ": " + why);
  }
  if (IsStillImage(path_)) {
    native_ = ReadImage(path_);
    return;
  }
  const std::string ffmpeg = FindFfmpeg();
  if (ffmpeg.empty()) throw std::runtime_error(NoFfmpegMessage("read the video " + path_));
  // Each frame as a PAM picture: a small header with its size, then RGBA rows.
  video_ = std::make_unique<FfmpegProcess>(
      ffmpeg,
      std::vector<std::string>{"-nostdin", "-v", "error", "-i", path_, "-an", "-vf", "fps=" + Number(fps), "-f",
                               "image2pipe", "-c:v", "pam", "-pix_fmt", "rgba", "-"},
      FfmpegProcess::Direction::kRead);
  if (!ReadVideoFrame(&native_)) {
    throw std::runtime_error("cannot read " + path_ + ": " + WhyUnreadable(video_->Finish()));
  }
}

InputClip::~InputClip() = default;

bool InputClip::ReadVideoFrame(emu::Frame* frame) {
  std::string header;
  char c = 0;
  while (header.size() < 512 && header.find("ENDHDR\n") == std::string::npos) {
    if (video_->Read(&c, 1) != 1) return false;
    header += c;
  }
  const int w = HeaderValue(header, "WIDTH"), h = HeaderValue(header, "HEIGHT");
  if (header.rfind("P7\n", 0) != 0 || HeaderValue(header, "DEPTH") != 4 || w < 1 || h < 1 || w > 16384 ||
      h > 16384) {
    throw std::runtime_error("cannot read " + path_ + ": ffmpeg sent a frame krl does not understand");
  }
  std::vector<uint8_t> rgba(static_cast<size_t>(w) * h * 4);
  if (video_->Read(rgba.data(), rgba.size()) != rgba.size()) return false;
  *frame = FromRgbaRows(rgba.data(), w, h);
  return true;
}

void InputClip::FitTo(Size size) {
  target_ = size;
  if (HasSize() && (native_.width != size.width || native_.height != size.height)) {
    std::fprintf(stderr, "krl: scaled %s from %dx%d to %dx%d\n", path_.c_str(), native_.width, native_.height,
                 size.width, size.height);
  }
}

emu::Frame InputClip::Next() {
  const int32_t index = index_++;
  if (!HasSize()) return sample_(target_.width, target_.height, index);
  // The first video frame was read on opening; later ones as they are asked for.
  if (video_ && index > 0 && !ended_) {
    emu::Frame frame;
    if (ReadVideoFrame(&frame)) {
      native_ = std::move(frame);
    } else {
      ended_ = true;
      std::fprintf(stderr, "krl: %s ends after %d frames; its last frame is held\n", path_.c_str(), index);
    }
  }
  if (native_.width == target_.width && native_.height == target_.height) return native_;
  return Scale(native_, target_.width, target_.height);
}

Size FitInputs(const std::string& sizeOption, InputClip& a, InputClip& b, Size fallback) {
  Size size = fallback;
  if (!sizeOption.empty()) {
    size = ParseSize(sizeOption);
  } else if (a.HasSize() || b.HasSize()) {
    size = a.HasSize() ? a.size() : b.size();
    if (size.width > 16384 || size.height > 16384) {
      throw UsageError("the inputs are larger than 16384 pixels: name a smaller --size");
    }
  }
  gFrameSize = size;
  a.FitTo(size);
  b.FitTo(size);
  return size;
}

}  // namespace krl::cli
