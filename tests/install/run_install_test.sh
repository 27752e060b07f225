#!/usr/bin/env bash
# Builds the C example as hosts do, as an outside CMake project and with pkg-config, against an installed build: one
# that was installed into a fresh folder and moved, or with CPACK the contents of the Debian packages or of the archive
# for Windows. Both programs must run; where the command line tool is installed, they run on its example bridge.
# Usage: run_install_test.sh SOURCE_FOLDER BUILD_FOLDER CMAKE GENERATOR C_COMPILER [CPACK [TOOLCHAIN]], the last for a
# build for Windows, whose programs run under wine.
set -euo pipefail
source_folder=$1
build_folder=$2
cmake=$3
generator=$4
compiler=$5
cpack=${6:-}
toolchain=${7:-}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
example=$source_folder/examples/c_host

# quietly COMMAND...: shows what the command says only if it fails.
quietly() {
  if ! "$@" >"$work/log" 2>&1; then
    echo "failed: $*"
    cat "$work/log"
    return 1
  fi
}

# expect WHAT FOUND: the packages' fields and contents.
expect() {
  if [[ $2 != *"$1"* ]]; then
    echo "expected $1 in: $2"
    return 1
  fi
}

# unpack_packages: each has what its name says, and depends on the library and on what that needs.
unpack_packages() {
  local deb version
  version=$(sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")/\1/p' "$build_folder/CPackConfig.cmake")
  for deb in "$work"/packages/*.deb; do
    dpkg-deb -x "$deb" "$work/unpacked"
    if [[ $deb == */libmovload1_* ]]; then
      expect "libstdc++6" "$(dpkg-deb -f "$deb" Depends)"
      expect "libmovload 1 libmovload1 (>= $version)" "$(dpkg-deb -I "$deb" shlibs)"
      expect "libmovload.so.1" "$(dpkg-deb -c "$deb")"
    else
      expect "libmovload1 (= $version)" "$(dpkg-deb -f "$deb" Depends)"
    fi
  done
  [[ -f $work/unpacked/usr/include/movload.h ]] && ls "$work"/packages/libmovload1_*.deb >/dev/null
}

if [[ -n $cpack ]]; then
  quietly "$cpack" --config "$build_folder/CPackConfig.cmake" -B "$work/packages"
fi
if [[ -n $cpack && -n $toolchain ]]; then
  mkdir "$work/unpacked"
  (cd "$work/unpacked" && "$cmake" -E tar xf "$work"/packages/*.zip)
  prefix=$(echo "$work"/unpacked/movload-*)
elif [[ -n $cpack ]]; then
  unpack_packages
  prefix=$work/unpacked/usr
else
  quietly "$cmake" --install "$build_folder" --prefix "$work/first"
  mv "$work/first" "$work/moved"
  prefix=$work/moved
fi

emulator=() end="" options=(-DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$compiler")
if [[ -n $toolchain ]]; then
  emulator=("$source_folder/tests/wine/wine.sh") end=.exe
  options=(-DCMAKE_TOOLCHAIN_FILE="$(cd "$source_folder" && realpath "$toolchain")" -Dmovload_DIR="$prefix/lib/cmake/movload")
  export WINEPREFIX=$build_folder/wine WINEPATH="Z:$prefix/bin"
fi
quietly "$cmake" -S "$example" -B "$work/project" -G "$generator" "${options[@]}"
quietly "$cmake" --build "$work/project"

pc_folder=$(dirname "$(find "$prefix" -name movload.pc)")
export PKG_CONFIG_PATH=$pc_folder
read -ra flags <<<"$(pkg-config --cflags --libs movload)"
rpath=(-Wl,-rpath,"$(pkg-config --variable=libdir movload)")
if [[ -n $toolchain ]]; then rpath=(); fi
quietly "$compiler" -std=c11 -pedantic -Wall -Wextra -Werror "$example/envelope.c" -o "$work/envelope$end" "${flags[@]}" \
  "${rpath[@]}"

version=$(pkg-config --modversion movload)
if ! grep -q "PACKAGE_VERSION \"$version\"" "$(find "$prefix" -name movload-config-version.cmake)"; then
  echo "movload.pc and the CMake package tell different versions"
  exit 1
fi

# Without a model's files each program ends with exit code 1 and a line that names the file.
for program in "$work/project/envelope$end" "$work/envelope$end"; do
  status=0
  "${emulator[@]}" "$program" "$work/absent" 1 1 3 1 2>"$work/message" || status=$?
  if ((status != 1)) || ! grep -q "absent.ZA3" "$work/message"; then
    echo "$program: exit code $status instead of 1, and says: $(cat "$work/message")"
    exit 1
  fi
done

# The installed tool finds the library in the moved folder, and both programs get the same answer for its example.
movload=$prefix/bin/movload$end
if [[ -x $movload ]]; then
  quietly "${emulator[@]}" "$movload" example "$work/demo"
  for program in "$work/project/envelope$end" "$work/envelope$end"; do
    quietly "${emulator[@]}" "$program" "$work/demo/bridge" 1 176 3 1
    if [[ $(grep -c '^  lane [123], factor' "$work/log") != 6 ]]; then
      echo "$program tells no loading of three lanes on both sides: $(cat "$work/log")"
      exit 1
    fi
  done
fi
