#!/usr/bin/env bash
# Windows is called by its W calls: nothing in src/ names one of the A calls, their structures or messages. The
# names without a letter are the W calls, since the compiler is told so (UNICODE).
set -euo pipefail
here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)

# narrow_names FOLDER: where a file below the folder names one of them, a line each.
narrow_names() {
  # SendMessageA; LOGFONTA, LVM_INSERTCOLUMNA: an A behind a whole word, other than of the words that end so.
  (cd -- "$1" && grep -rnoP --include='*.h' --include='*.cpp' \
    '\b[A-Z]\w*[a-z0-9]A\b|\b(?!(ATA|\w*(DATA|DELTA|AREA|ALPHA|BGRA|RGBA))\b)[A-Z][A-Z0-9_]*[A-Z0-9]A\b' . || true) |
    sed 's|^\./||' | LC_ALL=C sort
}

# --- It refuses what it should: a tree made for this ---

scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT
failed=0

# expect LINE FOUND: what is found in a file of this one line.
expect() {
  local found
  mkdir -p -- "$scratch/controls"
  printf '%s\n' "$1" >"$scratch/controls/a.cpp"
  found=$(narrow_names "$scratch")
  [[ $found == "${2:+controls/a.cpp:1:$2}" ]] && return
  printf 'wide_test: in "%s" found "%s" instead of "%s"\n' "$1" "$found" "$2"
  failed=1
}

expect '::SendMessageA(window, WM_CLOSE, 0, 0);' SendMessageA
expect '  auto call = &GetTextExtentPoint32A;' GetTextExtentPoint32A
expect 'LVCOLUMNA item{};' LVCOLUMNA
expect 'TB_ADDBUTTONSA' TB_ADDBUTTONSA
expect 'WIN32_FIND_DATAA entry;' WIN32_FIND_DATAA
expect '::SendMessageW(window, TB_ADDBUTTONSW, 0, 0);' ''
expect 'GWLP_USERDATA, WHEEL_DELTA, AC_SRC_ALPHA, SPI_GETWORKAREA, ERROR_MORE_DATA, WIN32_FILE_ATTRIBUTE_DATA' ''
expect 'vendor == "ATA"' ''
expect 'constexpr int kA = 1; std::vector<A> all;' ''

# --- Our own tree ---

found=$(narrow_names "$here/../../src")
if [[ -n $found ]]; then
  printf 'Narrow calls of Windows (text is widened by platform/win32/Wide.h):\n%s\n' "$found"
  failed=1
fi
if ! grep -qE '^ +UNICODE _UNICODE ' "$here/../../cmake/compiler.cmake"; then
  echo "cmake/compiler.cmake doesn't define UNICODE: the names without a letter would be the A calls."
  failed=1
fi
exit "$failed"
