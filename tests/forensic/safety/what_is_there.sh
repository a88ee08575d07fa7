#!/usr/bin/env bash
# Cases of safety_test.sh: what stands in a folder before the wipe begins.
# shellcheck disable=SC2034,SC2154  # the variables are safety_test.sh's

case_plain() {
  mkdir -p "$top/sub"
  put "$top/a"
  put "$top/sub/b" 3000000
  put "$mnt/beside"
  wipe "$top"
  wiped "$top"
  kept "$mnt/beside"
}

case_names_of_the_greatest_length() {
  local long
  mkdir "$top"
  long=$(printf 'n%.0s' {1..255})
  put "$top/$long"
  put "$top/$(printf 'ä%.0s' {1..127})e"
  put "$top/x"
  mkdir "$top/d${long:1}"
  put "$top/d${long:1}/$long"
  wipe "$top"
  wiped "$top"
}

case_odd_names() {
  local name
  mkdir "$top"
  for name in $'\xff\xfe\x80' $'caf\xe9' $'two\nlines' $'\x01\x7f\e[31m' '-rf' '*' '"quoted"' ' ' 'a\b' $'\xed\xa0\x80'; do
    put "$top/$name"
    mkdir "$top/d$name"
    put "$top/d$name/$name"
  done
  wipe "$top"
  wiped "$top"
}

case_message_of_an_odd_name() {
  local name=$'line\nerror 1 \x1b[2J\xff"'
  mkdir "$top"
  put "$top/$name"
  chattr +i "$top/$name"
  wipe "$top"
  refused "line error 1"
  chattr -i "$top/$name"
  kept "$top/$name"
  [[ $(grep -ca '' "$work/output") == 2 ]] || fault "a message of several lines: $output"
  ! LC_ALL=C grep -qaP '[\x00-\x08\x0b-\x1f\x7f"]' "$work/output" || fault "a control character or a double quote"
}

# A path of more than 4,096 bytes can't be named as a whole, but it can be reached step by step.
case_fifty_folders_deep() {
  local name i
  name=$(printf 'deep%.0s' {1..30})
  mkdir "$top"
  (
    cd "$top" || exit
    for ((i = 0; i < 50; i++)); do
      mkdir "$name"
      cd "./$name" 2>/dev/null || exit
    done
    new_mark
    text 20000 >bottom
  )
  new_mark  # the same as in there
  secret[bottom]=$mark
  marks=$((marks + 1))
  wipe "$top"
  wiped "$top"
}

# Deeper than a process may have folders open.
case_deeper_than_open_files_go() {
  local i
  mkdir "$top"
  put "$top/first"
  (
    cd "$top" || exit
    for ((i = 0; i < 200; i++)); do
      mkdir d
      cd d 2>/dev/null || exit
    done
    text 20000 >bottom
  )
  wipe_as bash -c 'ulimit -n 80; exec "$@"' - "$work/wipe_tool" "$top"
  wiped "$top"
}

case_read_only_folder() {
  mkdir -p "$top/closed"
  put "$top/closed/file"
  put "$top/open"
  chmod 555 "$top/closed"
  chown -R 65534:65534 "$top"
  wipe_as setpriv --reuid=65534 --regid=65534 --clear-groups "$work/wipe_tool" "$top"
  refused 'Permission denied'
  kept "$top/closed/file"
  gone "$top/open"
}

case_read_only_file_of_a_user() {
  mkdir "$top"
  chmod 777 "$top"
  put "$top/file"
  put "$top/other"
  chown -R 65534:65534 "$top/other"
  chmod 444 "$top/file"
  wipe_as setpriv --reuid=65534 --regid=65534 --clear-groups "$work/wipe_tool" "$top"
  refused 'Permission denied'
  kept "$top/file"
  gone "$top/other"
}

case_unreadable_folder_of_a_user() {
  mkdir -p "$top/closed"
  put "$top/closed/file"
  chmod 000 "$top/closed"
  chown -R 65534:65534 "$top"
  wipe_as setpriv --reuid=65534 --regid=65534 --clear-groups "$work/wipe_tool" "$top"
  refused 'Permission denied'
  chmod 700 "$top/closed"
  kept "$top/closed/file"
}

case_links() {
  mkdir -p "$top/a" "$mnt/precious"
  put "$mnt/precious/file"
  put "$top/a/file"
  ln -s ../a "$top/a/loop"
  ln -s "$top" "$top/a/up"
  ln -s loop/loop/loop "$top/a/round"
  ln -s itself "$top/itself"
  ln -s ../precious "$top/out"
  ln -s "$mnt/precious/file" "$top/out_file"
  ln -s /nowhere "$top/broken"
  wipe "$top"
  wiped "$top"
  kept "$mnt/precious/file"
}

case_link_named_itself() {
  mkdir "$mnt/precious"
  put "$mnt/precious/file"
  ln -s precious "$mnt/to_folder"
  ln -s precious/file "$mnt/to_file"
  wipe "$mnt/to_file"
  refused 'it is a link'
  wipe "$mnt/to_folder"
  refused 'it is a link'
  wipe "$mnt/to_folder/"
  refused 'it is a link'
  kept "$mnt/precious/file"
  [[ -L $mnt/to_file && -L $mnt/to_folder ]] || fault "a link that was refused is gone"
}

case_hard_link_outside() {
  mkdir "$top"
  put "$top/file"
  ln "$top/file" "$mnt/other_name"
  wipe "$top"
  wiped "$top"
  [[ -e $mnt/other_name ]] || fault "the other name is gone"
  ! grep -qa "${secret[$top/file]}" "$mnt/other_name" || fault "the content is there under the other name"
}

case_hard_links_inside() {
  mkdir -p "$top/sub"
  put "$top/file"
  ln "$top/file" "$top/file2"
  ln "$top/file" "$top/sub/file3"
  put "$top/other"
  wipe "$top"
  wiped "$top"
}

case_sparse_file() {
  mkdir "$top"
  put "$top/file" 5000
  truncate -s 8M "$top/file"
  text 5000 | dd of="$top/file" bs=4096 seek=1000 conv=notrunc status=none
  wipe "$top"
  wiped "$top"
}

# Its holes can't be filled on this disk, and needn't be.
case_sparse_file_beyond_the_disk() {
  mkdir "$top"
  put "$top/a_small" 9000
  put "$top/huge" 5000
  truncate -s 2G "$top/huge"
  put "$top/small" 9000
  wipe "$top"
  wiped "$top"
}

case_full_disk() {
  mkdir "$top"
  for i in {1..30}; do put "$top/f$i" $((i * 777)); done
  dd if=/dev/zero of="$mnt/filler" bs=64k status=none 2>/dev/null || true
  dd if=/dev/zero of="$mnt/filler2" bs=512 status=none 2>/dev/null || true
  ! echo text 2>/dev/null >"$mnt/more" || [[ ! -s $mnt/more ]] || fault "the disk is not full"
  wipe "$top"
  wiped "$top"
}

case_what_is_no_file() {
  mkdir "$top"
  put "$top/file"
  mkfifo "$top/pipe"
  mknod "$top/null" c 1 3
  mknod "$top/disk" b 7 77
  perl -MSocket -e 'socket(S, PF_UNIX, SOCK_STREAM, 0); bind(S, pack_sockaddr_un($ARGV[0])) or die' "$top/socket"
  wipe "$top"
  refused 'is not a regular file'
  [[ $(grep -c '^error .*not a regular file' "$work/output") == 4 ]] || fault "not each is told: $output"
  gone "$top/file"
  [[ -p $top/pipe && -c $top/null && -b $top/disk && -S $top/socket ]] || fault "one of them is gone"
  wipe "$top/pipe"
  refused 'not a regular file'
  wipe "$top/null"
  refused 'not a regular file'
}

case_immutable() {
  mkdir -p "$top/sub" "$top/fixed"
  put "$top/1"
  put "$top/immutable"
  put "$top/append_only"
  put "$top/sub/2"
  put "$top/fixed/3"
  put "$top/9"
  chattr +i "$top/immutable"
  chattr +a "$top/append_only"
  chattr +i "$top/fixed"
  wipe "$top"
  chattr -ia "$top/immutable" "$top/append_only" "$top/fixed"
  refused 'Operation not permitted'
  kept "$top/immutable" "$top/append_only"
  gone "$top/1" "$top/sub" "$top/9"
  kept "$top/fixed/3"
}

case_mount_inside() {
  mkdir -p "$top/sub"
  put "$top/file"
  mount -t tmpfs small "$top/sub"
  put "$top/sub/precious"
  wipe "$top"
  refused 'another file system is mounted'
  kept "$top/sub/precious"
  gone "$top/file"
  umount "$top/sub"
}

case_read_only_mount() {
  mkdir "$top"
  put "$top/file"
  mount -o remount,ro "$mnt"
  wipe "$top"
  refused 'Read-only file system'
  kept "$top/file"
}

# The kernel writes the data of such files to the journal first.
case_journalled_file() {
  mkdir "$top"
  : >"$top/file"
  if ! chattr +j "$top/file" 2>/dev/null; then
    say "not tested here: the right to have a file's data journalled is missing"
    return
  fi
  put "$top/file"
  put "$top/other"
  chown -R 65534:65534 "$top"
  wipe_as setpriv --reuid=65534 --regid=65534 --clear-groups "$work/wipe_tool" "$top"
  refused 'journal'
  gone "$top/other"
  [[ $(sha256sum <"$top/file") == "${sum[$top/file]}" ]] || fault "a file that was refused is not what it was"
  # The administrator may clear the journal.
  wipe "$top"
  wiped "$top"
}

case_not_there() {
  wipe "$mnt/none"
  refused 'No such file'
  wipe "$mnt/none/"
  refused 'No such file'
  wipe ""
  refused 'empty'
  wipe "/"
  refused 'root'
  mkdir "$top"
  put "$top/file"
  wipe "$top/."
  refused .
  wipe "$top/sub/.."
  refused .
  wipe --level 4 "$top"
  refused 'no level 4'
  kept "$top/file"
}

case_mount_point_named() {
  put "$mnt/file"
  rmdir "$mnt/lost+found"
  wipe "$mnt"
  # All in it goes; the mount point itself can't.
  gone "$mnt/file"
  [[ -d $mnt ]]
  refused .
}

# A small file in its own inode, which a journal has copies of.
kind_of[inline_content]=ext4-inline
case_inline_content() {
  mkdir "$top"
  put "$top/file" 64
  put "$top/file2" 112
  wipe "$top"
  wiped "$top"
}

# Whoever may not clear the journal gets the reason.
kind_of[inline_content_of_a_user]=ext4-inline
case_inline_content_of_a_user() {
  mkdir "$top"
  put "$top/file" 64
  put "$top/file2" 112
  put "$top/large"
  truncate -s 50 "$top/hole"
  chown -R 65534:65534 "$top"
  wipe_as setpriv --reuid=65534 --regid=65534 --clear-groups "$work/wipe_tool" "$top"
  refused 'only an administrator may clear'
  kept "$top/file" "$top/file2"
  gone "$top/large"
}

# put_attribute PATH BYTES: content in an extended attribute.
put_attribute() {
  new_mark
  secret[$1:attribute]=$mark
  perl -e 'my ($path, $value) = @ARGV; my $name = "user.comment";
    syscall(188, $path, $name, $value, length $value, 0) == 0 or die "setxattr: $!"' "$1" "$(text "$2")"
}

case_extended_attributes() {
  mkdir "$top"
  put "$top/file"
  put_attribute "$top/file" 48
  put "$top/file2"
  put_attribute "$top/file2" 2000
  put_attribute "$top" 48
  # Equal names and lengths: the file system would keep one block for both as soon as the values are equal.
  put "$top/file3" 100
  put_attribute "$top/file3" 2000
  : >"$top/empty"
  put_attribute "$top/empty" 1000
  wipe "$top"
  wiped "$top"
}

# Too long to be sure that a new value comes where the old one was.
case_long_extended_attribute() {
  mkdir "$top"
  put "$top/file"
  put_attribute "$top/file" 3000
  put "$top/other"
  wipe "$top"
  refused 'file:user.comment: it can.t be overwritten in place'
  kept "$top/file"
  unset 'secret[$top/file:attribute]'
  gone "$top/other"
}

case_extended_attributes_of_a_user() {
  mkdir "$top"
  put "$top/file"
  put_attribute "$top/file" 48
  put "$top/other"
  mkdir "$top/sub"
  put_attribute "$top/sub" 48
  chown -R 65534:65534 "$top"
  wipe_as setpriv --reuid=65534 --regid=65534 --clear-groups "$work/wipe_tool" "$top"
  refused 'only an administrator may clear'
  kept "$top/file"
  [[ -d $top/sub ]] || fault "a folder is gone whose attribute couldn't be overwritten"
  unset 'secret[$top/file:attribute]' 'secret[$top/sub:attribute]'
  gone "$top/other"
}

# A label or an access list holds no content, and not everybody may change it.
case_attributes_that_hold_no_content() {
  mkdir "$top"
  put "$top/file"
  chown -R 65534:65534 "$top"
  perl -e 'my ($path) = @ARGV; my $name = "security.test"; my $value = "label";
    syscall(188, $path, $name, $value, length $value, 0) == 0 or die "setxattr: $!"' "$top/file"
  wipe_as setpriv --reuid=65534 --regid=65534 --clear-groups "$work/wipe_tool" "$top"
  gone "$top/file"
}

# Its log has copies that nobody can clear.
kind_of[extended_attributes_of_xfs]=xfs
case_extended_attributes_of_xfs() {
  mkdir "$top"
  put "$top/file"
  put_attribute "$top/file" 48
  put "$top/other"
  wipe "$top"
  refused 'file:user.comment: it can.t be overwritten in place'
  kept "$top/file"
  unset 'secret[$top/file:attribute]'
  gone "$top/other"
}

# What Windows keeps as a file's further streams is shown as extended attributes here. ntfs-3g cuts them to
# nothing before it writes the new value, which may then come to lie elsewhere.
kind_of[streams_of_ntfs]=ntfs
case_streams_of_ntfs() {
  mkdir "$top"
  put "$top/file"
  put_attribute "$top/file" 20000
  put "$top/other"
  wipe "$top"
  refused 'file:user.comment: it can.t be overwritten in place'
  kept "$top/file"
  unset 'secret[$top/file:attribute]'
  gone "$top/other"
}

# ext4 keeps the mark, though it compresses nothing itself.
case_compressed_file() {
  mkdir "$top"
  put "$top/file"
  put "$top/other"
  chattr +c "$top/file"
  wipe "$top"
  refused 'it is compressed by the file system'
  kept "$top/file"
  gone "$top/other"
}

case_encrypted_file() {
  if [[ ! -e /sys/fs/ext4/features/encryption ]] || ! command -v e4crypt tune2fs >/dev/null; then
    say "not tested here: files that ext4 encrypts"
    return
  fi
  image_unmount "$mnt"
  tune2fs -O encrypt "$work/image" >/dev/null
  image_mount ext4 "$work/image" "$mnt"
  mkdir -p "$top/closed"
  echo words | e4crypt add_key -S s:12 "$top/closed" >/dev/null
  put "$top/closed/file"
  put "$top/other"
  wipe "$top"
  refused 'it is encrypted by the file system'
  kept "$top/closed/file"
  gone "$top/other"
}

# Another file has the same blocks, so they aren't this one's to overwrite.
kind_of[shared_blocks]=xfs
case_shared_blocks() {
  mkdir "$top"
  put "$top/file"
  put "$top/other"
  cp --reflink=always -- "$top/file" "$mnt/copy"
  sum[$mnt/copy]=${sum[$top/file]}
  wipe "$top"
  refused 'it shares blocks with another file'
  kept "$top/file" "$mnt/copy"
  gone "$top/other"
}

# After a write to what was shared xfs keeps room for the next ones near to it, and puts them there.
kind_of[room_for_copies_on_write]=xfs
case_room_for_copies_on_write() {
  mkdir "$top"
  put "$top/file" 1000000
  put "$top/other"
  cp --reflink=always -- "$top/file" "$mnt/copy"
  sync -f "$mnt"
  text 4096 | dd of="$top/file" bs=4096 seek=20 conv=notrunc status=none
  sync -f "$mnt"
  rm "$mnt/copy"
  sync -f "$mnt"
  wipe "$top"
  gone "$top/other"
  refused 'xfs has put it there, as it does after a copy by reflink'
  lost "$top/file"
}
