#!/usr/bin/env bash
# Installs a build into a fresh folder, moves that folder, and builds the C example against it as hosts do: as an
# outside CMake project and with pkg-config. Both programs must run; where the command line tool is installed, they
# run on its example bridge.
# Usage: run_install_test.sh SOURCE_FOLDER BUILD_FOLDER CMAKE GENERATOR C_COMPILER [TOOLCHAIN], the last for a build for
# Windows, whose programs run under wine.
set -euo pipefail
source_folder=$1
build_folder=$2
cmake=$3
generator=$4
compiler=$5
toolchain=${6:-}

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

quietly "$cmake" --install "$build_folder" --prefix "$work/first"
mv "$work/first" "$work/moved"

emulator=() end="" options=(-DCMAKE_PREFIX_PATH="$work/moved" -DCMAKE_C_COMPILER="$compiler")
if [[ -n $toolchain ]]; then
  emulator=("$source_folder/tests/wine/wine.sh") end=.exe
  options=(-DCMAKE_TOOLCHAIN_FILE="$(cd "$source_folder" && realpath "$toolchain")" -Dmovload_DIR="$work/moved/lib/cmake/movload")
  export WINEPREFIX=$build_folder/wine WINEPATH="Z:$work/moved/bin"
fi
quietly "$cmake" -S "$example" -B "$work/project" -G "$generator" "${options[@]}"
quietly "$cmake" --build "$work/project"

pc_folder=$(dirname "$(find "$work/moved" -name movload.pc)")
export PKG_CONFIG_PATH=$pc_folder
read -ra flags <<<"$(pkg-config --cflags --libs movload)"
rpath=(-Wl,-rpath,"$(pkg-config --variable=libdir movload)")
if [[ -n $toolchain ]]; then rpath=(); fi
quietly "$compiler" -std=c11 -pedantic -Wall -Wextra -Werror "$example/envelope.c" -o "$work/envelope$end" "${flags[@]}" \
  "${rpath[@]}"

version=$(pkg-config --modversion movload)
if ! grep -q "PACKAGE_VERSION \"$version\"" "$(find "$work/moved" -name movload-config-version.cmake)"; then
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
movload=$work/moved/bin/movload$end
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
