#!/usr/bin/env bash
# Whether the surface map keeps drivediag's memory flat whatever the drive's size: a linear
# seek of one million reads spread over a 1 GiB and a 16 TiB simulated drive, both with --map,
# and the peak resident memory of each (GNU time); then both again drawing a PNG, when this
# drivediag draws PNG maps. The read times of a drive are kept as 4 bits a block in at most
# 8 Mi blocks, so the two SVG runs may differ by at most those 4 MiB and the map's text; a PNG
# adds one RGB picture of at most about 1000 x 1000 pixels (3 MiB), FreeType and libpng.
# The script fails when a 16 TiB run needs more than 16 MiB more than its 1 GiB one, or the
# 16 TiB PNG run more than 8 MiB more than the 16 TiB SVG one.
#
# Usage: bench/surface-map-memory.sh DRIVEDIAG [READS]
set -euo pipefail

drivediag=$1
reads=${2:-1000000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

peak_kib() {  # <device> <map file name>
    /usr/bin/time -f "%M" -o "$work/peak" "$drivediag" run linear-seek --device "$1" \
        --set NumberOfSeeks="$reads" --map "$work/$2" > /dev/null 2> "$work/err" || true
    cat "$work/peak"
}

small=$(peak_kib sim:1GiB map.svg)
large=$(peak_kib sim:16TiB map.svg)
echo "peak resident memory, $reads reads with --map: 1 GiB drive ${small} KiB, 16 TiB drive ${large} KiB"
if (( large - small > 16 * 1024 )); then
    echo "surface-map-memory: the 16 TiB run needs $(( (large - small) / 1024 )) MiB more" >&2
    exit 1
fi

png_small=$(peak_kib sim:1GiB map.png)
png=$(peak_kib sim:16TiB map.png)
if [ ! -s "$work/map.png" ]; then
    echo "no PNG map drawn (a build without libpng?): $(cat "$work/err")"
    exit 0
fi
echo "peak resident memory, $reads reads with --map map.png: 1 GiB drive ${png_small} KiB," \
     "16 TiB drive ${png} KiB ($(stat -c %s "$work/map.png") bytes of PNG)"
if (( png - png_small > 16 * 1024 || png - large > 8 * 1024 )); then
    echo "surface-map-memory: the 16 TiB PNG run needs $(( (png - png_small) / 1024 )) MiB more" \
         "than the 1 GiB one, $(( (png - large) / 1024 )) MiB more than the SVG run" >&2
    exit 1
fi
