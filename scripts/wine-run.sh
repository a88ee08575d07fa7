#!/usr/bin/env bash
# wine-run.sh PROGRAM.exe [ARGUMENT]...: runs a Windows program in the cage and gives its output and
# exit code. CMake runs our tests through it.
#
# The program is copied into a fresh folder on the cage's drive C:, which is its working folder and
# is gone afterwards. What is listed in PROGRAM.exe.with, one path a line, is copied beside it.
# Arguments are passed on as they are: a path of this machine means nothing in there.
#
# ZQ_PREFIX names the prefix, `test` if not set; one that does not exist is made, with the options in
# ZQ_PREFIX_OPTIONS (see prefix.sh).
# ZQ_PICTURES is a folder of this machine for the pictures that the program takes; the program sees
# a folder of its own under that name, whose pictures are moved. Else they go to build/pictures.
# With ZQ_FAILURES_ONLY set, what GoogleTest prints of tests that passed is left out: the rest is short enough to be
# read in any log, and of a program that ended early it still names the test.
# A program of tests (NAME_test.exe) that ended with an error and without a word has never begun: GoogleTest speaks
# first. Wine loses such a process at times; it is started again, three times at most, and that is told.
# Exit code 97: the cage is open, and nothing was run; 96: the prefix has small drives, for which this system
# allows no mount name space.
set -euo pipefail
# shellcheck source=scripts/cage.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/cage.sh"

# tell SPOKEN: its input, or what of it is wanted; makes the file SPOKEN when there is any.
tell() {
  awk -v spoken="$1" -v failures="${ZQ_FAILURES_ONLY:-}" '
    NR == 1 { printf "" >spoken; close(spoken) }
    failures != "" && /^\[ RUN      \]/ { begun = $0; next }
    failures != "" && /^\[       OK \]/ { begun = ""; next }
    failures != "" && /^\[----------\]/ { next }
    begun != "" { print begun; begun = "" }
    { print; fflush() }
    END { if (begun != "") print begun }'
}

(($# >= 1)) || { sed -n '2,3s/^# //p' "${BASH_SOURCE[0]}" >&2; exit 2; }
program=$(realpath -e -- "$1")
shift
name=$(basename -- "$program" .exe)
case ${ZQ_PREFIX_OPTIONS:-} in
  *--drive* | *--image*)
    [[ $(cage_wall) == namespaces ]] || { cage_say "this system allows no mount name space"; exit 96; }
    ;;
esac
read -ra options <<<"${ZQ_PREFIX_OPTIONS:-}"
prefix=$("$cage_scripts/prefix.sh" create "${ZQ_PREFIX:-test}" "${options[@]}") || {
  cage_say "nothing is run in an open cage"
  exit 97
}
cage_up "$prefix" || exit 98

mkdir -p -- "$prefix/drive_c/run"
folder=$(mktemp -d -- "$prefix/drive_c/run/$name.XXXXXX")
trap 'rm -rf -- "$folder"' EXIT
cp -- "$program" "$folder/"
if [[ -f $program.with ]]; then
  while IFS= read -r beside; do
    [[ -n $beside ]] && cp -r -- "$beside" "$folder/"
  done <"$program.with"
fi

pictures=${ZQ_PICTURES:-$cage_repo/build/pictures/$name}
mkdir -- "$folder/pictures"
status=0
run() {
  ZQ_PICTURES="C:\\run\\${folder##*/}\\pictures" cage_exec "$prefix" "$folder" wine "$name.exe" "$@"
}
case $name in
  *_test)
    for starts in 1 2 3 4; do
      status=0
      run "$@" | tell "$folder/spoken" || status=$?
      [[ $status != 0 && ! -e $folder/spoken ]] || break
      cage_say "$name ended with $status before it began (start $starts of 4 at most)"
    done
    ((status == 0)) || cage_say "$name ended with $status"
    ;;
  *) run "$@" || status=$? ;;
esac

if [[ -n $(ls -A -- "$folder/pictures" 2>/dev/null) ]]; then
  mkdir -p -- "$pictures"
  mv -f -- "$folder"/pictures/* "$pictures/"
fi
exit "$status"
