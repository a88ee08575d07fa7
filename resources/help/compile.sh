#!/usr/bin/env bash
# Compiles Zeroquill.chm from the project beside this script and the pages in docs/manual. Needs chmcmd, of
# Debian's package fp-utils, and the right to change the root folder or to make a user name space.
#   compile.sh [FILE]             into FILE, or into the file beside this script
#   compile.sh --can              only says, by its exit code, whether this system allows it
#   compile.sh --compiled-with    the compiler that the file beside this script was made with
set -euo pipefail
compiled_with=chmcmd-3.2.2

case ${1:-} in
  --compiled-with) echo "$compiled_with"; exit 0 ;;
esac

help=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
manual=$(cd -- "$help/../../docs/manual" && pwd)
compiler=$(command -v chmcmd) || { echo "compile.sh: there is no chmcmd (package fp-utils)" >&2; exit 1; }

# The compiler writes whole paths of this machine into the table of the topics' numbers, where the viewer wants
# the paths inside the archive. They are the same for a project that lies in the root folder: so it gets one.
root=$(mktemp -d)
trap 'rm -rf -- "$root"' EXIT
mkdir -p -- "$root/tmp"
mapfile -t libraries < <(ldd "$(realpath -- "$compiler")" | grep -oE '/[^ ]+')
for file in "$compiler" "${libraries[@]}"; do cp --dereference --parents -- "$file" "$root"; done
# It asks for the threads' library by name only when it runs.
for file in "${libraries[@]}"; do
  threads=${file%/*}/libpthread.so.0
  [[ ! -e $threads ]] || cp --dereference --parents -- "$threads" "$root"
done

in_root() {
  if ((EUID == 0)); then chroot "$root" "$@"; else unshare --map-root-user --root="$root" "$@"; fi
}
[[ $(in_root "$compiler" --help 2>&1 || true) == *Usage:* ]] || {
  echo "compile.sh: this system allows neither another root folder nor a user name space" >&2
  exit 1
}
[[ ${1:-} != --can ]] || exit 0

cp -- "$help"/Zeroquill.hh? "$manual"/* "$root"
in_root "$compiler" /Zeroquill.hhp >"$root/tmp/messages" 2>&1 || { cat "$root/tmp/messages" >&2; exit 1; }
if grep -E '^(Error|Warning)' "$root/tmp/messages" >&2; then exit 1; fi

# set_moment OFFSET: two places hold the moment of compiling, which would be all that differs between two files.
set_moment() { printf '\1\0\0\0' | dd of="$root/Zeroquill.chm" bs=1 seek="$1" conv=notrunc status=none; }
set_moment 16
# The other one stands in #SYSTEM, eight bytes before the version of the format.
version=$(LC_ALL=C grep -obUa 'HHA Version' "$root/Zeroquill.chm" | head -n 1)
set_moment $((${version%%:*} - 8))

cp -- "$root/Zeroquill.chm" "${1:-$help/Zeroquill.chm}"
