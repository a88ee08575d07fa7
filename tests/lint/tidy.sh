#!/usr/bin/env bash
# tidy.sh SCRATCH PART PARTS: clang-tidy finds no fault in its part of the files of src/. The checks are in
# .clang-tidy. The trees build/fuzz and build/windows have to be configured.
set -euo pipefail
scratch=$1 part=$2 parts=$3
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.."

files=$(python3 tests/lint/clang_database.py "$PWD" "$scratch")
mapfile -t mine < <(awk -v part="$part" -v parts="$parts" 'NR % parts == part' <<<"$files")
((${#mine[@]} > 10)) || { echo "the list of our files is not right"; exit 1; }

# It is told of a fault that is there.
echo 'int Twice(int a) { return a == a ? 2 * a : 0; }' >"$scratch/faulty.cpp"
if clang-tidy --quiet --config-file=.clang-tidy "$scratch/faulty.cpp" -- >"$scratch/faulty" 2>&1 ||
  ! grep -q misc-redundant-expression "$scratch/faulty"; then
  echo "clang-tidy does not notice a fault:"
  cat -- "$scratch/faulty"
  exit 1
fi

clang-tidy --quiet -p "$scratch" "${mine[@]}" 2>&1 | { grep -v ' warnings generated\.$' || true; }
