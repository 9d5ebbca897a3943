#!/usr/bin/env bash
# One line that names the machine timings come from: CPU model, cores, kernel.
set -euo pipefail
field() { lscpu | sed -n "s/^$1: *//p" | head -1; }
cores=$(( $(field 'Core(s) per socket') * $(field 'Socket(s)') ))
echo "machine: $(field 'Model name'), $cores cores, $(field 'Thread(s) per core') thread(s) each, $(uname -m) kernel"
