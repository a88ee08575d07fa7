#!/usr/bin/env bash
# drives_wall_test.sh SOURCE CAGE_TEST.exe ZQWIPE.exe: the cage of a system that refuses name spaces. Drive letters
# are its only wall, it says so, and what lies past them stays whole.
set -euo pipefail
source=$1 cage_test=$2 zqwipe=$3
export ZQ_CAGE_WALL=drives ZQ_PREFIX=drives-wall
outside=$(mktemp -d)
trap 'rm -rf -- "$outside"' EXIT
echo "a file of this machine" >"$outside/letter.txt"
chmod 444 -- "$outside/letter.txt"
failed=0
"$source/scripts/prefix.sh" stop "$ZQ_PREFIX" >/dev/null 2>&1 || true

said=$("$source/scripts/wine-run.sh" "$cage_test" 2>&1) || { echo "the cage's own test failed"; failed=1; }
grep -q 'drive letters are the only wall' <<<"$said" ||
  { printf 'not told that the wall is one:\n%s\n' "$said"; failed=1; }
grep -q '\\\\?\\unix\\ is open' <<<"$said" || { echo "this system's files can't be reached: nothing is shown"; failed=1; }

for path in "$outside/letter.txt" "$outside"; do
  status=0
  "$source/scripts/wine-run.sh" "$zqwipe" --yes --recursive "\\\\?\\unix${path//\//\\}" >/dev/null 2>&1 || status=$?
  ((status != 0)) || { echo "zqwipe told a success on $path"; failed=1; }
done
[[ $(<"$outside/letter.txt") == "a file of this machine" ]] || { echo "the file was changed"; failed=1; }
[[ $(stat -c %a -- "$outside/letter.txt") == 444 ]] || { echo "the file's mode was changed"; failed=1; }
"$source/scripts/prefix.sh" stop "$ZQ_PREFIX" >/dev/null 2>&1 || true
exit "$failed"
