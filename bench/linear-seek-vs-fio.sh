#!/usr/bin/env bash
# drivediag's linear seek test against fio doing the same reads: single-sector direct reads at
# the same stride over a loop device on a 1 GiB image. Prints both wall-clock times (best of
# three runs each) and their ratio.
#
# Usage: bench/linear-seek-vs-fio.sh [BUILD_DIR] [READS]
#   BUILD_DIR  a build with drivediag in bin/ (default: build-bench beside this folder)
#   READS      reads per run, a power of two up to 2097152 (default 4096; a read of the
#              loop device costs milliseconds here, so 4096 reads take seconds)
# Needs root for losetup; installs fio with apt-get when it is missing.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=${1:-$here/../build-bench}
reads=${2:-4096}
drivediag=$build/bin/drivediag
sector=512
image_bytes=$((1024 * 1024 * 1024))
sectors=$((image_bytes / sector))

if [[ $EUID -ne 0 ]]; then
    echo "linear-seek-vs-fio: needs root for losetup" >&2
    exit 77
fi
if [[ ! -x $drivediag ]]; then
    echo "linear-seek-vs-fio: no $drivediag (cmake --build $build --target drivediag)" >&2
    exit 1
fi
if (( reads < 1 || reads > sectors || sectors % reads != 0 )); then
    echo "linear-seek-vs-fio: READS must divide $sectors" >&2
    exit 64
fi
if ! command -v fio > /dev/null; then
    apt-get install -y -qq fio > /dev/null 2>&1 || { apt-get update -qq && apt-get install -y -qq fio > /dev/null; }
fi

work=$(mktemp -d)
loop=""
cleanup() {
    if [[ -n $loop ]]; then losetup -d "$loop"; fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

# Written zeros, not a sparse file: every read must reach the disk.
dd if=/dev/zero of="$work/disk.img" bs=1M count=$((image_bytes / 1048576)) conv=fsync status=none
loop=$(losetup --find --show --direct-io=on "$work/disk.img")

jump=$((sectors / reads))
stride=$((jump * sector))

now_ns() { date +%s%N; }

run_drivediag() {
    "$drivediag" run linear-seek --device "$loop" --set NumberOfSeeks="$reads" --set MaxErrors=10 \
        --json > "$work/drivediag.jsonl"
}

run_fio() {
    # rw=read:N adds N bytes after each I/O: one sector read, then on to the next stride.
    # number_ios stops it after one sweep; fio would otherwise wrap around until it has
    # transferred the whole size.
    fio --name=linear-seek --filename="$loop" --direct=1 --ioengine=psync --bs=$sector \
        --rw=read:$((stride - sector)) --size=$image_bytes --number_ios="$reads" \
        --output-format=json \
        > "$work/fio.json"
}

best_ms() {
    local best="" start end elapsed
    for _ in 1 2 3; do
        start=$(now_ns)
        "$1"
        end=$(now_ns)
        elapsed=$(((end - start) / 1000000))
        if [[ -z $best || $elapsed -lt $best ]]; then best=$elapsed; fi
    done
    echo "$best"
}

drivediag_ms=$(best_ms run_drivediag)
fio_ms=$(best_ms run_fio)
fio_reads=$(python3 -c 'import json,sys; print(json.load(open(sys.argv[1]))["jobs"][0]["read"]["total_ios"])' "$work/fio.json")
result=$(python3 -c 'import json,sys
lines=[json.loads(l) for l in open(sys.argv[1]) if l.strip()]
print(next((l.get("result") for l in reversed(lines) if "result" in l), "?"))' "$work/drivediag.jsonl")

echo "device:    $loop over a 1 GiB image, direct I/O, $reads reads of $sector bytes every $stride bytes"
echo "drivediag: ${drivediag_ms} ms (linear-seek, result $result)"
echo "fio:       ${fio_ms} ms ($fio_reads reads)"
python3 -c 'import sys; d,f=map(int,sys.argv[1:]); print("ratio:     %.2f (drivediag / fio)" % (d / f if f else float("nan")))' \
    "$drivediag_ms" "$fio_ms"
