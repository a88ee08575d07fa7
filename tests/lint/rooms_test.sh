#!/usr/bin/env bash
# No include points up or sideways: rooms.txt tells which room of src/ may use which.
set -euo pipefail
here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)

# wrong_includes FOLDER TABLE: the includes below the folder that the table doesn't allow, one a line, and
# what is wrong with the table.
wrong_includes() {
  (cd -- "$1" && find . -type f \( -name '*.h' -o -name '*.cpp' \) -printf '%P\n' | LC_ALL=C sort) |
    (cd -- "$1" && xargs --no-run-if-empty -d '\n' awk -v table="$2" '
      # The room of a path: the longest that it lies in; "" if there is none.
      function room(path,   folder) {
        folder = path
        while (sub("/[^/]*$", "", folder)) if (folder in known) return folder
        return index(path, "/") ? "" : "."
      }
      BEGIN {
        while ((getline line < table) > 0) {
          if (line ~ /^ *(#|$)/) continue
          name = line; sub(/:.*/, "", name); sub(/^[^:]*:/, "", line)
          count = split(line, uses, " ")
          for (i = 1; i <= count; i++) {
            if (!(uses[i] in known)) print "rooms.txt: " name " may use " uses[i] ", which does not stand below it"
            may[name, uses[i]] = 1
          }
          known[name] = 1
        }
      }
      FNR == 1 {
        mine = room(FILENAME)
        if (mine == "") print FILENAME ": its folder is not in rooms.txt"
      }
      /^[ \t]*#[ \t]*include[ \t]*"/ {
        target = $0; sub(/^[^"]*"/, "", target); sub(/".*/, "", target)
        if (target ~ /(^|\/)\.\.?\//) print FILENAME ":" FNR ": " target " is not a path from src/"
        if (target !~ /\//) next  # of resources/, or beside it
        theirs = room(target)
        if (theirs == "") print FILENAME ":" FNR ": " target " lies in no room of rooms.txt"
        else if (theirs != mine && !((mine, theirs) in may)) print FILENAME ":" FNR ": " mine " may not use " theirs ": " target
      }')
}

# --- It refuses what it should: a tree made for this ---

scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT
failed=0

# put FILE LINE: one file with one line.
put() {
  mkdir -p -- "$scratch/src/$(dirname -- "$1")"
  echo "$2" >"$scratch/src/$1"
}
# expect WHAT [TABLE]: what is found in the tree, which then is empty again.
expect() {
  local found
  found=$(wrong_includes "$scratch/src" "${2:-$here/rooms.txt}")
  if [[ $found != "$1" ]]; then
    printf 'rooms_test: found\n%s\ninstead of\n%s\n' "$found" "$1"
    failed=1
  fi
  rm -rf -- "$scratch/src"
}

put wipe/a.cpp '#include "jobs/JobList.h"'
put wipe/b.cpp '#include "wipe/a.h"'
put wipe/c.cpp '#include "resource.h"'
put app.cpp '#include "core/main/frmMain.h"'
put controls/a.h '#include "platform/win32/Wide.h"'
put engine/deep/a.cpp '#include "engine/Device.h"'
expect ""
put jobs/a.cpp '#include "core/main/frmMain.h"'
expect "jobs/a.cpp:1: jobs may not use core/main: core/main/frmMain.h"
put help/a.h '  #  include "preferences/frmPreferences.h"'
expect "help/a.h:1: help may not use preferences: preferences/frmPreferences.h"
put engine/a.cpp '#include "platform/Text.h"'
expect "engine/a.cpp:1: engine may not use platform: platform/Text.h"
put platform/a.h '#include "platform/win32/Wide.h"'
expect "platform/a.h:1: platform may not use platform/win32: platform/win32/Wide.h"
put controls/a.h '#include "core/state/AppState.h"'
expect "controls/a.h:1: controls may not use core/state: core/state/AppState.h"
put core/main/a.cpp '#include "app.h"'
put core/main/b.cpp '#include "../state/AppState.h"'
expect "core/main/b.cpp:1: ../state/AppState.h is not a path from src/
core/main/b.cpp:1: ../state/AppState.h lies in no room of rooms.txt"
put attic/a.cpp ''
expect "attic/a.cpp: its folder is not in rooms.txt"
put jobs/a.cpp '#include "attic/a.h"'
expect "jobs/a.cpp:1: attic/a.h lies in no room of rooms.txt"
put jobs/a.cpp ''
printf 'jobs: wipe\nwipe: jobs\n' >"$scratch/circle"
expect "rooms.txt: jobs may use wipe, which does not stand below it" "$scratch/circle"

# --- Our own tree ---

found=$(wrong_includes "$here/../../src" "$here/rooms.txt")
if [[ -n $found ]]; then
  printf 'Includes that point up or sideways:\n%s\n' "$found"
  failed=1
fi
exit "$failed"
