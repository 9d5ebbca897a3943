#!/usr/bin/env bash
# The main job: installs what is missing, builds both ABIs, lists the
# transitions and renders a preview of Traditional Fade from the built-in
# sample clips, with the shipping i386 build.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh
krl=build/i386/bin/krl
"$krl" list
mkdir -p preview
for p in 0 0.25 0.5 0.75 1; do
  "$krl" render "Traditional Fade" --progress "$p" -o "preview/traditional-fade-$p.png"
done
echo "Open the pictures in $(pwd)/preview/"
