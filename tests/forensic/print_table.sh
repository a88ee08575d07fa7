#!/usr/bin/env bash
# print_table.sh FOLDER: what forensic_test.sh has counted, as the table of docs/limits.md.
set -euo pipefail
awk '
  function cell(kind, way) { return refused[kind, way] ? "refused" : (kind, way) in sectors ? sectors[kind, way] " / " names[kind, way] : "" }
  $1 != "system" { sectors[$1, $2] = $3; names[$1, $2] = $4; refused[$1, $2] = $NF == "refused" }
  END {
    kinds = split("ext4 ext4-journal vfat ntfs xfs btrfs f2fs", kind)
    ways = split("rm shred wipe srm wipe_tool as_user", way)
    title["rm"] = "`rm -rf`"; title["shred"] = "`shred -u`, `rm -r`"; title["wipe"] = "`wipe -rf`"
    title["srm"] = "`srm -r`"; title["wipe_tool"] = "this engine, as root"; title["as_user"] = "this engine, without privileges"
    printf "| |"; for (k = 1; k <= kinds; k++) printf " %s |", kind[k]
    printf "\n|---|"; for (k = 1; k <= kinds; k++) printf "---|"
    for (w = 1; w <= ways; w++) {
      printf "\n| %s |", title[way[w]]
      for (k = 1; k <= kinds; k++) printf " %s |", cell(kind[k], way[w])
    }
    print ""
  }' "$1"/table.*.txt
