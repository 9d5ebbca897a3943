// krl clip as a user runs it: every output format checked frame by frame
// against the emulator, video inputs, the progress bar, and every mistake
// answered with one line, a non-zero exit and nothing left behind.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "cli/image_io.h"
#include "cli/outputs.h"
#include "cli_run.h"
#include "test_support.h"

namespace krl::test {
namespace {

constexpr const char* kFade = "\"Traditional Fade\"";

TEST(Clip, WritesAPngSequenceOfEveryFrame) {
  const struct {
    std::string options;
    std::vector<std::string> settings, curves;
    int older;  // frames of an older sequence of the same pattern already there
  } rows[] = {
      {"", {}, {}, 0},
      {"--set TransType=1 --curve Progression=0:0.25,1:0.75", {"TransType=1"}, {"Progression=0:0.25,1:0.75"}, 0},
      {"", {}, {}, 12},
  };
  for (const auto& row : rows) {
    const std::string dir = FreshFolder("clip_png");
    std::filesystem::create_directories(dir + "/frames");
    // What is not of the pattern stays: another pattern, other names.
    for (const char* mine : {"/frames/notes.txt", "/frames/0009.jpg", "/frames/x0009.png", "/frames/009.png"}) {
      WriteFile(dir + mine, "mine\n");
    }
    for (int i = 0; i < row.older; ++i) {
      char name[64];
      std::snprintf(name, sizeof name, "/frames/%04d.png", i);
      WriteFile(dir + name, "older\n");
    }
    const Outcome r = Krl(std::string("clip ") + kFade + " --frames 4 --size 24x14 " + row.options + " -o " + dir +
                      "/frames/%04d.png");
    ASSERT_EQ(r.exit, 0) << r.output;
    EXPECT_NE(r.output.find("wrote a PNG sequence in " + dir + "/frames/: 4 frames"), std::string::npos) << r.output;
    EXPECT_EQ(r.output.find("krl: replaced an older sequence of 12 frames named %04d.png in " + dir +
                            "/frames/ (its 8 frames past these were removed)") != std::string::npos,
              row.older > 0) << r.output;
    for (const char* mine : {"/frames/notes.txt", "/frames/0009.jpg", "/frames/x0009.png", "/frames/009.png"}) {
      EXPECT_EQ(ReadFile(dir + mine), "mine\n") << mine;
    }
    for (int i = 0; i < 4; ++i) {
      char name[64];
      std::snprintf(name, sizeof name, "/frames/%04d.png", i);
      EXPECT_EQ(cli::ReadImage(dir + name).pixels,
                Expected("Traditional Fade", 24, 14, i, i / 3.0, row.settings, row.curves).pixels)
          << row.options << " frame " << i;
    }
    EXPECT_FALSE(Exists(dir + "/frames/0004.png"));
    EXPECT_TRUE(Leftovers(dir).empty());
  }
}

TEST(Clip, WritesY4mWithTheFrameRateGiven) {
  const struct {
    const char* fps;
    const char* ratio;
  } rows[] = {{"", "25:1"}, {"--fps 29.97", "2997:100"}, {"--fps 60", "60:1"}};
  for (const auto& row : rows) {
    const std::string dir = FreshFolder("clip_y4m"), y4m = dir + "/fade.y4m";
    const Outcome r = Krl(std::string("clip ") + kFade + " --frames 3 --size 10x6 " + row.fps + " -o " + y4m);
    ASSERT_EQ(r.exit, 0) << r.output;
    std::string expected = std::string("YUV4MPEG2 W10 H6 F") + row.ratio + " Ip A1:1 C444 XCOLORRANGE=LIMITED\n";
    for (int i = 0; i < 3; ++i) {
      const std::vector<uint8_t> planes = cli::ToYuv444(Expected("Traditional Fade", 10, 6, i, i / 2.0));
      expected += "FRAME\n" + std::string(planes.begin(), planes.end());
    }
    EXPECT_EQ(ReadFile(y4m), expected) << row.fps;
  }
}

TEST(Clip, ConvertsToStudioRangeYuv) {
  const struct {
    uint32_t pixel;
    uint8_t y, cb, cr;
  } rows[] = {
      {0xFF000000, 16, 128, 128}, {0xFFFFFFFF, 235, 128, 128}, {0xFFFF0000, 81, 90, 240},
      {0xFF00FF00, 145, 54, 34},  {0xFF0000FF, 41, 240, 110},  {0xFF808080, 126, 128, 128},
  };
  for (const auto& row : rows) {
    // Two rows: the top row (the frame's last) comes first in the file.
    emu::Frame frame(1, 2, 0xFF000000);
    frame.At(0, 1) = row.pixel;
    const std::vector<uint8_t> planes = cli::ToYuv444(frame);
    EXPECT_EQ(planes, (std::vector<uint8_t>{row.y, 16, row.cb, 128, row.cr, 128})) << std::hex << row.pixel;
  }
}

TEST(Clip, WritesVideoThroughFfmpegAndReadsVideoBack) {
  if (!HaveFfmpeg()) GTEST_SKIP() << "ffmpeg is not installed";
  const std::string dir = FreshFolder("clip_video"), mp4 = dir + "/fade.mp4";
  Outcome r = Krl(std::string("clip ") + kFade + " --frames 10 --size 64x36 -o " + mp4);
  ASSERT_EQ(r.exit, 0) << r.output;
  EXPECT_EQ(ReadFile(mp4).substr(4, 4), "ftyp");

  // The clip as both inputs, four frames longer: its last frame is held.
  r = Krl(std::string("clip ") + kFade + " --frames 14 --a " + mp4 + " --b " + mp4 + " --size 32x18 -o " + dir +
          "/back.y4m");
  ASSERT_EQ(r.exit, 0) << r.output;
  EXPECT_NE(r.output.find("scaled " + mp4 + " from 64x36 to 32x18"), std::string::npos) << r.output;
  EXPECT_NE(r.output.find(mp4 + " ends after 10 frames; its last frame is held"), std::string::npos) << r.output;
  const std::string y4m = ReadFile(dir + "/back.y4m");
  size_t frames = 0;
  for (size_t at = y4m.find("FRAME\n"); at != std::string::npos; at = y4m.find("FRAME\n", at + 1)) ++frames;
  EXPECT_EQ(frames, 14u);
  EXPECT_TRUE(Leftovers(dir).empty());
}

TEST(Clip, DrawsAProgressBarOnATerminalOnly) {
  if (Shell("command -v script").exit != 0) GTEST_SKIP() << "no script program to give krl a terminal";
  const std::string dir = FreshFolder("clip_bar");
  const std::string clip = std::string(KRL_CLI_PATH) + " --library " + KRL_LIBRARY_PATH + " clip " + kFade +
                           " --frames 6 --size 16x9 -o " + dir + "/x.y4m";
  const struct {
    std::string command;
    bool bar, summary;
  } rows[] = {
      {"script -qec '" + clip + "' /dev/null", true, true},
      {"script -qec '" + clip + " --quiet' /dev/null", false, false},
      {clip, false, true},
  };
  for (const auto& row : rows) {
    const Outcome r = Shell(row.command);
    ASSERT_EQ(r.exit, 0) << r.output;
    EXPECT_EQ(r.output.find("\rTraditional Fade [##############################] 6/6 frames  ") != std::string::npos,
              row.bar)
        << row.command << "\n" << r.output;
    EXPECT_EQ(r.output.find(" fps") != std::string::npos, row.bar || row.summary) << r.output;
    EXPECT_EQ(r.output.find("wrote ") != std::string::npos, row.summary) << r.output;
  }
}

TEST(Clip, SaysWhatIsWrongAndLeavesNothingBehind) {
  const std::string dir = FreshFolder("clip_errors");
  const std::string text = dir + "/text", textPng = dir + "/text.png", textMp4 = dir + "/text.mp4";
  for (const std::string& f : {text, textPng, textMp4}) WriteFile(f, "no picture here\n");
  const std::string sound = dir + "/sound.wav";
  if (HaveFfmpeg()) Shell("ffmpeg -nostdin -v error -f lavfi -i sine=duration=0.2 -y " + sound);
  // krl is held to 1.5 GiB of addresses; not an i386 one that runs under the
  // user-mode emulator (scripts/i386-runner.sh), which reserves more than that
  // for itself, and in whose 32-bit addresses such frames do not fit anyway.
  const bool emulated = sizeof(void*) == 4 && access("/proc/sys/fs/binfmt_misc/krl-i386", F_OK) == 0;
  const std::string kMemoryLimit = emulated ? "" : "ulimit -v 1500000;";
  const std::string clip = std::string("clip ") + kFade + " --frames 3 --size 16x9 ";
  // Writes three frames before it fails.
  const std::string refuses = std::string("clip Refuses --frames 5 --size 16x9 --library ") + KRL_REFUSING_PLUGIN_PATH;
  const struct {
    std::string arguments, output, environment;
    int exit;
    std::string message;
    bool needsFfmpeg;
  } rows[] = {
      {"clip Nothing --frames 3", "out.y4m", "", 1, "no transition is called \"Nothing\"", false},
      {std::string("clip ") + kFade, "out.y4m", "", 2, "krl clip needs --frames N", false},
      {clip + "--frames 1", "out.y4m", "", 2, "--frames takes a whole number from 2 to 100000, not \"1\"", false},
      {clip + "--fps 0", "out.y4m", "", 2, "--fps takes a number above 0", false},
      {clip, "out.png", "", 2, "name it with a frame number, like frames/%04d.png", false},
      {clip, "out", "", 2, "cannot tell the format of", false},
      {clip, "f/%d-%d.png", "", 2, "one frame number in its file name", false},
      {clip + "--a /nonexistent/a.png", "out.y4m", "", 1, "cannot read /nonexistent/a.png: No such file", false},
      {clip + "--b /nonexistent/b.mp4", "out.y4m", "", 1, "cannot read /nonexistent/b.mp4: No such file", false},
      {clip + "--a " + dir, "out.y4m", "", 1, "cannot read " + dir + ": it is a folder", false},
      {clip + "--a " + textPng, "out.y4m", "", 1, "cannot read " + textPng + ": ", false},
      {clip + "--a " + textMp4, "out.y4m", "", 1, "cannot read " + textMp4 + ": ", true},
      {clip, "none/out.y4m", "", 1, "cannot write " + dir + "/none/out.y4m: the folder " + dir + "/none does not exist",
       false},
      {clip, "text/out.y4m", "", 1, "cannot write " + dir + "/text/out.y4m: " + text + " is a file, not a folder", false},
      {clip, "z.xyz", "", 1, "cannot write " + dir + "/z.xyz: ffmpeg knows no format by the extension .xyz", true},
      {clip, "f/%04d.jpg", "", 2, "krl writes image sequences as PNG", false},
      {clip + "--progress 0.5", "out.y4m", "", 2, "krl clip takes no --progress (a clip runs Progress from 0 to 1", false},
      {clip + "--a " + sound, "out.y4m", "", 1, "cannot read " + sound + ": it holds no video", true},
      {clip + "--size 16384x16384", "out.y4m", kMemoryLimit, 1,
       "not enough memory for frames of this size (16384x16384, 1024 MiB a frame); name a smaller --size", false},
      {clip, "out.mp4", "PATH=/nonexistent", 1,
       "to write " + dir + "/out.mp4 krl needs the ffmpeg program, which is not installed", false},
      {clip, "out.webm", "PATH=/nonexistent", 1, "writes PNG sequences (frames/%04d.png) and Y4M (.y4m)", false},
      {clip + "--a " + textMp4, "out.y4m", "PATH=/nonexistent", 1, "to read the video " + textMp4 + " krl needs", false},
      {clip + "--library /nonexistent/lib.so", "out.y4m", "", 1, "cannot load /nonexistent/lib.so", false},
      {clip + "--library " + text, "out.y4m", "", 1, "cannot load " + text, false},
      {clip + "--library " + KRL_GARBLED_PLUGIN_PATH, "out.y4m", "", 1, "declares what the host cannot run", false},
      {refuses, "out.y4m", "", 1, "Refuses refused the frame at Progress 0.75: Past the middle", false},
      {refuses, "f/%04d.png", "", 1, "Refuses refused the frame at Progress 0.75: Past the middle", false},
  };
  for (const auto& row : rows) {
    if (row.needsFfmpeg && !HaveFfmpeg()) continue;
#ifdef KRL_SANITIZED
    // A sanitizer's runtime reserves more address space than the limit allows.
    if (!kMemoryLimit.empty() && row.environment == kMemoryLimit) continue;
#endif
    const std::string out = dir + "/" + row.output;
    const Outcome r = Krl(row.arguments + " -o " + out, row.environment);
    EXPECT_EQ(r.exit, row.exit) << row.arguments << "\n" << r.output;
    EXPECT_NE(r.output.find(row.message), std::string::npos) << row.arguments << "\n" << r.output;
    EXPECT_EQ(r.output.find('\n'), r.output.size() - 1) << "one line: " << r.output;
    EXPECT_EQ(r.output.find(".krl-partial"), std::string::npos) << "no hidden name: " << r.output;
    EXPECT_FALSE(Exists(out)) << row.arguments;
    EXPECT_FALSE(Exists(dir + "/f")) << row.arguments;
  }
  EXPECT_TRUE(Leftovers(dir).empty());
}

TEST(Clip, SaysWhatItWrites) {
  const std::string dir = FreshFolder("clip_names");
  const struct {
    std::string options, output;  // output "-": standard output, caught in out.bin
    std::string said, magic;
    bool needsFfmpeg;
  } rows[] = {
      {"--size 24x14", "100%.mp4", "wrote " + dir + "/100%.mp4: 3 frames of Traditional Fade at 24x14", "ftyp", true},
      {"--size 21x11", "odd.mp4",
       "krl: " + dir + "/odd.mp4 is 22x12, not 21x11: its video format needs an even width and height, so krl adds a "
       "black column at the right and row at the bottom", "ftyp", true},
      {"--size 21x11", "odd.webm", "at 22x12, 25 fps", "\x1A\x45\xDF\xA3", true},
      {"--size 21x11", "odd.gif", "at 21x11, 25 fps", "GIF8", true},
      {"--size 21x11", "-", "wrote standard output (Y4M): 3 frames of Traditional Fade at 21x11", "YUV4MPEG2 W21 H11 ",
       false},
  };
  for (const auto& row : rows) {
    if (row.needsFfmpeg && !HaveFfmpeg()) continue;
    const std::string file = dir + "/" + (row.output == "-" ? "out.bin" : row.output);
    const Outcome r = Krl(std::string("clip ") + kFade + " --frames 3 " + row.options + " -o " +
                          (row.output == "-" ? "- >" + file : file));
    ASSERT_EQ(r.exit, 0) << row.output << "\n" << r.output;
    EXPECT_NE(r.output.find(row.said), std::string::npos) << row.output << "\n" << r.output;
    const std::string bytes = ReadFile(file);
    EXPECT_NE(bytes.substr(0, 32).find(row.magic), std::string::npos) << row.output << ": " << bytes.substr(0, 12);
  }
  EXPECT_TRUE(Leftovers(dir).empty());
}

// Interrupted as a terminal's Ctrl-C or timeout does it, the signal to the
// whole process group (krl and its ffmpeg), once the first frame is written.
TEST(Clip, AnInterruptedClipIsSaidSoAndLeavesNothingBehind) {
  const std::string dir = FreshFolder("clip_interrupted");
  const struct {
    const char* output;
    const char* signal;
    int exit;
    bool needsFfmpeg;
  } rows[] = {{"/long.y4m", "INT", 130, false},
              {"/frames/%04d.png", "INT", 130, false},
              {"/long.mp4", "INT", 130, true},
              {"/long.mkv", "TERM", 143, true},
              {"/long.y4m", "TERM", 143, false}};
  for (const auto& row : rows) {
    if (row.needsFfmpeg && !HaveFfmpeg()) continue;
    const std::string command = std::string("setsid ") + KRL_CLI_PATH + " --library " + KRL_LIBRARY_PATH + " clip " +
                                kFade + " --frames 20000 --size " + (row.needsFfmpeg ? "320x180" : "64x36") + " -o " +
                                dir + row.output;
    const Outcome r = Shell(command + " & pid=$!; for i in $(seq 1200); do " + "[ -n \"$(find " + dir +
                            " -path '*.krl-partial*' -type f -size +0 2>/dev/null)\" ] && break; sleep 0.05; done; " +
                            "/bin/kill -s " + row.signal + " -- -$pid; wait $pid; echo \"exit $?\"");
    EXPECT_NE(r.output.find("krl: interrupted; nothing was written\nexit " + std::to_string(row.exit)),
              std::string::npos) << row.output << " " << row.signal << "\n" << r.output;
    EXPECT_EQ(r.output.find("ffmpeg"), std::string::npos) << r.output;
    EXPECT_FALSE(Exists(dir + "/long.y4m"));
    EXPECT_FALSE(Exists(dir + "/long.mp4"));
    EXPECT_FALSE(Exists(dir + "/long.mkv"));
    EXPECT_FALSE(Exists(dir + "/frames"));
    EXPECT_TRUE(Leftovers(dir).empty()) << row.output;
  }
}

// What a killed krl left (no handler runs on SIGKILL) is removed by the next
// run that writes in that folder; what a running krl stages is not touched.
TEST(Clip, CleansUpWhatAKilledRunLeft) {
  const std::string dir = FreshFolder("clip_killed");
  const std::string gone = Shell("sh -c 'echo $$'").output;  // a process that has ended
  const std::string dead = dir + "/.krl-partial-" + gone.substr(0, gone.size() - 1) + "-c.mp4";
  const std::string deadFolder = dir + "/.krl-partial-" + gone.substr(0, gone.size() - 1) + "-frames";
  const std::string alive = dir + "/.krl-partial-" + std::to_string(getpid()) + "-c.mp4";
  const struct {
    const char* output;
  } rows[] = {{"/x.y4m"}, {"/frames/%04d.png"}, {"/x.png"}};
  for (const auto& row : rows) {
    WriteFile(dead, "left by a killed krl\n");
    std::filesystem::create_directories(deadFolder);
    WriteFile(deadFolder + "/0000.png", "left\n");
    WriteFile(alive, "still being written\n");
    const std::string command = std::string(row.output) == "/x.png" ? "render " + std::string(kFade) + " --progress 0.5"
                                                                      : "clip " + std::string(kFade) + " --frames 2";
    const Outcome r = Krl(command + " --size 8x6 -o " + dir + row.output);
    ASSERT_EQ(r.exit, 0) << r.output;
    EXPECT_FALSE(Exists(dead)) << row.output;
    EXPECT_FALSE(Exists(deadFolder)) << row.output;
    EXPECT_TRUE(Exists(alive)) << row.output;
  }
}

}  // namespace
}  // namespace krl::test
