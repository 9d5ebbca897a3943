#!/usr/bin/env bash
# Installs what building and testing need on a Debian 12 machine, and only
# what is missing. Safe to run again. ffmpeg is the program krl hands video
# to (it is not linked); chromium tests the gallery page headless; clang
# builds the fuzzers; Google Benchmark the benchmark, for each ABI (the i386
# one from Debian's i386 architecture, installed beside the amd64 one); melt
# and the frei0r header the frei0r plug-ins and their test in a real client.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(cmake make g++ g++-multilib googletest libstb-dev libbenchmark-dev libbenchmark-dev:i386 clang libclang-rt-14-dev
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
  if [[ " ${missing[*]}" == *:i386* ]] && ! dpkg --print-foreign-architectures | grep -qx i386; then
    $sudo dpkg --add-architecture i386
  fi
  # A list that fails to download (a mirror in mid-sync) leaves the older one;
  # a package that is then really missing still stops the install below.
  $sudo apt-get update -qq || echo "setup: some package lists did not update; going on with those at hand" >&2
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
$sudo scripts/i386-runner.sh --install
