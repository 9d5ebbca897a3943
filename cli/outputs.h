// Where `krl clip` sends its frames: a PNG sequence, a Y4M file, or any
// format the ffmpeg program writes. Every output appears whole or not at all.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cli/options.h"
#include "emulator/frame.h"

namespace krl::cli {

class FrameSink {
 public:
  virtual ~FrameSink() = default;  // without Finish: removes what was written
  virtual void Write(const emu::Frame& frame) = 0;
  virtual void Finish() = 0;
  // For the user: "a PNG sequence in frames/", "out.mp4", ...
  virtual std::string Describe() const = 0;
  // The size of the pictures written: the frames' own, unless the format
  // needs another (then OpenOutput has said so on stderr).
  virtual Size WrittenSize() const = 0;
  // What Finish replaced beyond the file itself, for the user; empty if nothing.
  virtual std::string Replaced() const { return ""; }
  // True when the frames go to standard output.
  virtual bool ToStandardOutput() const { return false; }
};

// By the name: a PNG file name with one frame number (frames/%04d.png) is a
// PNG sequence, *.y4m is Y4M, "-" is Y4M on standard output, anything else is
// handed to ffmpeg. Throws when the name or the missing ffmpeg rules it out,
// before anything is written. `quiet` silences the note on a changed size.
std::unique_ptr<FrameSink> OpenOutput(const std::string& name, Size size, double fps, bool quiet = false);

// True when `name` holds one frame number, %d or %0Nd, in its file name.
bool IsSequencePattern(const std::string& name);
// The frame number of `file` under the `pattern` ("%04d.png"), or -1 when
// the pattern does not make that name.
long long SequenceNumber(const std::string& pattern, const std::string& file);

// Y4M's pictures: Y, Cb and Cr planes at full resolution (4:4:4), top row
// first, studio range as BT.601 defines it.
std::vector<uint8_t> ToYuv444(const emu::Frame& frame);
// The frame rate as Y4M writes it: "25:1", "2997:100".
std::string FrameRateRatio(double fps);

}  // namespace krl::cli
