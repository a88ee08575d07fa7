#!/usr/bin/env bash
# compiled_test.sh SOURCE SCRATCH: the help file is byte for byte what its sources give. Ends with 77 where this
# system can't compile it, or has another compiler.
set -euo pipefail
compile=$1/resources/help/compile.sh
scratch=$2

wanted=$("$compile" --compiled-with)
compiler=$(command -v chmcmd) || { echo "there is no chmcmd (package fp-utils)"; exit 1; }
found=$(basename -- "$(realpath -- "$compiler")")
[[ $found == "$wanted" ]] || { echo "the help file was compiled with $wanted, and here is $found"; exit 77; }
"$compile" --can || exit 77

mkdir -p -- "$scratch"
"$compile" "$scratch/Zeroquill.chm"
cmp -- "$scratch/Zeroquill.chm" "$1/resources/help/Zeroquill.chm" ||
  { echo "Zeroquill.chm is not what its sources give: run resources/help/compile.sh"; exit 1; }
