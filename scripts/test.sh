#!/usr/bin/env bash
# Every test: installs what is missing, builds both ABIs and runs both suites
# (the x86-64 suite also checks that the two builds render identical frames,
# the golden digests and that the benchmark runs), then the suite under the
# sanitizers, then each fuzz target for a short while.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh
jobs=$(nproc 2>/dev/null || echo 2)
for abi in i386 x64; do
  echo "== tests, $abi build"
  ctest --preset "$abi" -j "$jobs"
done
scripts/sanitize.sh
scripts/fuzz.sh 30
