#!/usr/bin/env bash
# What scripts/failures.sh tells of a log: each test that failed, with its last lines, and no other.
set -euo pipefail
log=$(mktemp)
trap 'rm -f -- "$log"' EXIT
one() { # NAME RESULT LINE...
  printf '1/3 Testing: %s\n1/3 Test: %s\nCommand: "x"\nOutput:\n%s\n' "$1" "$1" ----------
  (($# == 2)) || printf '%s\n' "${@:3}"
  printf '<end of output>\nTest time =   0.05 sec\n%s\n%s\n' ---------- "$2"
}
{
  one good 'Test Passed.' 'all is well'
  one bad 'Test Failed.' 'Test Failed.' ---------- reason
  one silent 'Test Failed.'
  mapfile -t lines < <(seq 100)
  one 'of many words' 'Test Failed.' "${lines[@]}"
} >"$log"
told=$(scripts/failures.sh "$log")
wanted="failed: bad
  Test Failed.
  ----------
  reason
failed: silent
failed: of many words
$(seq 61 100 | sed 's/^/  /')"
[[ $told == "$wanted" ]] || { printf 'told:\n%s\n' "$told"; exit 1; }
