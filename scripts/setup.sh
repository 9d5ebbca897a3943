#!/usr/bin/env bash
# Installs what building and testing need on a Debian 12 machine, and only
# what is missing. Safe to run again. ffmpeg is the program krl hands video
# to (it is not linked); chromium tests the gallery page headless; clang
# builds the fuzzers; Google Benchmark the benchmark.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(cmake make g++ g++-multilib googletest libstb-dev libbenchmark-dev clang libclang-rt-14-dev
          ffmpeg chromium melt frei0r-plugins-dev)
# A kernel without 32-bit user mode cannot start the i386 build's programs;
# there they run under user-mode emulation (see scripts/i386-runner.sh).
scripts/i386-runner.sh --check || packages+=(qemu-user)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo=sudo; fi
if [ ${#missing[@]} -ne 0 ]; then
  echo "setup: installing ${missing[*]}"
  if [ -n "$sudo" ] && ! command -v sudo >/dev/null; then
    echo "setup: need root (or sudo) to install ${missing[*]}" >&2; exit 1
  fi
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
$sudo scripts/i386-runner.sh --install
