// The ffmpeg program (a separate program, not a library we link), run as a
// child process that krl feeds frames to or reads frames from through a pipe.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <vector>

namespace krl::cli {

// The ffmpeg program: KRL_FFMPEG when set, else "ffmpeg" found on PATH.
// Empty when there is none.
std::string FindFfmpeg();

// What to tell a user who lacks ffmpeg and needs it to `what` (e.g.
// "write out.mp4"): the error names the formats that work without it.
std::string NoFfmpegMessage(const std::string& what);

class FfmpegProcess {
 public:
  enum class Direction { kFeed, kRead };  // we write its stdin, or read its stdout
  // Starts `program` with `arguments`; its messages go to a private file.
  FfmpegProcess(const std::string& program, const std::vector<std::string>& arguments, Direction direction);
  ~FfmpegProcess();  // stops a process that was not finished
  FfmpegProcess(const FfmpegProcess&) = delete;
  FfmpegProcess& operator=(const FfmpegProcess&) = delete;

  // False when the process no longer takes input.
  bool Write(const void* data, size_t size);
  // Reads up to `size` bytes; fewer only at the end of the output.
  size_t Read(void* data, size_t size);
  // Closes the pipe and waits. Empty on success, else the program's last
  // message line (or how it ended).
  std::string Finish();
  // Everything the program said on stderr, once Finish found it failed.
  const std::string& said() const { return said_; }

 private:
  std::string said_;
  pid_t pid_ = -1;
  int pipe_ = -1;
  FILE* messages_ = nullptr;
};

}  // namespace krl::cli
