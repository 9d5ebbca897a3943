// The plug-ins in a real frei0r host, Debian's melt: every frame it renders
// through a plug-in equals krl's frame of the same transition, fields and
// Progress. melt animates "progress" from 0 to 1 over the mix, and its
// linear keyframes give frame i of n the Progress i/(n-1), as krl clip does.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/image_io.h"
#include "cli_run.h"
#include "frei0r/plugin_cases.h"
#include "test_support.h"

namespace krl::test {
namespace {

constexpr int32_t kWidth = 86, kHeight = 50;  // no multiple of 8
constexpr int kFrames = 13;

std::string Quote(const std::string& text) { return "'" + text + "'"; }

std::string Melt(const std::string& arguments) {
  return "FREI0R_PATH='" KRL_FREI0R_DIR "' timeout 120 melt -quiet " + arguments + " </dev/null";
}

// dir/m0001.png: the names the melt and krl commands below write.
std::string FrameFile(const std::string& dir, char prefix, int number) {
  char name[32];
  std::snprintf(name, sizeof name, "/%c%04d.png", prefix, number);
  return dir + name;
}

// A profile of kWidth x kHeight square pixels, 25 frames a second.
std::string WriteProfile(const std::string& dir) {
  const std::string path = dir + "/profile";
  const std::string w = std::to_string(kWidth), h = std::to_string(kHeight);
  WriteFile(path, "description=krl frei0r test\nframe_rate_num=25\nframe_rate_den=1\nwidth=" + w + "\nheight=" + h +
                      "\nprogressive=1\nsample_aspect_num=1\nsample_aspect_den=1\ndisplay_aspect_num=" + w +
                      "\ndisplay_aspect_den=" + h + "\ncolorspace=709\n");
  return path;
}

// melt 7.12 on a busy machine now and then ends without writing a frame, or
// never ends, with its own mixers as much as with these: one run renders
// every case, bounded in time, and a run that wrote too few frames is repeated.
Outcome RunMelt(const std::string& arguments, const std::string& lastFrame) {
  Outcome run{};
  for (int attempt = 0; attempt < 5; ++attempt) {
    std::filesystem::remove_all(std::filesystem::path(lastFrame).parent_path());
    std::filesystem::create_directories(std::filesystem::path(lastFrame).parent_path());
    run = Shell(Melt(arguments));
    if (run.exit == 0 && Exists(lastFrame)) break;
  }
  return run;
}

TEST(Frei0rInMelt, EveryFrameEqualsKrlsFrame) {
#if !defined(__x86_64__)
  GTEST_SKIP() << "melt is a 64-bit program: it loads the x86-64 plug-ins, which the x64 build tests";
#elif defined(KRL_SANITIZED)
  GTEST_SKIP() << "melt cannot load plug-ins built with sanitizers; the x64 build runs this test";
#endif
  if (Shell("command -v melt").exit != 0) {
    GTEST_SKIP() << "melt is not installed (scripts/setup.sh installs it): the plug-ins were not tried in melt";
  }
  const std::string dir = FreshFolder("frei0r_melt"), meltFrames = dir + "/melt";
  cli::WritePng(emu::SampleClipA(kWidth, kHeight), dir + "/a.png");
  cli::WritePng(emu::SampleClipB(kWidth, kHeight), dir + "/b.png");
  const std::string last = std::to_string(kFrames - 1);
  // The cases one after another, each a mix of the two pictures over kFrames frames.
  std::string timeline;
  for (const PluginCase& c : PluginCases()) {
    const std::string name = std::filesystem::path(PluginPath(c.transition)).stem().string();
    timeline += " " + dir + "/a.png out=" + last + " " + dir + "/b.png out=" + last + " -mix " +
                std::to_string(kFrames) + " -mixer frei0r." + name + " " + Quote("progress=0=0;" + last + "=1");
    for (const std::string& setting : c.frei0r) timeline += " " + Quote(setting);
  }
  const int total = kFrames * static_cast<int>(PluginCases().size());
  // PNG frames in RGB: melt's frames reach the file without a detour through YUV.
  const Outcome melt = RunMelt("-profile " + WriteProfile(dir) + timeline + " -consumer avformat:" + meltFrames +
                                   "/m%04d.png vcodec=png pix_fmt=rgb24 real_time=0",
                               FrameFile(meltFrames, 'm', total));
  ASSERT_TRUE(Exists(FrameFile(meltFrames, 'm', total))) << "melt wrote too few frames:\n" << melt.output;
  for (size_t k = 0; k < PluginCases().size(); ++k) {
    const PluginCase& c = PluginCases()[k];
    const std::string out = dir + "/" + std::to_string(k);
    std::string krl = "clip " + Quote(c.transition) + " --a " + dir + "/a.png --b " + dir + "/b.png --frames " +
                      std::to_string(kFrames) + " --quiet -o " + out + "/k%04d.png";
    for (const std::string& setting : c.krl) krl += " --set " + Quote(setting);
    std::filesystem::create_directories(out);
    const Outcome reference = Krl(krl);
    ASSERT_EQ(reference.exit, 0) << reference.output;
    for (int i = 0; i < kFrames; ++i) {
      // melt numbers its frames from 1, krl from 0.
      const emu::Frame got = cli::ReadImage(FrameFile(meltFrames, 'm', static_cast<int>(k) * kFrames + i + 1));
      const emu::Frame want = cli::ReadImage(FrameFile(out, 'k', i));
      ASSERT_TRUE(got.SameSize(want)) << c.transition << " frame " << i;
      size_t differing = 0;
      for (size_t p = 0; p < got.pixels.size(); ++p) differing += ((got.pixels[p] ^ want.pixels[p]) & 0xFFFFFF) != 0;
      EXPECT_EQ(differing, 0u) << c.transition << " " << testing::PrintToString(c.frei0r) << " frame " << i
                               << ": pixels differ in RGB";
    }
  }
}

}  // namespace
}  // namespace krl::test
