#!/usr/bin/env bash
# Builds libdrive for Linux (under AddressSanitizer and UndefinedBehaviorSanitizer) and for
# Windows x86-64 (MinGW-w64), and runs every test on both: natively and under Wine.
# Usage: scripts/test.sh [linux|windows]...   (both when none is named)
# The closing line counts test cases from GoogleTest's own XML results; a test program that
# writes none (a fuzz target's corpus run, or a program that crashed) counts as one case.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"

platforms=("$@"); [ ${#platforms[@]} -gt 0 ] || platforms=(linux windows)
jobs=$(nproc 2>/dev/null || echo 2)

if [[ " ${platforms[*]} " == *" windows "* ]]; then scripts/install-deps.sh; else scripts/install-deps.sh linux; fi

# Prints "<passed> <failed> <skipped>" for the test cases of one GoogleTest XML file, summed
# over its test suites.
count_xml() {
  awk '/<testsuite / {
    delete a
    for (i = 1; i <= NF; i++) if (split($i, kv, "=") == 2) { gsub(/"/, "", kv[2]); a[kv[1]] = kv[2] + 0 }
    p += a["tests"] - a["failures"] - a["disabled"] - a["skipped"]; f += a["failures"]; s += a["skipped"]
  } END { print p + 0, f + 0, s + 0 }' "$1"
}

passed=0; failed=0; skipped=0
run_suite() {  # <name> <build-dir> <cmake args...>
  local name=$1 dir=$2; shift 2
  echo "== $name: configure and build"
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
  echo "== $name: tests"
  local log="$dir/ctest.log" results="$root/$dir/gtest-results"
  rm -rf "$results"; mkdir -p "$results"
  # Test programs under Wine take the folder as a Windows path.
  local xml_dir="$results/"
  [ "$name" != windows ] || xml_dir="$(winepath -w "$results")\\"
  if GTEST_OUTPUT="xml:$xml_dir" ctest --test-dir "$dir" --output-on-failure -j "$jobs" 2>&1 | tee "$log"; then :; fi
  if ! grep -qE 'tests passed, [0-9]+ tests failed out of [0-9]+' "$log"; then
    echo "$name: no test summary"; failed=$((failed + 1)); return
  fi
  local test xml counts_p counts_f counts_s p f program_failed
  while read -r test; do
    program_failed=0
    grep -qE "^[[:space:]]*[0-9]+ - $test \(" "$log" && program_failed=1
    p=0; f=0
    for xml in "$results/$test".xml "$results/$test"_[0-9]*.xml; do
      [ -f "$xml" ] || continue
      read -r counts_p counts_f counts_s < <(count_xml "$xml")
      p=$((p + counts_p)); f=$((f + counts_f)); skipped=$((skipped + counts_s))
    done
    if [ $((p + f)) -eq 0 ]; then
      if [ $program_failed -eq 1 ]; then f=1; else p=1; fi
    elif [ $program_failed -eq 1 ] && [ $f -eq 0 ]; then
      f=1  # every case passed, but the program did not (a sanitizer report at exit, a crash)
    fi
    passed=$((passed + p)); failed=$((failed + f))
  done < <(ctest --test-dir "$dir" -N | sed -nE 's/^ *Test +#[0-9]+: (.*)$/\1/p')
}

wine_server_stop() {
  wineserver -k 2>/dev/null || true
  wineserver -w 2>/dev/null || true
}

for p in "${platforms[@]}"; do
  case "$p" in
    linux)
      export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1
      run_suite linux build/linux -DLIBDRIVE_SANITIZE=ON ;;
    windows)
      export WINEDEBUG=-all
      # Create the prefix and wait until wineboot's server has gone, then keep one persistent
      # server for the whole run: no test program may race a server that is starting or exiting.
      wineboot --init >/dev/null 2>&1 || true
      wineserver -w
      wineserver -p
      trap wine_server_stop EXIT
      run_suite windows build/windows -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake
      wine_server_stop
      trap - EXIT ;;
    *) echo "unknown platform: $p" >&2; exit 2 ;;
  esac
done

[ "$skipped" -eq 0 ] || echo "($skipped skipped by the tests themselves; see their output)"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
