#!/usr/bin/env bash
# windows_test.sh SOURCE BUILD SCRATCH PROGRAM.exe: makes the packages for Windows twice, looks into them, and lets the
# program work with the installer in the cage.
set -euo pipefail
source=$1 build=$2 scratch=$3 program=$4

rm -rf -- "$scratch"/{once,again}
pack() {
  "$source/packaging/pack.sh" windows "$build" "$1" &&
    "$source/packaging/pack.sh" manifests https://example.org/files/ "$1"
}
pack "$scratch/once"
# Elsewhere on the earth, with other habits.
(umask 077 && TZ=Asia/Tokyo LC_ALL=C pack "$scratch/again")
diff --recursive "$scratch/once" "$scratch/again"
python3 -B "$source/tests/packages/windows_packages.py" "$source" "$build" "$scratch/once"

cp -- "$scratch"/once/Zeroquill-*-setup.exe "$scratch/Zeroquill-setup.exe"
"$source/scripts/wine-run.sh" "$program"
