#!/usr/bin/env bash
# Builds libdrive for Linux (under AddressSanitizer and UndefinedBehaviorSanitizer) and for
# Windows x86-64 (MinGW-w64), and runs every test on both: natively and under Wine.
# Usage: scripts/test.sh [linux|windows]...   (both when none is named)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"

platforms=("$@"); [ ${#platforms[@]} -gt 0 ] || platforms=(linux windows)
jobs=$(nproc 2>/dev/null || echo 2)

if [[ " ${platforms[*]} " == *" windows "* ]]; then scripts/install-deps.sh; else scripts/install-deps.sh linux; fi

passed=0; failed=0
run_suite() {  # <name> <build-dir> <cmake args...>
  local name=$1 dir=$2; shift 2
  echo "== $name: configure and build"
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
  echo "== $name: tests"
  local log="$dir/ctest.log"
  if ctest --test-dir "$dir" --output-on-failure -j "$jobs" 2>&1 | tee "$log"; then :; fi
  local line total fails
  line=$(grep -E 'tests passed, [0-9]+ tests failed out of [0-9]+' "$log" | tail -n 1 || true)
  if [ -z "$line" ]; then echo "$name: no test summary"; failed=$((failed + 1)); return; fi
  total=$(sed -E 's/.*out of ([0-9]+).*/\1/' <<<"$line")
  fails=$(sed -E 's/.*, ([0-9]+) tests failed.*/\1/' <<<"$line")
  passed=$((passed + total - fails)); failed=$((failed + fails))
}

for p in "${platforms[@]}"; do
  case "$p" in
    linux)
      export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1
      run_suite linux build/linux -DLIBDRIVE_SANITIZE=ON ;;
    windows)
      export WINEDEBUG=-all
      # The first Wine start creates its prefix; do it once before tests run in parallel.
      wineboot --init >/dev/null 2>&1 || true
      run_suite windows build/windows -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake ;;
    *) echo "unknown platform: $p" >&2; exit 2 ;;
  esac
done

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
