#!/usr/bin/env bash
# Runs the movload commands that the documentation shows, in the order of each page, and compares the output where the
# page shows it. A command stands in a console block behind "$ "; its output ends at the next command, at "..." or
# with the block.
# Usage: run_docs_test.sh PATH_TO_PROGRAM PAGE...
set -euo pipefail
movload=$1
shift

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
faults=0
commands=0

# check COMMAND SHOWN_OUTPUT: "movload ..." run in the work folder.
check() {
  local words output
  [[ $1 == "movload "* ]] || return 0
  read -ra words <<<"${1#movload }"
  commands=$((commands + 1))
  if ! output=$(cd "$work" && "$movload" "${words[@]}" 2>&1); then
    printf 'failed: %s\n%s\n' "$1" "$output"
    faults=$((faults + 1))
  elif [[ -n $2 && $output != "${2%$'\n'}" ]]; then
    printf 'not what the page shows: %s\n' "$1"
    diff <(echo "${2%$'\n'}") <(echo "$output") || true
    faults=$((faults + 1))
  fi
}

for page in "$@"; do
  rm -rf "${work:?}"/*
  # Where scripts/demo.sh writes its example.
  mkdir -p "$work/build/demo"
  check "movload example build/demo/example" ""
  in_block=no command="" shown=""
  while IFS= read -r line; do
    if [[ $line == '```console' ]]; then
      in_block=yes
    elif [[ $in_block == yes && ($line == '```' || $line == '...' || $line == '$ '*) ]]; then
      check "$command" "$shown"
      command="" shown=""
      if [[ $line == '$ '* ]]; then command=${line#'$ '}; fi
      if [[ $line == '```' ]]; then in_block=no; fi
    elif [[ $in_block == yes && -n $command ]]; then
      shown+=$line$'\n'
    fi
  done <"$page"
done
if ((commands <= $#)); then
  echo "the pages show no command"
  faults=$((faults + 1))
fi
exit $((faults > 0))
