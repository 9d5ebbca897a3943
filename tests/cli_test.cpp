// krl as a user runs it: a rendered PNG checked byte for byte, and a clear
// message with a non-zero exit for every mistake.
#include <gtest/gtest.h>

#include <cstdio>

#include "cli/image_io.h"
#include "cli_run.h"
#include "test_support.h"

namespace krl::test {
namespace {

TEST(Cli, RendersTraditionalFadeExactlyFromTheBuiltInClips) {
  const std::string png = testing::TempDir() + "/krl_fade.png";
  const Outcome r = Krl("render \"Traditional Fade\" --progress 0.25 -o " + png);
  ASSERT_EQ(r.exit, 0) << r.output;
  const emu::Frame out = cli::ReadImage(png);
  const emu::Frame a = emu::SampleClipA(out.width, out.height), b = emu::SampleClipB(out.width, out.height);
  ASSERT_EQ(out.ByteCount(), a.ByteCount());
  for (size_t i = 0; i < out.ByteCount(); ++i) {
    ASSERT_EQ(out.Bytes()[i], (a.Bytes()[i] * 192 + b.Bytes()[i] * 64) >> 8) << "byte " << i;
  }
  std::remove(png.c_str());
}

TEST(Cli, ListsAndDescribesTransitions) {
  const Outcome list = Krl("list");
  EXPECT_EQ(list.exit, 0);
  for (const char* text : {"Traditional Fade  (Transitions/Dissolve/Traditional Fade)", "Progression    Alpha",
                           "default curve (0, 0) (0.5, 0.5) (1, 1)", "items: 0 \"Image 1 > Image 2\""}) {
    EXPECT_NE(list.output.find(text), std::string::npos) << text << "\n" << list.output;
  }
  const Outcome info = Krl("info traditionalfade");
  EXPECT_EQ(info.exit, 0);
  EXPECT_NE(info.output.find("Allows to adjust the fade's progression."), std::string::npos);
}

TEST(Cli, LoadsTheLibraryOfItsOwnBuildFromBesideItself) {
  const Outcome beside = Shell(std::string("env -u KRL_LIBRARY ") + KRL_CLI_PATH + " list");
  EXPECT_EQ(beside.exit, 0) << beside.output;
  EXPECT_NE(beside.output.find(std::string(" in ") + KRL_LIBRARY_PATH + "\n"), std::string::npos)
      << beside.output;
  const Outcome named = Shell(std::string("KRL_LIBRARY=") + KRL_TEST_PLUGIN_PATH + " " + KRL_CLI_PATH + " list");
  EXPECT_NE(named.output.find("1 transition in " + std::string(KRL_TEST_PLUGIN_PATH)), std::string::npos)
      << named.output;
}

TEST(Cli, SaysWhatIsWrongAndWritesNothing) {
  const std::string dir = FreshFolder("render_errors"), out = dir + "/never.png";
  const std::string render = "render \"Traditional Fade\" --progress 0.5 -o " + out + " ";
  const std::string notLibrary = testing::TempDir() + "/krl_not_a_library.so";
  WriteFile(notLibrary, "not a shared object\n");
  const struct {
    std::string arguments;
    int exit;
    std::string message;
  } rows[] = {
      {"render Nothing --progress 0.5 -o " + out, 1, "no transition is called \"Nothing\"; there are: "},
      {render + "--set Bogus=1", 1, "has no field \"Bogus\"; its fields are TransType, Progression"},
      {render + "--set TransType=7", 1, "is no item of TransType; its items are 0 \"Image 1 > Image 2\""},
      {render + "--set Progression=fast", 1, "Progression takes a number"},
      {render + "--set Progression", 1, "--set takes KEY=VALUE"},
      {render + "--a /nonexistent/a.png", 1, "cannot read /nonexistent/a.png"},
      {render + "--size 0x10", 2, "--size takes WIDTHxHEIGHT"},
      {"render \"Traditional Fade\" -o " + out, 2, "needs --progress"},
      {"render \"Traditional Fade\" --progress x -o " + out, 2, "--progress takes a number"},
      {"render \"Traditional Fade\" --progress 0.5 -o /nonexistent/dir/out.png", 1, "cannot write /nonexistent/dir/out.png"},
      {"frobnicate", 2, "unknown command \"frobnicate\""},
      {"--library /nonexistent/lib.so list", 1, "cannot load /nonexistent/lib.so"},
      {"--library " + notLibrary + " list", 1, "cannot load " + notLibrary},
      {std::string("--library ") + KRL_TEST_PLUGIN_PATH + " info Fade", 1, "no transition is called \"Fade\"; there are: Kinds"},
      {std::string("--library ") + KRL_GARBLED_PLUGIN_PATH + " list", 1, "declares what the host cannot run"},
      {render + "--curve Progression=0:0,x", 1, "Progression takes points POSITION:VALUE"},
      {render + "--curve TransType=0:1", 1, "TransType is no curve; the curves of Traditional Fade are Progression"},
  };
  for (const auto& row : rows) {
    const Outcome r = Krl(row.arguments);
    EXPECT_EQ(r.exit, row.exit) << row.arguments << "\n" << r.output;
    if (row.exit == 1) {
      EXPECT_EQ(r.output.find('\n'), r.output.size() - 1) << "one line: " << r.output;
    }
    EXPECT_NE(r.output.find(row.message), std::string::npos) << row.arguments << "\n" << r.output;
    EXPECT_FALSE(Exists(out)) << row.arguments;
  }
  EXPECT_TRUE(Leftovers(dir).empty());
}

TEST(Cli, RendersWithTheFieldsAndCurvesGiven) {
  const std::string png = testing::TempDir() + "/krl_fields.png";
  const std::vector<std::string> settings{"transition=\"image 2 > image 1\""}, curves{"Progression=0:0,1:0.5"};
  const Outcome r = Krl("render \"Traditional Fade\" --progress 0.5 --size 40x30 --set " + settings[0] + " --curve " +
                    curves[0] + " -o " + png);
  ASSERT_EQ(r.exit, 0) << r.output;
  EXPECT_EQ(cli::ReadImage(png).pixels,
            Expected("Traditional Fade", 40, 30, 0, 0.5, {"TransType=Image 2 > Image 1"}, curves).pixels);
  std::remove(png.c_str());
}

TEST(Cli, ScalesAnInputOfAnotherSizeAndSaysSo) {
  const std::string small = testing::TempDir() + "/krl_small.png", out = testing::TempDir() + "/krl_scaled.png";
  cli::WritePng(emu::SampleClipB(32, 18), small);
  const Outcome r = Krl("render \"Traditional Fade\" --progress 1 --size 64x36 --b " + small + " -o " + out);
  ASSERT_EQ(r.exit, 0) << r.output;
  EXPECT_NE(r.output.find("scaled " + small + " from 32x18 to 64x36"), std::string::npos) << r.output;
  EXPECT_EQ(cli::ReadImage(out).pixels, cli::Scale(cli::ReadImage(small), 64, 36).pixels);
  std::remove(small.c_str());
  std::remove(out.c_str());
}

}  // namespace
}  // namespace krl::test
