#!/usr/bin/env bash
# The cage: a private Wine prefix in which a program that destroys files sees nothing of this
# machine. Sourced by prefix.sh, wine-run.sh and run.sh.
#
# Two walls. The inner one is the prefix itself: C: is its only drive, and its users' folders are
# plain folders. The outer one is a mount and process name space with a root of its own, in which the
# system's folders are read-only and everything else of this machine is absent; Wine lets a program
# past the drive letters (`\\?\unix\`), and this wall is what it meets there. A system that
# refuses name spaces to the user gets the inner wall alone, and is told so.

# shellcheck disable=SC2034  # used by those who source this file
cage_repo=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd -P)
cage_scripts=$cage_repo/scripts
cage_base=$cage_repo/build/wine

cage_say() { echo "cage: $*" >&2; }

# The prefix's folder for a name.
cage_path() {
  case $1 in
    "" | */* | .*) cage_say "'$1' is no name for a prefix"; return 2 ;;
  esac
  echo "$cage_base/$1"
}

# cage_verify PREFIX: 0 if the prefix is caged; else says what is open, and 1.
cage_verify() {
  local prefix=$1 link name target real sound=0
  if [[ ! -f $prefix/cage/made-by-prefix.sh ]]; then
    cage_say "$prefix was not made by prefix.sh"
    return 1
  fi
  real=$(realpath -e -- "$prefix") || return 1

  # Drives: C: and, where asked for, small ones that live in memory or in the file of an image.
  if [[ $(readlink -- "$prefix/dosdevices/c:") != ../drive_c || -L $prefix/drive_c ]]; then
    cage_say "drive c: of $prefix does not lie in the prefix"
    sound=1
  fi
  for link in "$prefix"/dosdevices/* "$prefix"/dosdevices/.[!.]*; do
    [[ -e $link || -L $link ]] || continue
    name=${link##*/}
    [[ $name == c: ]] && continue
    if [[ $name =~ ^([d-y]):$ ]] && grep -qs "^${BASH_REMATCH[1]} " "$prefix/cage/drives" &&
      [[ $(readlink -- "$link") == "../drive_${BASH_REMATCH[1]}" ]]; then
      # The disk itself is mounted in the cage alone. What stood in its folder out here would be on
      # this machine's disk, where filling it up has no end.
      if [[ -L $prefix/drive_${BASH_REMATCH[1]} ||
        -n $(ls -A -- "$prefix/drive_${BASH_REMATCH[1]}") ]]; then
        cage_say "the small drive $name of $prefix is not an empty folder"
        sound=1
      fi
      continue
    fi
    # Serial and parallel ports, which Wine lists at each start, are no way to a file.
    [[ $name =~ ^(com|lpt)[0-9]+$ && $(readlink -- "$link") =~ ^/dev/(tty|lp|parport) ]] && continue
    # Any other device link (c::) opens a device of this machine as surely as a drive opens its files.
    cage_say "$prefix has the device $name, to $(readlink -- "$link")"
    sound=1
  done

  # Nothing in the prefix may lead out of it.
  while IFS= read -r -d '' link; do
    target=$(realpath -m -- "$link")
    if [[ $target != "$real"/drive_* ]]; then
      cage_say "$link leads out, to $target"
      sound=1
    fi
  done < <(find "$prefix/drive_c" -type l -print0)
  return "$sound"
}

# Which walls this system allows: `namespaces` or `drives`.
cage_wall() {
  if [[ ${ZQ_CAGE_WALL:-} == drives ]]; then
    echo drives
  elif unshare "$(cage_unshare_flags)" --mount --pid --fork --mount-proc \
    sh -c 'mount --make-rprivate / && mount -t tmpfs none /tmp' 2>/dev/null; then
    echo namespaces
  else
    echo drives
  fi
}

# Root needs no user name space; anybody else becomes root of one of their own.
cage_unshare_flags() {
  if ((EUID == 0)); then echo --fork; else echo --map-root-user; fi
}

# The keeper's process id, if the cage of PREFIX is up.
cage_keeper() {
  local pid
  [[ -s $1/cage/pid ]] && read -r pid <"$1/cage/pid" && [[ -d /proc/$pid ]] &&
    grep -qsz keeper.sh "/proc/$pid/cmdline" && echo "$pid"
}

# cage_up PREFIX [SCREEN]: starts the keeper of the cage unless it is up: Wine's server, and for
# SCREEN `virtual` (the default) an X server of its own. `host` leaves it at this machine's DISPLAY.
# From then on this shell is a user of the cage, until it ends; the keeper goes by itself half a
# minute after its last user.
cage_up() {
  local prefix=$1 screen=${2:-virtual} starting status=0
  exec {cage_lock}>"$prefix/cage/in-use"
  flock --shared "$cage_lock"
  exec {starting}>"$prefix/cage/starting"
  flock "$starting"
  cage_keeper "$prefix" >/dev/null || cage_start || status=$?
  exec {starting}>&-
  return "$status"
}

# The rest of cage_up, with its variables.
cage_start() {
  local wall limit
  local -a start=(setsid bash "$prefix/cage/keeper.sh" stay)
  wall=$(cage_wall)
  if [[ $wall == namespaces ]]; then
    start=(setsid unshare "$(cage_unshare_flags)" --mount --pid --fork bash "$prefix/cage/keeper.sh" enter)
  elif [[ -s $prefix/cage/drives ]]; then
    cage_say "this system allows no mount name space, and the small drives of $prefix need one"
    return 1
  else
    cage_say "this system allows no name spaces: drive letters are the only wall"
  fi
  rm -f -- "$prefix"/cage/{pid,ready,display,display.new,wall}
  cp -- "$cage_scripts/keeper.sh" "$prefix/cage/keeper.sh"
  "${start[@]}" "$prefix" "$screen" </dev/null >"$prefix/cage/keeper.log" 2>&1 \
    {cage_lock}>&- {starting}>&- &
  # Only for what hangs: one that has ended is noticed at once.
  limit=$((SECONDS + 300))
  until [[ -e $prefix/cage/ready ]]; do
    if ((SECONDS > limit)) || ! kill -0 $! 2>/dev/null; then
      cage_say "the cage of $prefix did not come up:"
      cat -- "$prefix/cage/keeper.log" >&2
      return 1
    fi
    sleep 0.05
  done
  disown
}

# cage_down PREFIX: ends everything that runs in the cage of PREFIX, and nothing else.
cage_down() {
  local prefix=$1 pid limit
  pid=$(cage_keeper "$prefix") || return 0
  kill -TERM "$pid" 2>/dev/null || return 0
  limit=$((SECONDS + 10))
  while [[ -d /proc/$pid ]]; do
    if ((SECONDS > limit)); then
      kill -KILL "$pid" 2>/dev/null || true
      break
    fi
    sleep 0.05
  done
}

# cage_exec PREFIX FOLDER COMMAND...: runs the command in the cage, in a folder of the prefix, with
# an environment of its own of which only what the tests are told by (ZQ_*, GTEST_*) comes from ours.
cage_exec() {
  local prefix=$1 folder=$2 pid wall display name
  shift 2
  pid=$(cage_keeper "$prefix") || { cage_say "the cage of $prefix is not up"; return 98; }
  wall=$(<"$prefix/cage/wall")
  display=$(<"$prefix/cage/display")
  local -a enter=() environment=(
    PATH=/usr/local/bin:/usr/bin:/bin LC_ALL=C.UTF-8 HOME="$prefix/home" USER=user LOGNAME=user
    TMPDIR="$prefix/tmp" XDG_RUNTIME_DIR="$prefix/tmp"
    WINEPREFIX="$prefix" WINEARCH=win64 WINEDEBUG="${WINEDEBUG:--all}"
    WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe="
    DISPLAY="$display" ZQ_CAGE="$wall" ZQ_CAGE_HOST_FILE="$cage_repo/CMakeLists.txt")
  [[ -f $prefix/tmp/Xauthority ]] && environment+=(XAUTHORITY="$prefix/tmp/Xauthority")
  for name in $(compgen -e); do
    case $name in
      ZQ_CAGE*) ;;
      ZQ_* | GTEST_* | TZ | ASAN_OPTIONS) environment+=("$name=${!name}") ;;
    esac
  done
  if [[ $wall == namespaces ]]; then
    enter=(nsenter --target "$pid" --mount --pid --root)
    ((EUID == 0)) || enter+=(--user --preserve-credentials)
  fi
  "${enter[@]}" /usr/bin/env --ignore-environment --chdir="$folder" "${environment[@]}" "$@" {cage_lock}>&-
}
