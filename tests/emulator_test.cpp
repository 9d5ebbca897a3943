// The host emulator itself: curves, the instance lifecycle, and the calls it
// reports as wrong, so that tests built on it can be trusted.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "test_support.h"

namespace krl::test {
namespace {

TEST(Emulator, CurvesAreStraightBetweenPointsAndFlatBeyond) {
  const std::vector<emu::CurvePoint> fade = {{0.0, 0.0}, {0.5, 0.5}, {1.0, 1.0}};
  const std::vector<emu::CurvePoint> bump = {{0.2, 1.0}, {0.4, 3.0}, {0.4, -1.0}, {0.8, 0.0}};
  const struct {
    const std::vector<emu::CurvePoint>* points;
    double position, value;
  } rows[] = {
      {&fade, 0.25, 0.25}, {&fade, 0.75, 0.75}, {&fade, -1.0, 0.0}, {&fade, 2.0, 1.0},
      {&bump, 0.0, 1.0},   {&bump, 0.3, 2.0},   {&bump, 0.4, -1.0}, {&bump, 0.6, -0.5}, {&bump, 0.9, 0.0},
  };
  for (const auto& row : rows) EXPECT_DOUBLE_EQ(emu::EvaluateCurve(*row.points, row.position), row.value) << row.position;
  EXPECT_EQ(emu::EvaluateCurve({}, 0.5), 0.0);
  EXPECT_TRUE(std::isnan(emu::EvaluateCurve(fade, std::numeric_limits<double>::quiet_NaN())));
}

TEST(Emulator, InsertedPointsKeepPositionOrder) {
  std::vector<emu::CurvePoint> points;
  for (double p : {0.5, 0.0, 1.0, 0.5}) emu::InsertCurvePoint(points, {p, p * 10 + points.size()});
  ASSERT_EQ(points.size(), 4u);
  EXPECT_EQ(points[0].position, 0.0);
  EXPECT_EQ(points[1].value, 5.0);  // the earlier of the two points at 0.5 comes first
  EXPECT_EQ(points[2].value, 8.0);
  EXPECT_EQ(points[3].position, 1.0);
}

TEST(Emulator, InstanceRunsInitRenderAndTheUserDataDeleter) {
  const auto host = LoadFresh(KRL_TEST_PLUGIN_PATH);
  const emu::DeclaredEffect& e = Effect(*host, "Kinds");
  {
    emu::Instance instance(*host, e);
    EXPECT_EQ(instance.initResult(), 1);
    EXPECT_EQ(instance.Value("Mode"), 10);
    EXPECT_EQ(instance.Value("Count"), 3);
    EXPECT_EQ(instance.Value("Flag"), 1);
    const KrColor tint = instance.Color("Tint");
    EXPECT_EQ((std::vector<int>{tint.Blue, tint.Green, tint.Red, tint.Alpha}), (std::vector<int>{170, 171, 172, 255}));
    ASSERT_EQ(instance.Curve("Amount").size(), 1u);
    EXPECT_EQ(instance.Curve("Amount")[0].value, 0.125);
    ASSERT_NE(instance.userData(), nullptr);

    const emu::Frame a = emu::SampleClipA(8, 4), b = emu::SampleClipB(8, 4);
    emu::Frame out(8, 4);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(instance.Render(a, b, out, 0.5), 1);
    EXPECT_EQ(out.pixels, a.pixels);
    const int32_t* renders = *static_cast<int32_t* const*>(instance.userData());
    EXPECT_EQ(*renders, 3);
    EXPECT_TRUE(instance.diagnostics().empty());
  }  // the deleter frees the user data here; the leak checks see it
}

TEST(Emulator, ReportsCallsWithWrongFieldsAndUnusedSlots) {
  const emu::Host& host = Library();
  emu::Instance fade(host, Effect(host, "Traditional Fade"));
  auto* ri = const_cast<t_KrRenderInfo*>(&fade.record());
  const int32_t progression = fade.effect().Field("Progression")->index;
  host.table().GetFieldValue(ri, 12345, 0);
  host.table().GetFieldValue(ri, progression, 0);  // a curve read as a value
  KrColor color{};
  host.table().GetColorValue(ri, progression, 0, &color, 0.0);
  ASSERT_EQ(fade.diagnostics().size(), 3u);
  EXPECT_NE(fade.diagnostics()[0].find("12345"), std::string::npos);
  EXPECT_NE(fade.diagnostics()[1].find("\"Progression\" of kind Alpha"), std::string::npos);

  const int before = emu::UnexpectedSlotCalls();
  reinterpret_cast<const KrUnusedSlot*>(&host.table())[3]();
  EXPECT_EQ(emu::UnexpectedSlotCalls(), before + 1);
}

// An index no statement assigned stays 0; the host keeps a value for its
// field 0 and answers with it, and the emulator lists such calls apart.
TEST(Emulator, AnswersAnUndeclaredIndexZeroForTheHostsFieldZero) {
  const emu::Host& host = Library();
  emu::Instance fade(host, Effect(host, "Traditional Fade"));
  auto* ri = const_cast<t_KrRenderInfo*>(&fade.record());
  host.table().SetFieldDefault(ri, 0, 0, 3);
  EXPECT_EQ(host.table().GetFieldValue(ri, 0, 0), 3);
  EXPECT_TRUE(fade.diagnostics().empty());
  EXPECT_EQ(fade.fieldZeroCalls(), (std::vector<std::string>{"SetFieldDefault(field 0)", "GetFieldValue(field 0)"}));
  EXPECT_EQ(fade.defaultsSet().back(), "SetFieldDefault(field 0, 3)");
}

TEST(Emulator, FindsEffectsByAnyOfTheirNames) {
  const emu::Host& host = Library();
  for (const char* name : {"Traditional Fade", "traditionalfade", "Transitions/Dissolve/Traditional Fade",
                           "Traditional Fade (ZE plug-in SDK effect)"}) {
    ASSERT_NE(host.FindEffect(name), nullptr) << name;
    EXPECT_EQ(host.FindEffect(name)->name, "Transitions/Dissolve/Traditional Fade");
  }
  EXPECT_EQ(host.FindEffect("Fade"), nullptr);
}

TEST(Emulator, RefusesLibrariesItCannotLoad) {
  std::string error;
  EXPECT_EQ(emu::Host::Load("/nonexistent/libnothing.so", &error), nullptr);
  EXPECT_NE(error.find("cannot load"), std::string::npos);
  EXPECT_EQ(emu::Host::Load("libc.so.6", &error), nullptr);  // loads, but declares nothing
}

TEST(Emulator, TextsRoundTripBetweenUtf8AndUtf16) {
  for (const std::string text : {"Input A", "\xC3\x9C" "bergang", "\xE2\x86\x92", "\xF0\x9F\x8E\xAC"}) {
    EXPECT_EQ(emu::Utf16ToUtf8(emu::Utf8ToUtf16(text)), text);
  }
  EXPECT_EQ(emu::Utf8ToUtf16("\xF0\x9F\x8E\xAC").size(), 2u);  // a surrogate pair
}

}  // namespace
}  // namespace krl::test
