#!/usr/bin/env bash
# names_test.sh FOLDER KIND: judges what forensic_test.sh has found of names. With privileges none may be left,
# but on xfs, which nobody can make write its folders home without freezing it. There, and without privileges,
# there are fewer than each of the other tools leaves on the same file system, or none.
set -euo pipefail
table=$1/table.$2.txt
[[ -s $table ]] || { echo "not tested here: forensic_test.sh has left no table"; exit 77; }
awk '
  $2 == "wipe_tool" { judged++; if ($4 > 0 && $1 != "xfs") { print "we leave", $4, "names:", $0; bad = 1 } }
  $2 == "wipe_tool" && $1 == "xfs" { isUser = 1; user = $4 }
  $2 == "as_user" && $NF != "refused" { isUser = 1; if ($4 > user) user = $4 }
  $2 ~ /^(shred|srm|wipe)$/ {
    others++
    if (isUser && user > 0 && user >= $4) { print $2, "leaves", $4, "names, and we leave", user; bad = 1 }
  }
  END {
    if (!judged || !others) { print "the table is incomplete"; bad = 1 }
    exit bad
  }' "$table"
