#!/usr/bin/env bash
# A small tree with one fault at a time: check_tree.sh names each, and says nothing of a sound tree.
# Usage: check_tree_test.sh PATH_TO_CHECK_TREE
set -euo pipefail
check_tree=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failures=0

# expect FAULT: a text that the check must print, or nothing for a sound tree.
expect() {
  local output status=0
  output=$("$check_tree" "$tree") || status=$?
  if [[ -z $1 ]]; then
    if ((status == 0)) && [[ -z $output ]]; then return; fi
  elif ((status != 0)) && [[ $output == *"$1"* ]]; then
    return
  fi
  echo "expected \"$1\", got exit code $status and: $output"
  failures=$((failures + 1))
}

sound_tree() {
  rm -rf "${tree:?}"/*
  mkdir "$tree"/{common,exports,include,kernel,modelkit,results,search,store,tests}
  touch "$tree"/common/real.h "$tree"/include/movload.h "$tree"/modelkit/model.h
  echo '#include "common/real.h"' | tee "$tree"/search/ranges.h "$tree"/store/id_maps.h >/dev/null
  echo '#include "search/ranges.h"' >"$tree"/kernel/run_state.h
  printf '%s\n' '#include <vector>' '#include "kernel/run_state.h"' '#include "store/id_maps.h"' \
    >"$tree"/results/result_skeleton.h
  echo '#include "results/result_skeleton.h"' >"$tree"/kernel/driver.h
  printf '%s\n' '#include "kernel/driver.h"' '#include "movload.h"' >"$tree"/exports/exports.cpp
  echo '#include <windows.h>' >"$tree"/kernel/file_access_windows.cpp
  printf '%s\n' '#include "modelkit/model.h"' '#include "movload.h"' >"$tree"/tests/some_test.cpp
}

# fault FILE LINE FAULT: a sound tree with one line more.
fault() {
  sound_tree
  echo "$2" >>"$tree/$1"
  expect "$3"
}

sound_tree
expect ""
fault search/ranges.h '#include "kernel/run_state.h"' 'search must not include kernel/run_state.h'
fault search/ranges.h '#include "store/id_maps.h"' 'search must not include store/id_maps.h'
fault store/id_maps.h ' # include "search/ranges.h"' 'store must not include search/ranges.h'
fault kernel/run_state.h '#include "results/result_skeleton.h"' 'kernel/ground must not include results/'
fault kernel/run_state.h '#include "kernel/driver.h"' 'kernel/ground must not include kernel/driver.h'
fault results/result_skeleton.h '#include "kernel/driver.h"' 'results must not include kernel/driver.h'
fault results/result_skeleton.h '#include "movload.h"' 'results must not include include/movload.h'
fault common/real.h '#include "search/ranges.h"' 'common must not include search/ranges.h'
fault exports/exports.cpp '#include "modelkit/model.h"' 'the library must not include modelkit/model.h'
fault exports/exports.cpp '#include "kernel/drivers.h"' '"kernel/drivers.h" is no file of the tree'
fault search/ranges.h '#include "search/ranges.h"' '-> search/ranges.h -> search/ranges.h'
fault tests/other.h '#include <Windows.h>' 'tests/other.h:1: windows.h belongs'

sound_tree
echo '#include "search/hb_placing.h"' >>"$tree"/search/ranges.h
echo '#include "search/ranges.h"' >"$tree"/search/hb_placing.h
expect 'cycle of includes: '

exit $((failures > 0))
