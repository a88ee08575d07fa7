#!/usr/bin/env bash
# small_drive_test.sh SOURCE CRASH.exe: a drive that a test fills up ends at its size and leaves
# nothing on this machine's disk; without a mount name space there is no such drive.
set -euo pipefail
source=$1 crash=$2
export ZQ_PREFIX=small ZQ_PREFIX_OPTIONS="--drive d:2M"

# shellcheck source=scripts/cage.sh
source "$source/scripts/cage.sh"
if [[ $(cage_wall) == namespaces ]]; then
  bytes=$("$source/scripts/wine-run.sh" "$crash" fill | tr -d '\r')
  [[ $bytes == 2097152 ]] || { echo "a drive of 2 MiB took $bytes bytes"; exit 1; }
  [[ -z $(ls -A "$(cage_path small)/drive_d") ]] || { echo "the filler is on this machine's disk"; exit 1; }
  "$source/scripts/prefix.sh" stop small
fi

status=0
ZQ_CAGE_WALL=drives "$source/scripts/wine-run.sh" "$crash" fill 2>/dev/null || status=$?
((status == 96)) || { echo "without a name space it went on, with $status"; exit 1; }
