#!/usr/bin/env bash
# Builds drivediag (Linux, optimised) and runs one test: the built-in simulated drive unless a
# device is named.
# Usage: scripts/run.sh [TEST] [drivediag run options...]
#   scripts/run.sh                                   # surface-scan on the built-in simulated drive
#   scripts/run.sh linear-seek --device /dev/loop0   # on a real block device
#   scripts/run.sh read-write                        # the optical test on an emulated DVD+RW
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"

scripts/install-deps.sh linux >&2
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLIBDRIVE_TESTS=OFF >/dev/null
cmake --build build/release --target drivediag -j "$(nproc 2>/dev/null || echo 2)" >&2

test_name=surface-scan
if [ $# -gt 0 ] && [[ "$1" != -* ]]; then test_name=$1; shift; fi
exec build/release/bin/drivediag run "$test_name" "$@"
