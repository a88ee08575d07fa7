#!/usr/bin/env bash
# Builds everything and runs every test: natively with the sanitizers, under Wine, the fuzzers for a
# few seconds each. Installs what is missing. Ends with CTest's summary; arguments go to ctest.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
source scripts/packages.sh
need_packages build build-native run test package

trap 'scripts/prefix.sh stop --all' EXIT
jobs=$(nproc)
trees=(native windows fuzz)
for tree in "${trees[@]}"; do
  cmake --preset "$tree" -Wno-dev
  cmake --build --preset "$tree" --parallel "$jobs"
done

# Made before the tests start, since the first of them would need its time for it.
scripts/prefix.sh create test >/dev/null

export ZQ_FAILURES_ONLY=1
# One run over all the trees gives one summary.
mkdir -p build/all
for tree in "${trees[@]}"; do
  echo "subdirs(\"$PWD/build/$tree\")"
done >build/all/CTestTestfile.cmake
# Two more than there are processors: a test of windows waits for the better part of its time, and one compiles
# while others wait.
status=0
ctest --test-dir build/all --parallel "$((jobs + 2))" --output-on-failure --no-tests=error "$@" || status=$?
((status == 0)) || scripts/failures.sh build/all/Testing/Temporary/LastTest.log
exit "$status"
