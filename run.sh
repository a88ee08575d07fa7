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

say() { echo "== $*" >&2; }

# compile PRESET TARGET...
compile() {
  say "Building: a minute or two the first time"
  cmake --preset "$1" -Wno-dev >&2
  cmake --build --preset "$1" --parallel "$(nproc)" --target "${@:2}" >&2
}

# build [TARGET]...: the program and its folder, and these targets.
build() {
  compile program program "$@"
  rm -rf -- build/Zeroquill.new
  cmake --install build/program --component program --prefix build/Zeroquill.new >&2
  rm -rf -- build/Zeroquill
  mv -- build/Zeroquill.new build/Zeroquill
}

demonstrate() {
  need_packages build run >&2
  build zq_demo
  rm -rf -- build/demo
  trap 'scripts/prefix.sh stop demo' EXIT
  say "Preparing the Wine prefix that it runs in: half a minute the first time"
  scripts/prefix.sh create demo >/dev/null
  ZQ_PREFIX=demo ZQ_PICTURES=$PWD/build/demo scripts/wine-run.sh build/program/tests/demo/zq_demo.exe
  echo "Pictures of its windows:"
  find "$PWD/build/demo" -name '*.png' | sort
}

open_on_display() {
  local prefix
  need_packages build run >&2
  build
  say "Preparing the Wine prefix that it runs in: half a minute the first time"
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
    need_packages build >&2
    build
    echo "$PWD/build/Zeroquill"
    ;;
  --build-native)
    need_packages build-native >&2
    compile native-release zqwipe
    echo "$PWD/build/native-release/src/cli/zqwipe"
    ;;
  --demo)
    demonstrate
    ;;
  *)
    if display_works; then open_on_display "$@"; else demonstrate; fi
    ;;
esac
