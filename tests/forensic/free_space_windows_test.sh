#!/usr/bin/env bash
# free_space_windows_test.sh SOURCE ZQWIPE.exe PROGRAM_TEST.exe FOLDER: the Windows programs wipe the free space of a
# drive that is a real file system in an image: zqwipe from its command line, and the program by its dialog, its question
# and its box at the end. Recovery tools bring files back before, and none after; no mark of them is in the raw image;
# the live files are what they were, byte for byte.
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/images.sh"

# In name spaces of its own: `make` makes the image with live files, and others that are removed; `look` says what the
# live files are, and what is not as it should be.
if [[ ${ZQ_OWN_SPACE:-} == inside && $$ == 1 ]]; then
  enter_own_space "$@"
  work=$1 mnt=$1/mnt
  if [[ $2 == make ]]; then
    image_make ext4 "$work/image"
    # What is kept for the administrator would be written, too, but isn't counted as free.
    # And no journal: a block of the fillers' folder that is only in there would be freed unwritten, and Wine has
    # nothing to prevent that.
    tune2fs -m 0 -O ^has_journal "$work/image" >/dev/null
    image_mount ext4-bigalloc "$work/image" "$mnt"
    rmdir -- "$mnt/lost+found"
    mkdir -- "$mnt/deleted" "$mnt/live"
    for i in {1..300}; do
      { yes SMALLMARK || true; } 2>/dev/null | head -c $((i * 20)) >"$mnt/deleted/$i.txt"
    done
    for i in 20000 700000 3000000 3000001; do
      { yes LARGEMARK || true; } 2>/dev/null | head -c "$i" >"$mnt/deleted/large$i.txt"
      head -c "$i" /dev/urandom >"$mnt/live/$i"
    done
    sync -f "$mnt"
    rm -r -- "$mnt/deleted"
  else
    image_mount ext4-bigalloc "$work/image" "$mnt"
    [[ -z $(find "$mnt" -mindepth 1 -maxdepth 1 -name 'ZQFILL-*') ]] || echo "fillers are left"
  fi
  (cd -- "$mnt/live" && sha256sum ./*)
  (($(stat -f -c %f "$mnt") > 8800)) || echo "the space is not back"
  image_unmount "$mnt"
  exit
fi

source=$1 zqwipe=$2 program_test=$3 work=$4/free.windows
((EUID == 0)) || skip "mounting an image needs root"
image_need ext4
need_tools tsk_recover photorec tune2fs
# shellcheck source=scripts/cage.sh
source "$source/scripts/cage.sh"
[[ $(cage_wall) == namespaces ]] || skip "this system allows no mount name space"

export ZQ_PREFIX=forensic-free
mkdir -p -- "$work/mnt"
trap '"$source/scripts/prefix.sh" stop "$ZQ_PREFIX"; rm -rf -- "$work"' EXIT
failed=0
fault() { say "FAULT: $*"; failed=1; }

inside() { ZQ_OWN_SPACE=inside unshare --mount --pid --fork --kill-child -- bash "${BASH_SOURCE[0]}" "$work" "$1"; }
marks() { { LC_ALL=C grep -aoE 'SMALLMARK|LARGEMARK' -- "$work/image" || true; } | wc -l; }
recovered() {
  rm -rf -- "$work/recovered"
  mkdir -p -- "$work/recovered/tsk" "$work/recovered/photorec"
  tsk_recover -e "$work/image" "$work/recovered/tsk" >/dev/null 2>&1 || true
  HOME=$work/recovered photorec /log /logname "$work/recovered/log" /d "$work/recovered/photorec/r" /cmd "$work/image" \
    partition_none,options,paranoid,keep_corrupted_file,fileopt,everything,disable,txt,enable,wholespace,search \
    >/dev/null 2>&1 </dev/null || true
  { grep -rlaE 'SMALLMARK|LARGEMARK' -- "$work/recovered" || true; } | wc -l
}

# wipe PROGRAM ARGUMENT...: on the image as drive D:, with all that there is to be looked at before and after.
wipe() {
  local name=${1##*/} status=0 loop before after found
  before=$(inside make)
  found=$(recovered)
  say "$name before: recovered $found, marks $(marks)"
  (($(marks) > 100000)) || fault "the search does not find what was only removed"
  ((found > 0)) || fault "the recovery tools bring nothing back"

  export ZQ_PREFIX_OPTIONS="--image d:$work/image"
  # shellcheck disable=SC2086
  cage_up "$("$source/scripts/prefix.sh" create "$ZQ_PREFIX" $ZQ_PREFIX_OPTIONS)"
  # Windows has nothing of the kind, and no program in there can get at it.
  loop=$(losetup --noheadings --output NAME --associated "$work/image")
  echo 0 >"/sys/fs/ext4/${loop##*/}/reserved_clusters"
  "$source/scripts/wine-run.sh" "$@" >"$work/output" 2>&1 </dev/null || status=$?
  # Down, so that the drive is unmounted.
  "$source/scripts/prefix.sh" stop "$ZQ_PREFIX"
  ((status == 0)) || fault "$name ended with $status: $(tail -n 15 -- "$work/output")"

  after=$(inside look)
  [[ $after == "$before" ]] || fault "$name: the drive is not as it was: $before; $after"
  found=$(recovered)
  say "$name after: recovered $found, marks $(marks)"
  ((found == 0)) || fault "the recovery tools bring $found files back"
  (($(marks) == 0)) || fault "content is left: $(marks) marks"
}

wipe "$zqwipe" --free-space --yes --json "D:\\"
grep -q '"outcome": *"overwritten"' "$work/output" || fault "it tells another outcome: $(<"$work/output")"
wipe "$program_test" --gtest_filter=FreeSpace.IsWipedAndGivenBack
exit "$failed"
