#!/usr/bin/env bash
# Our transitions beside their nearest analogues among the installed ffmpeg's
# xfade transitions, at 1920x1080 and 720x576: milliseconds per frame and the
# ratio xfade / ours, once on planar frames as xfade takes them and once on
# 32-bit BGRA frames as a host hands them (xfade then pays for converting
# them to its planes and back).
#   scripts/compare.sh            # three runs of each ffmpeg pipeline, medians
#   REPEATS=5 scripts/compare.sh
# Ours: the benchmark's medians over a sweep of Progress (scripts/bench.sh),
# both builds, default fields. xfade: ffmpeg single-threaded, the CPU time of
# a run of frames minus that of the same pipeline without the xfade (the two
# sources generate one frame each and repeat it, as our benchmark reuses its
# two inputs), the median of REPEATS runs.
set -euo pipefail
cd "$(dirname "$0")/.."
repeats=${REPEATS:-3}
out=build/compare
mkdir -p "$out"

# ours | xfade | how close they are
pairs=(
  "Traditional Fade|fade|same"
  "Wipe|wipeleft|same (the other direction)"
  "Slide|slideleft|same (the other direction)"
  "Iris Round|circleopen|same; xfade softens the edge"
  "Mosaic|pixelize|near: ours lays B in block by block, xfade coarsens the fade into blocks"
  "Random Dissolve|dissolve|same"
  "Clock|radial|same"
  "Center Zoom|zoomin|near: ours grows B out of the centre, xfade zooms into A as it fades to B"
  "Cross Stretch|squeezeh|near: ours squeezes A sideways as B stretches in, xfade squeezes A to a band over B"
  "Sliding Doors|vertopen|near: ours slides A's two halves apart, xfade uncovers a band of B widening from the middle"
)
sizes=(1920x1080 720x576)
declare -A frames=([1920x1080]=50 [720x576]=100)

names=()
for p in "${pairs[@]}"; do names+=("${p%%|*}"); done
filter="^($(IFS='|'; echo "${names[*]}"))/[0-9]+x[0-9]+/default/"
echo "== ours: scripts/bench.sh --benchmark_filter='$filter'" >&2
KRL_BENCH_OUT=$out scripts/bench.sh --benchmark_filter="$filter" >"$out/ours.txt"

# The median CPU seconds (user + system) of ffmpeg running a filter graph
# into the null muxer. Fails unless it wrote $2 frames; with $3 = planar, also
# when ffmpeg converted frames anywhere but at the sources (which make one).
ffmpeg_seconds() {
  local graph=$1 expect=$2 kind=$3 log seconds=()
  for ((r = 0; r < repeats; ++r)); do
    log=$(ffmpeg -hide_banner -nostdin -v verbose -benchmark -threads 1 -filter_threads 1 -filter_complex_threads 1 \
      -filter_complex "$graph" -f null - 2>&1) || { echo "$log" | tail -5 >&2; exit 1; }
    local written
    written=$(echo "$log" | tr '\r' '\n' | sed -n 's/^frame= *\([0-9]*\).*/\1/p' | tail -1)
    [ "$written" = "$expect" ] || { echo "compare: ffmpeg wrote ${written:-no} frames, not $expect: $graph" >&2; exit 1; }
    if [ "$kind" = planar ] &&
      echo "$log" | grep 'auto-inserting filter' | grep -qv "between the filter 'Parsed_\(testsrc2\|smptehdbars\)_"; then
      echo "compare: ffmpeg converted the planar frames: $graph" >&2; exit 1
    fi
    seconds+=("$(echo "$log" | sed -n 's/^bench: utime=\([0-9.]*\)s stime=\([0-9.]*\)s.*/\1 \2/p' | awk '{print $1 + $2}')")
  done
  printf '%s\n' "${seconds[@]}" | sort -g | awk '{v[NR] = $1} END {print v[int((NR + 1) / 2)]}'
}

# Two sources of one frame each, held for $n frames, in pixel format $2.
sources() {
  local size=$1 format=$2 n=$3
  echo "testsrc2=s=$size:r=25,format=$format,trim=end_frame=1,loop=loop=$((n - 1)):size=1[a];" \
       "smptehdbars=s=$size:r=25,format=$format,trim=end_frame=1,loop=loop=$((n - 1)):size=1[b];"
}

# One line per pair and size: ms/frame of ours (i386, x86-64), of xfade, and the ratios.
measure() {
  local kind=$1 format=$2 in=$3 back=$4
  printf '%-44s %-9s %9s %9s %9s %11s %10s\n' "ours <-> xfade" size "ours i386" "ours x64" xfade "xfade/i386" "xfade/x64"
  for size in "${sizes[@]}"; do
    local n=${frames[$size]}
    local base
    base=$(ffmpeg_seconds "$(sources "$size" "$format" "$n")[a][b]streamselect=inputs=2:map=0" "$n" "$kind")
    for p in "${pairs[@]}"; do
      IFS='|' read -r ours xfade _ <<<"$p"
      local graph seconds
      graph="$(sources "$size" "$format" "$n")[a]$in[a1];[b]$in[b1];[a1][b1]xfade=transition=$xfade:offset=0:duration=$(awk "BEGIN {print $n / 25}")$back"
      seconds=$(ffmpeg_seconds "$graph" "$n" "$kind")
      local i386 x64
      i386=$(awk -F'\t' -v k="$ours/$size/default" '$1 == k {print $2}' "$out/i386.tsv")
      x64=$(awk -F'\t' -v k="$ours/$size/default" '$1 == k {print $2}' "$out/x64.tsv")
      [ -n "$i386" ] && [ -n "$x64" ] || { echo "compare: the benchmark has no row $ours/$size/default" >&2; exit 1; }
      awk -v name="$ours <-> $xfade" -v size="$size" -v a="$i386" -v b="$x64" -v s="$seconds" -v base="$base" -v n="$n" 'BEGIN {
        ms = (s - base) * 1e3 / n
        printf "%-44s %-9s %9.3f %9.3f %9.3f %11.1f %10.1f\n", name, size, a, b, ms, ms / a, ms / b }'
    done
  done
}

scripts/machine.sh
echo "$(ffmpeg -hide_banner -version | head -1 | cut -d' ' -f1-3), single-threaded"
echo "ms per frame, CPU time; ours: medians over a sweep of Progress; xfade: the median of $repeats runs"
echo "of ${frames[1920x1080]} (1920x1080) or ${frames[720x576]} (720x576) frames, less the same pipeline without the xfade"
echo
echo "Planar frames, as xfade takes them (gbrp: its RGB planes; it takes no yuv420p) - ours on 32-bit BGRA"
measure planar gbrp null ""
echo
echo "32-bit BGRA frames, as a host hands them: xfade with the conversions to gbrap and back to bgra"
measure bgra bgra format=gbrap ",format=bgra"
echo
echo "How close each pair is:"
for p in "${pairs[@]}"; do
  IFS='|' read -r ours xfade note <<<"$p"
  printf '  %-36s %s\n' "$ours <-> $xfade" "$note"
done
