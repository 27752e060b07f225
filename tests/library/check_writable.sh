#!/usr/bin/env bash
# Lists the writable objects of the built library and fails unless they are the known ones: process-wide state is
# three objects, and any other static that can be written, a local one with its guard too, is a mistake.
# Usage: check_writable.sh LIBRARY
set -euo pipefail
library=$1

# Of the compiler and linker: the runtime's own marks, and references to type information that the loader fills in.
toolchain='completed\.[0-9]+|__dso_handle|__TMC_END__|_edata|_end|__bss_start|DW\.ref\..*'
known='(anonymous namespace)::host_settings
(anonymous namespace)::influence_store
(anonymous namespace)::last_failure'

# In objdump's symbol table the section is followed by a tab, the size and the name. Section symbols stand for no
# object.
found=$(objdump --syms --demangle "$library" |
  sed -nE 's/^[0-9a-f]+ ([^\t]{7}) (\.data|\.bss|\.tdata|\.tbss|\*COM\*)\t[0-9a-f]+ +(\.hidden )?(.*)$/\1|\4/p' |
  grep -v '^[^|]*d |' | cut -d '|' -f 2 | grep -vxE "$toolchain" | LC_ALL=C sort) || true
if [[ $found == "$known" ]]; then exit 0; fi
echo "writable objects that are expected:"
echo "$known"
echo "writable objects that the library has:"
echo "$found"
exit 1
