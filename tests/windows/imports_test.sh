#!/usr/bin/env bash
# imports_test.sh OBJDUMP PROGRAM.exe: which of the system's calls the program is linked to.
set -euo pipefail

imports=$("$1" -p "$2" | sed -nE 's/^\t[0-9a-f]+\t +[0-9]+ +([A-Za-z_]\w*)$/\1/p' | LC_ALL=C sort -u)
failed=0

# The list was read: what every window needs is in it.
grep -qx GetMessageW <<<"$imports" || { echo "no GetMessageW among the imports of $2"; failed=1; }

# Text goes to the system by the W calls. These few are the compiler's own library's; by the cryptographic one it asks
# for the number that guards the stacks.
narrow=$(grep -xE '[A-Z]\w*[a-z0-9]A' <<<"$imports" |
  grep -vxE 'CreateEventA|CryptAcquireContextA|CreateSemaphoreA|GetModuleHandleA|GetStartupInfoA|OutputDebugStringA' || true)
if [[ -n $narrow ]]; then
  printf 'Narrow calls of Windows in %s:\n%s\n' "$2" "$narrow"
  failed=1
fi

# Windows must not invite the user to end the program in the middle of a file.
grep -qx DisableProcessWindowsGhosting <<<"$imports" || { echo "$2 lets Windows draw ghosts"; failed=1; }
exit "$failed"
