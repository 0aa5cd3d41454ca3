#!/usr/bin/env bash
# Builds the benchmarks in release mode and prints both figures: the linear seek test's own cost
# per read on a simulated drive, and drivediag against fio on a loop device (root only).
#
# Usage: bench/run.sh [BUILD_DIR]   (default: build-bench beside this folder)
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build-bench}

cmake -S "$here/.." -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DLIBDRIVE_BENCH=ON \
    -DLIBDRIVE_TESTS=OFF > /dev/null
cmake --build "$build" -j2 --target linear_seek_bench drivediag > /dev/null

echo "== The linear seek test's own cost per read (simulated drive, 10 million reads)"
"$build/bin/linear_seek_bench" --benchmark_counters_tabular=true

echo
echo "== drivediag linear-seek against fio on a loop device"
status=0
"$here/linear-seek-vs-fio.sh" "$build" || status=$?
if [[ $status -eq 77 ]]; then
    echo "(skipped: needs root)"
elif [[ $status -ne 0 ]]; then
    exit "$status"
fi
