#!/usr/bin/env bash
# Looks for faults: builds the fuzzers, makes their seeds and runs each so many minutes, one process a core.
# Prints executions, coverage and, of a crash, how to replay it. Exit status 1 where there is a crash.
#
# Usage: scripts/fuzz.sh MINUTES [TARGET...]; the targets are blocks, runs, volumes and reads, by default all.
# PRESET=fuzz-unchecked runs the library without table checks, as it is shipped. JOBS=n runs n at a time.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh

minutes=${1:?usage: scripts/fuzz.sh MINUTES [TARGET...]}
shift
targets=("$@")
if ((${#targets[@]} == 0)); then targets=(blocks runs volumes reads); fi
preset=${PRESET:-fuzz}
jobs=${JOBS:-$(nproc)}
seconds=$(awk -v minutes="$minutes" 'BEGIN { printf "%d", 60 * minutes }')

install_missing "${BUILD_PACKAGES[@]}" "${FUZZ_PACKAGES[@]}"
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j "$jobs"
build=$PWD/build/$preset

# Models and the working folder lie in memory where that can be had; what is found in the build folder.
if [[ -d /dev/shm && -w /dev/shm ]]; then export TMPDIR=/dev/shm; fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch
export ASAN_OPTIONS=quarantine_size_mb=16:malloc_context_size=8:${ASAN_OPTIONS:-}

# A small file must not make the library take much memory, hang, or leave any behind. Standard output belongs
# to the library's messages.
options=(-max_len=104 -timeout=10 -malloc_limit_mb=256 -rss_limit_mb=2048 -entropic=0 -close_fd_mask=1
  -print_final_stats=1)

# run_target NAME: a fuzzer, from its seeds and what earlier runs have kept.
run_target() {
  local found=$build/found/$1
  mkdir -p "$found/corpus" "$scratch/$1"
  "$build/fuzz/make_seeds" "$scratch/$1/seeds"
  cd "$scratch/$1"
  "$build/fuzz/${1}_fuzzer" "${options[@]}" -max_total_time="$seconds" -artifact_prefix="$found/" \
    "$found/corpus" seeds >/dev/null 2>"$found/log"
}

# report NAME STATUS
report() {
  local log=$build/found/$1/log
  awk -v name="$1" '
    /^#[0-9]+/ {
      for (i = 1; i < NF; ++i) {
        if ($i == "cov:") cov = $(i + 1)
        if ($i == "ft:") ft = $(i + 1)
      }
    }
    /^stat::number_of_executed_units/ { runs = $2 }
    /^stat::average_exec_per_sec/ { speed = $2 }
    END { printf "%-8s %9d executions, %5d a second, cov %d, ft %d\n", name, runs, speed, cov, ft }' "$log"
  if (($2 == 0)); then return 0; fi
  grep -m 3 -E '^broken:|runtime error:|^SUMMARY:|ERROR:|^index ' "$log" || tail -n 5 "$log"
  local crash
  crash=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
  echo "  log:    $log"
  if [[ -n $crash ]]; then
    echo "  replay: MOVLOAD_FUZZ_TELL=1 $build/fuzz/${1}_fuzzer ${crash}"
  fi
}

failures=0
declare -A process
for target in "${targets[@]}"; do
  if [[ ! -x $build/fuzz/${target}_fuzzer ]]; then
    echo "no target $target" >&2
    exit 2
  fi
done
echo "== ${targets[*]}: $seconds seconds each"
for ((first = 0; first < ${#targets[@]}; first += jobs)); do
  for target in "${targets[@]:first:jobs}"; do
    run_target "$target" &
    process[$target]=$!
  done
  for target in "${targets[@]:first:jobs}"; do
    status=0
    wait "${process[$target]}" || status=$?
    report "$target" "$status"
    if ((status != 0)); then failures=$((failures + 1)); fi
  done
done
exit $((failures > 0))
