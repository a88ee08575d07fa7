#!/usr/bin/env bash
# reproducible_test.sh SOURCE BUILD SCRATCH TARGET: builds the target in its build folder and, from a
# copy of the sources, in a folder elsewhere and deeper, and proves that both give the same bytes.
set -euo pipefail
source=$1 build=$2 scratch=$3 target=$4

copy=$scratch/a/deeper/copy
rm -rf -- "$scratch/a"
mkdir -p -- "$copy"
(
  cd -- "$source"
  # shellcheck source=scripts/files.sh
  source scripts/files.sh
  ours | tar --create --null --files-from=- --file=-
) | tar --extract --directory="$copy" --file=-

cmake --build "$build" --target "$target" >/dev/null
(
  cd -- "$copy"
  cmake --preset program -Wno-dev >/dev/null
  nice cmake --build --preset program --target "$target" --parallel "$(nproc)" >/dev/null
)

program=$(cd -- "$copy/build/program" && find . -name "$target.exe" -print -quit)
[[ -n $program ]] || { echo "no $target.exe was built"; exit 1; }
sha256sum "$build/$program" "$copy/build/program/$program"
cmp -- "$build/$program" "$copy/build/program/$program"
rm -rf -- "$scratch/a"
