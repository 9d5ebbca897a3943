// Draws taken over from the process-wide rand(): the same numbers as rand()
// calls, and rand() goes on afterwards as if each had been a call, whichever
// generator the process chose and wherever a block of draws ends.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "raster/process_rand.h"

namespace krl {
namespace {

// What rand() gives for `count` draws from where it stands now, leaving it
// where it stood (the generator's words are set aside and put back).
std::vector<int32_t> CallsFromHere(size_t count) {
  int32_t stand[32] = {3};
  char* current = setstate(reinterpret_cast<char*>(stand));  // only to learn which words rand() uses
  setstate(current);
  int32_t header;
  std::memcpy(&header, current, sizeof header);
  constexpr size_t kWordsOfKind[] = {2, 8, 16, 32, 64};  // the header, then the words of each kind
  const size_t bytes = 4 * kWordsOfKind[header % 5];
  char copy[256];
  std::memcpy(copy, current, bytes);
  std::vector<int32_t> draws(count);
  for (int32_t& d : draws) d = std::rand();
  setstate(reinterpret_cast<char*>(stand));  // away first: a switch writes the header it leaves
  std::memcpy(current, copy, bytes);
  setstate(current);
  return draws;
}

struct Generator {
  const char* name;
  size_t stateBytes;  // 0: the process's own, after srand
  bool takenOver;
};

class ProcessRandTest : public ::testing::TestWithParam<Generator> {
 protected:
  void SetUp() override {
    if (GetParam().stateBytes == 0) {
      std::srand(2002);
    } else {
      previous_ = initstate(2002, own_, GetParam().stateBytes);
    }
  }
  void TearDown() override {
    if (previous_ != nullptr) setstate(previous_);
  }

 private:
  alignas(8) char own_[256] = {};
  char* previous_ = nullptr;
};

TEST_P(ProcessRandTest, DrawsWhatRandWouldAndHandsTheStateBack) {
  for (size_t count : {size_t{0}, size_t{1}, size_t{30}, size_t{31}, size_t{255}, size_t{256}, size_t{257},
                       size_t{1000}}) {
    const std::vector<int32_t> expected = CallsFromHere(count + 40);
    {
      ProcessRand draws;
      EXPECT_EQ(draws.TookState(), GetParam().takenOver);
      for (size_t i = 0; i < count; ++i) ASSERT_EQ(draws.Next(), expected[i]) << count << " draws, draw " << i;
    }
    for (size_t i = count; i < count + 40; ++i) ASSERT_EQ(std::rand(), expected[i]) << count << " draws, call " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Generators, ProcessRandTest,
                         ::testing::Values(Generator{"AfterSrand", 0, true}, Generator{"OwnWordsOfTheSameKind", 128, true},
                                           Generator{"SevenWords", 32, false}, Generator{"SixtyThreeWords", 256, false},
                                           Generator{"Congruential", 8, false}),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace krl
