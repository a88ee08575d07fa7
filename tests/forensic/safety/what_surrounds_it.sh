#!/usr/bin/env bash
# Cases of safety_test.sh: mounts, file systems and rights that lead a wipe beyond what was named, or to a success that
# is none.
# shellcheck disable=SC2034,SC2154  # the variables are safety_test.sh's

as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)

# As the users' homes are in a chroot tree.
case_bind_mount_inside() {
  mkdir -p "$top/home" "$mnt/home"
  put "$top/file"
  put "$mnt/home/precious"
  mount --bind "$mnt/home" "$top/home"
  wipe "$top"
  umount "$top/home"
  refused 'mounted there'
  kept "$mnt/home/precious"
  gone "$top/file"
}

case_file_mounted_over_another() {
  mkdir "$top"
  put "$top/file"
  put "$mnt/precious"
  mount --bind "$mnt/precious" "$top/file"
  wipe "$top"
  refused 'another file is mounted over it'
  wipe "$top/file"
  refused 'another file is mounted over it'
  umount "$top/file"
  kept "$mnt/precious" "$top/file"
}

case_file_of_another_system_mounted_over() {
  mkdir "$top"
  put "$top/file"
  put "$work/precious"
  mount --bind "$work/precious" "$top/file"
  wipe "$top"
  refused 'another file is mounted over it'
  umount "$top/file"
  kept "$work/precious" "$top/file"
}

# Asking must not make a copy of the whole file.
case_overlay() {
  mkdir "$mnt/lower" "$mnt/upper" "$mnt/work" "$mnt/merged"
  put "$mnt/lower/file" 300000
  if ! mount -t overlay -o "lowerdir=$mnt/lower,upperdir=$mnt/upper,workdir=$mnt/work" overlay "$mnt/merged" 2>/dev/null; then
    say "not tested here: an overlay"
    lost "$mnt/lower/file"
    return
  fi
  wipe "$mnt/merged/file"
  wipe "$mnt/merged"
  umount "$mnt/merged"
  refused 'overlay'
  kept "$mnt/lower/file"
  [[ ! -e $mnt/upper/file ]] || fault "the refusal has made a copy of the file"
}

# The same by a program, as for containers without an administrator: its type doesn't tell what it is.
case_overlay_by_fuse() {
  if ! command -v fuse-overlayfs >/dev/null || [[ ! -c /dev/fuse ]]; then
    say "not tested here: an overlay by FUSE"
    return
  fi
  mkdir "$mnt/lower" "$mnt/upper" "$mnt/work" "$mnt/merged"
  put "$mnt/lower/file" 300000
  fuse-overlayfs -o "lowerdir=$mnt/lower,upperdir=$mnt/upper,workdir=$mnt/work" "$mnt/merged" 2>/dev/null
  wipe "$mnt/merged/file"
  refused 'fuse.fuse-overlayfs) isn.t known to overwrite in place'
  wipe "$mnt/merged"
  refused 'fuse.fuse-overlayfs) isn.t known to overwrite in place'
  umount "$mnt/merged"
  kept "$mnt/lower/file"
  [[ ! -e $mnt/upper/file ]] || fault "the refusal has made a copy of the file"
}

case_unknown_file_system() {
  local other=$work/other
  mkdir "$other"
  if ! mount -t hugetlbfs -o size=8M none "$other" 2>/dev/null && ! mount -t devtmpfs none "$other" 2>/dev/null; then
    say "not tested here: a file system that isn't known"
    return
  fi
  umount "$other"
  if ! mount -t hugetlbfs -o size=8M none "$other" 2>/dev/null; then return; fi
  : >"$other/file"
  wipe "$other/file"
  refused 'hugetlbfs) isn.t known to overwrite in place'
  [[ -e $other/file ]] || fault "it is gone"
  wipe --trust "$other/file"
  grep -q '^note: .*hugetlbfs) isn.t known' "$work/output" || fault "no note of what can't be known: $output"
  umount "$other"
}

case_memory() {
  mkdir "$work/memory"
  put "$work/memory/file"
  wipe "$work/memory/file"
  wiped "$work/memory/file"
  grep -q '^note: .*in memory' "$work/output" || fault "no note that it was in memory: $output"
}

kind_of[compressed_by_ntfs]=ntfs
case_compressed_by_ntfs() {
  mkdir "$top"
  put "$top/other"
  # The attribute of the folder goes to the files that are made in it.
  if ! perl -e 'my ($p) = @ARGV; my $n = "system.ntfs_attrib_be"; my $v = pack("N", 0x810);
      syscall(188, $p, $n, $v, 4, 0) == 0 or die' "$top" 2>/dev/null; then
    say "not tested here: files that ntfs-3g compresses"
    lost "$top/other"
    return
  fi
  put "$top/file" 200000
  wipe "$top"
  refused 'it is compressed by the file system'
  kept "$top/file"
  gone "$top/other"
}

# Names of more bytes than ext4 takes.
kind_of[names_in_units_of_ntfs]=ntfs
case_names_in_units_of_ntfs() {
  mkdir "$top"
  put "$top/$(printf '漢%.0s' {1..100})"
  put "$top/$(printf '字%.0s' {1..255})"
  wipe "$top"
  wiped "$top"
}

# Names that ext4 would take, too, but in other lengths: counted in bytes, each new name would be three times as long
# as the old one, which it then leaves standing.
kind_of[names_are_overwritten_where_they_stand]=ntfs
case_names_are_overwritten_where_they_stand() {
  local name left
  mkdir "$top"
  name=$(printf '漢%.0s' {1..40})字母表
  put "$top/$name"
  put "$top/other"
  wipe "$top/$name"
  wiped "$top/$name"
  kept "$top/other"
  image_unmount "$mnt"
  left=$(python3 -c 'import sys; print(open(sys.argv[1], "rb").read().count(sys.argv[2].encode("utf-16-le")))' \
    "$work/image" "$name")
  ((left == 0)) || fault "the name stands in $left places"
  image_mount ntfs "$work/image" "$mnt"
}

kind_of[data_journal_that_is_hidden]=ext4-journal
case_data_journal_that_is_hidden() {
  mkdir "$top"
  put "$top/file"
  chown -R 65534:65534 "$top"
  sync -f "$mnt"
  wipe_as unshare --mount bash -c 'mount --make-rprivate /; mount -t tmpfs none /sys
    exec setpriv --reuid=65534 --regid=65534 --clear-groups "$@"' - "$work/wipe_tool" "$top"
  refused .
  kept "$top/file"
}

case_attribute_where_the_journal_is_hidden() {
  mkdir "$top"
  put "$top/file"
  put_attribute "$top/file" 48
  chown -R 65534:65534 "$top"
  wipe_as unshare --mount bash -c 'mount --make-rprivate /; mount -t tmpfs none /sys
    exec setpriv --reuid=65534 --regid=65534 --clear-groups "$@"' - "$work/wipe_tool" "$top"
  refused 'journal'
  kept "$top/file"
  unset 'secret[$top/file:attribute]'
}

# The file keeps its last unit of 64 KiB when it is cut, and what lies in it.
kind_of[large_clusters]=ext4-bigalloc
case_large_clusters() {
  mkdir "$top"
  put "$top/file" 65536
  sync -f "$mnt"
  truncate -s 5000 "$top/file"
  sync -f "$mnt"
  wipe "$top"
  wiped "$top"
}

case_image_of_a_mounted_device() {
  mkdir "$top" "$mnt/inner"
  truncate -s 4M "$top/image"
  mkfs.ext4 -q -F -- "$top/image"
  mount -o loop -- "$top/image" "$mnt/inner"
  see_own_images
  put "$mnt/inner/precious"
  sync -f "$mnt/inner"
  wipe "$top"
  refused 'it is the image of a loop device'
  kept "$mnt/inner/precious"
  # No way to ask: whoever has it open for writing may be such a device.
  wipe_as unshare --mount bash -c 'mount --make-rprivate /; mount -t tmpfs none /sys; exec "$@"' - "$work/wipe_tool" "$top"
  refused 'image of a loop device'
  kept_path=$mnt/inner/precious
  [[ -s $kept_path ]] || fault "the mounted file system has lost its file"
  umount "$mnt/inner"
}

# The path that the kernel tells of an image leads nowhere if it lies in a space of mounts of its own, or if the name
# is gone. The device itself tells which file it is, so that no other is taken for it.
case_image_without_a_path() {
  mkdir "$top" "$mnt/inner"
  truncate -s 4M "$mnt/image"
  mkfs.ext4 -q -F -- "$mnt/image"
  ln -- "$mnt/image" "$top/other name"
  mount -o loop -- "$mnt/image" "$mnt/inner"
  see_own_images
  put "$mnt/inner/precious"
  sync -f "$mnt/inner"
  rm -- "$mnt/image"
  wipe "$top"
  refused 'it is the image of a loop device'
  kept "$mnt/inner/precious"
  # Open for writing, as an image is.
  mkdir "$top/beside"
  put "$top/beside/file" 65536
  exec 7>>"$top/beside/file"
  wipe "$top/beside"
  exec 7>&-
  wiped "$top/beside"
  umount "$mnt/inner"
}

case_swap_file() {
  mkdir "$top"
  dd if=/dev/zero of="$top/swap" bs=64k count=16 status=none
  chmod 600 "$top/swap"
  mkswap -q -- "$top/swap" >/dev/null 2>&1 || true
  if ! swapon -- "$top/swap" 2>/dev/null; then
    say "not tested here: a swap file"
    return
  fi
  wipe "$top"
  swapoff -- "$top/swap"
  refused .
  [[ $(stat -c %s "$top/swap") == 1048576 ]] || fault "a swap file in use is not what it was"
}

# What is allocated of it is all that there is.
case_sparse_file_beyond_a_full_disk() {
  mkdir "$top"
  put "$top/huge" 50000
  truncate -s 50G "$top/huge"
  text 30000 | dd of="$top/huge" bs=4096 seek=5000000 conv=notrunc status=none
  dd if=/dev/zero of="$mnt/filler" bs=64k status=none 2>/dev/null || true
  wipe "$top"
  wiped "$top"
}

case_preallocated_file() {
  mkdir "$top"
  put "$top/file" 50000
  fallocate -l 4M "$top/file"
  wipe "$top"
  wiped "$top"
}

case_file_of_another_in_a_sticky_folder() {
  mkdir "$top"
  chmod 1777 "$top"
  put "$top/file"
  chmod 666 "$top/file"
  wipe_as "${as_user[@]}" "$work/wipe_tool" "$top"
  refused 'lets nobody but the owner remove it'
  kept "$top/file"
}

case_file_in_an_append_only_folder() {
  mkdir "$top"
  put "$top/file"
  chattr +a "$top"
  wipe "$top"
  chattr -a "$top"
  refused 'its folder is marked'
  kept "$top/file"
}

# In a folder where one may remove it, though its dates are not one's own to set.
case_dates_of_another_owner() {
  mkdir "$top"
  chmod 777 "$top"
  put "$top/file"
  chmod 666 "$top/file"
  wipe_as "${as_user[@]}" "$work/wipe_tool" "$top/file"
  wiped "$top/file"
  grep -q '^note: .*dates' "$work/output" || fault "no note of the dates: $output"
}

case_read_only_file_of_ones_own() {
  mkdir "$top"
  put "$top/file"
  put "$top/none"
  put "$top/attribute"
  chmod 444 "$top/file"
  chmod 000 "$top/none"
  chown -R 65534:65534 "$top"
  wipe_as "${as_user[@]}" "$work/wipe_tool" "$top/file"
  wiped "$top/file"
  wipe_as "${as_user[@]}" "$work/wipe_tool" "$top/none"
  wiped "$top/none"
  # One that stays has the rights it had.
  put_attribute "$top/attribute" 48
  chown 65534:65534 "$top/attribute"
  chmod 444 "$top/attribute"
  wipe_as "${as_user[@]}" "$work/wipe_tool" "$top/attribute"
  refused 'only an administrator may clear'
  [[ $(stat -c %a "$top/attribute") == 444 ]] || fault "it stays, and has other rights"
  kept "$top/attribute"
  unset 'secret[$top/attribute:attribute]'
}

# What another name of the file is, read-only, it stays.
case_read_only_file_of_several_names() {
  mkdir "$top"
  put "$top/file"
  ln "$top/file" "$top/other"
  chmod 444 "$top/file"
  chown -R 65534:65534 "$top"
  wipe_as "${as_user[@]}" "$work/wipe_tool" "$top/file"
  [[ $status == 0 && ! -e $top/file ]] || fault "it is not wiped: $output"
  [[ $(stat -c '%a %s' "$top/other") == '444 0' ]] || fault "the other name is $(stat -c '%a %s' "$top/other")"
}

case_two_wipes_of_one_file() {
  mkdir "$top"
  put "$top/file" 200000
  wipe --at file "'$work/wipe_tool' '$top/file' >'$work/second' 2>&1; true" "$top"
  wiped "$top"
  grep -q '^failed: .*another program has locked it' "$work/second" || fault "the second: $(<"$work/second")"
}

# As containers and administrators deny it, as a kernel that has none, and once it is made: the wipe goes without.
case_io_uring_that_is_denied() {
  local how
  for how in 'setup 1' 'setup 38' 'enter 1'; do
    mkdir "$top"
    put "$top/large ${how/ /}" 5000000
    put "$top/small ${how/ /}" 3000
    put "$top/next ${how/ /}" 4096
    # shellcheck disable=SC2086  # two words
    wipe --deny $how "$top"
    wiped "$top"
  done
}

# Files of the tree wait for each other with all of them open.
case_few_descriptors() {
  local i
  mkdir "$top"
  for ((i = 0; i < 300; i++)); do put "$top/f$i" 500; done
  wipe_as bash -c 'ulimit -n 40; exec "$@"' - "$work/wipe_tool" "$top"
  wiped "$top"
}

# Each file has more than the least that could be an image in use, which is asked of the system by descriptors, too.
case_few_descriptors_for_larger_files() {
  local i
  mkdir "$top"
  for ((i = 0; i < 600; i++)); do put "$top/f$i" 17000; done
  wipe_as bash -c 'ulimit -n 80; exec "$@"' - "$work/wipe_tool" "$top"
  wiped "$top"
}

case_few_descriptors_in_a_deep_tree() {
  mkdir "$top"
  new_mark
  secret[bottom]=$mark
  perl -e 'my ($top, $text) = @ARGV; chdir $top or die;
    for (1 .. 1500) { mkdir "d" or die; chdir "d" or die; }
    open my $file, ">", "bottom" or die; print $file $text; close $file or die' "$top" "$(text 20000)"
  wipe_as bash -c 'ulimit -n 64; exec "$@"' - "$work/wipe_tool" "$top"
  wiped "$top"
}

case_forty_levels_of_the_longest_names() {
  local name i
  name=$(printf 'n%.0s' {1..255})
  mkdir "$top"
  new_mark  # a subshell would have another one
  secret[bottom]=$mark
  (
    cd "$top" || exit
    for ((i = 0; i < 40; i++)); do
      mkdir "$name"
      cd "./$name" 2>/dev/null || exit
    done
    text 20000 >bottom
  )
  wipe "$top"
  wiped "$top"
  ! grep -q '^error' "$work/output" || fault "errors are told of a tree that is gone"
}
