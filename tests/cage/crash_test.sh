#!/usr/bin/env bash
# crash_test.sh SOURCE CRASH.exe: a test that crashes is seen as failed, at once and by its name.
set -euo pipefail
run=$1/scripts/wine-run.sh crash=$2

status=0
"$run" "$crash" || status=$?
((status == 3)) || { echo "the exit code 3 came through as $status"; exit 1; }

status=0
output=$(ZQ_FAILURES_ONLY=1 timeout 60 "$run" "$crash" crash | tr -d '\r') || status=$?
((status == 5)) || { echo "the crash came through as $status, not as 5"; exit 1; }
[[ $output == "[ RUN      ] Two.Second" ]] || { echo "what failed is told as: $output"; exit 1; }
