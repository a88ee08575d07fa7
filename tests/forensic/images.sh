#!/usr/bin/env bash
# Images of file systems for tests that wipe on a real one. Sourced.
#
# Everything that is mounted is so in a mount and process name space that ends with the test: the kernel then
# takes mounts and loop devices back, however the test came to its end.

# What a test ends with when this system can't do what it needs (CTest's SKIP_RETURN_CODE).
readonly kSkipped=77

say() { echo "$*" >&2; }
skip() { say "not tested here: $*"; exit "$kSkipped"; }

# enter_own_space SCRIPT ARGUMENT...: goes on as SCRIPT in name spaces of its own, where it returns at once.
enter_own_space() {
  # The first process of its name space: the variable alone could come from anywhere.
  if [[ ${ZQ_OWN_SPACE:-} == inside && $$ == 1 ]]; then
    unset ZQ_OWN_SPACE
    mount --make-rprivate /
    mount -t proc proc /proc
    see_own_images
    return
  fi
  ((EUID == 0)) || skip "mounting an image needs root"
  unshare --mount --pid --fork true 2>/dev/null || skip "this system allows no mount name space"
  ZQ_OWN_SPACE=inside exec unshare --mount --pid --fork --kill-child -- bash "$@"
}

# see_own_images: of the loop devices those stay in /sys/block whose images have a path from here, as they are now. Other
# tests and this machine have some, too. To a user who may not ask the devices any file could be the image of those, and
# is refused: that is right, and not what the tests are about.
see_own_images() {
  local device image
  mountpoint -q /sys/block || mount -t tmpfs own /sys/block
  find /sys/block -mindepth 1 -delete
  for device in /sys/class/block/*; do
    if [[ ${device##*/} == loop* ]]; then
      image=$(cat -- "$device/loop/backing_file" 2>/dev/null | tr -d '\0') || continue
      [[ -e $image ]] || continue
    fi
    ln -s -- "$(realpath -- "$device")" "/sys/block/${device##*/}"
  done
}

# own_folder FOLDER: an empty folder in memory, which nobody outside sees and nothing is left of.
own_folder() {
  mkdir -p -- "$1"
  mount -t tmpfs -o size=600M,mode=755 images "$1"
}

# need_tools PROGRAM...: passes the test over where one is not installed.
need_tools() {
  local tool
  for tool in "$@"; do
    command -v "$tool" >/dev/null || skip "$tool is not installed"
  done
}

# have_file_system NAME: whether the kernel knows it.
have_file_system() { grep -qw -- "$1" /proc/filesystems || modprobe -q -- "$1" 2>/dev/null; }

# image_make KIND FILE [SIZE]: an empty file system in a new file.
image_make() {
  local kind=$1 file=$2 size=${3:-48M}
  [[ $kind == xfs ]] && size=64M
  [[ $kind == @(btrfs|f2fs) ]] && size=128M
  rm -f -- "$file"
  truncate --size="$size" -- "$file"
  case $kind in
    ext4 | ext4-journal) mkfs.ext4 -q -F -b 4096 -- "$file" ;;
    ext4-inline) mkfs.ext4 -q -F -b 4096 -O inline_data -- "$file" ;;
    ext4-bigalloc) mkfs.ext4 -q -F -b 4096 -O bigalloc -C 65536 -- "$file" 2>/dev/null ;;
    vfat) mkfs.vfat -- "$file" >/dev/null ;;
    ntfs) mkfs.ntfs -q -F -f "$file" 2>/dev/null ;;
    # Small ones aren't for use, as it says, but they are the same inside.
    xfs) mkfs.xfs -q -f --unsupported "$file" >/dev/null 2>&1 ;;
    btrfs) mkfs.btrfs -q -- "$file" >/dev/null ;;
    f2fs) mkfs.f2fs -q "$file" >/dev/null ;;
    *) say "there is no kind of image '$kind'"; return 2 ;;
  esac
}

# image_need KIND: passes the test over unless such an image can be made and mounted.
image_need() {
  case $1 in
    ext4 | ext4-*) need_tools mkfs.ext4 debugfs ;;
    xfs) need_tools mkfs.xfs xfs_db ;;
    btrfs) need_tools mkfs.btrfs ;;
    f2fs) need_tools mkfs.f2fs ;;
    vfat) need_tools mkfs.vfat ;;
    ntfs)
      need_tools mkfs.ntfs ntfs-3g
      [[ -c /dev/fuse ]] || skip "there is no /dev/fuse"
      ;;
  esac
  [[ $1 == ntfs ]] || have_file_system "${1%-*}" || skip "the kernel has no ${1%-*}"
  losetup --find >/dev/null 2>&1 || skip "there is no free loop device"
}

# image_mount KIND FILE FOLDER
image_mount() {
  case $1 in
    ext4) mount -o loop,data=ordered -- "$2" "$3" ;;
    ext4-journal) mount -t ext4 -o loop,data=journal -- "$2" "$3" ;;
    # What is given back must be there to be found: not all of it would be if it were discarded.
    f2fs) mount -t f2fs -o loop,nodiscard -- "$2" "$3" ;;
    ext4-inline | ext4-bigalloc) mount -t ext4 -o loop -- "$2" "$3" ;;
    ntfs)
      # On a device, as it is in use: it looks different from here without one. Detached when it is mounted, the
      # device goes with the mount.
      local device
      device=$(losetup --find --show -- "$2")
      ntfs-3g "$device" "$3" || { losetup --detach "$device"; return 1; }
      losetup --detach "$device"
      ;;
    *) mount -t "$1" -o loop -- "$2" "$3" ;;
  esac || return
  see_own_images
}

# image_unmount FOLDER: returns when all is in the image. ntfs-3g writes its last after the unmount.
image_unmount() {
  local limit=$((SECONDS + 20))
  sync -f "$1"
  # It may complain of the loop device, which has gone by itself with the mount. A killed process keeps its
  # files until its last transfer has ended.
  until umount -- "$1" 2>/dev/null || ! mountpoint -q -- "$1"; do
    ((SECONDS < limit)) || { say "$1 can't be unmounted"; return 1; }
    sleep 0.02
  done
  while pgrep -x ntfs-3g >/dev/null; do
    ((SECONDS < limit)) || { say "the file system's server does not end"; return 1; }
    sleep 0.02
  done
}
