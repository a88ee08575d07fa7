#!/usr/bin/env bash
# The project's own files, without asking a repository: an unpacked archive has none, and a bare system
# no git. Source it and call `ours`, or run it: scripts/files.sh [PATTERN]...

# ours [PATTERN]...: the files below this folder that match one of the patterns (all, if none is given)
# and none of those that begin with `!`, NUL-ended and in order. A pattern is one of the shell's for the
# whole path; a `*` goes across folders. What is built lies in build/ and isn't ours.
ours() {
  local file pattern wanted none=1
  for pattern in "$@"; do [[ $pattern == !* ]] || none=0; done
  find . \( -path ./build -o -path ./.git \) -prune -o -type f -printf '%P\0' | LC_ALL=C sort --zero-terminated |
    while IFS= read -r -d '' file; do
      wanted=$none
      # shellcheck disable=SC2053  # it is a pattern
      for pattern in "$@"; do
        if [[ $pattern == !* ]]; then
          [[ $file != ${pattern#!} ]] || continue 2
        elif [[ $file == $pattern ]]; then
          wanted=1
        fi
      done
      ((wanted == 0)) || printf '%s\0' "$file"
    done
}

if [[ ${BASH_SOURCE[0]} == "$0" ]]; then
  set -euo pipefail
  cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
  ours "$@" | tr '\0' '\n'
fi
