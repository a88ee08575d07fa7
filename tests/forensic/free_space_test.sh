#!/usr/bin/env bash
# free_space_test.sh TOOLS KIND FOLDER: fills a file system of KIND in an image with files, removes them by
# ordinary means, and wipes the free space. Recovery tools bring files back before, and none after; no mark of
# them is in the raw image; the live files are what they were, byte for byte. The same after a kill in the middle,
# which leaves nothing that the next run doesn't remove. The device takes no discards: it is the overwriting that is
# tested.
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/images.sh"
enter_own_space "${BASH_SOURCE[0]}" "$@"
tools=$1 kind=$2 work=$3/free.$2
image_need "$kind"
need_tools tsk_recover photorec
own_folder "$work"
mkdir -- "$work/mnt"
mnt=$work/mnt

failed=0
fault() { say "FAULT ($kind): $*"; failed=1; }

mount_image() {
  local device
  image_mount "$kind" "$work/image" "$mnt"
  device=$(losetup --noheadings --output NAME --associated "$work/image" | head -n 1)
  echo 0 >"/sys/class/block/${device##*/}/queue/discard_max_bytes"
  # Nobody fills this machine's disk, whatever has gone wrong before.
  [[ $(stat -c %d "$mnt") != "$(stat -c %d /)" ]] || { say "$mnt is not an image"; exit 1; }
}

# sectors MARK: how often it stands in the image, in UTF-8 or as a name in UTF-16.
sectors() {
  local wide='' i
  for ((i = 0; i < ${#1}; i++)); do wide+="${1:i:1}\\x00"; done
  { LC_ALL=C grep -aoP -e "$1|$wide" -- "$work/image" || true; } | wc -l
}

# recovered: how many of the files that come back hold content of ours.
recovered() {
  local out=$work/recovered
  rm -rf -- "$out"
  mkdir -p -- "$out/tsk" "$out/photorec"
  tsk_recover -e "$work/image" "$out/tsk" >/dev/null 2>&1 || true
  HOME=$out timeout 60 photorec /log /logname "$out/log" /d "$out/photorec/r" /cmd "$work/image" \
    partition_none,options,paranoid,keep_corrupted_file,fileopt,everything,disable,txt,enable,wholespace,search \
    >/dev/null 2>&1 </dev/null || true
  if [[ $kind == ntfs ]] && command -v ntfsundelete >/dev/null; then
    mkdir -- "$out/undelete"
    ntfsundelete --force --quiet --undelete --inodes 24-2500 --destination "$out/undelete" "$work/image" \
      >/dev/null 2>&1 || true
  fi
  { grep -rlaE 'SMALLMARK|LARGEMARK' -- "$out" || true; } | wc -l
  rm -rf -- "$out"
}

image_make "$kind" "$work/image"
mount_image
mkdir "$mnt/deleted" "$mnt/kept"
for i in {1..2000}; do
  { yes SMALLMARK || true; } 2>/dev/null | head -c $((i % 600 + 10)) >"$mnt/deleted/longdeletedname$i.txt"
done
for i in 1 100 1000 5000 20000 100000 700000 3000000 3000001 4097; do
  { yes LARGEMARK || true; } 2>/dev/null | head -c "$i" >"$mnt/deleted/large$i.txt"
  head -c "$i" /dev/urandom >"$mnt/kept/$i"
done
live=$(cd -- "$mnt/kept" && sha256sum ./*)
sync -f "$mnt"
rm -r -- "$mnt/deleted"
image_unmount "$mnt"
files=$(recovered)
small=$(sectors SMALLMARK) large=$(sectors LARGEMARK) names=$(sectors longdeletedname)
say "$kind before: recovered $files, marks $small and $large, names $names"
((small > 2000 && large > 100000)) || fault "the search does not find what was only removed"
# Those that stand in xfs's log at the end of this are some more or some less.
[[ $kind == xfs ]] || ((names > 2000)) || fault "the search does not find names that were only removed"
((files > 0)) || fault "the recovery tools bring nothing back"

mount_image
free_before=$(stat -f -c %f "$mnt")
# Killed as soon as it has filled something.
"$tools/wipe_tool" --free-space --slowly "$mnt" >"$work/output" 2>&1 &
wipe=$!
until (($(awk '$1 == "space" && $3 > 1500 { n++ } END { print n + 0 }' "$work/output") > 0)); do
  kill -0 "$wipe" 2>/dev/null || { fault "it ended before it could be killed: $(tail -n 2 "$work/output")"; break; }
  sleep 0.02
done
kill -9 "$wipe" 2>/dev/null || true
wait "$wipe" 2>/dev/null || true
[[ $(cd -- "$mnt/kept" && sha256sum ./*) == "$live" ]] || fault "a kill has changed live files"
if [[ $kind != ntfs ]]; then
  (($(stat -f -c %f "$mnt") + 64 >= free_before)) || fault "the space is not back after a kill"
  [[ -z $(find "$mnt" -mindepth 1 -maxdepth 1 -name 'ZQFILL-*') ]] || fault "a kill has left fillers"
fi

status=0
"$tools/wipe_tool" --free-space "$mnt" >"$work/output" 2>&1 || status=$?
((status == 0)) || fault "it ended with $status: $(grep -v '^space' "$work/output")"
[[ -z $(find "$mnt" -mindepth 1 -maxdepth 1 -name 'ZQFILL-*') ]] || fault "it has left fillers"
(($(stat -f -c %f "$mnt") + 64 >= free_before)) || fault "the space is not back"
(($(awk '$1 == "space" && $2 < 101 { print $4 }' "$work/output" | sort -u | wc -l) <= 2)) ||
  fault "the total changes from event to event"
awk '$1 == "space" && $2 < 101 { if ($2 < last) bad = 1; last = $2 } END { exit bad }' "$work/output" ||
  fault "the percentage goes back"
[[ $(cd -- "$mnt/kept" && sha256sum ./*) == "$live" ]] || fault "live files are not what they were"
image_unmount "$mnt"
files=$(recovered)
small=$(sectors SMALLMARK) large=$(sectors LARGEMARK) names=$(sectors longdeletedname)
say "$kind after: recovered $files, marks $small and $large, names $names"
[[ $kind == xfs ]] || ((files == 0)) || fault "the recovery tools bring $files files back"
((small == 0)) || fault "content of small files is left"
# On xfs they are in its log, for which there is only so much time.
[[ $kind == xfs ]] || ((names == 0)) || fault "$names names of deleted files are left"
# What xfs keeps back for its own trees in each of its four groups can't be given to a file: some blocks, which as
# a rule held none of the content. A block has 410 marks.
most=0
[[ $kind != xfs ]] || most=$((4 * 4 * 410))
((large <= most)) || fault "content of large files is left: $large marks"
exit "$failed"
