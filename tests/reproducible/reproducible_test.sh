#!/usr/bin/env bash
# reproducible_test.sh SOURCE BUILD SCRATCH TARGET: builds the target in its build folder and, from a
# copy of the sources, in a folder elsewhere and deeper, and proves that both give the same bytes.
set -euo pipefail
source=$1 build=$2 scratch=$3 target=$4

copy=$scratch/a/deeper/copy
rm -rf -- "$scratch/a"
mkdir -p -- "$copy"
# What git knows or would add, so that a build folder or a stray file has no part in it.
git -C "$source" ls-files -z --cached --others --exclude-standard |
  (
    cd -- "$source"
    while IFS= read -r -d '' file; do [[ ! -e $file ]] || printf '%s\0' "$file"; done |
      tar --create --null --files-from=- --file=-
  ) | tar --extract --directory="$copy" --file=-

cmake --build "$build" --target "$target" >/dev/null
(
  cd -- "$copy"
  cmake --preset windows -Wno-dev >/dev/null
  cmake --build --preset windows --target "$target" >/dev/null
)

program=$(cd -- "$copy/build/windows" && find . -name "$target.exe" -print -quit)
[[ -n $program ]] || { echo "no $target.exe was built"; exit 1; }
sha256sum "$build/$program" "$copy/build/windows/$program"
cmp -- "$build/$program" "$copy/build/windows/$program"
rm -rf -- "$scratch/a"
