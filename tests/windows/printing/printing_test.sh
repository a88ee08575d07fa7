#!/usr/bin/env bash
# printing_test.sh SOURCE PROGRAM.exe: prints reports on PostScript printers and looks at the pages and at the
# rich text that goes with them.
set -euo pipefail
source=$1 program=$2
export ZQ_PREFIX=printing_test ZQ_PICTURES=$source/build/pictures/printing_test
# shellcheck source=scripts/cage.sh
source "$source/scripts/cage.sh"

# What waits for the printer lies on a small drive that a test fills up.
if [[ $(cage_wall) == namespaces ]]; then
  export ZQ_PREFIX_OPTIONS="--drive d:16M"
  prefix=$("$source/scripts/prefix.sh" create printing_test --drive d:16M)
  spool=$prefix/drive_c/windows/system32/spool
  mkdir -p -- "$spool"
  if [[ ! -L $spool/PRINTERS ]]; then
    rm -rf -- "$spool/PRINTERS"
    ln -s ../../../../drive_d "$spool/PRINTERS"
  fi
fi
rm -rf -- "$ZQ_PICTURES"
"$source/scripts/wine-run.sh" "$program"
status=0
for look in look_at_pages look_at_richtext; do
  python3 "$source/tests/windows/printing/$look.py" "$ZQ_PICTURES" || status=1
done
exit "$status"
