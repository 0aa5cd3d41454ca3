#!/usr/bin/env bash
# drivediag's surface scan over a whole device against the usual ways of reading one: dd with
# 1 MiB direct reads, badblocks' read-only scan and fio with 1 MiB direct reads at queue depth 8.
# All four read the same loop device over a 1 GiB image with direct I/O, in rounds (one run of
# each per round, so that all see the same disk). Prints each run's MB/s, each program's best
# and median, and the ratio of the surface scan's best to each other's best (1.00 or more: at
# least as fast).
#
# Usage: bench/surface-scan-vs-tools.sh [BUILD_DIR] [ROUNDS]
#   BUILD_DIR  a build with drivediag in bin/ (default: build-bench beside this folder)
#   ROUNDS     how many times to run each program (default 3)
# Needs root for losetup; installs fio and badblocks (e2fsprogs) with apt-get when missing.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build-bench}
rounds=${2:-3}
drivediag=$build/bin/drivediag
image_mib=1024
image_bytes=$((image_mib * 1024 * 1024))

if [[ $EUID -ne 0 ]]; then
    echo "surface-scan-vs-tools: needs root for losetup" >&2
    exit 77
fi
if [[ ! -x $drivediag ]]; then
    echo "surface-scan-vs-tools: no $drivediag (cmake --build $build --target drivediag)" >&2
    exit 1
fi
install_missing() {  # COMMAND PACKAGE
    command -v "$1" > /dev/null && return
    apt-get install -y -qq "$2" > /dev/null 2>&1 ||
        { apt-get update -qq && apt-get install -y -qq "$2" > /dev/null; }
}
install_missing fio fio
install_missing badblocks e2fsprogs

work=$(mktemp -d)
loop=""
cleanup() {
    if [[ -n $loop ]]; then losetup -d "$loop"; fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

# Written data, not a sparse file: every read must reach the disk.
dd if=/dev/zero of="$work/disk.img" bs=1M count=$image_mib conv=fsync status=none
loop=$(losetup --find --show --direct-io=on "$work/disk.img")

run_drivediag() {
    "$drivediag" run surface-scan --device "$loop" --set SectorPercentToTest=100 --json \
        > "$work/drivediag.jsonl"
}
run_dd() {
    dd if="$loop" of=/dev/null bs=1M iflag=direct status=none
}
run_badblocks() {
    badblocks -b 4096 -c 256 "$loop" > "$work/badblocks.txt"
}
run_fio() {
    fio --name=sweep --filename="$loop" --direct=1 --rw=read --bs=1M --iodepth=8 \
        --ioengine=libaio --size=$image_bytes --output-format=json > "$work/fio.json"
}

programs=(drivediag dd badblocks fio)
declare -A best_ms all_ms
fio_own_best=0
fio_own_all=""
now_ns() { date +%s%N; }
mb_per_s() { python3 -c 'import sys; print("%.0f" % (int(sys.argv[1]) / 1e6 / (int(sys.argv[2]) / 1e3)))' "$image_bytes" "$1"; }

echo "device: $loop over a ${image_mib} MiB image, losetup --direct-io=on; $(uptime | sed 's/.*load/load/')"
for ((round = 1; round <= rounds; round++)); do
    line="round $round:"
    for program in "${programs[@]}"; do
        start=$(now_ns)
        "run_$program"
        elapsed=$((($(now_ns) - start) / 1000000))
        if [[ -z ${best_ms[$program]:-} || $elapsed -lt ${best_ms[$program]} ]]; then
            best_ms[$program]=$elapsed
        fi
        all_ms[$program]+=" $elapsed"
        line+=" $program $(mb_per_s "$elapsed") MB/s,"
    done
    # fio's own figure leaves out its start-up (a few tenths of a second here).
    own=$(python3 -c 'import json,sys; print("%.0f" % (json.load(open(sys.argv[1]))["jobs"][0]["read"]["bw_bytes"] / 1e6))' "$work/fio.json")
    if ((own > fio_own_best)); then fio_own_best=$own; fi
    fio_own_all+=" $own"
    line+=" (fio's own figure: $own MB/s)"
    echo "$line"
done

result=$(python3 -c 'import json,sys
lines=[json.loads(l) for l in open(sys.argv[1]) if l.strip()]
print(next((l.get("result") for l in reversed(lines) if "result" in l), "?"))' "$work/drivediag.jsonl")
bad=$(wc -l < "$work/badblocks.txt")
echo "drivediag surface-scan result: $result; badblocks found $bad bad blocks"
median() { python3 -c 'import statistics,sys; print("%.0f" % statistics.median(map(int, sys.argv[1:])))' "$@"; }
echo "best and median of $rounds:"
for program in "${programs[@]}"; do
    # shellcheck disable=SC2086  # the list of times is meant to split
    printf '  %-10s %5s MB/s  median %5s MB/s\n' "$program" "$(mb_per_s "${best_ms[$program]}")" \
        "$(mb_per_s "$(median ${all_ms[$program]})")"
done
# shellcheck disable=SC2086
printf '  %-10s %5s MB/s  median %5s MB/s  (its own figure, without its start-up)\n' fio \
    "$fio_own_best" "$(median $fio_own_all)"
for program in dd badblocks fio; do
    python3 -c 'import sys; o,t=map(int,sys.argv[2:]); print("ratio drivediag / %-9s %.2f" % (sys.argv[1], t / o))' \
        "$program" "${best_ms[drivediag]}" "${best_ms[$program]}"
done
python3 -c 'import sys; o,f=map(float,sys.argv[1:]); print("ratio drivediag / fio\x27s own figure %.2f" % (o / f))' \
    "$(mb_per_s "${best_ms[drivediag]}")" "$fio_own_best"
echo "(ratios of the best runs; above 1: the surface scan was faster)"
