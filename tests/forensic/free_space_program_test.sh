#!/usr/bin/env bash
# free_space_program_test.sh ZQWIPE FOLDER: zqwipe --free-space from its command line to its exit code, on an image:
# what it refuses, its question, its outcome as JSON and as a report, and that it gives the space back at once when it
# is stopped. What was deleted there is gone, and what is there stays.
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/images.sh"
enter_own_space "${BASH_SOURCE[0]}" "$@"
program=$1 work=$2/free.program
export LC_ALL=C.UTF-8
image_need ext4
need_tools script python3
own_folder "$work"
mkdir -- "$work/mnt"
mnt=$work/mnt
image_make ext4 "$work/image"
image_mount ext4 "$work/image" "$mnt"
# Nobody fills this machine's disk, whatever has gone wrong before.
[[ $(stat -c %d "$mnt") != "$(stat -c %d /)" && $(stat -f -c %b "$mnt") -lt 20000 ]] || { say "$mnt is not an image"; exit 1; }

failed=0
fault() { say "FAULT: $*"; failed=1; }
says() { [[ $1 == *"$2"* ]] || fault "'$2' is missing in: $1"; }
is() { [[ $1 == "$2" ]] || fault "it is '$1', not '$2'"; }
# zq CODE ARGUMENT...: without a terminal; its output goes to $work/out and $err. The last argument is the drive.
zq() {
  local wanted=$1 code=0
  shift
  [[ ${*: -1} == "$work"* ]] || { say "${*: -1} is outside"; exit 1; }
  "$program" "$@" </dev/null >"$work/out" 2>"$work/err" || code=$?
  err=$(<"$work/err")
  ((code == wanted)) || fault "exit code $code, not $wanted, of: $* ($err)"
}
json() {
  python3 -c '
import json, sys
o = json.load(open(sys.argv[1], encoding="utf-8"))
print(eval(sys.argv[2]))' "$work/out" "$1" 2>&1
}
marks() { sync -f "$mnt"; { LC_ALL=C grep -aoF DELETEDMARK -- "$work/image" || true; } | wc -l; }
free_blocks() { stat -f -c %f "$mnt"; }
delete_marks() {
  mkdir "$mnt/old"
  for i in {1..300}; do { yes DELETEDMARK || true; } 2>/dev/null | head -c $((i * 60)) >"$mnt/old/$i"; done
  sync -f "$mnt"
  rm -r -- "$mnt/old"
  sync -f "$mnt"
}

head -c 1000000 /dev/urandom >"$mnt/kept"
mkdir "$mnt/folder"
live=$(sha256sum "$mnt/kept")
delete_marks
(($(marks) > 10000)) || fault "the search does not find what was only deleted"

# What is not begun.
zq 2 --free-space "$mnt"
says "$err" "there is nobody to confirm; give --yes to begin without being asked; nothing was overwritten"
zq 2 --free-space --yes "$mnt/folder"
says "$err" "it is neither a drive nor where one is mounted"
zq 2 --free-space --yes --json "$mnt/missing"
is "$(json 'o["outcome"], o["exitCode"], len(o["refused"]), "started" in o')" "('refused', 2, 1, False)"
zq 2 --free-space --yes "$mnt/kept"
zq 2 --free-space --yes --recursive "$mnt"
zq 2 --free-space --yes --report "$mnt/kept" "$mnt"
says "$err" "the report is to be a new file, but it exists"
code=0
printf 'no\n' | script --quiet --return --command "'$program' --free-space '$mnt'" /dev/null >"$work/out" || code=$?
is "$code" 3
says "$(<"$work/out")" "About to overwrite the free space of $mnt ("
(($(marks) > 10000)) || fault "something was overwritten without a yes"

# Stopped in the middle: at once, and the space is back. What is slow by itself is so each time; a machine that has
# just something else to do isn't.
before=$(free_blocks)
quickest=99000000
for _ in 1 2 3; do
  env --default-signal=INT "$program" --free-space --yes --json --level 7 "$mnt" >"$work/out" 2>"$work/err" &
  pid=$!
  until (($(free_blocks) < before / 2)); do
    [[ -d /proc/$pid ]] || { fault "it ended before it could be stopped"; break; }
    sleep 0.01
  done
  start=${EPOCHREALTIME/./} code=0
  kill -INT "$pid"
  wait "$pid" || code=$?
  took=$((${EPOCHREALTIME/./} - start))
  ((took < quickest)) && quickest=$took
  is "$code" 3
  is "$(json 'o["outcome"], o["cancelled"], o["verified"], o["failures"]')" "('cancelled', True, False, [])"
  (($(free_blocks) + 16 >= before)) || fault "the space is not back after a stop"
  ((quickest < 250000)) && break
done
say "stopped after $((quickest / 1000)) ms"
((quickest < 250000)) || fault "a stop takes $quickest microseconds at best"

# To its end, by a link to the drive, with a report on the drive itself.
ln -s "$mnt" "$work/drive"
zq 0 --free-space --yes --json --report "$mnt/report.txt" "$work/drive"
is "$err" ""
is "$(json 'o["operation"], o["outcome"], o["passes"], o["verified"], o["method"], o["failures"], o["refused"]')" \
  "('free-space', 'overwritten', 9, True, 'Clear', [], [])"
is "$(json 'o["bytes"] > 20000000, o["seconds"] >= 1, len(o["started"]), o["device"]["choosesPlaces"] in (True, False)')" \
  "(True, True, 20, True)"
says "$(<"$mnt/report.txt")" "Overwritten: the free space of $work/drive ("
is "$(marks)" 0
is "$(sha256sum "$mnt/kept")" "$live"
[[ -z $(find "$mnt" -maxdepth 1 -name 'ZQFILL-*') ]] || fault "fillers are left"
rm -- "$mnt/report.txt"

# On a terminal: the question, the progress, the summary.
delete_marks
code=0
printf 'yes\n' | script --quiet --return --command "'$program' --free-space '$mnt/'" /dev/null >"$work/out" || code=$?
is "$code" 0
says "$(<"$work/out")" "Type yes to overwrite it: "
says "$(<"$work/out")" "%  "
says "$(<"$work/out")" " MiB free on $mnt"
says "$(<"$work/out")" "Overwritten: the free space of $mnt/ ("
is "$(marks)" 0
is "$(sha256sum "$mnt/kept")" "$live"
exit "$failed"
