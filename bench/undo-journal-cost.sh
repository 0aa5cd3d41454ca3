#!/usr/bin/env bash
# What the undo journal costs a destructive test: pattern and cache with PreserveData=true on a
# loop device (direct I/O) over random data, run alternately by a drivediag without the journal
# (BASE) and one with it (NEW), ROUNDS times each. Prints every round's wall-clock seconds and
# the medians, and the journal's overhead as a share of the run without it.
#
# Usage: bench/undo-journal-cost.sh BASE_DRIVEDIAG NEW_DRIVEDIAG [ROUNDS]
#   BASE_DRIVEDIAG  drivediag built from a commit before the journal
#   NEW_DRIVEDIAG   drivediag with the journal
# Needs root (losetup).
set -euo pipefail

base=$1
new=$2
rounds=${3:-3}
if [[ $EUID -ne 0 ]]; then
    echo "undo-journal-cost: needs root for losetup" >&2
    exit 77
fi

work=$(mktemp -d)
loop=""
cleanup() {
    if [[ -n $loop ]]; then losetup -d "$loop"; fi
    rm -rf "$work"
}
trap cleanup EXIT

head -c $((128 * 1024 * 1024)) /dev/urandom > "$work/random.img"
loop=$(losetup --find --show --direct-io=on "$work/random.img")

seconds() {  # DRIVEDIAG TEST ARGS...: wall-clock seconds of one run
    local drivediag=$1 test=$2
    shift 2
    local start end
    start=$(date +%s.%N)
    "$drivediag" run "$test" --destructive --device "$loop" --json --set PreserveData=true \
        "$@" > /dev/null
    end=$(date +%s.%N)
    echo "$end - $start" | bc
}
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

for test in pattern cache; do
    args=()
    if [[ $test == pattern ]]; then args=(--set EndRange=MIN+8MB --set NumberOfSeeks=500); fi
    : > "$work/base.times"
    : > "$work/new.times"
    for ((round = 1; round <= rounds; round++)); do
        b=$(seconds "$base" "$test" "${args[@]}")
        n=$(seconds "$new" "$test" "${args[@]}" --undo "$work/undo.journal")
        echo "$b" >> "$work/base.times"
        echo "$n" >> "$work/new.times"
        printf '%-8s round %d: without %6.2f s, with %6.2f s (load %s)\n' "$test" "$round" "$b" \
            "$n" "$(cut -d' ' -f1 /proc/loadavg)"
    done
    mb=$(median < "$work/base.times")
    mn=$(median < "$work/new.times")
    printf '%-8s median: without %6.2f s, with %6.2f s, overhead %+.0f %%\n' "$test" "$mb" "$mn" \
        "$(echo "($mn - $mb) * 100 / $mb" | bc -l)"
done
