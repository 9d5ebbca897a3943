// A 64-bit digest of a frame's bytes (FNV-1a), to notice any changed pixel.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "emulator/frame.h"

namespace krl::emu {

inline uint64_t Digest(const uint8_t* bytes, size_t count) {
  uint64_t h = 0xcbf29ce484222325ull;
  for (size_t i = 0; i < count; ++i) h = (h ^ bytes[i]) * 0x100000001b3ull;
  return h;
}

inline std::string DigestText(const Frame& frame) {
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(Digest(frame.Bytes(), frame.ByteCount())));
  return text;
}

}  // namespace krl::emu
