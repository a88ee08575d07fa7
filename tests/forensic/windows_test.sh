#!/usr/bin/env bash
# windows_test.sh SOURCE WIPE_TOOL.exe FOLDER KIND: the Windows program wipes a tree on a drive that is a real
# file system in an image; then no content may be in the raw image, and after a mere removal it must be.
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/images.sh"

# In name spaces of its own: makes the image with a tree of files, and removes one of them without a wipe.
if [[ ${ZQ_OWN_SPACE:-} == inside && $$ == 1 ]]; then
  enter_own_space
  work=$1 kind=$2
  image_make "$kind" "$work/image"
  image_mount "$kind" "$work/image" "$work/mnt"
  for i in {1..30}; do
    folder=$work/mnt/top/private$((i % 3))
    mkdir -p -- "$folder"
    size=$((i * i * 100))
    ((i % 10 == 0)) && size=3000000
    printf -v mark 'W%07dx%07x' "$i" $((RANDOM * 8191))
    echo "$mark" >>"$work/marks"
    { yes "$mark" 2>/dev/null || true; } | head -c "$size" >"$folder/letter$i.txt"
  done
  printf -v mark 'C%07dx%07x' 0 $((RANDOM * 8191))
  echo "$mark" >"$work/control"
  { yes "$mark" 2>/dev/null || true; } | head -c 100000 >"$work/mnt/control"
  image_unmount "$work/mnt"
  image_mount "$kind" "$work/image" "$work/mnt"
  rm -- "$work/mnt/control"
  image_unmount "$work/mnt"
  exit
fi

source=$1 tool=$2 work=$3/windows.$4 kind=$4
((EUID == 0)) || skip "mounting an image needs root"
image_need "$kind"
# shellcheck source=scripts/cage.sh
source "$source/scripts/cage.sh"
[[ $(cage_wall) == namespaces ]] || skip "this system allows no mount name space"

export ZQ_PREFIX=forensic
mkdir -p -- "$work/mnt"
trap '"$source/scripts/prefix.sh" stop "$ZQ_PREFIX"; rm -rf -- "$work"' EXIT
rm -f -- "$work"/{image,marks,control}
ZQ_OWN_SPACE=inside unshare --mount --pid --fork --kill-child -- bash "${BASH_SOURCE[0]}" "$work" "$kind"
sectors() { { LC_ALL=C grep -oaF -f "$1" -- "$work/image" || true; } | wc -l; }
(($(sectors "$work/marks") > 100000)) || { say "the search does not find the content that is there"; exit 1; }

! "$source/scripts/prefix.sh" create "$ZQ_PREFIX" --image d:/dev/loop0 2>/dev/null ||
  { say "the cage takes a device for an image"; exit 1; }

export ZQ_PREFIX_OPTIONS="--image d:$work/image"
status=0
"$source/scripts/wine-run.sh" "$tool" 'D:\top' >"$work/output" || status=$?
# Down, so that the drive is unmounted.
"$source/scripts/prefix.sh" stop "$ZQ_PREFIX"
((status == 0)) || { say "the wipe ended with $status:"; tail -n 3 -- "$work/output" >&2; exit 1; }
(($(grep -c '^wiped letter' "$work/output") == 30)) || { say "not each file was wiped"; exit 1; }

left=$(sectors "$work/marks")
((left == 0)) || { say "content of wiped files is found $left times"; exit 1; }
(($(sectors "$work/control") > 1000)) || { say "content of a file that was only removed is not found"; exit 1; }
