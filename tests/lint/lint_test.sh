#!/usr/bin/env bash
# What a compiler doesn't see: the form of the text, where a header may be included, words and paths
# that have no place here, and that no script of ours starts Wine outside the cage.
set -euo pipefail
# The last command of a pipe runs in this shell, so that `complain` can count.
shopt -s lastpipe
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.."

# shellcheck source=scripts/files.sh
source scripts/files.sh

failed=0
# complain TEXT: shows the lines on standard input under the text, if there are any.
complain() {
  local lines
  lines=$(cat)
  [[ -z $lines ]] && return
  printf '%s\n%s\n\n' "$1" "$lines"
  failed=1
}
# found PATTERN: lines that match, in files given NUL-ended on standard input.
found() { xargs -0 --no-run-if-empty grep -nHIP -- "$1" || true; }

{ ours '*.cpp' '*.h' | xargs -0 --no-run-if-empty clang-format --dry-run -Werror 2>&1 || true; } |
  complain "Not formatted (clang-format -i mends it):"

mapfile -d '' files < <(ours)
((${#files[@]} > 20)) || { echo "the list of our files is not right"; exit 1; }

# The pattern's own text must not match it.
ours | found '(^|[^[:alnum:]_./-])/(work|home|root|Users)/' |
  complain "Paths of somebody's machine:"
ours | found '\b(TO''DO|FIX''ME|X''XX)\b' | complain "Unfinished work:"
# A bare system has no git, and an unpacked archive no repository (scripts/files.sh stands in for it).
ours '*.sh' '*.py' '.ci/*' | found '^(?!\s*#).*\bgit [[:lower:]-]+' | complain "Scripts that call git:"
# A test may be passed over where the system can't show what it tests, if it says why.
ours 'tests/*.cpp' | found 'DISABLED''_|GTEST''_SKIP\(\)(?! << ")' |
  complain "Tests that are switched off:"

system='#include *[<"](windows|windowsx|winbase|winuser|commctrl|commdlg|shellapi|shlobj|shlwapi|'
system+='shobjidl|objbase|ole2|oleidl|richedit|htmlhelp|uxtheme|winreg|winioctl|winspool|bcrypt)\.h[>"]'
ours 'src/*' '!src/*/frm*' '!src/controls/*' '!src/platform/win32/*' '!src/*_win32.*' \
  '!src/app*' '!src/manager/*' | found "$system" |
  complain "Windows' headers outside forms, controls, platform/win32 and device files:"

{ ours 'src/*.h' 'tests/*.h' | xargs -0 --no-run-if-empty grep -L '^#pragma once' || true; } |
  complain "Headers without #pragma once:"

# Wine is started by the cage's scripts alone, which refuse to when the cage is open.
ours '*.sh' '*CMakeLists.txt' '*.cmake' '!scripts/cage.sh' '!scripts/keeper.sh' |
  found '(^|[^[:alnum:]_./-])(wine|wine64|wineboot|wineserver|regedit)([[:space:]"]|$)' |
  { grep -vE ':[0-9]+:[[:space:]]*#|cage_exec|printf .%s.n. wine|\[run\]=' || true; } |
  complain "Wine outside the cage (use scripts/wine-run.sh):"

exit "$failed"
