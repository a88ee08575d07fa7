#!/usr/bin/env bash
# names_test.sh FOLDER KIND: judges what forensic_test.sh has found of names: none in a folder's blocks or
# records, and fewer than each of the other tools leaves on the same file system.
set -euo pipefail
table=$1/table.$2.txt
[[ -s $table ]] || { echo "not tested here: forensic_test.sh has left no table"; exit 77; }
awk '
  $2 == "wipe_tool" {
    ours = $4
    for (i = 5; i < NF; i++) if ($i ~ /^(folder|record)$/) { print $(i + 1), "names in a", $i; bad = 1 }
  }
  $2 ~ /^(shred|srm|wipe)$/ && ours >= $4 && ours > 0 { print $2, "leaves", $4, "names, and we leave", ours; bad = 1 }
  END { if (ours == "") { print "we are not in the table"; bad = 1 } exit bad }' "$table"
