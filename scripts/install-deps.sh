#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, when any is missing.
set -euo pipefail

# Usage: install-deps.sh [linux]   (linux: only what the native build needs)
packages=(cmake ninja-build g++ clang clang-format-14 libgtest-dev libgmock-dev googletest libbenchmark-dev libssl-dev
          ansible-core prometheus libxml2-utils librsvg2-bin libpng-dev libfreetype-dev fonts-dejavu-core)
[ "${1:-}" = linux ] || packages+=(g++-mingw-w64-x86-64-posix wine64 wine)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""; [ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
