#!/usr/bin/env bash
# free_space_windows_test.sh SOURCE FOLDER KIND ZQWIPE.exe PROGRAM_TEST.exe KILL_TEST.exe PART...: the Windows programs
# wipe the free space of a drive that is a file system of KIND in an image. Recovery tools bring files back before, and
# none after; no mark of them is in the raw image; the live files are what they were, byte for byte. The parts:
#   zqwipe   zqwipe by its command line
#   program  the program by its dialog, its question and its box at the end. Before that, all of the system ends in the
#            middle of a wipe, as by a loss of power: what that leaves goes at the program's next start
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/images.sh"
enter_own_space "${BASH_SOURCE[0]}" "$@"
source=$1 work=$2/free.windows kind=$3 zqwipe=$4 program_test=$5 kill_test=$6
parts=" ${*:7} "
image_need "$kind"
need_tools tsk_recover photorec
# shellcheck source=scripts/cage.sh
source "$source/scripts/cage.sh"
[[ $(cage_wall) == namespaces ]] || skip "this system allows no mount name space"
own_folder "$work"
mkdir -- "$work/mnt"
image=$work/image
# Without a journal, see below, and so without a way in which data goes with it.
mounted=${kind/#ext4/ext4-bigalloc}

export ZQ_PREFIX=forensic-free ZQ_PREFIX_OPTIONS="--image d:$image"
trap '"$source/scripts/prefix.sh" stop "$ZQ_PREFIX"' EXIT
failed=0
fault() { say "FAULT ($kind): $*"; failed=1; }

# Content that is searched for in the raw image, in files that are then removed by ordinary means.
delete_files() {
  mkdir -- "$1/deleted"
  for i in {1..120}; do printf -v "small" '%*s' $((i * 5)) ''; echo "${small// /SMALLMARK}" >"$1/deleted/$i.txt"; done
  for i in 20000 700000 3000001; do
    { yes LARGEMARK || true; } 2>/dev/null | head -c "$i" >"$1/deleted/large$i.txt"
  done
  sync -f "$1"
  rm -r -- "$1/deleted"
  sync -f "$1"
}
marks() { { LC_ALL=C grep -aoE 'SMALLMARK|LARGEMARK' -- "$image" || true; } | wc -l; }
recovered() {
  rm -rf -- "$work/recovered"
  mkdir -p -- "$work/recovered/tsk" "$work/recovered/photorec"
  tsk_recover -e "$image" "$work/recovered/tsk" >/dev/null 2>&1 || true
  HOME=$work/recovered photorec /log /logname "$work/recovered/log" /d "$work/recovered/photorec/r" /cmd "$image" \
    partition_none,options,paranoid,keep_corrupted_file,fileopt,everything,disable,txt,enable,wholespace,search \
    >/dev/null 2>&1 </dev/null || true
  { grep -rlaE 'SMALLMARK|LARGEMARK' -- "$work/recovered" || true; } | wc -l
}
free_blocks() { stat -f -c %f "$1"; }
sums() { (cd -- "$1/live" && sha256sum ./*); }
# is_as_before FOLDER: the drive that is seen there.
is_as_before() {
  [[ $(sums "$1") == "$live" ]] || fault "live files are not what they were"
  [[ -z $(find "$1" -mindepth 1 -maxdepth 1 -name 'ZQFILL-*') ]] || fault "fillers are left"
  (($(free_blocks "$1") + 64 >= free)) || fault "the space is not back: $(free_blocks "$1") of $free blocks"
}

# The cage comes up with the image as drive D:, which is to be seen from here as $drive.
up() {
  local keeper device
  prefix=$("$source/scripts/prefix.sh" create "$ZQ_PREFIX" --image "d:$image")
  cage_up "$prefix"
  keeper=$(cage_keeper "$prefix")
  drive=/proc/$keeper/root$prefix/drive_d
  see_own_images
  device=$(losetup --noheadings --output NAME --associated "$image")
  # It is the overwriting that is tested.
  echo 0 >"/sys/class/block/${device##*/}/queue/discard_max_bytes"
  # Windows has nothing of the kind, and no program in there can get at it.
  [[ $kind != ext4 ]] || echo 0 >"/sys/fs/ext4/${device##*/}/reserved_clusters"
}
# is_down: waits until the drive is unmounted, which is the last of what goes with the cage.
is_down() {
  local limit=$((SECONDS + 60))
  while [[ -n $(losetup --associated "$image") ]]; do
    ((SECONDS < limit)) || { say "drive D: stays mounted"; exit 1; }
    sleep 0.02
  done
}
run() {
  local status=0
  "$source/scripts/wine-run.sh" "$@" >"$work/output" 2>&1 </dev/null || status=$?
  ((status == 0)) || fault "${1##*/} ended with $status: $(tail -n 15 -- "$work/output")"
}

image_make "$kind" "$image" 20M
# What is kept for the administrator would be written, too, but isn't counted as free. And no journal: a block of the
# fillers' folder that is only in there would be freed unwritten, and Wine has nothing to prevent that.
[[ $kind != ext4 ]] || tune2fs -m 0 -O ^has_journal "$image" >/dev/null
up
mkdir -- "$drive/live"
for i in 1 700 20000 3000001; do head -c "$i" /dev/urandom >"$drive/live/$i"; done
live=$(sums "$drive")
delete_files "$drive"
free=$(free_blocks "$drive")
before=$(recovered)
say "$kind before: recovered $before, marks $(marks)"
(($(marks) > 100000)) || fault "the search does not find what was only removed"
((before > 0)) || fault "the recovery tools bring nothing back"

wipe_by_zqwipe() {
  run "$zqwipe" --free-space --yes --json "D:\\"
  grep -q '"outcome": *"overwritten"' "$work/output" || fault "it tells another outcome: $(<"$work/output")"
  sync -f "$drive"
  say "$kind after zqwipe: marks $(marks)"
  (($(marks) == 0)) || fault "zqwipe leaves content: $(marks) marks"
  is_as_before "$drive"
}

wipe_by_program() {
  local run ready fillers
  # What a run that was ended itself has left.
  rm -rf -- "$prefix"/drive_c/run/e2e_freespace_kill_test.*
  # Everything ends at once, the file system's server as well, and what runs the program here before it could clear up.
  "$source/scripts/wine-run.sh" "$kill_test" --gtest_filter=FreeSpaceKill.ComesInTheMiddle >"$work/output" 2>&1 </dev/null &
  run=$!
  until ready=$(compgen -G "$prefix/drive_c/run/*/ready") && [[ -s $ready ]]; do
    [[ -d /proc/$run ]] || { say "it ended before it could be killed: $(<"$work/output")"; exit 1; }
    sleep 0.05
  done
  ZQ_KILLED_PROGRAM=$(<"$ready")
  export ZQ_KILLED_PROGRAM
  kill -KILL "$run" "$(cage_keeper "$prefix")"
  wait "$run" 2>/dev/null || true
  is_down
  image_mount "$mounted" "$image" "$work/mnt"
  [[ $(sums "$work/mnt") == "$live" ]] || fault "a kill has changed live files"
  fillers=$(find "$work/mnt" -type f -path '*/ZQFILL-*/z???????' | wc -l)
  say "$kind after a kill: $fillers fillers, $(free_blocks "$work/mnt") of $free blocks free"
  ((fillers > 0)) || fault "a kill has left no fillers, so that there is nothing to remove"
  image_unmount "$work/mnt"

  up
  run "$kill_test" --gtest_filter=FreeSpaceKill.IsMadeGoodByTheNextStart
  rm -rf -- "${ready%/*}"
  is_as_before "$drive"
  run "$program_test" --gtest_filter=FreeSpace.IsWipedAndGivenBack
}

if [[ $parts == *" zqwipe "* ]]; then
  wipe_by_zqwipe
  [[ $parts != *" program "* ]] || delete_files "$drive"
fi
[[ $parts != *" program "* ]] || wipe_by_program
"$source/scripts/prefix.sh" stop "$ZQ_PREFIX"
is_down

image_mount "$mounted" "$image" "$work/mnt"
is_as_before "$work/mnt"
image_unmount "$work/mnt"
after=$(recovered)
say "$kind after: recovered $after, marks $(marks)"
((after == 0)) || fault "the recovery tools bring $after files back"
(($(marks) == 0)) || fault "content is left: $(marks) marks"
exit "$failed"
