// Scratch memory for one render, taken with malloc: a failed allocation is a
// null pointer the render can step around, never an exception thrown into
// the host (the library is built without exceptions).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace krl {

struct ScratchFree {
  void operator()(void* p) const { std::free(p); }
};

template <typename T>
using Scratch = std::unique_ptr<T[], ScratchFree>;

// Null when `count` elements cannot be had: no object can exceed
// PTRDIFF_MAX bytes, so larger requests are not even made.
template <typename T>
Scratch<T> AllocateScratch(size_t count) {
  if (count > static_cast<size_t>(PTRDIFF_MAX) / sizeof(T)) return nullptr;
  return Scratch<T>(static_cast<T*>(std::malloc(count * sizeof(T))));
}

}  // namespace krl
