#!/usr/bin/env bash
# Runs what is quick of the store, search and kernel tests, and the example bridge's envelopes from both forms of its
# files, under valgrind's memcheck: reads of what was never written, which no sanitizer of the test suite sees, and
# leaks. JOBS=n builds with n processes.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_missing "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${MEMORY_PACKAGES[@]}"

cmake --preset release >/dev/null
cmake --build --preset release -j "${JOBS:-$(nproc)}" --target store_tests search_tests kernel_tests movload_tool
files=$(mktemp -d)
trap 'rm -r "$files"' EXIT

check() { valgrind --quiet --leak-check=full --errors-for-leak-kinds=definite,possible --error-exitcode=1 "$@"; }

# The judges of the searches try everything, and other tests of some work do little in memory.
slow='*bitwise*:*bounds*hold*:*equal*:*very_many*:*4_GB*:*4_gb*'
for subject in store search kernel; do
  echo "== $subject"
  check "build/release/tests/${subject}_tests" --gtest_brief=1 --gtest_filter="-$slow"
done

movload=build/release/tools/movload
"$movload" example "$files" --included-set >/dev/null
base=$files/bridge
# From blocks and from each family of element files; HA, HB in a lane and HB across two.
while read -r kind id item mv_case; do
  for form in '' '--store'; do
    echo "== envelope of $kind $id${form:+, $form}"
    # shellcheck disable=SC2086 # no form, or one and the name that goes with it
    check "$movload" envelope "$base" --kind "$kind" --id "$id" --item "$item" --case "$mv_case" \
      ${form:+$form --include "${base}_included"} >/dev/null
  done
done <<'END'
simb 3 3 1
disp 176 3 6
reac 101 3 5
beam 18 15 4
truss 31 1 2
plate 51 1 3
END
