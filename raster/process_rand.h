// Draws of the process-wide rand() without a call, and a lock, per draw.
//
// The C library's default rand() is an additive generator over 31 words,
// x[n] = x[n - 31] + x[n - 3] (mod 2^32), each draw x[n] >> 1, and its whole
// state can be read and written through setstate(). A ProcessRand takes that
// state over when it is made, draws from its own copy, and hands the state
// back when it goes: rand() then goes on exactly as if every draw had been a
// call to it. A transition that makes a million draws for one frame pays a
// nanosecond for each instead of a locked call.
//
// Where the state cannot be taken over (a C library of another kind, or a
// generator of another size chosen with initstate()), every draw is a plain
// rand() call, with the same numbers.
//
// While one lives, nothing else may draw from rand(): the transitions that
// draw already keep their renders from overlapping.
#pragma once

#include <cstddef>
#include <cstdint>

namespace krl {

class ProcessRand {
 public:
  ProcessRand();
  ~ProcessRand();
  ProcessRand(const ProcessRand&) = delete;
  ProcessRand& operator=(const ProcessRand&) = delete;

  // The next draw, 0 .. 2147483647, as rand() would return it.
  int32_t Next() {
    if (next_ == kBlock) return NextOfNewBlock();
    return static_cast<int32_t>(words_[kLag + next_++] >> 1);
  }

  // False where every draw is a rand() call (kept for the tests).
  bool TookState() const { return libraryState_ != nullptr; }

 private:
  static constexpr size_t kLag = 31;    // the generator's degree
  static constexpr size_t kBlock = 256;  // words formed at once

  int32_t NextOfNewBlock();

  // words_[0 .. kLag) are the kLag words formed before the block, words_[kLag
  // + i] the block's word i; next_ counts the block's words used. Before the
  // first block the taken-over words stand where a block's last ones would.
  uint32_t words_[kLag + kBlock];
  size_t next_ = kBlock;
  int32_t* libraryState_ = nullptr;  // the library's state words, header first
};

}  // namespace krl
