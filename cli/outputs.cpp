#include "cli/outputs.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numeric>
#include <stdexcept>

#include "cli/ffmpeg.h"
#include "cli/image_io.h"
#include "cli/staging.h"

namespace krl::cli {
namespace fs = std::filesystem;
namespace {

std::string LowerExtension(const std::string& name) {
  std::string ext = fs::path(name).extension().string();
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext;
}

// True when `name` holds one frame number, %d or %0Nd, in its file name.
bool IsSequencePattern(const std::string& name) {
  const std::string file = fs::path(name).filename().string();
  size_t conversions = 0;
  for (size_t i = 0; i < name.size(); ++i) {
    if (name[i] != '%') continue;
    size_t j = i + 1;
    while (j < name.size() && std::isdigit(static_cast<unsigned char>(name[j]))) ++j;
    if (j >= name.size() || name[j] != 'd' || (j > i + 1 && name[i + 1] != '0') || j - i > 4) return false;
    ++conversions;
    i = j;
  }
  return conversions == 1 && file.find('%') != std::string::npos;
}

class PngSequence final : public FrameSink {
 public:
  explicit PngSequence(const std::string& pattern)
      : pattern_(fs::path(pattern).filename().string()),
        folder_(fs::path(pattern).parent_path().empty() ? fs::path(".") : fs::path(pattern).parent_path()),
        staged_(folder_, false) {}
  void Write(const emu::Frame& frame) override {
    char file[4096];
    std::snprintf(file, sizeof file, pattern_.c_str(), count_++);
    WritePng(frame, (staged_.path() / file).string());
  }
  void Finish() override { staged_.Commit(); }
  std::string Describe() const override { return "a PNG sequence in " + folder_.string() + "/"; }

 private:
  std::string pattern_;
  fs::path folder_;
  StagedFolder staged_;
  int count_ = 0;
};

class Y4mFile final : public FrameSink {
 public:
  Y4mFile(const std::string& name, Size size, double fps) : name_(name), staged_(name) {
    file_ = std::fopen(staged_.path().c_str(), "wb");
    if (file_ == nullptr) throw std::runtime_error("cannot write " + name_);
    std::fprintf(file_, "YUV4MPEG2 W%d H%d F%s Ip A1:1 C444 XCOLORRANGE=LIMITED\n", size.width, size.height,
                 FrameRateRatio(fps).c_str());
  }
  ~Y4mFile() override {
    if (file_ != nullptr) std::fclose(file_);
  }
  void Write(const emu::Frame& frame) override {
    const std::vector<uint8_t> planes = ToYuv444(frame);
    if (std::fputs("FRAME\n", file_) < 0 || std::fwrite(planes.data(), 1, planes.size(), file_) != planes.size()) {
      throw std::runtime_error("cannot write " + name_);
    }
  }
  void Finish() override {
    const bool closed = std::fclose(file_) == 0;
    file_ = nullptr;
    if (!closed) throw std::runtime_error("cannot write " + name_);
    staged_.Commit();
  }
  std::string Describe() const override { return name_; }

 private:
  std::string name_;
  StagedFile staged_;
  FILE* file_ = nullptr;
};

// What ffmpeg needs to hear, beyond the output name, to write a file that
// browsers and editors play: 4:2:0 pictures (video of even size) for the usual
// containers, a palette of the clip's own colours for GIF, looping images.
std::vector<std::string> FormatArguments(const std::string& ext) {
  if (ext == ".gif") return {"-vf", "split[a][b];[a]palettegen[p];[b][p]paletteuse", "-loop", "0"};
  if (ext == ".webp") return {"-loop", "0", "-pix_fmt", "yuv420p"};
  if (ext == ".png" || ext == ".apng") return {"-plays", "0"};
  if (ext == ".mp4" || ext == ".m4v" || ext == ".mov" || ext == ".mkv" || ext == ".webm" || ext == ".avi") {
    return {"-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2", "-pix_fmt", "yuv420p"};
  }
  return {};
}

class FfmpegFile final : public FrameSink {
 public:
  FfmpegFile(const std::string& program, const std::string& name, Size size, double fps)
      : name_(name), staged_(name) {
    char rate[32];
    std::snprintf(rate, sizeof rate, "%.17g", fps);
    std::vector<std::string> args{"-nostdin", "-v", "error", "-y", "-f", "rawvideo", "-pix_fmt", "bgra", "-s",
                                  std::to_string(size.width) + "x" + std::to_string(size.height), "-framerate",
                                  rate, "-i", "-"};
    for (const std::string& a : FormatArguments(LowerExtension(name))) args.push_back(a);
    args.push_back(staged_.path().string());
    process_ = std::make_unique<FfmpegProcess>(program, args, FfmpegProcess::Direction::kFeed);
  }
  void Write(const emu::Frame& frame) override {
    // ffmpeg takes rows top-down; the pixel words are B, G, R, A bytes already.
    rows_.resize(frame.ByteCount());
    const size_t rowBytes = static_cast<size_t>(frame.width) * 4;
    for (int32_t y = 0; y < frame.height; ++y) {
      std::copy_n(frame.Bytes() + static_cast<size_t>(y) * rowBytes, rowBytes,
                  rows_.data() + static_cast<size_t>(frame.height - 1 - y) * rowBytes);
    }
    if (!process_->Write(rows_.data(), rows_.size())) Fail(process_->Finish());
  }
  void Finish() override {
    const std::string why = process_->Finish();
    if (!why.empty()) Fail(why);
    staged_.Commit();
  }
  std::string Describe() const override { return name_; }

 private:
  [[noreturn]] void Fail(const std::string& why) {
    throw std::runtime_error("ffmpeg cannot write " + name_ + ": " + (why.empty() ? "it stopped reading" : why));
  }

  std::string name_;
  StagedFile staged_;
  std::unique_ptr<FfmpegProcess> process_;
  std::vector<uint8_t> rows_;
};

}  // namespace

std::unique_ptr<FrameSink> OpenOutput(const std::string& name, Size size, double fps) {
  const std::string ext = LowerExtension(name);
  if (name.find('%') != std::string::npos) {
    if (!IsSequencePattern(name) || ext != ".png") {
      throw UsageError("a PNG sequence is named with one frame number in its file name, like frames/%04d.png, not \"" +
                       name + "\"");
    }
    return std::make_unique<PngSequence>(name);
  }
  if (ext == ".y4m") return std::make_unique<Y4mFile>(name, size, fps);
  if (ext.empty()) {
    throw UsageError("cannot tell the format of \"" + name + "\": name it frames/%04d.png, out.y4m, out.mp4, ...");
  }
  if (ext == ".png") {
    throw UsageError("a clip of many frames is a PNG sequence: name it with a frame number, like frames/%04d.png");
  }
  const std::string program = FindFfmpeg();
  if (program.empty()) throw std::runtime_error(NoFfmpegMessage("write " + name));
  return std::make_unique<FfmpegFile>(program, name, size, fps);
}

std::vector<uint8_t> ToYuv444(const emu::Frame& frame) {
  const size_t area = frame.pixels.size();
  std::vector<uint8_t> planes(area * 3);
  size_t i = 0;
  for (int32_t y = frame.height - 1; y >= 0; --y) {
    for (int32_t x = 0; x < frame.width; ++x, ++i) {
      const uint32_t px = frame.At(x, y);
      const int32_t r = (px >> 16) & 255, g = (px >> 8) & 255, b = px & 255;
      // BT.601's weights in 1/65536, rounded; each row of Cb and Cr sums to 0.
      planes[i] = static_cast<uint8_t>(((16829 * r + 33039 * g + 6416 * b + 32768) >> 16) + 16);
      planes[area + i] = static_cast<uint8_t>(((-9714 * r - 19070 * g + 28784 * b + 32768) >> 16) + 128);
      planes[2 * area + i] = static_cast<uint8_t>(((28784 * r - 24103 * g - 4681 * b + 32768) >> 16) + 128);
    }
  }
  return planes;
}

std::string FrameRateRatio(double fps) {
  const long long thousandths = std::llround(fps * 1000.0);
  const long long d = std::gcd(thousandths, 1000LL);
  return std::to_string(thousandths / d) + ":" + std::to_string(1000 / d);
}

}  // namespace krl::cli
