// The two inputs of a transition as krl feeds them: still images, video
// clips (decoded by the ffmpeg program), or the built-in moving sample clips.
#pragma once

#include <memory>
#include <string>

#include "cli/ffmpeg.h"
#include "cli/options.h"
#include "emulator/frame.h"

namespace krl::cli {

using SampleClip = emu::Frame (*)(int32_t width, int32_t height, int32_t frame);

class InputClip {
 public:
  // `path` empty: the sample clip. `fps`: the rate a video is read at.
  InputClip(std::string path, SampleClip sample, double fps);
  ~InputClip();
  InputClip(const InputClip&) = delete;
  InputClip& operator=(const InputClip&) = delete;

  // A sample clip has no size of its own: it is drawn at any size.
  bool HasSize() const { return !path_.empty(); }
  Size size() const { return {native_.width, native_.height}; }
  // Frames come at this size from now on; a file of another size is scaled
  // and the user is told.
  void FitTo(Size size);
  // The next frame; a video that ends holds its last frame.
  emu::Frame Next();

 private:
  bool ReadVideoFrame(emu::Frame* frame);

  std::string path_;
  SampleClip sample_;
  Size target_{0, 0};
  emu::Frame native_;  // the still image, or the video frame last read
  std::unique_ptr<FfmpegProcess> video_;
  int32_t index_ = 0;
  bool ended_ = false;
};

// --size, else the size of the first input that has one, else `fallback`;
// fits both inputs to it.
Size FitInputs(const std::string& sizeOption, InputClip& a, InputClip& b, Size fallback);
// " (1920x1080, 8 MiB a frame)" for the size FitInputs chose; empty before.
std::string FrameSizeText();

}  // namespace krl::cli
