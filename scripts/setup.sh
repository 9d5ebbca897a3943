#!/usr/bin/env bash
# Installs what building and testing need on a Debian 12 machine, and only
# what is missing. Safe to run again. ffmpeg is the program krl hands video
# to (it is not linked); chromium tests the gallery page headless; clang
# builds the fuzzers; Google Benchmark the benchmark.
set -euo pipefail

packages=(cmake make g++ g++-multilib googletest libstb-dev libbenchmark-dev clang libclang-rt-14-dev
          ffmpeg chromium)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "setup: installing ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup: need root (or sudo) to install ${missing[*]}" >&2; exit 1; }
  sudo=sudo
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
