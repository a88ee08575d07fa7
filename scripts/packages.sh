#!/usr/bin/env bash
# Installs what the project needs from Debian's archive, in sets. Source it and call `need_packages`, or
# run it: scripts/packages.sh SET...
#   build         builds the program for Windows
#   build-native  builds zqwipe and the benchmarks for this system
#   run           runs a Windows program in the cage
#   test          what the tests need beside these three
#   package       what package.sh needs beside `build` and `build-native`
#   forensic      what the forensic tests of ZQ_FORENSIC need beside `test`
#   many          what the test of ZQ_MANY needs beside `test`
#   bench         what the benchmarks need beside `build-native`
# When nothing is missing it neither asks for rights nor touches the network.

# The set's packages, one a line.
packages_of() {
  case $1 in
    build)
      printf '%s\n' cmake ninja-build g++-mingw-w64-x86-64-posix libcli11-dev
      ;;
    build-native)
      printf '%s\n' cmake ninja-build g++ libcli11-dev
      ;;
    run)
      # Wine's own fonts bring Tahoma; the others stand in for Verdana and Arial.
      printf '%s\n' wine wine64 fonts-wine fonts-dejavu-core fonts-liberation2 xvfb x11-xkb-utils xauth util-linux
      ;;
    test)
      printf '%s\n' googletest clang libclang-rt-dev clang-format clang-tidy cppcheck shellcheck \
        imagemagick icoutils librsvg2-bin python3 ghostscript unrtf fp-utils
      # Wipes on real file systems: the file systems, those who search them, the tools to compare with.
      printf '%s\n' e2fsprogs ntfs-3g xfsprogs btrfs-progs dosfstools fuse-overlayfs procps sleuthkit testdisk \
        secure-delete wipe
      ;;
    package)
      printf '%s\n' nsis zip binutils dpkg-dev
      ;;
    forensic)
      # For FAT and F2FS where this machine's kernel has none, and for cases that need Perl; beside `test`.
      printf '%s\n' user-mode-linux f2fs-tools perl-base
      ;;
    many)
      printf '%s\n' ansible-core
      ;;
    bench)
      printf '%s\n' wipe secure-delete scrub fio strace perl
      ;;
    bench-free)
      # For images, and one more tool to compare with; beside `bench`.
      printf '%s\n' bleachbit python3 e2fsprogs ntfs-3g
      ;;
    *)
      echo "packages.sh: there is no set '$1' (build, build-native, run, test, package, forensic, many, bench, bench-free)" >&2
      return 2
      ;;
  esac
}

# The packages of the sets that are not installed, one a line.
missing_packages() {
  local set package status
  for set in "$@"; do
    for package in $(packages_of "$set"); do
      status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
      [[ $status == installed ]] || echo "$package"
    done
  done
}

# need_packages SET...: installs what is missing of the sets. Fails with a list where it can't.
need_packages() {
  local set
  for set in "$@"; do packages_of "$set" >/dev/null || return; done

  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    # Not a Debian: whoever has the tools already may go on, all others are told what is wanted.
    local -A tools=(
      [build]="cmake ninja x86_64-w64-mingw32-g++-posix x86_64-w64-mingw32-windres"
      [build-native]="cmake ninja g++"
      [run]="wine wineserver Xvfb unshare nsenter"
      [test]="clang++ clang-format clang-tidy cppcheck shellcheck chmcmd chmls"
      [package]="makensis zip dpkg-deb dpkg-shlibdeps strip objcopy"
      [many]="ansible-playbook"
      [bench]="wipe srm scrub fio strace perl"
      [bench-free]="bleachbit python3 mkfs.ext4 ntfs-3g")
    local tool absent=""
    for set in "$@"; do
      for tool in ${tools[$set]}; do
        command -v "$tool" >/dev/null || absent+=" $tool"
      done
    done
    [[ -z $absent ]] && return 0
    echo "This system has no apt-get, so install by hand what gives these programs:$absent" >&2
    echo "In Debian 12 they come from:" >&2
    for set in "$@"; do packages_of "$set" | paste -sd ' ' | sed 's/^/  /' >&2; done
    return 1
  fi

  local -a missing as_root=()
  mapfile -t missing < <(missing_packages "$@")
  ((${#missing[@]} == 0)) && return 0

  echo "Installing from Debian's archive, for the first time and once: ${missing[*]}"
  if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
      echo "These packages are missing, and there is neither root nor sudo to install them." >&2
      echo "As root: apt-get install --no-install-recommends ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  "${as_root[@]}" apt-get update --quiet &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install --quiet --yes --no-install-recommends "${missing[@]}"
}

if [[ ${BASH_SOURCE[0]} == "$0" ]]; then
  set -euo pipefail
  (($# > 0)) || { echo "usage: packages.sh SET...   (build, build-native, run, test, package, forensic, many, bench, bench-free)" >&2; exit 2; }
  need_packages "$@"
fi
