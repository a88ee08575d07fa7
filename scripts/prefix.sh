#!/usr/bin/env bash
# Makes, checks and ends the private Wine prefixes that the tests and the demonstration run in.
#   prefix.sh create NAME [--dpi N] [--managed] [--drive LETTER:SIZE]... [--image LETTER:FILE]...
#                                     prints the prefix's folder
#   prefix.sh verify NAME-OR-FOLDER   0 if nothing in it leads to this machine's files
#   prefix.sh stop NAME | --all       ends what runs in it
set -euo pipefail
# shellcheck source=scripts/cage.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/cage.sh"

usage() {
  sed -n '2,6s/^# //p' "${BASH_SOURCE[0]}" >&2
  exit 2
}

# The registry of a prefix, as a file that regedit reads.
registry() {
  local dpi managed
  printf -v dpi '%08x' "$1"
  managed=$2
  cat <<REG
Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]
"Managed"="$managed"

[HKEY_CURRENT_USER\\Software\\Wine\\Explorer]
$(desktop "$managed")

[HKEY_CURRENT_USER\\Software\\Wine\\Explorer\\Desktops]
"tests"="$(screen_size "$1")"

[HKEY_CURRENT_USER\\Control Panel\\Desktop]
"LogPixels"=dword:$dpi
"FontSmoothing"="2"
"FontSmoothingType"=dword:00000001

[HKEY_CURRENT_USER\\Software\\Wine\\Fonts]
"LogPixels"=dword:$dpi

[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]
"Verdana"="DejaVu Sans"

[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows NT\\CurrentVersion\\AeDebug]
"Debugger"="none"
"Auto"="1"

[HKEY_CURRENT_USER\\Software\\Wine\\WineDbg]
"ShowCrashDialog"=dword:00000000
REG
}

# screen_size DPI: as large for the eye at 192 dpi as at 96.
screen_size() {
  if (($1 >= 192)); then echo 2560x2048; else echo 1280x1024; fi
}

# desktop MANAGED: without a window manager, all windows stand on a desktop that is one window of the X server. Its
# tidings of the focus come late on a busy machine, and each would end a menu or take the front place from a window.
desktop() {
  if [[ $1 == Y ]]; then
    echo '"Desktop"=-'
  else
    echo '"Desktop"="tests"'
  fi
}

# write_registry PREFIX DPI MANAGED: in its cage, which is up.
write_registry() {
  registry "$2" "$3" >"$1/drive_c/settings.reg"
  cage_exec "$1" "$1/drive_c" wine regedit /S 'C:\settings.reg' >/dev/null 2>&1
  rm -- "$1/drive_c/settings.reg"
}

# close_devices PREFIX: takes away the links to devices that Wine has found.
close_devices() {
  local prefix=$1 link
  find "$prefix/dosdevices" -type l ! -name 'c:' -print0 | while IFS= read -r -d '' link; do
    [[ -d $prefix/drive_${link: -2:1} ]] || rm -- "$link"
  done
}

# make_base PREFIX: as Wine makes it, which takes its time, with 96 dpi and no managed windows.
make_base() {
  local prefix=$1
  # Wine links z: to / only when it makes dosdevices itself.
  mkdir -p -- "$prefix"/{cage,home,tmp,drive_c,dosdevices}
  ln -s ../drive_c "$prefix/dosdevices/c:"
  (
    cage_up "$prefix"
    cage_exec "$prefix" "$prefix/drive_c" wine wineboot --init >/dev/null 2>&1
    write_registry "$prefix" 96 N
  )
  # Debian's Wine doesn't look where its own fonts are: Tahoma, and the signs on the captions' buttons.
  local fonts=/usr/share/wine/fonts
  if [[ -d $fonts ]]; then
    mkdir -p -- "$prefix/drive_c/windows/Fonts"
    cp -- "$fonts"/*.ttf "$fonts"/*.fon "$prefix/drive_c/windows/Fonts/"
  fi
  cage_down "$prefix"
  close_devices "$prefix"

  # Users' folders that Wine made links into the home folder.
  local link folder
  while IFS= read -r -d '' link; do
    rm -- "$link"
    mkdir -- "$link"
  done < <(find "$prefix/drive_c/users" -type l -print0)
  for folder in Desktop Documents Downloads Music Pictures Videos Templates; do
    mkdir -p -- "$prefix/drive_c/users/user/$folder"
  done
}

# copy_base PREFIX: a copy of the prefix `base`, which nothing is ever run in. Of what Wine put into the
# folders of C:\windows it has other names only: 700 megabytes that nobody writes to.
copy_base() {
  local prefix=$1 base
  base=$("${BASH_SOURCE[0]}" create base)
  mkdir -p -- "$prefix"/{cage,tmp,drive_c/windows}
  cp -a -- "$base"/{home,dosdevices,*.reg} "$prefix/"
  [[ ! -e $base/.update-timestamp ]] || cp -a -- "$base/.update-timestamp" "$prefix/"
  find "$base/drive_c" -mindepth 1 -maxdepth 1 ! -name windows -exec cp -a -t "$prefix/drive_c" -- {} +
  find "$base/drive_c/windows" -mindepth 1 -maxdepth 1 -type f -exec cp -a -t "$prefix/drive_c/windows" -- {} +
  find "$base/drive_c/windows" -mindepth 1 -maxdepth 1 -type d ! -name temp -exec cp -al -t "$prefix/drive_c/windows" -- {} +
  mkdir -p -- "$prefix/drive_c/windows/temp"
}

create() {
  local name=$1 dpi=96 managed=N drive prefix wanted
  local -a drives=()
  shift
  while (($# > 0)); do
    case $1 in
      --dpi) dpi=$2; shift 2 ;;
      --managed) managed=Y; shift ;;
      --drive)
        [[ $2 =~ ^[d-y]:[0-9]+[kM]$ ]] || { cage_say "a small drive is given as d:8M, not '$2'"; exit 2; }
        drives+=("$2")
        shift 2
        ;;
      --image)
        # The file system in a file, for as long as the cage is up. Never a device: that could be a disk.
        [[ $2 =~ ^[d-y]:/ && -f ${2#*:} && ! -L ${2#*:} ]] ||
          { cage_say "an image is given as d:/path/of/a/file, not '$2'"; exit 2; }
        ((EUID == 0)) || { cage_say "mounting the image ${2#*:} needs root"; exit 2; }
        drives+=("$2")
        shift 2
        ;;
      *) usage ;;
    esac
  done
  prefix=$(cage_path "$name")
  # Raise the number when a prefix is made otherwise than before.
  wanted="4 dpi=$dpi managed=$managed drives=${drives[*]}"

  mkdir -p -- "$cage_base"
  exec {lock}>"$cage_base/.$name.lock"
  flock "$lock"
  if [[ -f $prefix/cage/made-by-prefix.sh && $(<"$prefix/cage/made-by-prefix.sh") == "$wanted" ]]; then
    cage_verify "$prefix" || exit 1
    echo "$prefix"
    return
  fi

  # Not there, or half made, or made otherwise: from the beginning.
  if [[ -e $prefix ]]; then
    cage_down "$prefix"
    rm -rf -- "$prefix"
  fi
  if [[ $name == base ]]; then make_base "$prefix"; else copy_base "$prefix"; fi
  for drive in "${drives[@]}"; do
    mkdir -- "$prefix/drive_${drive%%:*}"
    ln -s "../drive_${drive%%:*}" "$prefix/dosdevices/${drive%%:*}:"
    echo "${drive%%:*} ${drive#*:}" >>"$prefix/cage/drives"
  done
  screen_size "$dpi" >"$prefix/cage/size"
  if [[ $name != base && "$dpi $managed" != "96 N" ]]; then
    (
      cage_up "$prefix"
      write_registry "$prefix" "$dpi" "$managed"
    )
    # Down, so that the registry is on disc and its fonts and screen are read anew.
    cage_down "$prefix"
    close_devices "$prefix"
  fi

  echo "$wanted" >"$prefix/cage/made-by-prefix.sh"
  if ! cage_verify "$prefix"; then
    rm -- "$prefix/cage/made-by-prefix.sh"
    exit 1
  fi
  echo "$prefix"
}

(($# >= 2)) || usage
case $1 in
  create) create "${@:2}" ;;
  verify)
    if [[ $2 == */* ]]; then cage_verify "$2"; else cage_verify "$(cage_path "$2")"; fi
    ;;
  stop)
    if [[ $2 == --all ]]; then
      for prefix in "$cage_base"/*/; do
        [[ -d $prefix ]] && cage_down "${prefix%/}"
      done
    else
      cage_down "$(cage_path "$2")"
    fi
    ;;
  *) usage ;;
esac
