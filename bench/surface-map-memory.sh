#!/usr/bin/env bash
# Whether the surface map keeps drivediag's memory flat whatever the drive's size: a linear
# seek of one million reads spread over a 1 GiB and a 16 TiB simulated drive, both with --map,
# and the peak resident memory of each (GNU time). The read times of a drive are kept as 4 bits
# a block in at most 8 Mi blocks, so the two may differ by at most those 4 MiB and the map's
# text; the script fails when they differ by more than 16 MiB.
#
# Usage: bench/surface-map-memory.sh DRIVEDIAG [READS]
set -euo pipefail

drivediag=$1
reads=${2:-1000000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

peak_kib() {  # <device>
    /usr/bin/time -f "%M" -o "$work/peak" "$drivediag" run linear-seek --device "$1" \
        --set NumberOfSeeks="$reads" --map "$work/map.svg" > /dev/null || true
    cat "$work/peak"
}

small=$(peak_kib sim:1GiB)
large=$(peak_kib sim:16TiB)
echo "peak resident memory, $reads reads with --map: 1 GiB drive ${small} KiB, 16 TiB drive ${large} KiB"
if (( large - small > 16 * 1024 )); then
    echo "surface-map-memory: the 16 TiB run needs $(( (large - small) / 1024 )) MiB more" >&2
    exit 1
fi
