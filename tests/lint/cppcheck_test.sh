#!/usr/bin/env bash
# cppcheck finds no fault in our sources, as they are built for this system and for Windows.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/files.sh
source scripts/files.sh

# Left out: it takes what a lambda throws for thrown by the function around it, and a pointer to a local
# variable that is taken back at the end of the call for one that stays.
options=(--quiet "--enable=warning,performance,portability" --std=c++20 --language=c++ --inline-suppr
  --error-exitcode=1 -I src -I resources --template='{file}:{line}: {id}: {message}'
  --suppress=throwInNoexceptFunction --suppress=danglingLifetime)
native=(--platform=unix64)
windows=(--platform=win64 -D_WIN32=1)

# It is told of a fault that is there.
scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT
echo 'int Third() { int a[2] = {1, 2}; return a[2]; }' >"$scratch/faulty.cpp"
for system in native windows; do
  declare -n system_options=$system
  found=$(cppcheck "${options[@]}" "${system_options[@]}" "$scratch/faulty.cpp" 2>&1) && found=""
  [[ $found == *arrayIndexOutOfBounds* ]] || { echo "cppcheck does not notice a fault: $found"; exit 1; }
done

mapfile -d '' portable < <(ours 'src/*.cpp' '!*_win32.cpp' '!src/platform/win32/*' '!src/controls/*' '!src/*/frm*' \
  '!src/app.cpp' '!src/manager/*')
mapfile -d '' shown < <(ours 'src/*.cpp' '!*_posix.cpp')
((${#portable[@]} > 20 && ${#shown[@]} > 40)) || { echo "the list of our files is not right"; exit 1; }
cppcheck "${options[@]}" "${native[@]}" "${portable[@]}"
cppcheck "${options[@]}" "${windows[@]}" "${shown[@]}"
