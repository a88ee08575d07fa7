#!/usr/bin/env bash
# Cases of safety_test.sh: what others do to the files while the wipe is at them.
# shellcheck disable=SC2034,SC2154  # the variables are safety_test.sh's

case_grows_during_the_wipe() {
  mkdir "$top"
  put "$top/file" 50000
  new_mark
  secret[grown]=$mark
  text 300000 >"$work/more"
  put "$top/other"
  wipe --at file "cat '$work/more' >>'$top/file'; sync -f '$mnt'" "$top"
  refused 'another program has changed its length'
  gone "$top/other"
  [[ $(stat -c %s "$top/file") == 350000 ]] || fault "what was added is cut off"
  lost "$top/file"
  lost grown
}

# One after the other adds to it, to the end of the wipe and after.
case_grows_all_the_time() {
  local writer
  mkdir "$top"
  put "$top/file" 50000
  put "$top/other"
  # Held open, as a program holds its log.
  (while :; do echo new; done) >>"$top/file" 2>/dev/null &
  writer=$!
  until (($(stat -c %s "$top/file") > 50000)); do kill -0 "$writer" || break; done
  # The writer is given the processor within the wipe, too, which may be over before it otherwise.
  wipe --at file "size=\$(stat -c %s '$top/file')
    until [ \$(stat -c %s '$top/file') -gt \$size ]; do :; done" "$top"
  kill "$writer" 2>/dev/null || true
  wait "$writer" 2>/dev/null || true
  refused 'another program has'
  gone "$top/other"
  [[ -e $top/file ]] || fault "a file is gone that another program was writing to"
  lost "$top/file"
}

case_shrinks_during_the_wipe() {
  mkdir "$top"
  put "$top/file" 500000
  put "$top/other"
  wipe --at file "truncate -s 1000 '$top/file'; sync -f '$mnt'" "$top"
  # The blocks it gave back were never ours to overwrite; that it isn't called success is what counts.
  refused 'another program has changed its length'
  gone "$top/other"
  [[ -e $top/file ]] || fault "a file is gone that was not overwritten"
  lost "$top/file"
}

# Its length is what it was when anybody looks again, but it lies elsewhere.
case_shrinks_and_grows_during_the_wipe() {
  mkdir "$top"
  put "$top/file" 500000
  put "$top/other"
  put "$mnt/filler" 600000
  wipe --at file "truncate -s 0 '$top/file'; sync -f '$mnt'; cat '$mnt/filler' >'$mnt/there'
    truncate -s 500000 '$top/file'; sync -f '$mnt'" "$top"
  refused 'another program has moved its content'
  gone "$top/other"
  lost "$top/file"
  lost "$mnt/filler"
}

case_vanishes_during_the_wipe() {
  mkdir "$top"
  put "$top/file" 50000
  put "$top/other" 50000
  wipe --at file "rm '$top/file'" "$top"
  # It was open, and so overwritten all the same; but the wipe knows no more of its entry.
  refused 'No such file'
  gone "$top/file" "$top/other"
}

# Gone by somebody else's hand before the wipe came to it, so it was never overwritten.
case_vanishes_before_its_turn() {
  mkdir -p "$top"
  put "$top/0" 5000
  mkdir "$top/later"
  put "$top/later/file" 5000
  wipe --at 0 "rm -f '$top/later/file'" "$top"
  ((status == 1)) || lost "$top/later/file"
  gone "$top/0" "$top/later/file"
  lost "$top/later/file"
}

case_replaced_during_the_wipe() {
  mkdir "$top"
  put "$top/file" 50000
  put "$mnt/another" 40000
  sum[$top/file]=${sum[$mnt/another]}
  wipe --at file "mv '$top/file' '$mnt/moved' && mv '$mnt/another' '$top/file'" "$top"
  refused .
  kept "$top/file"  # the other one
  lost "$mnt/another"
  [[ -e $mnt/moved ]] || fault "what was moved away during the wipe is gone"
}

case_replaced_by_a_link_during_the_wipe() {
  mkdir "$top"
  put "$top/file" 50000
  put "$mnt/precious" 40000
  wipe --at file "rm '$top/file' && ln -s '$mnt/precious' '$top/file'" "$top"
  refused .
  kept "$mnt/precious"
}

case_folder_replaced_by_a_link_during_the_wipe() {
  mkdir -p "$top/sub/deep" "$mnt/precious/deep"
  put "$top/0"
  put "$top/sub/deep/file"
  put "$mnt/precious/deep/file"
  # In which order the folder is gone through is chance, and then there may be nothing to move.
  wipe --at 0 "mv '$top/sub' '$mnt/moved' 2>/dev/null && ln -s '$mnt/precious' '$top/sub'; true" "$top"
  kept "$mnt/precious/deep/file"
  if [[ -e $mnt/moved/deep/file ]]; then
    ((status == 1)) || fault "success is reported, and a file of the tree has not been wiped"
    lost "$top/sub/deep/file"
  fi
}

case_written_to_during_the_wipe() {
  mkdir -p "$top/sub"
  put "$top/a" 5000
  put "$top/sub/b" 5000
  new_mark
  text 50000 >"$work/more"
  secret[new]=$mark
  wipe --at b "cp '$work/more' '$top/new1'; cp '$work/more' '$top/sub/new2'; mkdir '$top/sub/d'; cp '$work/more' '$top/sub/d/new3'" "$top"
  if ((status == 1)); then
    [[ -e $top ]] || fault "a folder that stays has lost its name, and nobody is told the new one: $output"
    for path in "$top/new1" "$top/sub/new2" "$top/sub/d/new3"; do
      if [[ -e $path ]]; then cmp -s "$path" "$work/more" || fault "$path was changed but not wiped"; fi
    done
    # What is there may be in a folder that has got another name.
    ! grep -rqaF -- "$mark" "$mnt" || lost new
  fi
}

case_written_to_all_the_time() {
  local i writer
  mkdir -p "$top"
  for ((i = 0; i < 40; i++)); do put "$top/f$i" 9000; done
  # A file of a fixed name, so that it may also come and go within the wipe.
  (
    for ((i = 0; ; i++)); do echo new >"$top/w$((i % 50))" || exit 0; done
  ) 2>/dev/null &
  writer=$!
  wipe "$top"
  kill "$writer" 2>/dev/null || true
  wait "$writer" 2>/dev/null || true
  for ((i = 0; i < 40; i++)); do gone "$top/f$i"; done
  if ((status == 0)); then gone "$top"; fi
}

# The file system's server ends while the wipe is at it, as a network path drops.
kind_of[server_that_ends]=ntfs
case_server_that_ends() {
  mkdir -p "$top/sub"
  put "$top/a" 50000
  put "$top/sub/b" 50000
  wipe --at b "kill -9 $(pgrep -x ntfs-3g)" "$top"
  # What was under way is told as aborted, what comes later as not connected.
  refused '\(Transport endpoint is not connected\|Software caused connection abort\)'
  ! grep -q '^wiped b' "$work/output" || fault "what could not be wiped is called wiped"
  # What of it was wiped before is chance.
  lost "$top/a"
  lost "$top/sub/b"
  umount -l "$mnt"
}

case_open_elsewhere() {
  local handle
  mkdir "$top"
  put "$top/file"
  exec {handle}<"$top/file"
  wipe "$top"
  wiped "$top"
  ! grep -qa "${secret[$top/file]}" <&"$handle" || fault "whoever has it open still reads the content"
  exec {handle}<&-
}

case_running_program() {
  local program
  mkdir "$top"
  cp -- "$(command -v sleep)" "$top/program"
  sum[$top/program]=$(sha256sum <"$top/program")
  put "$top/file"
  "$top/program" 60 &
  program=$!
  until [[ /proc/$program/exe -ef $top/program ]]; do kill -0 "$program" || break; done
  wipe "$top"
  refused 'Text file busy'
  kill "$program"
  wait "$program" 2>/dev/null || true
  kept "$top/program"
  gone "$top/file"
}

case_killed() {
  local i
  mkdir "$top"
  for ((i = 0; i < 20; i++)); do put "$top/f$i" 30000; done
  sync -f "$mnt"
  status=0
  # A shell of its own, or ours would announce the death.
  ("$work/wipe_tool" --at f7 'kill -9 $PPID' "$top" || exit $?) >/dev/null 2>&1 || status=$?
  ((status == 137)) || fault "it was not killed, and ended with $status"
  # Whatever is gone was overwritten; the others are there, whole or not.
  for ((i = 0; i < 20; i++)); do
    [[ ! -e $top/f$i ]] || lost "$top/f$i"
  done
}

# killed_while_the_log_is_filled: the wipe is killed with all its processes at the first of its fillers' writes.
killed_while_the_log_is_filled() {
  local user=("$@") tool
  mkdir -m 777 "$top"
  put "$top/file"
  chown -R 65534:65534 "$top"
  sync -f "$mnt"
  "${user[@]}" "$work/wipe_tool" "$top/file" >/dev/null 2>&1 &
  tool=$!
  # A file without a name that is open: it says so of itself.
  until [[ -n $(find "/proc/$tool/fd" -lname '*(deleted)' 2>/dev/null) ]]; do
    [[ -e /proc/$tool/exe ]] || { fault "the log was not filled, or too quickly to be seen"; break; }
  done
  kill -9 "$tool" 2>/dev/null || true
  wait "$tool" 2>/dev/null || true
  [[ -z $(find "$top" -mindepth 1) ]] || fault "it has left $(find "$top" -mindepth 1 | wc -l) files"
  # It would wait for good on a frozen file system.
  timeout 20 touch "$mnt/after" || fault "nobody can write to the file system any more"
}
case_killed_while_the_journal_is_filled() {
  killed_while_the_log_is_filled setpriv --reuid=65534 --regid=65534 --clear-groups --no-new-privs
}
kind_of[killed_while_the_log_of_xfs_is_filled]=xfs
case_killed_while_the_log_of_xfs_is_filled() { killed_while_the_log_is_filled env; }

# Nothing that was made in such a folder could be removed again.
case_append_only_folder() {
  mkdir "$top"
  put "$top/file"
  chattr +a "$top"
  wipe "$top/file"
  chattr -a "$top"
  ((status == 1)) || fault "success is reported in a folder from which nothing can be removed"
  [[ $(find "$top" -mindepth 1 | wc -l) == 1 ]] || fault "there are other files than there were: $(ls "$top")"
  lost "$top/file"
}

# By a mapping, without a call that would show it: the program goes on writing from before the wipe to its end.
case_mapped_file_that_is_written_to() {
  if ! command -v python3 >/dev/null; then
    say "not tested here: a mapped file, since python3 is not installed"
    return
  fi
  local writer
  mkdir "$top"
  put "$top/file" 20000000
  put "$top/other"
  python3 -c 'import mmap, sys
with open(sys.argv[1], "r+b") as file:
    view = mmap.mmap(file.fileno(), 0)
open(sys.argv[2], "w").close()
while True:
    view[100000:100008] = b"new text"' "$top/file" "$work/mapped" &
  writer=$!
  until [[ -e $work/mapped ]]; do kill -0 "$writer" || break; done
  wipe "$top"
  kill "$writer" 2>/dev/null || true
  wait "$writer" 2>/dev/null || true
  rm -f "$work/mapped"
  # Where it was not given the processor meanwhile, it has not written.
  ((status == 0)) || refused 'another program has'
  ! grep -qa 'the device doesn.t hold' "$work/output" || fault "the device is blamed: $output"
  gone "$top/other"
  lost "$top/file"
}

# The second one comes while the first has all its files open: each file has one wipe, and none is called damaged.
case_two_wipes_of_one_tree() {
  local i
  mkdir -p "$top/sub"
  for ((i = 0; i < 30; i++)); do put "$top/f$i" 20000; done
  for ((i = 0; i < 10; i++)); do put "$top/sub/g$i" 20000; done
  wipe --at f7 "'$work/wipe_tool' '$top' >'$work/second' 2>&1; true" "$top"
  wiped "$top"
  grep -q '^failed: .*another program has locked it' "$work/second" || fault "the second: $(<"$work/second")"
  ! grep -qa 'the device doesn.t hold' "$work/output" "$work/second" || fault "the device is blamed"
}

# Both from the start, in whatever order they come to the files.
case_two_wipes_of_one_tree_at_once() {
  local i second
  mkdir -p "$top/sub"
  for ((i = 0; i < 30; i++)); do put "$top/f$i" 20000; done
  for ((i = 0; i < 10; i++)); do put "$top/sub/g$i" 20000; done
  "$work/wipe_tool" "$top" >"$work/second" 2>&1 &
  second=$!
  wipe "$top"
  wait "$second" || true
  ! grep -qa 'the device doesn.t hold' "$work/output" "$work/second" || fault "the device is blamed"
  if [[ -e $top ]]; then
    # What one of them had under its hands when the other was through stays with its reason.
    grep -qa '^failed: .' "$work/output" "$work/second" || fault "it is there, and nobody tells why"
    wipe "$top"
    wiped "$top"
  fi
}
