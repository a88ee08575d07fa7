# shellcheck shell=bash
# Sourced by tests that wipe for real.

# make_wipe_place NAME ZQWIPE FOLDER: makes the new folder $scratch, in which ZQWIPE can wipe: not every file system lets
# it. It lies in FOLDER, or where that won't do in another place of this machine's. Ends the test if there is none.
make_wipe_place() {
  local program=$2 folder place
  for folder in "$3" "${TMPDIR:-/tmp}" /var/tmp /dev/shm; do
    place=$(realpath -e -- "$folder" 2>/dev/null) && scratch=$(mktemp -d -p "$place" 2>/dev/null) || continue
    echo probe >"$scratch/probe"
    "$program" --yes --quiet -- "$scratch/probe" </dev/null && return
    rm -rf -- "$scratch"
  done
  echo "$1: no file can be wiped here" >&2
  exit 1
}
