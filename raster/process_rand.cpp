// The process-wide rand() drawn in blocks (see process_rand.h).
#include "raster/process_rand.h"

#include <emmintrin.h>

#include <cstdlib>
#include <cstring>

namespace krl {
namespace {

// The state words setstate() takes: a header, then the generator's words. The
// header is 5 * rear + kind, where rear is the index of x[n - 3] (the word
// added to the front one, x[n - 31], which x[n] replaces) and kind 3 is the
// default generator of 31 words, whose front lies 3 words after the rear.
constexpr int32_t kKinds = 5;
constexpr int32_t kDefaultKind = 3;
constexpr int32_t kDegree = 31;
constexpr int32_t kSeparation = 3;

// A state of the default kind that rand() may use for an instant while the
// library's own words are read or written.
struct Stand {
  int32_t words[kDegree + 1] = {kDefaultKind};
  char* Bytes() { return reinterpret_cast<char*>(words); }
};

}  // namespace

ProcessRand::ProcessRand() {
#ifdef __GLIBC__
  Stand stand;
  char* previous = setstate(stand.Bytes());  // writes the library's header
  if (previous == nullptr) return;
  auto* state = reinterpret_cast<int32_t*>(previous);
  setstate(previous);
  const int32_t header = state[0];
  if (header < 0 || header % kKinds != kDefaultKind || header / kKinds >= kDegree) return;
  const int32_t front = (header / kKinds + kSeparation) % kDegree;  // where x[n - 31] stands
  for (int32_t k = 0; k < kDegree; ++k) words_[kBlock + k] = static_cast<uint32_t>(state[1 + (front + k) % kDegree]);
  libraryState_ = state;
#endif
}

ProcessRand::~ProcessRand() {
#ifdef __GLIBC__
  if (libraryState_ == nullptr) return;
  Stand stand;
  char* previous = setstate(stand.Bytes());
  if (previous != reinterpret_cast<char*>(libraryState_)) {
    // Someone gave rand() other words meanwhile: theirs stay.
    if (previous != nullptr) setstate(previous);
    return;
  }
  // x[n - 31 + k] at word k: the front at 0, so the rear at 31 - 3.
  for (size_t k = 0; k < kLag; ++k) libraryState_[1 + k] = static_cast<int32_t>(words_[next_ + k]);
  libraryState_[0] = kKinds * (kDegree - kSeparation) + kDefaultKind;
  setstate(previous);
#endif
}

int32_t ProcessRand::NextOfNewBlock() {
  if (libraryState_ == nullptr) return std::rand();
  std::memmove(words_, words_ + kBlock, kLag * sizeof(uint32_t));
  // Three words at a time: x[n .. n + 2] from x[n - 31 .. n - 29], long
  // stored, and x[n - 3 .. n - 1], the last three formed, kept in a
  // register. The fourth lane forms nothing of use; the word it stores is
  // formed again by the next three.
  __m128i recent = _mm_loadu_si128(reinterpret_cast<const __m128i*>(words_ + kLag - 3));
  size_t i = kLag;
  for (; i + 4 <= kLag + kBlock; i += 3) {
    recent = _mm_add_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(words_ + i - kLag)), recent);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words_ + i), recent);
  }
  // The last words one by one, x[n - 3 .. n - 1] in registers.
  uint32_t back3 = words_[i - 3], back2 = words_[i - 2], back1 = words_[i - 1];
  for (; i < kLag + kBlock; ++i) {
    const uint32_t x = words_[i - kLag] + back3;
    words_[i] = x;
    back3 = back2;
    back2 = back1;
    back1 = x;
  }
  next_ = 0;
  return static_cast<int32_t>(words_[kLag + next_++] >> 1);
}

}  // namespace krl
