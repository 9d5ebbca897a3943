#!/usr/bin/env bash
# Builds the library, the emulator, krl and the tests for both ABIs:
# build/i386 (the shipping build) and build/x64.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)
for abi in i386 x64; do
  cmake --preset "$abi" >/dev/null
  cmake --build --preset "$abi" -j "$jobs"
done
