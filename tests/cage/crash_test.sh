#!/usr/bin/env bash
# crash_test.sh SOURCE CRASH.exe: a test that crashes is seen as failed, at once and by its name; a program of tests that
# Wine lost before it could say a word is started again, and its own exit code comes through.
set -euo pipefail
run=$1/scripts/wine-run.sh crash=$2
folder=$(mktemp -d)
trap 'rm -rf -- "$folder"' EXIT

status=0
"$run" "$crash" || status=$?
((status == 3)) || { echo "the exit code 3 came through as $status"; exit 1; }

status=0
cp -- "$crash" "$folder/crash_test.exe"
output=$(ZQ_FAILURES_ONLY=1 timeout 60 "$run" "$folder/crash_test.exe" crash | tr -d '\r') || status=$?
((status == 5)) || { echo "the crash came through as $status, not as 5"; exit 1; }
[[ $output == "[ RUN      ] Two.Second" ]] || { echo "what failed is told as: $output"; exit 1; }

cp -- "$crash" "$folder/lost_test.exe"
status=0
output=$(timeout 60 "$run" "$folder/lost_test.exe" lost 2>"$folder/said" | tr -d '\r') || status=$?
[[ $status == 3 && $output == found ]] || { echo "a lost program came through as $status, with: $output"; exit 1; }
grep -q 'lost_test ended with 5 before it began (start 1 of 4 at most)' "$folder/said" || { cat "$folder/said"; exit 1; }
# One that never speaks has failed in the end, with the code that it ended with.
status=0
timeout 60 "$run" "$folder/lost_test.exe" 2>"$folder/said" || status=$?
[[ $status == 3 && $(grep -c 'before it began' "$folder/said") == 4 ]] || { cat "$folder/said"; exit 1; }
