#!/usr/bin/env bash
# The i386 build's programs (tests, krl, the digest printer) must start on
# this machine. Some kernels run 64-bit user code only; there the kernel is
# told to hand 32-bit x86 programs to qemu-i386 (binfmt_misc), so that every
# way of starting them (ctest, a shell, krl's tests) works unchanged.
#   --check     exit 0 when a 32-bit x86 program starts here
#   --install   make it so (needs root and the qemu-user package)
set -euo pipefail

probe() {
  # The smallest i386 program there is: exit(0) by int 0x80, as raw ELF.
  local file
  file=$(mktemp)
  printf '\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x03\x00\x01\x00\x00\x00\x54\x80\x04\x08\x34\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x34\x00\x20\x00\x01\x00\x00\x00\x00\x00\x00\x00\x01\x00\x00\x00\x00\x00\x00\x00\x00\x80\x04\x08\x00\x80\x04\x08\x60\x00\x00\x00\x60\x00\x00\x00\x05\x00\x00\x00\x00\x10\x00\x00\x31\xdb\x31\xc0\x40\xcd\x80\x90\x90\x90\x90\x90' >"$file"
  chmod +x "$file"
  local ok=1
  "$file" 2>/dev/null && ok=0
  rm -f "$file"
  return $ok
}

case "${1:-}" in
  --check) probe ;;
  --install)
    probe && exit 0
    qemu=$(command -v qemu-i386 || true)
    [ -n "$qemu" ] || { echo "i386: this kernel cannot run 32-bit x86 programs and qemu-i386 is missing" >&2; exit 1; }
    misc=/proc/sys/fs/binfmt_misc
    [ -e "$misc/register" ] || mount -t binfmt_misc binfmt_misc "$misc"
    [ -e "$misc/krl-i386" ] && echo -1 >"$misc/krl-i386"
    # ELF, 32-bit, little-endian, executable or position-independent, machine 3 (i386).
    echo ":krl-i386:M::\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x03\x00:\xff\xff\xff\xff\xff\xfe\xfe\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff:$qemu:F" >"$misc/register"
    probe || { echo "i386: 32-bit x86 programs still do not start" >&2; exit 1; }
    echo "i386: this kernel runs 64-bit programs only; 32-bit x86 programs now start under $qemu"
    ;;
  *) echo "usage: $0 --check | --install" >&2; exit 2 ;;
esac
