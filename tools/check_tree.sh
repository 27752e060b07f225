#!/usr/bin/env bash
# Reads the include lines of the tree against the direction in which the folders may know each other:
#
#   exports -> kernel, top floor -> results -> kernel, ground floor -> search -> common
#                                   results -> store -> common
#
# The library never includes the folders built on top of it, no file includes itself by a detour, and windows.h is
# seen by sources named *_windows.cpp alone. Silent when all is well; else a line for each fault, and exit code 1.
#
# Usage: check_tree.sh [FOLDER], by default the tree that this script lies in.
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

find . -path ./build -prune -o -path './.*' -prune -o \
  -type f \( -name '*.h' -o -name '*.c' -o -name '*.cpp' \) -print | sed 's|^\./||' | LC_ALL=C sort |
  awk '
    BEGIN {
      # Floor of each part of the library, and the parts that it may include beside itself.
      split("kernel_entry driver diagnostic_dump", top_names, " ")
      for (i in top_names) is_top[top_names[i]] = 1
      may["exports"] = " include kernel/top results kernel/ground search store common "
      may["kernel/top"] = " results kernel/ground search store common "
      may["results"] = " kernel/ground search store common "
      may["kernel/ground"] = " search common "
      may["search"] = " common "
      may["store"] = " common "
      may["common"] = " "
      may["include"] = " "
    }

    { files[++count] = $0; exists[$0] = 1 }

    END {
      for (i = 1; i <= count; ++i) read_includes(files[i])
      for (i = 1; i <= count; ++i) if (!state[files[i]]) look_for_cycle(files[i], files[i])
      exit faults > 0
    }

    function fault(text) { print text; ++faults }

    # The part of the library that a file belongs to; empty for what stands on top of the library.
    function part_of(file, parts, name) {
      split(file, parts, "/")
      if (parts[1] != "kernel") return (parts[1] in may) ? parts[1] : ""
      name = parts[2]
      sub(/\.[a-z]*$/, "", name)
      return is_top[name] ? "kernel/top" : "kernel/ground"
    }

    function read_includes(file, line, name, quoted, place, target, part, wanted, number) {
      part = part_of(file)
      while ((getline line < file) > 0) {
        ++number
        if (line !~ /^[ \t]*#[ \t]*include[ \t]*[<"]/) continue
        name = line
        sub(/^[ \t]*#[ \t]*include[ \t]*/, "", name)
        quoted = substr(name, 1, 1) == "\""
        name = substr(name, 2)
        sub(/[>"].*/, "", name)
        place = file ":" number ": "

        if (tolower(name) == "windows.h" && file !~ /_windows\.cpp$/)
          fault(place "windows.h belongs into sources named *_windows.cpp")

        target = resolve(file, name)
        if (target == "") {
          if (part != "" && quoted) fault(place "\"" name "\" is no file of the tree")
          continue
        }
        includes[file, ++n_includes[file]] = target
        if (part == "") continue
        wanted = part_of(target)
        if (wanted == "")
          fault(place "the library must not include " target)
        else if (wanted != part && index(may[part], " " wanted " ") == 0)
          fault(place part " must not include " target " (" wanted ")")
      }
      close(file)
    }

    function resolve(file, name, folder) {
      if (name in exists) return name
      if (("include/" name) in exists) return "include/" name
      folder = file
      sub(/[^\/]*$/, "", folder)
      return ((folder name) in exists) ? folder name : ""
    }

    # state: 1 on the way down, 2 done.
    function look_for_cycle(file, path, i, next_file) {
      state[file] = 1
      for (i = 1; i <= n_includes[file]; ++i) {
        next_file = includes[file, i]
        if (state[next_file] == 1) fault("cycle of includes: " path " -> " next_file)
        else if (!state[next_file]) look_for_cycle(next_file, path " -> " next_file)
      }
      state[file] = 2
    }
  '
