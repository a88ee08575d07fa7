#!/usr/bin/env bash
# free_space_failures_test.sh TOOLS FOLDER: what keeps a wipe of free space from its end, made on a file system in an
# image: a root folder without access, a drive that is read-only, a quota, a drive that goes away, a device whose writes
# fail in the middle. Each is told once, with the system's number and a text of one line, and leaves neither fillers nor a file that
# is changed, and all the space that there was.
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/images.sh"
enter_own_space "${BASH_SOURCE[0]}" "$@"
tools=$1 work=$2/free.failures
image_need ext4
need_tools setpriv xfs_io e2fsck
own_folder "$work"
mkdir -- "$work/mnt" "$work/thin"
mnt=$work/mnt

failed=0
name=
fault() { say "FAULT ($name): $*"; failed=1; }

# begin NAME [IMAGE [KIND]]: a file system with some files on it, mounted.
begin() {
  local image=${2:-$work/image} kind=${3:-ext4} device
  name=$1
  image_make "$kind" "$image"
  image_mount "$kind" "$image" "$mnt"
  device=$(losetup --noheadings --output NAME --associated "$image" | head -n 1)
  echo 0 >"/sys/class/block/${device##*/}/queue/discard_max_bytes"
  # Nobody fills this machine's disk, whatever has gone wrong before.
  [[ $(stat -c %d "$mnt") != "$(stat -c %d /)" ]] || { say "$mnt is not an image"; exit 1; }
  for i in 1 700 40000 3000000; do head -c "$i" /dev/urandom >"$mnt/$i"; done
  sync -f "$mnt"
  live=$(cd -- "$mnt" && sha256sum [0-9]*)
  free=$(stat -f -c %f "$mnt")
}

# wipe [--slowly] [COMMAND]...: the tool, begun by COMMAND.
wipe() {
  local slowly=()
  [[ ${1:-} != --slowly ]] || { slowly=(--slowly); shift; }
  "$@" "$tools/wipe_tool" --free-space "${slowly[@]}" "$mnt" >"$work/output" 2>&1
}

# wipe_until_full: begins one in the background, and returns when it has written something.
wipe_until_full() {
  : >"$work/output"  # what the last one told isn't to be taken for it
  wipe --slowly &
  wipe=$!
  until (($(awk '$1 == "space" && $3 > 1500 { n++ } END { print n + 0 }' "$work/output") > 0)); do
    kill -0 "$wipe" 2>/dev/null || { fault "it ended before anything could happen: $(<"$work/output")"; break; }
    sleep 0.02
  done
}

# fails_with STATUS NUMBER TEXT: what the run has told, which ended with STATUS.
fails_with() {
  (($1 == 1)) || fault "it ended with $1: $(tail -n 3 "$work/output")"
  [[ $(grep -c '^error' "$work/output") == 1 ]] || fault "not one error: $(grep -v '^space' "$work/output")"
  grep -qE "^error $2 .*$3" "$work/output" || fault "another error: $(grep '^error' "$work/output")"
  # A second line of a text would begin with none of these.
  ! grep -vE '^(space|error|failed:|note:) ' "$work/output" >&2 || fault "a text of several lines"
  say "$name: $(grep '^error' "$work/output")"
}

# is_as_before: the mounted drive.
is_as_before() {
  [[ $(cd -- "$mnt" && sha256sum [0-9]*) == "$live" ]] || fault "live files are not what they were"
  [[ -z $(find "$mnt" -mindepth 1 -name 'ZQFILL-*') ]] || fault "fillers are left"
  (($(stat -f -c %f "$mnt") + 64 >= free)) || fault "the space is not back: $(stat -f -c %f "$mnt") of $free blocks"
}

# is_as_before_in FILE: of a drive that was lost.
is_as_before_in() {
  umount -- "$mnt"
  e2fsck -fp "$1" >/dev/null 2>&1 || (($? == 1)) || fault "the file system is damaged"
  mount -o loop -- "$1" "$mnt"
  is_as_before
  umount -- "$mnt"
}

begin "no access"
status=0
chmod 555 "$mnt"
wipe setpriv --reuid 65534 --regid 65534 --clear-groups || status=$?
fails_with "$status" 13 'Permission denied'
is_as_before
umount -- "$mnt"

begin "read-only"
mount -o remount,ro -- "$mnt"
status=0
wipe || status=$?
fails_with "$status" 30 'Read-only file system'
is_as_before
umount -- "$mnt"

begin "quota"
status=0
wipe env LD_PRELOAD="$tools/libforensic_quota.so" ZQ_QUOTA_BYTES=8000000 || status=$?
fails_with "$status" 122 'Disk quota exceeded'
is_as_before
umount -- "$mnt"

# The file system is told that its device has gone.
begin "gone away"
wipe_until_full
xfs_io -x -c shutdown "$mnt"
status=0
wait "$wipe" || status=$?
fails_with "$status" 5 'Input/output error'
is_as_before_in "$work/image"

# The program that serves the file system ends. Fillers have names there, of which the next run removes what is left.
if [[ -c /dev/fuse ]] && command -v ntfs-3g >/dev/null; then
  begin "its server ended" "$work/image" ntfs
  wipe_until_full
  kill -9 "$(pgrep -x ntfs-3g)"
  status=0
  wait "$wipe" || status=$?
  fails_with "$status" '10[37]' 'connect'
  umount -- "$mnt"
  image_mount ntfs "$work/image" "$mnt"
  [[ $(cd -- "$mnt" && sha256sum [0-9]*) == "$live" ]] || fault "live files are not what they were"
  image_unmount "$mnt"
fi

# The image lies where there is less room than it says it has.
mount -t tmpfs -o size=24M thin "$work/thin"
begin "writes fail" "$work/thin/image"
status=0
wipe || status=$?
fails_with "$status" 5 'Input/output error'
mount -o remount,size=80M -- "$work/thin"
is_as_before_in "$work/thin/image"
umount -- "$work/thin"
exit "$failed"
