#!/usr/bin/env bash
# Installs what is missing, builds both ABIs and runs every test of both;
# the x86-64 suite also checks that the two builds render identical frames.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh
status=0
for abi in i386 x64; do
  echo "== tests, $abi build"
  ctest --preset "$abi" -j "$(nproc 2>/dev/null || echo 2)" || status=1
done
exit $status
