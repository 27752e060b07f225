# shellcheck shell=bash
# The Debian packages of this project, and the routines that install them. Sourced by the other scripts.

BUILD_PACKAGES=(cmake g++ ninja-build libcli11-dev libeigen3-dev libfmt-dev nlohmann-json3-dev)
TEST_PACKAGES=(abigail-tools binutils libbenchmark-dev libgtest-dev pkgconf python3-numpy)
DEB_PACKAGES=(dpkg-dev file help2man)
CHECK_PACKAGES=(clang-format clang-tidy cppcheck)
COVERAGE_PACKAGES=(gcovr)
FUZZ_PACKAGES=(clang libclang-rt-14-dev libgtest-dev llvm)
WINDOWS_PACKAGES=(g++-mingw-w64-x86-64-posix googletest wine wine64)
MEMORY_PACKAGES=(libc6-dbg valgrind)

# install_missing PACKAGE...: installs those that aren't there, and only those; silent where none is missing.
install_missing() {
  local package missing=() as_root=()
  for package in "$@"; do
    if [[ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]]; then
      missing+=("$package")
    fi
  done
  if ((${#missing[@]} == 0)); then return 0; fi

  if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
      echo "To be installed first, as root: apt-get install ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
}

# install_gnuplot: for the pictures of the command line tool; any gnuplot that is there serves.
install_gnuplot() {
  command -v gnuplot >/dev/null || install_missing gnuplot-nox
}
