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

// Skips with the reason when melt cannot run these plug-ins here.
bool MeltCanRunThePlugins(std::string* why) {
#if !defined(__x86_64__)
  *why = "melt is a 64-bit program: it loads the x86-64 plug-ins, which the x64 build tests";
  return false;
#elif defined(KRL_SANITIZED)
  *why = "melt cannot load plug-ins built with sanitizers; the x64 build runs this test";
  return false;
#else
  if (Shell("command -v melt").exit == 0) return true;
  *why = "melt is not installed (scripts/setup.sh installs it): the plug-ins were not tried in melt";
  return false;
#endif
}

std::string Melt(const std::string& arguments) {
  return "FREI0R_PATH='" KRL_FREI0R_DIR "' melt -quiet " + arguments;
}

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

// A profile of kWidth x kHeight square pixels, 25 frames a second.
std::string WriteProfile(const std::string& dir) {
  const std::string path = dir + "/profile";
  WriteFile(path, "description=krl frei0r test\nframe_rate_num=25\nframe_rate_den=1\nwidth=" + std::to_string(kWidth) +
                      "\nheight=" + std::to_string(kHeight) +
                      "\nprogressive=1\nsample_aspect_num=1\nsample_aspect_den=1\ndisplay_aspect_num=" +
                      std::to_string(kWidth) + "\ndisplay_aspect_den=" + std::to_string(kHeight) + "\ncolorspace=709\n");
  return path;
}

TEST(Frei0rInMelt, EveryPluginIsListedWithItsParameters) {
  std::string why;
  if (!MeltCanRunThePlugins(&why)) GTEST_SKIP() << why;
  const Outcome list = Shell(Melt("-query transitions"));
  ASSERT_EQ(list.exit, 0) << list.output;
  for (const emu::DeclaredEffect& effect : Library().effects()) {
    const std::string file = std::filesystem::path(PluginPath(effect.DisplayName())).stem().string();
    EXPECT_NE(list.output.find("frei0r." + file + "\n"), std::string::npos) << file << " is not listed";
  }
  const Outcome wipe = Shell(Melt("-query transition=frei0r.krl_wipe"));
  for (const char* title : {"title: progress", "title: Direction", "title: Pen Color", "type: color"}) {
    EXPECT_NE(wipe.output.find(title), std::string::npos) << title << " in\n" << wipe.output;
  }
}

TEST(Frei0rInMelt, EveryFrameEqualsKrlsFrame) {
  std::string why;
  if (!MeltCanRunThePlugins(&why)) GTEST_SKIP() << why;
  const std::string dir = FreshFolder("frei0r_melt");
  cli::WritePng(emu::SampleClipA(kWidth, kHeight), dir + "/a.png");
  cli::WritePng(emu::SampleClipB(kWidth, kHeight), dir + "/b.png");
  const std::string profile = WriteProfile(dir), last = std::to_string(kFrames - 1);
  for (size_t k = 0; k < PluginCases().size(); ++k) {
    const PluginCase& c = PluginCases()[k];
    const std::string name = std::filesystem::path(PluginPath(c.transition)).stem().string();
    const std::string out = dir + "/" + std::to_string(k);
    std::filesystem::create_directories(out);
    std::string mixer = "-mixer frei0r." + name + " " + Quoted("progress=0=0;" + last + "=1");
    for (const std::string& setting : c.frei0r) mixer += " " + Quoted(setting);
    // PNG frames in RGB: melt's frames reach the file without a detour through YUV.
    const Outcome melt = Shell(Melt("-profile " + profile + " " + dir + "/a.png out=" + last + " " + dir +
                                    "/b.png out=" + last + " -mix " + std::to_string(kFrames) + " " + mixer +
                                    " -consumer avformat:" + out + "/m%04d.png vcodec=png pix_fmt=rgb24 real_time=0"));
    ASSERT_EQ(melt.exit, 0) << melt.output;
    std::string krl = "clip " + Quoted(c.transition) + " --a " + dir + "/a.png --b " + dir + "/b.png --frames " +
                      std::to_string(kFrames) + " --quiet -o " + out + "/k%04d.png";
    for (const std::string& setting : c.krl) krl += " --set " + Quoted(setting);
    const Outcome reference = Krl(krl);
    ASSERT_EQ(reference.exit, 0) << reference.output;
    for (int i = 0; i < kFrames; ++i) {
      char meltFile[32], krlFile[32];
      std::snprintf(meltFile, sizeof meltFile, "/m%04d.png", i + 1);  // melt numbers its frames from 1
      std::snprintf(krlFile, sizeof krlFile, "/k%04d.png", i);
      const emu::Frame got = cli::ReadImage(out + meltFile), want = cli::ReadImage(out + krlFile);
      ASSERT_TRUE(got.SameSize(want)) << name << " frame " << i;
      size_t differing = 0;
      for (size_t p = 0; p < got.pixels.size(); ++p) differing += ((got.pixels[p] ^ want.pixels[p]) & 0xFFFFFF) != 0;
      EXPECT_EQ(differing, 0u) << c.transition << " " << testing::PrintToString(c.frei0r) << " frame " << i
                               << ": pixels differ in RGB";
    }
  }
}

}  // namespace
}  // namespace krl::test
