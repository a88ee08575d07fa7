#!/usr/bin/env bash
# Builds Zeroquill and starts it. Installs what is missing.
#   run.sh [ARGUMENT]...   with a display: opens the program there. Without one: the demonstration
#   run.sh --demo          the demonstration, on a display of its own; pictures in build/demo
#   run.sh --build         builds only; the last line is the program's folder
#   run.sh --build-native  builds zqwipe, the command line, for this system; the last line is its path
# The program runs in a private Wine prefix and sees no file of this machine but its own copy:
# arguments are passed on as they are and mean paths in there, such as C:\Zeroquill. What it shall
# destroy is put into build/wine/desktop/drive_c first.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
source scripts/packages.sh
# shellcheck source=scripts/cage.sh
source scripts/cage.sh

# Whether an X server answers for DISPLAY.
display_works() {
  [[ ${DISPLAY:-} =~ ^([^:]*):([0-9]+)(\.[0-9]+)?$ ]] || return 1
  local host=${BASH_REMATCH[1]} number=${BASH_REMATCH[2]}
  if [[ -z $host || $host == unix ]]; then
    [[ -S /tmp/.X11-unix/X$number ]]
  else
    (: <>"/dev/tcp/$host/$((6000 + number))") 2>/dev/null
  fi
}

build() {
  need_packages build run
  cmake --preset windows -Wno-dev >&2
  cmake --build --preset windows --parallel "$(nproc)" --target program >&2
  rm -rf -- build/Zeroquill.new
  cmake --install build/windows --component program --prefix build/Zeroquill.new >&2
  rm -rf -- build/Zeroquill
  mv -- build/Zeroquill.new build/Zeroquill
}

build_native() {
  need_packages build >&2
  cmake --preset native-release -Wno-dev >&2
  cmake --build --preset native-release --parallel "$(nproc)" --target zqwipe >&2
}

demonstrate() {
  cmake --build --preset windows --parallel "$(nproc)" --target zq_demo >&2
  rm -rf -- build/demo
  trap 'scripts/prefix.sh stop demo' EXIT
  scripts/prefix.sh create demo >/dev/null
  ZQ_PREFIX=demo ZQ_PICTURES=$PWD/build/demo scripts/wine-run.sh build/windows/tests/e2e/zq_demo.exe
  echo "Pictures of its windows:"
  find "$PWD/build/demo" -name '*.png' | sort
}

open_on_display() {
  local prefix
  prefix=$(scripts/prefix.sh create desktop --managed)
  cage_verify "$prefix"
  # The reports, jobs and settings of former runs stay.
  mkdir -p -- "$prefix/drive_c/Zeroquill"
  cp -r -- build/Zeroquill/. "$prefix/drive_c/Zeroquill/"
  xauth extract "$prefix/tmp/Xauthority" "$DISPLAY" 2>/dev/null || true
  cage_up "$prefix" host
  cage_exec "$prefix" "$prefix/drive_c/Zeroquill" wine Zeroquill.exe "$@"
}

case ${1:-} in
  --build)
    build
    echo "$PWD/build/Zeroquill"
    ;;
  --build-native)
    build_native
    echo "$PWD/build/native-release/src/cli/zqwipe"
    ;;
  --demo)
    build
    demonstrate
    ;;
  *)
    build
    if display_works; then open_on_display "$@"; else demonstrate; fi
    ;;
esac
