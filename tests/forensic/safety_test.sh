#!/usr/bin/env bash
# safety_test.sh TOOLS FOLDER [CASE... | --but CASE...]: what a wipe meets in a real file system and must not be harmed or
# deceived by. For each case, whatever it is:
#   success is reported only if all that was named is gone;
#   what is gone was overwritten: no sector of the image holds it;
#   each message is one line, and a failure has one.
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/images.sh"
enter_own_space "${BASH_SOURCE[0]}" "$@"

tools=$1
image_need ext4
need_tools chattr setpriv perl

work=$2/safety
own_folder "$work"
mkdir -- "$work/mnt"
chmod 755 -- "$work" "$work/mnt"
cp -- "$tools/wipe_tool" "$work/"
mnt=$work/mnt top=$work/mnt/top

failed=0
fault() { say "FAULT ($case): $*"; failed=1; }

# --- What a case is made of -----------------------------------------------------------------------------

marks=0
# new_mark: sets mark to 16 letters that stand nowhere else.
new_mark() {
  marks=$((marks + 1))
  printf -v mark 'M%06dx%08x' "$marks" $((RANDOM * RANDOM))
}

# text BYTES: the mark again and again.
text() { { yes "$mark" 2>/dev/null || true; } | head -c "$1"; }

# put PATH [BYTES]: a file of a mark of its own. secret[PATH] is its mark, sum[PATH] its check sum.
declare -A secret sum
put() {
  new_mark
  text "${2:-20000}" >"$1"
  secret[$1]=$mark
  sum[$1]=$(sha256sum <"$1")
}

# wipe ARGUMENT...: runs the tool; $output and $status are what came out.
wipe() { wipe_as "$work/wipe_tool" "$@"; }
wipe_as() {
  sync -f "$mnt"  # the content is on the device
  [[ $1 == "$work/wipe_tool" ]] || see_own_images  # whoever isn't root
  status=0
  timeout 100 "$@" >"$work/output" 2>&1 || status=$?
  output=$(<"$work/output")
  if grep -qvaE '^(wiped |note: |error [1-9][0-9]* .|failed: .)' "$work/output"; then
    # A name may hold anything, so a name that is told is left out: messages have to be one line.
    case $case in *odd_names*) ;; *) fault "output that isn't one of the tool's lines: $output" ;; esac
  fi
  if ((status == 1)); then
    grep -qa '^failed: .' "$work/output" || fault "a failure without a reason"
  elif ((status != 0)); then
    fault "the tool ended with $status: $output"
  fi
}

wiped() {
  local path
  ((status == 0)) || fault "it failed: $output"
  for path in "$@"; do
    [[ ! -e $path && ! -L $path ]] || fault "success is reported, and $path is there"
  done
}
# refused REASON: it failed, and the reason holds that text.
refused() {
  ((status == 1)) || fault "it should have failed, and ended with $status"
  grep -qa -- "^failed: .*$1" "$work/output" || fault "the reason is not '$1': $output"
}
# kept PATH...: they are what they were, byte for byte.
kept() {
  local path
  for path in "$@"; do
    [[ -f $path && $(sha256sum <"$path") == "${sum[$path]}" ]] || fault "$path is not what it was"
    unset 'secret[$path]'
  done
}
gone() {
  local path
  for path in "$@"; do
    [[ ! -e $path && ! -L $path ]] || fault "$path is there"
  done
}
# lost PATH: it went another way than by a wipe, and so may its content.
lost() {
  local path=$1
  unset 'secret[$path]'
}

# The kind of file system for a case, if not ext4.
declare -A kind_of

# shellcheck source=tests/forensic/safety/what_is_there.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/safety/what_is_there.sh"
# shellcheck source=tests/forensic/safety/what_happens_meanwhile.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/safety/what_happens_meanwhile.sh"
# shellcheck source=tests/forensic/safety/what_surrounds_it.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/safety/what_surrounds_it.sh"

# --- All of them ----------------------------------------------------------------------------------------

# image_content MARK: how many sectors of the image hold it now.
image_content() {
  sync -f "$mnt"
  echo "content $1" >"$work/marks"
  "$tools/find_marks" "$work/image" "$work/marks" | awk '$1 == "content" { n += $3 } END { print n + 0 }'
}

run_case() {
  case=$1
  local kind=${kind_of[$case]:-ext4}
  secret=()
  sum=()
  (image_need "$kind") || return 0  # which has said why
  image_make "$kind" "$work/image"
  image_mount "$kind" "$work/image" "$mnt"
  chmod 755 "$mnt"
  "case_$case"
  image_unmount "$mnt"
  local path left
  : >"$work/marks"
  for path in "${!secret[@]}"; do echo "content ${secret[$path]}" >>"$work/marks"; done
  if [[ -s $work/marks ]]; then
    left=$("$tools/find_marks" "$work/image" "$work/marks" | awk '$1 == "content" { n += $3 } END { print n + 0 }')
    ((left == 0)) || fault "$left sectors hold content of files that are gone"
  fi
}

# The search sees what is there, or no case would prove anything.
case=search
secret=()
image_make ext4 "$work/image"
image_mount ext4 "$work/image" "$mnt"
put "$mnt/file"
[[ $(image_content "${secret[$mnt/file]}") == 40 ]] || fault "the search does not find the content of a file"
umount "$mnt"

cases=("${@:3}")
if [[ ${3:-} == --but || $# == 2 ]]; then
  mapfile -t cases < <(compgen -A function case_ | sed 's/^case_//' | grep -vxF -e "$(printf '%s\n' - "${@:4}")")
fi
((${#cases[@]})) || fault "there are no cases"
for name in "${cases[@]}"; do run_case "$name"; done
echo "${#cases[@]} cases"
exit "$failed"
