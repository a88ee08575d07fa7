#!/usr/bin/env bash
# zqwipe_test.sh ZQWIPE FOLDER [stop]: the program itself, from its command line to its exit code; with `stop`
# how it is stopped. All that it is given to destroy lies in a new folder inside FOLDER, or in another place if
# the file system there can't overwrite in place.
set -uo pipefail
export LC_ALL=C.UTF-8

(($# == 2)) || [[ $# == 3 && $3 == stop ]] || { sed -n '2,4s/^# //p' "$0" >&2; exit 2; }
program=$(realpath -e -- "$1") || exit 2
what=${3:-}

# shellcheck source=tests/cli/wipe_place.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/wipe_place.sh"
make_wipe_place zqwipe_test "$program" "$2"
trap 'chmod -R u+rwx -- "$scratch"; rm -rf -- "$scratch"' EXIT
# The only home that is the user's own here.
export HOME=$scratch/home
mkdir -- "$HOME" "$scratch/desk"

failures=0
fail() {
  echo "zqwipe_test: $test: $*" >&2
  failures=$((failures + 1))
}

# guard ARGUMENT...: ends the test if it would leave the scratch folder.
guard() {
  local argument
  [[ $PWD/ == "$scratch"/* ]] || { echo "zqwipe_test: outside the scratch folder" >&2; exit 2; }
  for argument in "$@"; do
    [[ $argument != /* || $argument/ == "$scratch"/* ]] || { echo "zqwipe_test: $argument is outside" >&2; exit 2; }
    [[ $argument != *../../* ]] || { echo "zqwipe_test: $argument leads outside" >&2; exit 2; }
  done
}

# zq CODE ARGUMENT...: runs zqwipe without a terminal; its output goes to $out and $err.
zq() {
  local wanted=$1 code=0
  shift
  guard "$@"
  "$program" "$@" </dev/null >"$scratch/out" 2>"$scratch/err" || code=$?
  out=$(cat -- "$scratch/out")
  err=$(cat -- "$scratch/err")
  ((code == wanted)) || fail "exit code $code, not $wanted, of: $* ($err)"
}

# on_terminal CODE INPUT COMMAND: runs the command line on a terminal; what it shows goes to $out.
on_terminal() {
  local wanted=$1 input=$2 code=0
  guard
  out=$(printf '%s' "$input" | script --quiet --return --command "$3" /dev/null) || code=$?
  ((code == wanted)) || fail "exit code $code, not $wanted, of: $3 ($out)"
}

# meanwhile CODE CHANGE COMMAND: the same, where CHANGE is run while the question stands, and the answer is yes.
meanwhile() {
  local wanted=$1 change=$2 code=0 limit=$((SECONDS + 60)) terminal
  guard
  rm -f -- "$scratch/answers" "$scratch/shown"
  mkfifo -- "$scratch/answers"
  script --quiet --return --flush --command "$3" "$scratch/shown" <"$scratch/answers" >/dev/null &
  terminal=$!
  exec {answers}>"$scratch/answers"
  until grep -qsF "Type yes to destroy them: " -- "$scratch/shown"; do
    ((SECONDS < limit)) && [[ -d /proc/$terminal ]] || { fail "there was no question"; break; }
  done
  eval "$change"
  echo yes >&"$answers"
  wait "$terminal" || code=$?
  exec {answers}>&-
  out=$(<"$scratch/shown")
  ((code == wanted)) || fail "exit code $code, not $wanted, of: $3 ($out)"
}

gone() { local path; for path in "$@"; do [[ ! -e $path && ! -L $path ]] || fail "$path is still there"; done; }
there() { local path; for path in "$@"; do [[ -e $path || -L $path ]] || fail "$path is gone"; done; }
says() { [[ $1 == *"$2"* ]] || fail "'$2' is missing in: $1"; }
is() { [[ $1 == "$2" ]] || fail "it is '$1', not '$2'"; }

# json EXPRESSION: of the object in $scratch/out, which must be nothing but one, as Python sees it.
json() {
  python3 -c '
import json, sys
with open(sys.argv[1], encoding="utf-8", errors="strict") as file:
    o = json.load(file)
items = {item["path"]: item for item in o["items"]}
print(eval(sys.argv[2]))' "$scratch/out" "$1" 2>&1
}

# begin NAME: a new test in a folder of its own.
begin() {
  test=$1
  cd -- "$scratch/desk" || exit 2
  chmod -R u+rwx -- .
  find . -mindepth 1 -delete
}

# finish: the outcome of all the tests before.
finish() {
  ((failures == 0)) || { echo "$failures checks have failed" >&2; exit 1; }
  exit 0
}

# Ctrl+C: how long until the program has ended, and whether it tells the truth.
stops_in_time() {
  local signal=$1 options=(--yes --json --level 7) room bytes pid start code=0 took left i
  rm -f -- big small
  # Large enough to be in work still when we come, if there is the room for it.
  room=$(df --output=avail --block-size=1 . | tail -n 1)
  bytes=$((room / 2 < 268435456 ? room / 2 / 4096 * 4096 : 268435456))
  head -c "$bytes" /dev/zero >big
  echo 1 >small
  sync -- big
  guard
  # A script's background jobs ignore the interrupt, and zqwipe leaves it so.
  env --default-signal=INT "$program" "${options[@]}" big small >"$scratch/out" 2>"$scratch/err" &
  pid=$!
  # Well under way when the bytes in the middle are no zeros any more, in the first of its many passes.
  for ((i = 0; i < 6000; ++i)); do
    [[ $(od -An -tx1 -j$((bytes / 2)) -N4 big) == " 00 00 00 00" ]] || break
    sleep 0.01
  done
  ((i < 6000)) || fail "the wipe did not get to the middle of the file"
  start=${EPOCHREALTIME/./}
  kill -s "$signal" "$pid"
  wait "$pid" || code=$?
  took=$((${EPOCHREALTIME/./} - start))
  echo "stopped by SIG$signal after $((took / 1000)) ms"
  ((took < quickest)) && quickest=$took
  ((code == 3)) || fail "exit code $code, not 3, after SIG$signal"
  there big small
  # The last cluster may be filled up.
  left=$(stat -c %s big)
  ((left >= bytes && left < bytes + 2097152)) || fail "the cancelled file has $left bytes, not $bytes"
  is "$(json 'o["cancelled"], o["exitCode"], items["big"]["outcome"], items["small"]["reason"]')" \
    "(True, 3, 'kept', 'cancelled before its turn')"
  says "$(json 'items["big"]["reason"]')" "may be partly overwritten"
  says "$(cat -- "$scratch/err")" "kept small: cancelled before its turn"
}

if [[ $what == stop ]]; then
  begin "stops within a quarter of a second"
  for signal in INT TERM HUP; do
    # What is slow by itself is so each time; a machine that has just something else to do isn't.
    quickest=99000000
    for attempt in 1 2 3; do
      stops_in_time "$signal"
      ((quickest < 250000)) && break
      echo "attempt $attempt took longer than it may"
    done
    ((quickest < 250000)) || fail "SIG$signal took $quickest microseconds at best"
  done
  finish
fi

begin "wipes files and tells so"
echo one >a; echo two >b; echo three >c
zq 0 --yes a b
gone a b; there c
# Whoever may not clear the journal is told so behind it.
is "$(head -n 1 <<<"$out")" "Wiped: 2 files (8 bytes). Kept: nothing."
is "$err" ""
zq 0 --yes --quiet --level 7 c
is "$out$err" ""
gone c
is "$(ls -A)" ""

begin "tells of other names that a file has"
echo one >a; ln a b; echo two >c; ln c d
zq 0 --yes a c d
gone a c d; there b
says "$out" "1 file has other names, too. Under these it is now empty."
is "$(cat b)" ""
echo one >a; ln -f a b
zq 0 --yes --json a
says "$(json 'o["notes"]')" "1 file has other names, too."

begin "keeps a record of what it did"
echo one >a
zq 0 --yes --json --level 5 a
is "$(json 'o["operation"], o["passes"], o["verified"], o["method"], o["started"][-1], o["seconds"] >= 1')" \
  "('files', 15, True, 'Clear', 'Z', True)"
is "$(json 'o["device"]["kind"] in ("disk", "flash", "memory", "unknown"), o["device"] in o["devices"]')" "(True, True)"
echo one >a
zq 0 --dry-run --json a
is "$(json 'o["verified"], "started" in o')" "(False, False)"

begin "needs an answer or --yes"
echo one >a
zq 2 a
there a
says "$err" "--yes"
is "$out" ""
on_terminal 3 $'no\n' "'$program' a"
there a
on_terminal 3 $'y\n' "'$program' a"
there a
on_terminal 3 $'\n' "'$program' a"
there a
on_terminal 0 $'yes\n' "'$program' a"
says "$out" "1 file (4 bytes)"
says "$out" "Type yes to destroy them:"
gone a

begin "wipes folders only when told to"
mkdir -p d/e; echo 1 >d/one; echo 2 >d/e/two; ln -s ../a d/link; echo keep >a
zq 2 --yes d
zq 2 --yes a d
there a d/one d/e/two
zq 0 --yes --recursive d
gone d; there a
is "$(cat a)" keep

begin "wipes matching files and leaves folders"
mkdir -p d/e; touch d/x.tmp d/y.txt d/e/z.tmp 'd/[q].tmp'
zq 0 --yes --mask '[[]q*' d
gone 'd/[q].tmp'; there d/x.tmp
zq 0 --yes --mask '*.tmp' d
gone d/x.tmp; there d/y.txt d/e/z.tmp
zq 0 --yes --mask '*.tmp' --recursive d
gone d/e/z.tmp; there d/y.txt d/e
zq 0 --yes --mask '*.none' d
there d/y.txt

begin "a dry run destroys nothing"
mkdir d; echo 1 >d/one; echo 2 >two
zq 0 --dry-run --recursive d two
is "$out" $'d/one\nd\ntwo'
there d/one two
zq 0 --dry-run --json --recursive --yes d two
is "$(json 'o["dryRun"], o["totals"]["wiped"], o["totals"]["kept"], items["two"]["outcome"]')" "(True, 0, 3, 'kept')"
there d/one two

begin "wipes once what is named twice"
mkdir -p d/e; echo 1 >d/one; echo 2 >d/e/two; echo 3 >three
zq 0 --yes --json --recursive three ./three "$PWD/three" d d/e d/one
is "$(json 'o["totals"]["wiped"], len(o["items"])')" "(5, 5)"
gone d three

begin "goes on after what it can't wipe"
echo 1 >a; echo 2 >b; ln -s a link; mkfifo pipe
zq 1 --yes --json a missing link pipe b
gone a b; there link pipe
is "$(json 'items["a"]["outcome"], items["missing"]["outcome"], items["link"]["outcome"], items["pipe"]["outcome"]')" \
  "('wiped', 'kept', 'kept', 'kept')"
is "$(json 'all(("reason" in i) == (i["outcome"] == "kept") for i in o["items"]), o["exitCode"]')" "(True, 1)"
says "$err" "kept link: it is a link"
zq 1 --yes missing
says "$err" "kept missing: "

begin "prints valid JSON for every name"
names=($'new\nline' $'quote"back\\slash' $'bad\xff\xfeutf8' $'control\x01\x1b' 'ünïcode' '[a,b]' ' ' '++' '{}')
for name in "${names[@]}"; do echo x >"$name"; done
zq 0 --yes --json -- "${names[@]}"
is "$(json 'len(items), o["totals"]["wiped"]')" "(9, 9)"
is "$(json '"new\nline" in items and "quote\"back\\slash" in items and "ünïcode" in items and "bad\ufffd\ufffdutf8" in items')" True
is "$(ls -A)" ""

begin "takes names that begin with dashes after --"
touch -- -x --yes --
zq 2 -x
zq 0 --yes -- -x --yes --
is "$(ls -A)" ""

begin "shows names harmlessly"
touch $'a\nb\x1b[2J'
zq 0 --dry-run $'a\nb\x1b[2J'
is "$out" 'a\nb\x1B[2J'

begin "writes a report, but over nothing"
echo 1 >a; echo 2 >b; echo old >taken; mkdir d; echo 3 >d/c
zq 2 --yes --report taken a
there a; is "$(cat taken)" old
zq 2 --yes --report missing/r a
zq 2 --yes --recursive --report d/r d
there a d/c
gone d/r
zq 1 --yes --report r.txt a missing b
gone a b
says "$(cat r.txt)" $'\nwiped  a\n'
says "$(cat r.txt)" $'\nkept   missing: '
says "$(cat r.txt)" "Wiped: 2 files (4 bytes). Kept: 1 other."
is "$(stat -c %a r.txt)" 600

begin "refuses what would be too much"
mkdir -p d/e "$HOME/letters"; echo 1 >d/e/f; echo 2 >"$HOME/letters/l"
for path in . .. ./ d/.. d/e/. "$PWD" "$scratch" "$HOME" ../home ../home/letters/..; do
  zq 2 --yes --recursive "$path"
  says "$err" "nothing was destroyed"
  zq 2 --yes --mask '*' "$path"
done
zq 2 --yes --recursive --json d/e "$HOME"
is "$(json 'o["exitCode"], len(o["refused"]), o["totals"]["wiped"]')" "(2, 2, 0)"
there d/e/f "$HOME/letters/l"
# A whole drive, for which nothing but a dry run is tried.
for path in / // /. "$scratch/../../../../../../../../../.."; do
  code=0
  "$program" --dry-run --recursive "$path" </dev/null >"$scratch/out" 2>"$scratch/err" || code=$?
  ((code == 2)) || fail "exit code $code for $path"
  says "$(cat -- "$scratch/err")" "nothing was destroyed"
  is "$(cat -- "$scratch/out")" ""
done
# The same by way of a link to the folder above.
ln -s "$scratch" "$scratch/desk/up"
zq 2 --yes --recursive up/home
zq 2 --yes --recursive up/desk
there d/e/f "$HOME/letters/l"
zq 0 --yes --recursive "$HOME/letters"
there "$HOME"
cd d/e || exit 2
zq 2 --yes --recursive "$scratch/desk/d"
zq 2 --yes --recursive ../e
there f

begin "refuses the folder that it runs from"
mkdir bin; cp -- "$program" bin/zqwipe
installed=$program
program=$PWD/bin/zqwipe
zq 2 --yes --recursive bin
zq 2 --yes bin/zqwipe
there bin/zqwipe
program=$installed

begin "wipes nothing that has come in its place while the question stood"
swap="mv way moved; ln -s other way"
for command in "way/d/f" "--recursive way/d" "--recursive --mask *.* way/d"; do
  rm -rf way moved other; mkdir -p way/d other/d
  echo agreed >way/d/f; echo precious >other/d/f
  meanwhile 1 "$swap" "set -f; '$program' $command"
  says "$out" "something else is there now"
  is "$(cat other/d/f)" precious
  is "$(cat moved/d/f)" agreed
done
# It is the same file there, but not what was named.
rm -rf way moved other; mkdir -p way/d other/d
echo agreed >way/d/f; ln way/d/f other/d/f
meanwhile 1 "$swap" "'$program' way/d/f"
says "$out" "something else is there now"
is "$(cat other/d/f)" agreed
# Without a change it goes.
rm -rf way moved other; mkdir -p way/d
echo agreed >way/d/f
meanwhile 0 true "'$program' --recursive way"
gone way

begin "wipes a tree of paths that are too long to be named"
name=$(printf 'n%.0s' {1..255})
mkdir top
(
  cd top || exit
  for ((i = 0; i < 40; i++)); do mkdir "$name" && cd "./$name" || exit; done
  head -c 20000 /dev/zero >bottom
)
zq 0 --recursive --dry-run --json top
is "$(json '[item["bytes"] for item in o["items"] if item["kind"] == "file"]')" "[20000]"
zq 0 --yes --recursive top
# What the device is, is told behind it.
is "$(head -n 1 <<<"$out")" "Wiped: 1 file (19.5 KiB), 41 folders. Kept: nothing."
is "$err" ""
gone top

begin "refuses what it does not understand"
echo 1 >a
zq 2
zq 2 --level 4 --yes a
zq 2 --recusrive --yes a
zq 2 --yes a ""
zq 2 --yes --mask "" a
there a
zq 0 --help
says "$out" "--recursive"
zq 0 --version

begin "shows progress on a terminal alone"
head -c 20000000 /dev/zero >big
cp big big2; cp big big3
zq 0 --yes big
[[ $out$err != *%* ]] || fail "progress without a terminal"
on_terminal 0 "" "'$program' --yes big2"
says "$out" "%  big2"
on_terminal 0 "" "'$program' --yes --quiet big3"
[[ $out != *%* ]] || fail "progress although --quiet"

finish
