#!/bin/bash
# Runs the Windows program as if it were one of Linux, for tests that are written for that: its lines end in line feeds
# alone, and it finds the gnuplot of Linux where the search path has that.
# Usage: as_linux_program.sh FOLDER_OF_GNUPLOT_EXE PROGRAM [ARGUMENT...]
gnuplot_folder=$1
shift
command -v gnuplot >/dev/null && export WINEPATH="Z:$gnuplot_folder"
PATH=$PATH:/usr/bin:/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export GNUPLOT_DONE=$work/done
"$(dirname "$0")/wine.sh" "$@" >"$work/out" 2>"$work/err"
code=$?
tr -d '\r' <"$work/err" >&2
tr -d '\r' <"$work/out" || code=1
exit $code
