// krl clip as a user runs it: PNG sequences and Y4M checked frame by frame
// against the emulator, video in and out, the progress bar, interruptions.
// (Its formats and mistakes are rows of cli_test's tables.)
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

std::string Numbered(int i) {
  char name[64];
  std::snprintf(name, sizeof name, "/frames/%04d.png", i);
  return name;
}

TEST(Clip, WritesAPngSequenceOfEveryFrame) {
  const struct {
    std::string options;
    std::vector<std::string> settings, curves;
    int older;  // frames of an older sequence of the same pattern already there
  } rows[] = {
      {"", {}, {}, 0},
      {"--set TransType=1 --curve Progression=0:0.25,1:0.75", {"TransType=1"}, {"Progression=0:0.25,1:0.75"}, 12},
  };
  for (const auto& row : rows) {
    const std::string dir = FreshFolder("clip_png");
    std::filesystem::create_directories(dir + "/frames");
    // What is not of the pattern stays: another pattern, other names.
    const char* const mine[] = {"/frames/notes.txt", "/frames/0009.jpg", "/frames/x0009.png", "/frames/009.png"};
    for (const char* file : mine) WriteFile(dir + file, "mine\n");
    for (int i = 0; i < row.older; ++i) WriteFile(dir + Numbered(i), "older\n");
    const Outcome r = Krl(std::string("clip ") + kFade + " --frames 4 --size 24x14 " + row.options + " -o " + dir +
                      "/frames/%04d.png");
    ASSERT_EQ(r.exit, 0) << r.output;
    EXPECT_NE(r.output.find("wrote a PNG sequence in " + dir + "/frames/: 4 frames"), std::string::npos) << r.output;
    EXPECT_EQ(r.output.find("krl: replaced an older sequence of 12 frames named %04d.png in " + dir +
                            "/frames/ (its 8 frames past these were removed)") != std::string::npos,
              row.older > 0) << r.output;
    for (const char* file : mine) EXPECT_EQ(ReadFile(dir + file), "mine\n") << file;
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(cli::ReadImage(dir + Numbered(i)).pixels,
                Expected("Traditional Fade", 24, 14, i, i / 3.0, row.settings, row.curves).pixels)
          << row.options << " frame " << i;
    }
    EXPECT_FALSE(Exists(dir + Numbered(4)));
    EXPECT_TRUE(Leftovers(dir).empty());
  }
}

TEST(Clip, WritesY4mWithTheFrameRateGiven) {
  for (const auto& [fps, ratio] : {std::pair{"", "25:1"}, {"--fps 29.97", "2997:100"}}) {
    const std::string dir = FreshFolder("clip_y4m"), y4m = dir + "/fade.y4m";
    const Outcome r = Krl(std::string("clip ") + kFade + " --frames 3 --size 10x6 " + fps + " -o " + y4m);
    ASSERT_EQ(r.exit, 0) << r.output;
    std::string expected = std::string("YUV4MPEG2 W10 H6 F") + ratio + " Ip A1:1 C444 XCOLORRANGE=LIMITED\n";
    for (int i = 0; i < 3; ++i) {
      const std::vector<uint8_t> planes = cli::ToYuv444(Expected("Traditional Fade", 10, 6, i, i / 2.0));
      expected += "FRAME\n" + std::string(planes.begin(), planes.end());
    }
    EXPECT_EQ(ReadFile(y4m), expected) << fps;
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

// Interrupted as a terminal's Ctrl-C or timeout does it, the signal to the
// whole process group (krl and its ffmpeg), once the first frame is written.
TEST(Clip, AnInterruptedClipIsSaidSoAndLeavesNothingBehind) {
  const std::string dir = FreshFolder("clip_interrupted");
  const struct {
    const char* output;
    const char* signal;
    int exit;
    bool needsFfmpeg;
  } rows[] = {
      {"/long.y4m", "INT", 130, false}, {"/frames/%04d.png", "TERM", 143, false}, {"/long.mp4", "INT", 130, true}};
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
    for (const char* written : {"/long.y4m", "/long.mp4", "/frames"}) EXPECT_FALSE(Exists(dir + written));
    EXPECT_TRUE(Leftovers(dir).empty()) << row.output;
  }
}

// What a killed krl left (no handler runs on SIGKILL) is removed by the next
// run that writes in that folder; what a running krl stages is not touched.
TEST(Clip, CleansUpWhatAKilledRunLeft) {
  const std::string dir = FreshFolder("clip_killed");
  const std::string gone = Shell("sh -c 'echo $$'").output;  // a process that has ended
  const std::string dead = dir + "/.krl-partial-" + gone.substr(0, gone.size() - 1);
  const std::string alive = dir + "/.krl-partial-" + std::to_string(getpid()) + "-c.mp4";
  for (const std::string output : {"/x.y4m", "/frames/%04d.png", "/x.png"}) {
    WriteFile(dead + "-c.mp4", "left by a killed krl\n");
    std::filesystem::create_directories(dead + "-frames");
    WriteFile(dead + "-frames/0000.png", "left\n");
    WriteFile(alive, "still being written\n");
    const std::string command = output == "/x.png" ? "render " + std::string(kFade) + " --progress 0.5"
                                                   : "clip " + std::string(kFade) + " --frames 2";
    const Outcome r = Krl(command + " --size 8x6 -o " + dir + output);
    ASSERT_EQ(r.exit, 0) << r.output;
    EXPECT_FALSE(Exists(dead + "-c.mp4")) << output;
    EXPECT_FALSE(Exists(dead + "-frames")) << output;
    EXPECT_TRUE(Exists(alive)) << output;
  }
}

}  // namespace
}  // namespace krl::test
