#!/usr/bin/env bash
# Builds the benchmark for both ABIs, runs one after the other (so that they
# do not compete for the cores) and prints their tables side by side: the
# median milliseconds per frame over a sweep of Progress, and the ratio to
# the read-two-write-one floor that each build measured in its own run.
#   scripts/bench.sh                           # every case
#   scripts/bench.sh --benchmark_filter=Fade   # Google Benchmark's flags pass through
# Each build's JSON, table and console output land in build/bench/<abi>.* (or in
# $KRL_BENCH_OUT).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)
out=${KRL_BENCH_OUT:-build/bench}
mkdir -p "$out"
for abi in i386 x64; do
  cmake --preset "$abi" >/dev/null
  cmake --build --preset "$abi" -j "$jobs" --target krl_bench >&2
  echo "== benchmark, $abi build" >&2
  build/$abi/bin/krl_bench --quiet-table --out "$out/$abi.json" --table "$out/$abi.tsv" "$@" >"$out/$abi.log"
done

scripts/machine.sh
awk -F'\t' '
  FNR == 1 { title[FILENAME] = substr($0, 3); next }
  FILENAME == ARGV[1] { order[++n] = $1; ms32[$1] = $2; x32[$1] = $4; next }
  { ms64[$1] = $2; x64[$1] = $4 }
  END {
    for (f in title) if (title[f] ~ /emulator/) print "NOTE: " title[f]
    printf "%-50s %21s   %21s\n", "", "--- i386 build ---", "-- x86-64 build --"
    printf "%-50s %10s %10s   %10s %10s %9s\n", "transition / size / setting", "ms/frame", "x floor", "ms/frame", "x floor", "i386/x64"
    for (i = 1; i <= n; ++i) {
      k = order[i]
      if (!(k in ms64)) continue
      printf "%-50s %10.3f %10.2f   %10.3f %10.2f %9.2f\n", k, ms32[k], x32[k], ms64[k], x64[k], (ms64[k] > 0 ? ms32[k] / ms64[k] : 0)
    }
  }' "$out/i386.tsv" "$out/x64.tsv"
