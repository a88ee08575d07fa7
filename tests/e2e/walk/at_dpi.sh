#!/usr/bin/env bash
# at_dpi.sh DPI: the walk at another resolution than the tests' own, with its pictures in
# build/pictures/e2e_walk_test.DPIdpi. The program of the walk has to be built.
set -euo pipefail
dpi=${1:?the resolution, such as 144}
top=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../../.." && pwd)
export ZQ_PREFIX=e2e_walk_test.${dpi}dpi ZQ_PREFIX_OPTIONS="--dpi $dpi --drive d:60M"
export ZQ_PICTURES=$top/build/pictures/$ZQ_PREFIX
rm -rf -- "$ZQ_PICTURES"
exec "$top/scripts/wine-run.sh" "$top/build/windows/tests/e2e/e2e_walk_test.exe"
