// Renders of transitions that keep nothing but locals may run at once on
// separate instances and frames. Run under ThreadSanitizer this finds races;
// in every build it checks that concurrent frames equal sequential ones.
#include <gtest/gtest.h>

#include <thread>

#include "emulator/test_profile.h"
#include "test_support.h"

namespace krl::test {
namespace {

TEST(Threads, ConcurrentRendersOnSeparateInstancesMatchSequentialOnes) {
  const emu::Host& host = Library();
  constexpr int kThreads = 4;
  constexpr int32_t kW = 96, kH = 54;
  const emu::Frame a = emu::SampleClipA(kW, kH), b = emu::SampleClipB(kW, kH);
  for (const emu::DeclaredEffect& effect : host.effects()) {
    if (emu::ProfileOf(effect).sharedState) continue;  // module state or rand(): one at a time
    std::vector<emu::Frame> expected, outs;
    for (int t = 0; t < kThreads; ++t) {
      emu::Instance instance(host, effect);
      expected.emplace_back(kW, kH);
      instance.Render(a, b, expected.back(), 0.2 * t + 0.1);
      outs.emplace_back(kW, kH);
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
