#!/usr/bin/env bash
# Writes the program's man page from its own help, packed with gzip: first what `movload --help` says, then a section
# with the help of each subcommand.
# Usage: man-page.sh PATH_TO_PROGRAM PAGE.1.gz
set -euo pipefail
page=$(realpath -m "$2")
# help2man hands the program's path to a shell as it is: blanks in a folder's name would end it.
cd "$(dirname "$1")"
movload=./$(basename "$1")
sections=$(mktemp)
trap 'rm -f "$sections"' EXIT

commands=$("$movload" --help | awk '/^[^ ]/ { listed = /^Subcommands:/ } listed && /^  [a-z]/ { print $1 }')
for command in $commands; do
  # As it is printed; a backslash, and a dot or quote that begins a line, mean something to the formatter.
  printf '[movload %s]\n.nf\n%s\n.fi\n\n' "$command" \
    "$("$movload" "$command" --help | sed -e 's/\\/\\e/g' -e "s/^[.']/\\\\\&&/" -e 's/-/\\-/g')"
done >"$sections"

help2man --no-info --name "moving-load analysis of bridges under BS 5400 HA and HB loading" \
  --include "$sections" "$movload" |
  sed '/^\.SS "Example/,/^\.PP/ { s/^\.IP/&\n.nf/; s/^\.PP/.fi\n&/ }' | # commands keep their lines
  gzip -9n >"$page"
