#!/usr/bin/env bash
# forensic_test.sh TOOLS FOLDER KIND [--all]: wipes a tree on a file system of KIND in an image, as root and
# without privileges, then searches the raw image for its content and names and lets recovery tools loose on it.
# No content may be left. The tools that people use today do the same on copies of the same image: what each
# leaves is kept in FOLDER/table.KIND.txt, by which names_test.sh judges the names. Where the wipe is refused
# there is nothing to compare, and those that take long are left out, unless --all is given.
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/images.sh"
# shellcheck source=tests/forensic/uml.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/uml.sh"

tools=$1 kind=$3 all=${4:-}
rm -f -- "$2/table.$kind.txt"  # that of an earlier run
if [[ $kind == @(vfat|f2fs) && -z ${ZQ_IN_UML:-} ]] && ! have_file_system "$kind" && [[ $all == --all ]] && uml_have; then
  say "this machine's kernel has no $kind: User Mode Linux has"
  mkdir -p -- "$2"
  uml_run "$2" "$(realpath -- "${BASH_SOURCE[0]}")" "$tools" /mnt/out "$kind" ${all:+"$all"}
  exit
fi
enter_own_space "${BASH_SOURCE[0]}" "$@"
image_need "$kind"
need_tools tsk_recover photorec shred setpriv pgrep

work=$2/$kind
own_folder "$work"
mkdir -- "$work/mnt" "$work/bin"
# Where one without privileges reaches it.
cp -- "$tools/wipe_tool" "$work/bin/"
table=$2/table.$kind.txt
# With much of others' data on its way to the device, the engine leaves alone what would have to wait for it.
sync

readonly kUser=65534

failed=0
fault() { say "FAULT ($kind): $*"; failed=1; }

# --- The tree -------------------------------------------------------------------------------------------

# random_text LENGTH CHARACTERS
random_text() { { tr -dc -- "$2" </dev/urandom 2>/dev/null || true; } | head -c "$1"; }

# A new mark, which is kept in the list.
content_mark() {
  mark=$(random_text 16 A-Za-z0-9)
  echo "content $mark" >>"$work/marks"
}
long_mark() {
  mark=$(random_text 1 a-z)$(random_text 11 a-z0-9)
  echo "name $mark" >>"$work/marks"
}
short_mark() {
  mark=$(random_text 8 A-Z)
  echo "name $mark" >>"$work/marks"
}

# make_file FOLDER BYTES: a text file of nothing but its mark, under a name of its own.
make_file() {
  local folder=$1 bytes=$2 name
  if ((bytes == 100)); then
    short_mark
    name=$mark.TXT
  else
    long_mark
    name="$mark-letter to the bank.txt"
  fi
  content_mark
  { yes "$mark" 2>/dev/null || true; } | head -c "$bytes" >"$folder/$name"
}

# make_folder INTO LEVELS: prints nothing; a folder of files with, beneath it, two folders for each level.
make_folder() {
  local folder bytes i
  long_mark
  folder="$1/$mark-private papers"
  mkdir -- "$folder"
  for bytes in 100 100 100 100 10240 10240 10240 3145728; do make_file "$folder" "$bytes"; done
  for ((i = 0; i < $2; i++)); do make_folder "$folder" $(($2 - 1)); done
}

make_tree() {
  : >"$work/marks"
  image_make "$kind" "$work/base"
  image_mount "$kind" "$work/base" "$work/mnt"
  echo "stays" >"$work/mnt/neighbour.txt"
  make_folder "$work/mnt" 2
  # Owned by one without privileges, where there are owners.
  if [[ $kind != vfat && $kind != ntfs ]]; then chown -R -- "$kUser:$kUser" "$work/mnt"; fi
  # Everything has been on the device before the wipe begins.
  image_unmount "$work/mnt"
  image_mount "$kind" "$work/base" "$work/mnt"
  tree=$(cd -- "$work/mnt" && echo *-"private papers")
  (cd -- "$work/mnt" && find "$tree" -type d -print0) >"$work/folders"
  find "$work/mnt" -type d -printf '%i\n' >"$work/inodes"
  (cd -- "$work/mnt" && find "$tree" -type f -exec sha256sum {} + | sort) >"$work/sums"
  image_unmount "$work/mnt"
}

# --- Where a finding lies -------------------------------------------------------------------------------

# Turns numbers of blocks, one a line, into `--region LABEL FIRST LAST`.
regions_of_blocks() {
  sort -n | awk -v label="$1" -v bytes="$2" '
    function end() { if (n) printf "--region %s %d %d\n", label, first * bytes, last * bytes + bytes - 1 }
    { if (n && $1 == last + 1) last = $1; else { end(); first = last = $1 } n++ }
    END { end() }'
}

find_regions() {
  local inode
  case $kind in
    ext4*)
      debugfs -R "blocks <8>" "$1" 2>/dev/null | tr -s ' ' '\n' | grep . | regions_of_blocks journal 4096
      while read -r inode; do
        debugfs -R "blocks <$inode>" "$1" 2>/dev/null | tr -s ' ' '\n' | { grep . || true; }
      done <"$work/inodes" | regions_of_blocks folder 4096
      ;;
    xfs)
      # Places are given as group and block in the group.
      local group_blocks log_start log_blocks group_bits
      eval "$(xfs_db -r -c 'sb 0' -c 'p agblocks agblklog logstart logblocks' "$1" |
        sed -n 's/^agblocks = /group_blocks=/p; s/^agblklog = /group_bits=/p
                s/^logstart = /log_start=/p; s/^logblocks = /log_blocks=/p')"
      log_start=$(((log_start >> group_bits) * group_blocks + (log_start & ((1 << group_bits) - 1))))
      seq "$log_start" $((log_start + log_blocks - 1)) | regions_of_blocks journal 4096
      while read -r inode; do
        xfs_db -r -c "inode $inode" -c bmap "$1" |
          sed -n 's,.*startblock [0-9]* (\([0-9]*\)/\([0-9]*\)) count \([0-9]*\).*,\1 \2 \3,p'
      done <"$work/inodes" | while read -r group block count; do
        seq $((group * group_blocks + block)) $((group * group_blocks + block + count - 1))
      done | regions_of_blocks folder 4096
      while read -r inode; do
        xfs_db -r -c "inode $inode" -c daddr "$1" | awk -v inode="$inode" '{ print $NF * 512, inode }'
      done <"$work/inodes" | awk '{ printf "--region record %d %d\n", $1, $1 + 16383 }'
      ;;
    ntfs) echo --ntfs ;;
    vfat) echo --fat ;;
  esac
}

# search IMAGE FINDINGS
search() {
  local -a regions
  mapfile -t regions < <(tr ' ' '\n' <"$work/regions")
  "$tools/find_marks" "$1" "$work/marks" "${regions[@]}" >"$2"
}

content_count() { awk '$1 == "content" { n += $3 } END { print n + 0 }' "$1"; }
name_count() { awk '$1 == "name" { n++ } END { print n + 0 }' "$1"; }

# --- Recovery tools -------------------------------------------------------------------------------------

# recovered IMAGE: prints how many of the files that the recovery tools bring back hold content of ours.
recovered() {
  local out=$work/recovered
  rm -rf -- "$out"
  mkdir -p -- "$out/tsk" "$out/photorec"
  # Neither knows every file system; -e is all files, also those that no folder names any more.
  tsk_recover -e "$1" "$out/tsk" >/dev/null 2>&1 || true
  HOME=$out timeout 60 photorec /log /logname "$out/log" /d "$out/photorec/r" /cmd "$1" \
    partition_none,options,paranoid,keep_corrupted_file,fileopt,everything,disable,txt,enable,wholespace,search \
    >/dev/null 2>&1 </dev/null || true
  { grep -rlaF -f <(sed -n 's/^content //p' "$work/marks") -- "$out/tsk" "$out/photorec" || true; } | wc -l
}

# --- The ways to wipe -----------------------------------------------------------------------------------

wipe_by() {
  local way=$1 path=$2
  case $way in
    rm) rm -rf -- "$path" ;;
    wipe_tool) "$work/bin/wipe_tool" "$path" >"$work/output" 2>&1 ;;
    as_user)
      setpriv --reuid="$kUser" --regid="$kUser" --clear-groups --no-new-privs "$work/bin/wipe_tool" "$path" \
        >"$work/output" 2>&1
      ;;
    shred)
      find "$path" -type f -exec shred -u -- {} +
      rm -r -- "$path"
      ;;
    srm) srm -r -- "$path" ;;
    wipe) wipe -rf -- "$path" >/dev/null ;;
  esac
}

# try WAY: leaves the image $work/WAY and the findings $work/WAY.found; returns what the way ended with.
try() {
  local way=$1 status=0
  cp --sparse=always -- "$work/base" "$work/$way"
  image_mount "$kind" "$work/$way" "$work/mnt"
  wipe_by "$way" "$work/mnt/$tree" >/dev/null 2>&1 || status=$?
  [[ $(<"$work/mnt/neighbour.txt") == stays ]] || fault "$way: a file beside the tree is not what it was"
  if ((status == 0)) && [[ -e $work/mnt/$tree ]]; then
    fault "$way: reports success, and the tree is there"
  fi
  if [[ $way == @(wipe_tool|as_user) && $status != 0 ]]; then
    (cd -- "$work/mnt" && find "$tree" -type f -exec sha256sum {} + | sort) >"$work/sums.after"
  fi
  image_unmount "$work/mnt"
  search "$work/$way" "$work/$way.found"
  return "$status"
}

# tell WAY NOTE: one line of the table.
tell() {
  local found=$work/$1.found
  printf '%-13s %-10s %8d %6d   %s%s\n' "$kind" "$1" "$(content_count "$found")" "$(name_count "$found")" \
    "$(awk '$1 == "name" { n[$3]++ } END { for (label in n) printf "%s %d  ", label, n[label] }' "$found")" \
    "$2" | tee -a "$table"
}

make_tree
find_regions "$work/base" >"$work/regions"
printf '%-13s %-10s %8s %6s   %s\n' system way sectors names "where the names lie" >"$table"

# The base image, or the search would prove nothing.
search "$work/base" "$work/base.found"
(($(content_count "$work/base.found") > 25000)) || fault "the search does not find the content that is there"
for mark in $(sed -n 's/^name //p' "$work/marks"); do
  grep -q "^name .* $mark\$" "$work/base.found" || fault "the search does not find the name $mark that is there"
done

# The control: what is only removed can be found.
try rm || fault "rm failed"
files=$(recovered "$work/rm")
tell rm "recovered $files"
(($(content_count "$work/rm.found") > 25000)) || fault "the search finds no content after rm"
((files > 0)) || fault "the recovery tools bring nothing back after rm"
rm -f -- "$work/rm"

# judge WAY: an engine's way.
judge() {
  local way=$1 status=0 files
  try "$way" || status=$?
  case $kind.$way in
    btrfs.* | f2fs.* | ext4-journal.as_user)
      # Refused, with a reason, and everything is as it was.
      ((status == 1)) || fault "$way: the wipe ended with $status where it should refuse"
      grep -q '^failed: .*in place, since .*' "$work/output" || fault "$way: no reason is given"
      cmp -s -- "$work/sums" "$work/sums.after" || fault "$way: the refused wipe has changed files"
      tell "$way" refused
      ;;
    *)
      ((status == 0)) || { fault "$way: the wipe failed with $status:"; tail -n 3 "$work/output" >&2; }
      files=$(recovered "$work/$way")
      tell "$way" "recovered $files"
      (($(content_count "$work/$way.found") == 0)) || fault "$way: content is left"
      ((files == 0)) || fault "$way: the recovery tools bring $files files back"
      ;;
  esac
  rm -f -- "$work/$way" "$work/sums.after"
}
judge wipe_tool
case $kind in
  # Not every user may be let through to a mount by FUSE, and FAT makes no difference between users.
  vfat) ;;
  *) judge as_user ;;
esac

for way in shred srm wipe; do
  command -v "$way" >/dev/null || continue
  [[ $way == shred || $kind != @(btrfs|ext4-journal) || $all == --all ]] || continue
  # Some of them fail on some file systems; what they leave is counted all the same.
  try "$way" || true
  tell "$way" ""
  rm -f -- "$work/$way"
done
exit "$failed"
