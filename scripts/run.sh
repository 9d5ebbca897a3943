#!/usr/bin/env bash
# The main job: installs what is missing, builds both ABIs, and renders the
# gallery of every transition from the built-in sample clips into ./gallery
# with the shipping i386 build; krl says where to open it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh
build/i386/bin/krl gallery -o gallery
