#include "cli/ffmpeg.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

extern char** environ;

namespace krl::cli {

std::string FindFfmpeg() {
  if (const char* env = std::getenv("KRL_FFMPEG"); env != nullptr && *env != '\0') {
    return access(env, X_OK) == 0 ? env : "";
  }
  const char* path = std::getenv("PATH");
  const std::string dirs = path != nullptr ? path : "/usr/bin:/bin";
  size_t start = 0;
  while (start <= dirs.size()) {
    const size_t colon = std::min(dirs.find(':', start), dirs.size());
    const std::string dir = dirs.substr(start, colon - start);
    const std::string candidate = (dir.empty() ? "." : dir) + "/ffmpeg";
    if (access(candidate.c_str(), X_OK) == 0) return candidate;
    start = colon + 1;
  }
  return "";
}

std::string NoFfmpegMessage(const std::string& what) {
  return "to " + what + " krl needs the ffmpeg program, which is not installed (install the ffmpeg package, or " +
         "name it with KRL_FFMPEG); without it krl reads images (PNG, JPEG, BMP) and writes PNG sequences " +
         "(frames/%04d.png) and Y4M (.y4m)";
}

FfmpegProcess::FfmpegProcess(const std::string& program, const std::vector<std::string>& arguments,
                             Direction direction) {
  messages_ = std::tmpfile();
  int ends[2];
  if (messages_ == nullptr || pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("cannot start " + program);
  const bool feed = direction == Direction::kFeed;
  const int childEnd = feed ? ends[0] : ends[1];
  pipe_ = feed ? ends[1] : ends[0];

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, childEnd, feed ? 0 : 1);
  posix_spawn_file_actions_addopen(&actions, feed ? 1 : 0, "/dev/null", feed ? O_WRONLY : O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, fileno(messages_), 2);
  // The child starts with default signal actions: krl ignores SIGPIPE, ffmpeg need not.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  // In a process group of its own: Ctrl-C on the terminal reaches krl only,
  // which stops ffmpeg itself, so that an interruption is reported as one.
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);

  std::vector<char*> argv{const_cast<char*>(program.c_str())};
  for (const std::string& a : arguments) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  const int failed = posix_spawn(&pid_, program.c_str(), &actions, &attributes, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  close(childEnd);
  if (failed != 0) {
    pid_ = -1;
    close(pipe_);
    pipe_ = -1;
    throw std::runtime_error("cannot start " + program);
  }
}

FfmpegProcess::~FfmpegProcess() {
  if (pid_ > 0) kill(pid_, SIGKILL);
  Finish();
  if (messages_ != nullptr) std::fclose(messages_);
}

bool FfmpegProcess::Write(const void* data, size_t size) {
  const char* p = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t n = write(pipe_, p, size);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    p += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

size_t FfmpegProcess::Read(void* data, size_t size) {
  char* p = static_cast<char*>(data);
  size_t done = 0;
  while (done < size) {
    const ssize_t n = read(pipe_, p + done, size - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  return done;
}

std::string FfmpegProcess::Finish() {
  if (pipe_ >= 0) close(pipe_);
  pipe_ = -1;
  if (pid_ <= 0) return "";
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return "";
  // Its last line says what went wrong.
  std::string last, line;
  std::rewind(messages_);
  for (int c; (c = std::fgetc(messages_)) != EOF;) {
    said_ += static_cast<char>(c);
    if (c != '\n') {
      line += static_cast<char>(c);
    } else if (!line.empty()) {
      last = std::move(line);
      line.clear();
    }
  }
  if (!line.empty()) last = line;
  if (!last.empty()) return last;
  return WIFSIGNALED(status) ? "ffmpeg was stopped by signal " + std::to_string(WTERMSIG(status))
                             : "ffmpeg ended with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace krl::cli
