#!/usr/bin/env bash
# A Linux of its own, in a process, for a file system that this machine's kernel lacks. Sourced.

# uml_have: whether it can be had here.
uml_have() { command -v linux.uml >/dev/null && command -v perl >/dev/null; }

# uml_run FOLDER SCRIPT ARGUMENT...: runs the script as root there. It sees this machine's files, and can
# change none of them but those in FOLDER. Output and exit status are the script's.
uml_run() {
  local folder=$1 status modules
  shift
  modules=$(echo /usr/lib/uml/modules/*)
  rm -f -- "$folder"/uml.{output,status}
  cat >"$folder/uml.init" <<INIT
#!/bin/bash
export PATH=/usr/sbin:/usr/bin:/sbin:/bin ZQ_IN_UML=1
mount -t proc proc /proc
mount -t tmpfs -o size=80% memory /mnt
mount -t tmpfs run /run
ln -s /proc/self/fd /dev/fd
mount -t tmpfs -o mode=1777 tmp /var/tmp
mkdir /mnt/out
mount -t hostfs -o $(printf %q "$folder") none /mnt/out
for name in drivers/block/loop fs/nls/nls_cp437 fs/nls/nls_ascii fs/nls/nls_iso8859-1 fs/fat/fat fs/fat/vfat \\
  crypto/crc32_generic fs/f2fs/f2fs; do
  # init_module by its number: the programs that load modules are not everywhere.
  file=$(printf %q "$modules")/kernel/\$name.ko
  [[ -f \$file ]] && perl -e 'open F, "<", \$ARGV[0] or die; my \$o = ""; syscall(313, fileno(F), \$o, 0)' "\$file"
done
bash $(printf '%q ' "$@") >/mnt/out/uml.output 2>&1
echo \$? >/mnt/out/uml.status
sync
echo o >/proc/sysrq-trigger
sleep 60
INIT
  chmod 755 -- "$folder/uml.init"
  # Its memory is a file, in memory again where there is room.
  TMPDIR=/dev/shm linux.uml mem=900M root=/dev/root rootfstype=hostfs rootflags=/ ro quiet \
    con=null con0=null,fd:2 init="$folder/uml.init" </dev/null >"$folder/uml.console" 2>&1 || true
  cat -- "$folder/uml.output"
  status=$(cat -- "$folder/uml.status" 2>/dev/null || echo 99)
  ((status != 99)) || tail -- "$folder/uml.console" >&2
  rm -f -- "$folder"/uml.*
  return "$status"
}
