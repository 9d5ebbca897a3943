#include "cli/outputs.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numeric>
#include <optional>
#include <cstring>
#include <cerrno>
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

class PngSequence final : public FrameSink {
 public:
  PngSequence(const std::string& pattern, Size size)
      : pattern_(fs::path(pattern).filename().string()),
        folder_(fs::path(pattern).parent_path().empty() ? fs::path(".") : fs::path(pattern).parent_path()),
        staged_(folder_, false),
        size_(size) {}
  void Write(const emu::Frame& frame) override {
    char file[4096];
    std::snprintf(file, sizeof file, pattern_.c_str(), count_++);
    WritePng(frame, (staged_.path() / file).string());
  }
  void Finish() override {
    // The frames of an older sequence of this pattern beyond the new ones
    // go, so that the folder holds one sequence; the user is told.
    std::vector<fs::path> older;
    long long olderCount = 0;
    std::error_code ec;
    for (fs::directory_iterator it(folder_, ec), end; !ec && it != end; it.increment(ec)) {
      const long long n = SequenceNumber(pattern_, it->path().filename().string());
      if (n < 0 || !it->is_regular_file()) continue;
      ++olderCount;
      if (n >= count_) older.push_back(it->path());
    }
    staged_.Commit();
    for (const fs::path& p : older) fs::remove(p, ec);
    if (olderCount > 0) {
      replaced_ = "replaced an older sequence of " + std::to_string(olderCount) + " frame" +
                  (olderCount == 1 ? "" : "s") + " named " + pattern_ + " in " + folder_.string() + "/";
      if (!older.empty()) replaced_ += " (its " + std::to_string(older.size()) + " frames past these were removed)";
    }
  }
  std::string Describe() const override { return "a PNG sequence in " + folder_.string() + "/"; }
  Size WrittenSize() const override { return size_; }
  std::string Replaced() const override { return replaced_; }

 private:
  std::string pattern_;
  fs::path folder_;
  StagedFolder staged_;
  Size size_;
  int count_ = 0;
  std::string replaced_;
};

class Y4mFile final : public FrameSink {
 public:
  // `name` "-": standard output, written as it comes.
  Y4mFile(const std::string& name, Size size, double fps) : name_(name), size_(size) {
    if (name_ == "-") {
      file_ = stdout;
    } else {
      staged_.emplace(name);
      file_ = std::fopen(staged_->path().c_str(), "wb");
      if (file_ == nullptr) throw std::runtime_error(CannotWrite(name_, errno));
    }
    std::fprintf(file_, "YUV4MPEG2 W%d H%d F%s Ip A1:1 C444 XCOLORRANGE=LIMITED\n", size.width, size.height,
                 FrameRateRatio(fps).c_str());
  }
  ~Y4mFile() override {
    if (file_ != nullptr && file_ != stdout) std::fclose(file_);
  }
  void Write(const emu::Frame& frame) override {
    const std::vector<uint8_t> planes = ToYuv444(frame);
    if (std::fputs("FRAME\n", file_) < 0 || std::fwrite(planes.data(), 1, planes.size(), file_) != planes.size()) {
      Fail();
    }
  }
  void Finish() override {
    if (file_ == stdout) {
      if (std::fflush(stdout) != 0) Fail();
      return;
    }
    const bool closed = std::fclose(file_) == 0;
    const int error = errno;
    file_ = nullptr;
    if (!closed) throw std::runtime_error(CannotWrite(name_, error));
    staged_->Commit();
  }
  std::string Describe() const override { return name_ == "-" ? "standard output (Y4M)" : name_; }
  Size WrittenSize() const override { return size_; }
  bool ToStandardOutput() const override { return name_ == "-"; }

 private:
  [[noreturn]] void Fail() {
    ThrowIfInterrupted();
    if (name_ == "-") throw std::runtime_error("cannot write to standard output: " + std::string(std::strerror(errno)));
    throw std::runtime_error(CannotWrite(name_, errno));
  }

  std::string name_;
  Size size_;
  std::optional<StagedFile> staged_;
  FILE* file_ = nullptr;
};

// Containers whose usual codecs take 4:2:0 pictures, of even width and height.
bool NeedsEvenSize(const std::string& ext) {
  for (const char* even : {".mp4", ".m4v", ".mov", ".mkv", ".webm", ".avi"}) {
    if (ext == even) return true;
  }
  return false;
}

// What ffmpeg needs to hear, beyond the output name, to write a file that
// browsers and editors play: 4:2:0 pictures (video of even size) for the usual
// containers, a palette of the clip's own colours for GIF, looping images.
std::vector<std::string> FormatArguments(const std::string& ext) {
  if (ext == ".gif") return {"-vf", "split[a][b];[a]palettegen[p];[b][p]paletteuse", "-loop", "0"};
  if (ext == ".webp") return {"-loop", "0", "-pix_fmt", "yuv420p"};
  if (ext == ".png" || ext == ".apng") return {"-plays", "0"};
  if (NeedsEvenSize(ext)) return {"-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2", "-pix_fmt", "yuv420p"};
  return {};
}

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); !from.empty() && at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

class FfmpegFile final : public FrameSink {
 public:
  FfmpegFile(const std::string& program, const std::string& name, Size size, double fps)
      : name_(name), staged_(name), size_(size) {
    const std::string ext = LowerExtension(name);
    if (NeedsEvenSize(ext)) size_ = {size.width + size.width % 2, size.height + size.height % 2};
    char rate[32];
    std::snprintf(rate, sizeof rate, "%.17g", fps);
    std::vector<std::string> args{"-nostdin", "-v", "error", "-y", "-f", "rawvideo", "-pix_fmt", "bgra", "-s",
                                  std::to_string(size.width) + "x" + std::to_string(size.height), "-framerate",
                                  rate, "-i", "-"};
    for (const std::string& a : FormatArguments(ext)) args.push_back(a);
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
  Size WrittenSize() const override { return size_; }

 private:
  // ffmpeg's last words, in the user's terms and with the user's file name.
  [[noreturn]] void Fail(const std::string& why) {
    ThrowIfInterrupted();  // ffmpeg may notice an interruption first
    const std::string ext = LowerExtension(name_);
    const std::string& all = process_->said();
    if (all.find("Unable to choose an output format") != std::string::npos ||
        all.find("Unable to find a suitable output format") != std::string::npos) {
      throw std::runtime_error("cannot write " + name_ + ": ffmpeg knows no format by the extension " + ext +
                               "; name it .mp4, .webm, .mkv, .mov, .gif, .webp, ... or .y4m");
    }
    const std::string said = Replace(why, staged_.path().string(), name_);
    throw std::runtime_error("ffmpeg cannot write " + name_ + ": " + (said.empty() ? "it stopped reading" : said));
  }

  std::string name_;
  StagedFile staged_;
  Size size_;
  std::unique_ptr<FfmpegProcess> process_;
  std::vector<uint8_t> rows_;
};

}  // namespace

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

long long SequenceNumber(const std::string& pattern, const std::string& file) {
  const size_t percent = pattern.find('%'), d = pattern.find('d', percent);
  const std::string prefix = pattern.substr(0, percent), suffix = pattern.substr(d + 1);
  if (file.size() <= prefix.size() + suffix.size() || file.compare(0, prefix.size(), prefix) != 0 ||
      file.compare(file.size() - suffix.size(), suffix.size(), suffix) != 0) {
    return -1;
  }
  const std::string digits = file.substr(prefix.size(), file.size() - prefix.size() - suffix.size());
  if (digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string::npos) return -1;
  const long long n = std::stoll(digits);
  char made[4096];
  std::snprintf(made, sizeof made, pattern.c_str(), static_cast<int>(n));
  return file == made ? n : -1;
}

std::unique_ptr<FrameSink> OpenOutput(const std::string& name, Size size, double fps, bool quiet) {
  const std::string ext = LowerExtension(name);
  // A '%' makes a PNG sequence only in a PNG name: "100%.mp4" is a file.
  if (ext == ".png" && name.find('%') != std::string::npos) {
    if (!IsSequencePattern(name)) {
      throw UsageError("a PNG sequence is named with one frame number in its file name, like frames/%04d.png, not \"" +
                       name + "\"");
    }
    return std::make_unique<PngSequence>(name, size);
  }
  if (IsSequencePattern(name)) {
    throw UsageError("krl writes image sequences as PNG: name it like frames/%04d.png, not \"" + name + "\"");
  }
  if (name == "-" || ext == ".y4m") return std::make_unique<Y4mFile>(name, size, fps);
  if (ext.empty()) {
    throw UsageError("cannot tell the format of \"" + name + "\": name it frames/%04d.png, out.y4m, out.mp4, ...");
  }
  if (ext == ".png") {
    throw UsageError("a clip of many frames is a PNG sequence: name it with a frame number, like frames/%04d.png");
  }
  const std::string program = FindFfmpeg();
  if (program.empty()) throw std::runtime_error(NoFfmpegMessage("write " + name));
  auto file = std::make_unique<FfmpegFile>(program, name, size, fps);
  const Size written = file->WrittenSize();
  if (!quiet && (written.width != size.width || written.height != size.height)) {
    std::fprintf(stderr, "krl: %s is %dx%d, not %dx%d: its video format needs an even width and height, so krl adds "
                 "a black %s\n", name.c_str(), written.width, written.height, size.width, size.height,
                 written.width != size.width && written.height != size.height ? "column at the right and row at the bottom"
                 : written.width != size.width ? "column at the right" : "row at the bottom");
  }
  return file;
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
