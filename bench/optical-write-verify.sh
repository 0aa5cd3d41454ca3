#!/usr/bin/env bash
# The read-write test's own cost and how close it comes to a writer's speed: a whole-disc write
# and verify of an emulated 4.7 GB DVD+RW at one write speed, 16x (22,160 kB/s).
#   1. On a writer whose commands cost no time (emu:...,instant): the host's and the library's
#      cost per 2 KiB sector written and read. Aim: under 1 microsecond.
#   2. On a writer that takes the time a real one does at 16x: the wall time against the
#      physical limit, the disc's size divided by the speed (once for the write, once more for
#      the verify, which reads at 16x too).
#
# Usage: bench/optical-write-verify.sh DRIVEDIAG [SECTORS]   (default: the whole disc)
set -euo pipefail

drivediag=$1
sectors=${2:-2295104}
speed_kbps=22160
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Runs one whole-disc test; prints its wall time in milliseconds and leaves its JSON in $work and
# its processor time (user and system seconds) in $work/cpu.
timed_run() {  # <device>
    local start end
    start=$(date +%s%N)
    /usr/bin/time -f "%U %S" -o "$work/cpu" \
        "$drivediag" run read-write --device "$1" --sectors "$sectors" --json > "$work/run.json"
    end=$(date +%s%N)
    grep -q '"type":"summary","test":"read-write","result":"PASS"' "$work/run.json" || {
        echo "optical-write-verify: the run on $1 did not pass" >&2
        tail -3 "$work/run.json" >&2
        exit 1
    }
    echo $(( (end - start) / 1000000 ))
}

moved_sectors() {  # sectors written plus sectors read, from the summary
    grep '"type":"summary"' "$work/run.json" |
        grep -o '"sectors":[0-9]*' | awk -F: '{ total += $2 } END { print total }'
}

instant_ms=$(timed_run "emu:dvd+rw,instant,speeds=$speed_kbps")
moved=$(moved_sectors)
read -r user system < "$work/cpu"
awk -v ms="$instant_ms" -v n="$moved" -v user="$user" -v sys="$system" 'BEGIN {
    cpu = user + sys
    printf "no-cost writer: %d sectors written and read in %.2f s (%.2f s of processor time): %.3f us per sector of wall time, %.3f us of processor time\n",
        n, ms / 1000, cpu, ms * 1000 / n, cpu * 1000000 / n }'

timed_ms=$(timed_run "emu:dvd+rw,speeds=$speed_kbps")
awk -v ms="$timed_ms" -v s="$sectors" -v kbps="$speed_kbps" 'BEGIN {
    limit = s * 2048 / (kbps * 1000) * 1000
    printf "16x writer: %.1f s for %d sectors written and verified; physical limit %.1f s to write, %.1f s to write and read; ratio %.3f (to write) %.3f (to write and read)\n",
        ms / 1000, s, limit / 1000, 2 * limit / 1000, ms / limit, ms / (2 * limit) }'
