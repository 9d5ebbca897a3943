// The contract every render keeps, checked on every declared transition:
// the pixel-size refusal, the TransType exchange in the record, empty frames,
// the test profiles; and renders of transitions that keep nothing but locals
// may run at once on separate instances and frames (under ThreadSanitizer
// this finds races; in every build concurrent frames equal sequential ones).
#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

#include "cli/fields.h"
#include "emulator/test_profile.h"
#include "test_support.h"

namespace krl::test {
namespace {

constexpr int32_t kW = 23, kH = 17;
constexpr uint32_t kSentinel = 0x5A5A5A5A;
constexpr unsigned kRandSeed = 1977;

class EveryTransition : public testing::TestWithParam<std::string> {
 protected:
  const emu::DeclaredEffect& effect() const { return Effect(Library(), GetParam()); }
  emu::Frame a_ = emu::SampleClipA(kW, kH);
  emu::Frame b_ = emu::SampleClipB(kW, kH);
};

std::vector<std::string> EffectNames() {
  std::vector<std::string> names;
  for (const emu::DeclaredEffect& e : Library().effects()) names.push_back(e.name);
  return names;
}

// Frames of another pixel size are refused before anything is exchanged or
// drawn; frames of no pixels draw nothing.
TEST_P(EveryTransition, TouchesNothingInFramesItCannotDraw) {
  for (const int32_t bits : {24, 16, 8, 0, 64, -32}) {
    emu::Instance instance(Library(), effect());
    instance.SetValue("TransType", 1);
    emu::Frame out = Filled(kW, kH, kSentinel);
    EXPECT_EQ(instance.Render(a_.Bytes(), b_.Bytes(), out.Bytes(), kW, kH, 0.5, bits), 0) << bits;
    EXPECT_EQ(instance.reportedErrors(), std::vector<std::string>{"Unsupported pixel size"}) << bits;
    EXPECT_EQ(out.pixels, Filled(kW, kH, kSentinel).pixels) << bits;
    EXPECT_EQ(instance.record().InputA, a_.Bytes()) << "inputs exchanged before the check, " << bits;
    EXPECT_EQ(instance.record().InputB, b_.Bytes()) << bits;
    EXPECT_TRUE(instance.diagnostics().empty());
  }
  for (const auto& [w, h] : {std::pair{0, 0}, {0, 5}, {5, 0}, {-3, 4}, {4, -3}, {INT32_MIN, INT32_MIN}}) {
    emu::Instance instance(Library(), effect());
    uint32_t guard[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    const uint8_t* in = reinterpret_cast<const uint8_t*>(guard);
    EXPECT_EQ(instance.Render(in, in, reinterpret_cast<uint8_t*>(guard), w, h, 0.5), 1);
    for (uint32_t word : guard) EXPECT_EQ(word, kSentinel) << w << "x" << h;
  }
}

TEST_P(EveryTransition, TransTypeExchangesTheRecordAndAReusedRecordExchangesBack) {
  if (emu::ProfileOf(effect()).exchangesInLocals) GTEST_SKIP() << "exchanges in locals only";
  emu::Instance plain(Library(), effect());
  emu::Frame straight(kW, kH);
  std::srand(kRandSeed);  // the same sparkle for transitions that draw from rand()
  ASSERT_EQ(plain.Render(a_, b_, straight, 0.25), 1);

  emu::Instance swapped(Library(), effect());
  swapped.SetValue("TransType", 1);
  emu::Frame out(kW, kH);
  ASSERT_EQ(swapped.Render(a_, b_, out, 0.25), 1);
  EXPECT_EQ(swapped.record().InputA, b_.Bytes());
  EXPECT_EQ(swapped.record().InputB, a_.Bytes());

  // Rendered from the record as the library left it, the pointers go back.
  std::srand(kRandSeed);
  ASSERT_EQ(swapped.RenderAgain(), 1);
  EXPECT_EQ(swapped.record().InputA, a_.Bytes());
  EXPECT_EQ(swapped.record().InputB, b_.Bytes());
  EXPECT_EQ(out.pixels, straight.pixels);
  EXPECT_TRUE(swapped.diagnostics().empty());
}

TEST_P(EveryTransition, InitSetsTransTypeFirstAndReadsOnlyDeclaredFields) {
  emu::Instance instance(Library(), effect());
  EXPECT_EQ(instance.initResult(), 1);
  EXPECT_EQ(instance.Value("TransType"), 0);
  emu::Frame out(kW, kH);
  instance.Render(a_, b_, out, 0.5);
  EXPECT_TRUE(instance.diagnostics().empty()) << instance.diagnostics().front();
  // An index left at 0 by the declaration reaches the host's field 0: only
  // where the transition's own description reads one.
  if (!emu::ProfileOf(effect()).readsFieldZero) {
    EXPECT_TRUE(instance.fieldZeroCalls().empty()) << instance.fieldZeroCalls().front();
  } else {
    EXPECT_FALSE(instance.fieldZeroCalls().empty()) << "its profile says it reads field 0";
  }
}

// What the tests know of a transition comes from one line of its module; a
// transition without one, or a line naming no transition or an unknown
// field, fails here rather than leaving a case out silently. Where the line
// says a setting draws nothing, the frame stays as it was.
TEST_P(EveryTransition, StatesOneTestProfileWhoseSettingsApply) {
  int stated = 0;
  for (const emu::NamedProfile& p : emu::AllProfiles()) stated += p.displayName == effect().DisplayName();
  ASSERT_EQ(stated, 1) << "KR_TEST_PROFILE lines for " << effect().DisplayName();
  const emu::TestProfile& profile = emu::ProfileOf(effect());
  std::vector<std::vector<std::string>> settings = profile.drawsNothingWith;
  settings.push_back(profile.heavier);
  for (const std::vector<std::string>& setting : settings) {
    emu::Instance instance(Library(), effect());
    for (const std::string& s : setting) EXPECT_NO_THROW(cli::ApplySetting(instance, s)) << s;
    if (&setting == &settings.back()) break;
    emu::Frame out = Filled(kW, kH, kSentinel);
    ASSERT_EQ(instance.Render(a_, b_, out, 0.5), 1);
    EXPECT_EQ(out.pixels, Filled(kW, kH, kSentinel).pixels) << testing::PrintToString(setting);
  }
}

TEST(TestProfiles, EachNamesADeclaredTransition) {
  for (const emu::NamedProfile& p : emu::AllProfiles()) {
    EXPECT_NE(Library().FindEffect(p.displayName), nullptr) << p.displayName;
  }
}

INSTANTIATE_TEST_SUITE_P(Library, EveryTransition, testing::ValuesIn(EffectNames()));

TEST(Threads, ConcurrentRendersOnSeparateInstancesMatchSequentialOnes) {
  const emu::Host& host = Library();
  constexpr int kThreads = 4;
  constexpr int32_t w = 96, h = 54;
  const emu::Frame a = emu::SampleClipA(w, h), b = emu::SampleClipB(w, h);
  for (const emu::DeclaredEffect& effect : host.effects()) {
    if (emu::ProfileOf(effect).sharedState) continue;  // module state or rand(): one at a time
    std::vector<emu::Frame> expected, outs;
    for (int t = 0; t < kThreads; ++t) {
      emu::Instance instance(host, effect);
      expected.emplace_back(w, h);
      instance.Render(a, b, expected.back(), 0.2 * t + 0.1);
      outs.emplace_back(w, h);
    }
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        emu::Instance instance(host, effect);
        for (int repeat = 0; repeat < 3; ++repeat) instance.Render(a, b, outs[t], 0.2 * t + 0.1);
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (int t = 0; t < kThreads; ++t) EXPECT_EQ(outs[t].pixels, expected[t].pixels) << effect.name << " thread " << t;
  }
}

}  // namespace
}  // namespace krl::test
