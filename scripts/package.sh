#!/usr/bin/env bash
# Installs what is missing, builds, and writes the Debian packages into build/packages: the library, what programs are
# built with, and the command line tool.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${DEB_PACKAGES[@]}"

build=build/package
packages=$PWD/build/packages
# The same sources make the same packages: the date in them is that of the sources.
if [[ -z ${SOURCE_DATE_EPOCH:-} ]]; then
  SOURCE_DATE_EPOCH=$(git log -1 --pretty=%ct 2>/dev/null || date +%s)
fi
export SOURCE_DATE_EPOCH
# Packages install where programs and libraries are looked for, and need no search path of their own.
cmake --preset release -B "$build" -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_INSTALL_RPATH=ON \
  -DMOVLOAD_TESTS=OFF -DMOVLOAD_BENCH=OFF
cmake --build "$build" -j "${JOBS:-$(nproc)}"
rm -rf "$packages"
cpack --config "$build/CPackConfig.cmake" -B "$packages"
rm -rf "$packages/_CPack_Packages"
printf '\nTo install them:\n  sudo apt install build/packages/*.deb\n'
