#!/usr/bin/env bash
# The first process of a cage (see cage.sh, which copies it into the prefix and starts it there).
# `enter` stands in new name spaces: it builds the cage's root and goes on as `stay` in it. `stay`
# runs the X server and Wine's server until nobody needs them. When it ends, so does all in the cage.
set -euo pipefail
mode=$1 prefix=$2 screen=$3

# C: lies on this machine's disk, and a program that fills it up would fill that. So nothing can be made in its
# root, where a wipe of the free space begins; in the folders there everything can. A prefix that is being made
# needs its root yet.
lock_drive_c() {
  local folder
  [[ -f $prefix/cage/made-by-prefix.sh ]] || return 0
  mkdir -p -- "$1/run"
  mount --bind -- "$1" "$1"
  for folder in "$1"/*/; do
    mount --bind -- "${folder%/}" "${folder%/}"
  done
  mount -o remount,bind,ro -- "$1"
}

enter() {
  # Before /proc is our own, it still shows the number by which those outside know this process.
  read -r pid _ </proc/self/stat
  mount --make-rprivate /
  root=$prefix/cage/root
  mkdir -p -- "$root"
  mount -t tmpfs -o mode=755 cage "$root"

  for folder in /usr /etc /bin /sbin /lib /lib32 /lib64 /libx32 /var/cache/fontconfig; do
    if [[ -L $folder ]]; then
      ln -s -- "$(readlink -- "$folder")" "$root$folder"
    elif [[ -d $folder ]]; then
      mkdir -p -- "$root$folder"
      mount --rbind -- "$folder" "$root$folder"
      mount -o remount,bind,ro -- "$root$folder"
    fi
  done

  mkdir -p -- "$root"/{proc,tmp,dev/shm,var/lib,var/tmp}
  mount -t proc proc "$root/proc"
  mount -t tmpfs -o mode=1777 cage "$root/dev/shm"
  mount -t tmpfs -o mode=1777 cage "$root/tmp"
  for device in null zero full random urandom tty; do
    : >"$root/dev/$device"
    mount --bind "/dev/$device" "$root/dev/$device"
  done
  ln -s /proc/self/fd "$root/dev/fd"

  # Behind /tmp, which the prefix may well lie in.
  mkdir -p -- "$root$prefix"
  mount --bind -- "$prefix" "$root$prefix"
  lock_drive_c "$root$prefix/drive_c"
  if [[ -s $prefix/cage/drives ]]; then
    while read -r letter what; do
      if [[ $what == /* ]]; then
        # Given back by the kernel with this name space, as is the loop device.
        mount -o loop,nosuid,nodev,noexec -- "$what" "$root$prefix/drive_$letter"
      else
        mount -t tmpfs -o "size=$what,mode=755" small "$root$prefix/drive_$letter"
      fi
    done <"$prefix/cage/drives"
  fi
  if [[ $screen == host && -d /tmp/.X11-unix ]]; then
    mkdir -p -- "$root/tmp/.X11-unix"
    mount --bind /tmp/.X11-unix "$root/tmp/.X11-unix"
  fi
  mount -o remount,bind,ro -- "$root"
  echo namespaces >"$prefix/cage/wall"
  echo "$pid" >"$prefix/cage/pid"
  exec chroot "$root" /bin/bash "$prefix/cage/keeper.sh" keep "$prefix" "$screen"
}

leave() {
  trap - TERM EXIT
  rm -f -- "$prefix"/cage/{pid,ready}
  wineserver -k 2>/dev/null || true
  [[ -n ${xvfb:-} ]] && kill "$xvfb" 2>/dev/null
  exit 0
}

# Whether Wine's server takes clients: Debian's in a folder that the prefix names, any other in one of the user's.
has_socket() {
  local -a sockets
  mapfile -t sockets < <(compgen -G "$prefix/tmp/wine-*/server-*/socket" || compgen -G "/tmp/.wine-*/server-*/socket")
  ((${#sockets[@]} > 0)) && [[ -S ${sockets[0]} ]]
}

# take_modifiers DISPLAY: from the keyboard of our own X server. With each change of its focus the server tells Wine
# which of its keys are down, and Wine would let go of a modifier that a test holds down in a window: not of one that
# the keyboard doesn't have.
take_modifiers() {
  xkbcomp -xkb "$1" - | sed -E '/^xkb_symbols /,/^};/ s/\b(Shift|Control|Alt|Meta)_[LR]\b/VoidSymbol/g' |
    xkbcomp -w 0 - "$1"
}

keep() {
  cd -- "$prefix"
  export HOME=$prefix/home USER=user LOGNAME=user LC_ALL=C.UTF-8 TMPDIR=$prefix/tmp
  export WINEPREFIX=$prefix WINEARCH=win64 WINEDEBUG=-all
  trap leave TERM EXIT

  if [[ $screen == host ]]; then
    echo "${DISPLAY:-}" >"$prefix/cage/display"
  else
    if [[ $(<"$prefix/cage/wall") == namespaces ]]; then
      mkdir -p /tmp/.X11-unix
      chmod 1777 /tmp/.X11-unix
    fi
    local size=1280x1024
    [[ ! -f $prefix/cage/size ]] || size=$(<"$prefix/cage/size")
    Xvfb -displayfd 3 -screen 0 "${size}x24" -dpi 96 -nolisten tcp -noreset 3>"$prefix/cage/display.new" &
    xvfb=$!
    until [[ -s $prefix/cage/display.new ]]; do
      kill -0 "$xvfb"
      sleep 0.02
    done
    take_modifiers ":$(<"$prefix/cage/display.new")"
    echo ":$(<"$prefix/cage/display.new")" >"$prefix/cage/display"
  fi

  # A client that comes before the server has opened its socket would begin a second server, in another folder
  # for temporary files, and one of the two ends with an error.
  rm -rf -- "$prefix"/wineserver "$prefix"/tmp/wine-*
  wineserver --foreground --persistent &
  server=$!
  until has_socket; do
    kill -0 "$server"
    sleep 0.02
  done
  # Wine starts its services and its desktop with the first program that wants them, and they would
  # keep that program's output open: so let it be this one. A prefix that is being made has none yet.
  # The desktop goes a second after its last program, and would take along one that comes just then: so
  # another stays, as long as the cage does.
  if [[ -f $prefix/system.reg ]]; then
    export DISPLAY WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe="
    DISPLAY=$(<"$prefix/cage/display")
    tail --pid=$$ --follow /dev/null | wine cmd.exe >/dev/null 2>&1 &
    wine rundll32.exe user32.dll,GetDesktopWindow || true
  fi
  : >"$prefix/cage/ready"

  # Users of the cage hold cage/in-use shared. Thirty times in a row nobody: leave, holding it
  # ourselves so that a newcomer waits until this cage is gone and then starts the next.
  exec 9>"$prefix/cage/in-use"
  idle=0
  while ((idle < 30)) && kill -0 "$server" 2>/dev/null; do
    if flock --exclusive --nonblock 9; then
      idle=$((idle + 1))
      ((idle < 30)) && flock --unlock 9
    else
      idle=0
    fi
    sleep 1 9>&-
  done
}

case $mode in
  enter) enter ;;
  keep) keep ;;
  stay)
    echo drives >"$prefix/cage/wall"
    echo $$ >"$prefix/cage/pid"
    keep
    ;;
esac
