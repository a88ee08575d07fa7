#!/usr/bin/env bash
# tidy.sh SCRATCH PART PARTS: clang-tidy finds no fault in its part of the files of src/. The checks are in
# .clang-tidy. The trees build/fuzz and build/windows have to be configured.
set -euo pipefail
scratch=$1 part=$2 parts=$3
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.."
rm -rf -- "$scratch"
mkdir -p -- "$scratch/src"

tidy() {
  clang-tidy --quiet --config-file=.clang-tidy "$@" 2>&1 | { grep -v ' warnings generated\.$' || true; }
}

# It is told of a fault that is there, in a file that others include.
echo 'int Twice(int a) { return a == a ? 2 * a : 0; }' >"$scratch/src/faulty.cpp"
echo '#include "src/faulty.cpp"' >"$scratch/bundle.cpp"
if tidy "$scratch/bundle.cpp" -- >"$scratch/faulty" || ! grep -q misc-redundant-expression "$scratch/faulty"; then
  echo "clang-tidy does not notice a fault:"
  cat -- "$scratch/faulty"
  exit 1
fi

bundles=$(python3 tests/lint/clang_database.py "$PWD" "$scratch" "$part" "$parts")
mapfile -t mine <<<"$bundles"
(($(cat -- "${mine[@]}" | wc -l) > 10)) || { echo "the list of our files is not right"; exit 1; }
tidy -p "$scratch" "${mine[@]}"
