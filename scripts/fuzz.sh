#!/usr/bin/env bash
# Builds the libFuzzer targets and runs each for SECONDS (default 30):
#   scripts/fuzz.sh            # the short run the test command makes
#   scripts/fuzz.sh 600        # a long run, ten minutes a target
# New inputs go to build/fuzz/corpus/<target>; a crashing input is kept as
# build/fuzz/artifacts/<target>-crash-* and the script fails.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc 2>/dev/null || echo 2)"
mkdir -p build/fuzz/artifacts
for target in transition_fuzz script_fuzz; do
  name=${target%_fuzz}
  work=build/fuzz/corpus/$target
  mkdir -p "$work"
  echo "== fuzzing $target for ${seconds}s"
  build/fuzz/bin/$target -max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 -print_final_stats=1 \
    -artifact_prefix="build/fuzz/artifacts/$target-" "$work" "fuzz/corpus/$name" 2>&1 |
    grep -E '^(stat::number_of_executed_units|stat::new_units_added|Done|==[0-9]+==|SUMMARY|INFO: Loaded)|ERROR|crash|deadly' || true
  # The pipeline hides the fuzzer's status: a finding leaves an artifact.
  if compgen -G "build/fuzz/artifacts/$target-*" >/dev/null; then
    echo "$target found a failing input: $(ls build/fuzz/artifacts/$target-*)" >&2
    exit 1
  fi
done
