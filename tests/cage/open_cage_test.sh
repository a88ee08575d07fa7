#!/usr/bin/env bash
# open_cage_test.sh SOURCE CRASH.exe: each way to open a cage is refused, and nothing is run in it.
# What the open cages lead to is an empty folder made for this.
set -euo pipefail
source=$1 crash=$2
# shellcheck source=scripts/cage.sh
source "$source/scripts/cage.sh"

whole=$("$source/scripts/prefix.sh" create test)
copy=$(cage_path open-cage)
outside=$(mktemp -d)
trap 'rm -rf -- "$copy" "$outside"' EXIT
failed=0

# fresh: a copy of the prefix, still caged. The system's files are shared; none of them is touched.
fresh() {
  local part
  rm -rf -- "$copy"
  mkdir -- "$copy"
  cp -r --preserve=links -- "$whole/dosdevices" "$copy/"
  mkdir -- "$copy"/{cage,home,tmp,drive_c}
  cp -- "$whole/cage/made-by-prefix.sh" "$copy/cage/"
  # Other tests may be running in the prefix: their temporary files come and go under a copy's feet.
  (cd -- "$whole/drive_c" && find users -name Temp -prune -o -type d -print0) |
    (cd -- "$copy/drive_c" && xargs -0 mkdir -p --)
  mkdir -- "$copy/drive_c/windows"
  for part in "$whole"/drive_c/windows/*; do
    [[ ${part##*/} == temp ]] || cp -al -- "$part" "$copy/drive_c/windows/"
  done
}

# refused WHAT: the copy as it now stands must not pass, nor run a program.
refused() {
  local status=0
  if cage_verify "$copy" 2>/dev/null; then
    echo "not noticed: $1"
    failed=1
  fi
  ZQ_PREFIX=open-cage "$source/scripts/wine-run.sh" "$crash" 2>/dev/null || status=$?
  if ((status != 97)); then
    echo "a program was run (exit code $status) in spite of: $1"
    failed=1
  fi
  [[ -z $(cage_keeper "$copy") ]] || { echo "the cage was started in spite of: $1"; failed=1; }
}

fresh
cage_verify "$copy" || { echo "a whole copy was refused"; failed=1; }

ln -s "$outside" "$copy/dosdevices/z:"
refused "a drive z:"

fresh
ln -s "$outside" "$copy/dosdevices/d:"
refused "a drive d:"

fresh
ln -s /dev/null "$copy/dosdevices/d::"
refused "a device behind a drive"

fresh
rm -- "$copy/dosdevices/c:"
ln -s "$outside" "$copy/dosdevices/c:"
refused "a drive c: elsewhere"

fresh
mv -- "$copy/drive_c" "$outside/drive_c"
ln -s "$outside/drive_c" "$copy/drive_c"
refused "a drive_c that is a link"

fresh
rmdir -- "$copy/drive_c/users/user/Documents"
ln -s "$outside" "$copy/drive_c/users/user/Documents"
refused "a Documents folder elsewhere"

fresh
ln -s ../../../home "$copy/drive_c/users/user/up"
refused "a link out of the drive, into the prefix"

fresh
echo "d 2M" >"$copy/cage/drives"
mkdir -- "$copy/drive_d"
ln -s ../drive_d "$copy/dosdevices/d:"
: >"$copy/drive_d/file"
refused "a small drive that is a folder of this disk"

fresh
rm -- "$copy/cage/made-by-prefix.sh"
cage_verify "$copy" 2>/dev/null && { echo "not noticed: a prefix that prefix.sh did not make"; failed=1; }

exit "$failed"
