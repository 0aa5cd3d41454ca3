#!/usr/bin/env bash
# Do the destructive tests give the disk back as they found it? Runs drivediag's pattern and
# cache tests with PreserveData=true on a loop device over an image of random data and compares
# the device's SHA-256 before and after: after a whole run, after a run stopped in the middle
# with Ctrl-C (SIGINT), and on a second loop device holding a mounted filesystem, which both
# tests must refuse (DEVICEBUSY) without writing to it; and after runs killed with SIGKILL at
# random moments and put back with `drivediag restore` from their undo journal. A control run
# with PreserveData=false shows that the comparison does see the tests' writes. refusal_checks
# adds an ext4 image file mounted through a loop device (refused through the file and through
# the loop device, with the mount point named) and a read-only loop device (refused before the
# test, exit code 77). One PASS/FAIL line per check; exits 1
# when any check failed.
#
# Usage: bench/data-safety.sh [IMAGE_MIB]
#   IMAGE_MIB  size of the random image, 64 to 256 (default 128)
#   DRIVEDIAG  environment: the drivediag to run (default: build/release/bin/drivediag, built
#              by scripts/run.sh or `cmake --build build/release --target drivediag`)
#   KILL_ROUNDS  environment: rounds of SIGKILL and `drivediag restore` (default 50)
# Needs root (losetup, mount), mkfs.ext4 and filefrag.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
drivediag=${DRIVEDIAG:-$here/../build/release/bin/drivediag}
image_mib=${1:-128}

if [[ $EUID -ne 0 ]]; then
    echo "data-safety: needs root for losetup and mount" >&2
    exit 77
fi
if [[ ! -x $drivediag ]]; then
    echo "data-safety: no $drivediag (scripts/run.sh builds it, or set DRIVEDIAG)" >&2
    exit 1
fi
if ((image_mib < 64 || image_mib > 256)); then
    echo "data-safety: IMAGE_MIB must be 64 to 256" >&2
    exit 1
fi
for tool in losetup mkfs.ext4 mount sha256sum filefrag; do
    command -v "$tool" > /dev/null || { echo "data-safety: $tool is missing" >&2; exit 1; }
done

work=$(mktemp -d)
loop=""
fs_loop=""
runner=""
cleanup() {
    if [[ -n $runner ]]; then kill -KILL "$runner" 2> /dev/null || true; fi
    if mountpoint -q "$work/mnt" 2> /dev/null; then umount "$work/mnt"; fi
    if [[ -n $fs_loop ]]; then losetup -d "$fs_loop"; fi
    if [[ -n $loop ]]; then losetup -d "$loop"; fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

failures=0
check() {  # OK(0/1) TEXT
    if [[ $1 -eq 0 ]]; then
        echo "PASS  $2"
    else
        echo "FAIL  $2"
        failures=$((failures + 1))
    fi
}

# The device's bytes as the disk holds them, not as a page cache may remember them.
device_hash() {
    dd if="$1" bs=1M iflag=direct status=none | sha256sum | cut -d' ' -f1
}
last_percent() {  # JSONL; 0 before the first report
    local last
    last=$({ grep -o '"type":"percent","percent":[0-9]*' "$1" || true; } | tail -1)
    echo "${last##*:}" | sed 's/^$/0/'
}
same() {  # A B: 0 when equal, else 1
    [[ $1 == "$2" ]] && echo 0 || echo 1
}
result_of() {  # JSONL
    { grep -o '"result":"[A-Z]*"' "$1" || true; } | tail -1 | cut -d'"' -f4
}
first_error() {  # JSONL: the text of the first error event, or ""
    { grep -o '"severity":"error","key":"[A-Za-z_]*","text":"[^"]*"' "$1" || true; } | head -1 |
        sed 's/.*"key":"\([^"]*\)","text":"\([^"]*\)"/\1: \2/'
}
has_event() {  # JSONL KEY
    grep -q "\"type\":\"event\".*\"key\":\"$2\"" "$1"
}

# A whole run: exit code EXPECTED and the device's hash unchanged.
whole_run() {  # NAME EXPECTED_EXIT DEVICE TEST ARGS...
    local name=$1 expected=$2 device=$3 test=$4
    shift 4
    local before after code=0 out="$work/$name.jsonl"
    before=$(device_hash "$device")
    local start=$SECONDS
    "$drivediag" run "$test" --destructive --device "$device" --json "$@" > "$out" || code=$?
    after=$(device_hash "$device")
    check $((code != expected)) "$name: exit code $code ($(result_of "$out")), expected $expected; $((SECONDS - start)) s"
    if ((code != expected)); then echo "      first error: $(first_error "$out")"; fi
    check "$(same "$before" "$after")" "$name: device unchanged (sha256 ${after:0:16}...)"
}

# A run stopped with SIGINT once it reports at least PERCENT done: USERABORTED, ended before
# 100 percent, and the device's hash unchanged.
stopped_run() {  # NAME PERCENT DEVICE TEST ARGS...
    local name=$1 percent=$2 device=$3 test=$4
    shift 4
    local before after code=0 out="$work/$name.jsonl" seen=0 waited=0
    before=$(device_hash "$device")
    "$drivediag" run "$test" --destructive --device "$device" --json "$@" > "$out" &
    runner=$!
    while kill -0 "$runner" 2> /dev/null; do
        seen=$(last_percent "$out")
        if ((${seen:-0} >= percent)); then
            kill -INT "$runner"
            break
        fi
        sleep 0.02
    done
    # The next stop poll ends the test; give it a minute before calling it hung.
    while kill -0 "$runner" 2> /dev/null && ((waited < 600)); do
        sleep 0.1
        waited=$((waited + 1))
    done
    if kill -0 "$runner" 2> /dev/null; then
        kill -KILL "$runner"
        check 1 "$name: still running a minute after SIGINT"
    fi
    wait "$runner" || code=$?
    runner=""
    after=$(device_hash "$device")
    check $((code != 4)) "$name: SIGINT at ${seen:-0}% gave exit code $code ($(result_of "$out")), expected 4 (USERABORTED)"
    check $(($(last_percent "$out") >= 100)) "$name: stopped before the end (last percent $(last_percent "$out"))"
    check "$(same "$before" "$after")" "$name: device unchanged (sha256 ${after:0:16}...)"
}

refused_run() {  # NAME DEVICE TEST
    local name=$1 device=$2 test=$3 before after code=0 out="$work/$1.jsonl"
    sync
    before=$(device_hash "$device")
    "$drivediag" run "$test" --destructive --device "$device" --json > "$out" || code=$?
    sync
    after=$(device_hash "$device")
    check $((code != 8)) "$name: exit code $code ($(result_of "$out")), expected 8 (DEVICEBUSY)"
    local event=1
    if has_event "$out" DeviceBusy; then event=0; fi
    check $event "$name: \"DeviceBusy\" event reported"
    check "$(same "$before" "$after")" "$name: mounted device unchanged (sha256 ${after:0:16}...)"
}

head -c $((image_mib * 1024 * 1024)) /dev/urandom > "$work/random.img"
# Direct I/O down to the image: writes reach the disk, and runs last long enough to be stopped.
loop=$(losetup --find --show --direct-io=on "$work/random.img")
sectors=$(($(blockdev --getsz "$loop")))
echo "device: $loop over ${image_mib} MiB of random data ($sectors sectors); drivediag: $drivediag"
echo "sha256 before: $(device_hash "$loop")"

whole_run "pattern, 8 MB range" 0 "$loop" pattern --set PreserveData=true --set EndRange=MIN+8MB \
    --set NumberOfSeeks=500
whole_run "cache, whole run" 0 "$loop" cache --set PreserveData=true
stopped_run "pattern, stopped" 2 "$loop" pattern --set PreserveData=true --set NumberOfSeeks=20000
# MaxErrors high: failing blocks must not end the run before the stop does.
stopped_run "cache, stopped" 30 "$loop" cache --set PreserveData=true --set MaxErrors=100000

# Control: without PreserveData the pattern test leaves zeros, and the hash must see that.
before=$(device_hash "$loop")
code=0
"$drivediag" run pattern --destructive --device "$loop" --json --set PreserveData=false \
    --set EndRange=MIN+1MB --set NumberOfSeeks=16 > "$work/control.jsonl" || code=$?
after=$(device_hash "$loop")
check $((code != 0 || $(same "$before" "$after") == 0)) "control, pattern with PreserveData=false: exit code $code, device changed"

# SIGKILL cannot be caught: the undo journal must cover it. Runs pattern and cache alternately,
# kills each after a random number (1 to 1500) of completed writes on the device, puts the
# journal back with `drivediag restore` and compares the device's hash with the original.
writes_done() {  # DEVICE: write requests the device has completed
    awk '{ print $5 }' "/sys/block/$(basename "$1")/stat"
}
killed_and_restored() {  # DEVICE ROUND
    local device=$1 round=$2 test=pattern target code=0 journal="$work/undo.journal"
    local args=(--set NumberOfSeeks=100000)
    if ((round % 2 == 1)); then test=cache args=(--set MaxErrors=100000); fi
    target=$(($(writes_done "$device") + 1 + RANDOM % 1500))
    "$drivediag" run "$test" --destructive --device "$device" --json --undo "$journal" \
        --set PreserveData=true "${args[@]}" > "$work/killed.jsonl" &
    runner=$!
    while kill -0 "$runner" 2> /dev/null && (($(writes_done "$device") < target)); do
        sleep 0.001
    done
    kill -KILL "$runner" 2> /dev/null || true
    wait "$runner" || code=$?
    runner=""
    local restored="no journal left"
    if [[ -f $journal ]]; then
        "$drivediag" restore "$journal" > "$work/restore.txt" 2>&1 || restored="restore failed"
        [[ $restored == "restore failed" ]] || restored="restored"
    fi
    echo "$code $restored"
}
kill_loop() {  # DEVICE ROUNDS
    local device=$1 rounds=$2 original equal=0 round outcome
    original=$(device_hash "$device")
    for ((round = 0; round < rounds; round++)); do
        outcome=$(killed_and_restored "$device" "$round")
        if [[ $(device_hash "$device") == "$original" ]]; then
            equal=$((equal + 1))
        else
            echo "      round $round ($outcome): device differs"
        fi
    done
    check $((equal != rounds)) "SIGKILL and restore, $rounds rounds: $equal gave the original sha256 back"
}

kill_loop "$loop" "${KILL_ROUNDS:-50}"

head -c $((64 * 1024 * 1024)) /dev/urandom > "$work/fs.img"
fs_loop=$(losetup --find --show "$work/fs.img")
# No lazy initialisation: an idle mounted filesystem then writes nothing of its own.
mkfs.ext4 -q -E lazy_itable_init=0,lazy_journal_init=0 "$fs_loop"
mkdir "$work/mnt"
mount "$fs_loop" "$work/mnt"
head -c 1M /dev/urandom > "$work/mnt/payload"
sync
refused_run "pattern, mounted" "$fs_loop" pattern
refused_run "cache, mounted" "$fs_loop" cache

# ---- Refusals without a write: an image file behind a mounted loop device, a read-only device --
# Runs in a subshell with its own cleanup; prints its PASS/FAIL lines and exits with the number
# of failed checks.
refusal_checks() (
    set -euo pipefail
    local dir img_loop="" ro_loop=""
    dir=$(mktemp -d)
    # shellcheck disable=SC2317  # run by the trap
    finish() {
        if mountpoint -q "$dir/mnt" 2> /dev/null; then umount "$dir/mnt"; fi
        if [[ -n $img_loop ]]; then losetup -d "$img_loop"; fi
        if [[ -n $ro_loop ]]; then losetup -d "$ro_loop"; fi
        rm -rf "$dir"
    }
    trap finish EXIT
    # shellcheck disable=SC2030  # this subshell's own count, handed back as its exit status
    failures=0

    # An ext4 image mounted through a loop device, a file written to it, and the pattern test
    # aimed at that file's first 8 sectors through the image file and through the loop device.
    truncate -s 64M "$dir/fs.img"
    mkfs.ext4 -q -E lazy_itable_init=0,lazy_journal_init=0 "$dir/fs.img"
    img_loop=$(losetup --find --show "$dir/fs.img")
    mkdir "$dir/mnt"
    mount "$img_loop" "$dir/mnt"
    head -c 64K /dev/urandom > "$dir/mnt/payload"
    sync
    local first region_before
    first=$(filefrag -b512 -v "$dir/mnt/payload" | awk '$1 == "0:" { sub(/\.\./, "", $4); print $4 }')
    # The file's sectors as the image holds them (every write to the loop device lands there).
    file_sectors() { dd if="$dir/fs.img" bs=512 skip="$first" count=128 status=none | sha256sum; }
    region_before=$(file_sectors)
    local device says code out err said
    for device in "$dir/fs.img" "$img_loop"; do
        if [[ $device == "$img_loop" ]]; then
            says="$img_loop is mounted on $dir/mnt"
        else
            says="$dir/fs.img is the backing file of $img_loop, which is mounted on $dir/mnt"
        fi
        code=0
        out="$dir/run.jsonl" err="$dir/run.err"
        "$drivediag" run pattern --destructive --device "$device" --json --set PreserveData=false \
            --set StartRange="$first" --set EndRange=$((first + 8)) --set NumberOfSeeks=8 \
            > "$out" 2> "$err" || code=$?
        check $((code != 8)) "mounted image, pattern on ${device##*/} over the file's sectors from $first: exit code $code ($(result_of "$out")), expected 8 (DEVICEBUSY)"
        said=1
        if grep -qF "$says" "$err"; then said=0; fi
        check $said "mounted image, pattern on ${device##*/}: says \"$says\""
        check "$(same "$region_before" "$(file_sectors)")" "mounted image, pattern on ${device##*/}: the file's sectors unchanged"
    done
    # Control: unmounted, the same run zeroes those sectors, so the refusals above kept them.
    umount "$dir/mnt"
    code=0
    "$drivediag" run pattern --destructive --device "$dir/fs.img" --json --set PreserveData=false \
        --set StartRange="$first" --set EndRange=$((first + 8)) --set NumberOfSeeks=8 \
        > "$dir/control.jsonl" 2>&1 || code=$?
    check $((code != 0 || $(same "$region_before" "$(file_sectors)") == 0)) "control, unmounted image: exit code $code, the file's sectors changed"

    # A read-only loop device: both tests refused before they start (exit code 77), nothing
    # written.
    head -c 16M /dev/urandom > "$dir/ro.img"
    ro_loop=$(losetup --find --show --read-only "$dir/ro.img")
    local test before after refused
    for test in pattern cache; do
        before=$(device_hash "$ro_loop")
        code=0
        "$drivediag" run "$test" --destructive --device "$ro_loop" --json > "$dir/ro.jsonl" \
            2> "$dir/ro.err" || code=$?
        after=$(device_hash "$ro_loop")
        check $((code != 77)) "read-only device, $test: exit code $code, expected 77 (read-only)"
        refused=1
        if grep -q "is read-only" "$dir/ro.err" && [[ ! -s $dir/ro.jsonl ]]; then refused=0; fi
        check $refused "read-only device, $test: refused before the test started ($(head -c 120 "$dir/ro.err"))"
        check "$(same "$before" "$after")" "read-only device, $test: device unchanged (sha256 ${after:0:16}...)"
    done
    exit "$failures"
)
# ---- end of the refusal checks ------------------------------------------------------------------

refused=0
refusal_checks || refused=$?
# shellcheck disable=SC2031  # the subshell's count arrived as its exit status
failures=$((failures + refused))

if ((failures > 0)); then
    echo "data-safety: $failures check(s) failed"
    exit 1
fi
echo "data-safety: all checks passed"
