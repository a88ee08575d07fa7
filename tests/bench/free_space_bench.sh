#!/usr/bin/env bash
# Times the wipe of free space, for `bench.sh free`, on images of file systems as root.
#   free_space_bench.sh compare ZQWIPE FOLDER   beside the tools that people use today: seconds, seconds a pass, the
#                                               marks of deleted files that are left in the image, the most memory
#   free_space_bench.sh memory ZQWIPE FOLDER    drives of three sizes
#   free_space_bench.sh cancel ZQWIPE FOLDER    stopped at many moments from its beginning to its end, on ext4 and on
#                                               NTFS with 3,000 records of deleted files: how long it takes to end
# The images lie in memory, on loop devices without discards: what counts is what was overwritten.
# Medians of BENCH_RUNS (5) runs, in which the tools take turns; what they come to is printed as a table. A tool that
# isn't installed is left out, as are all that BENCH_TOOLS doesn't name. BENCH_STOPS (40) is how often a run is stopped.
set -euo pipefail
# shellcheck source=tests/forensic/images.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/../forensic/images.sh"
enter_own_space "${BASH_SOURCE[0]}" "$@"
program=$2 work=$3/free-space
runs=${BENCH_RUNS:-5}
need_tools python3 perl
mkdir -p -- "$work"
mount -t tmpfs -o size=1300M,mode=755 images "$work"
mkdir -- "$work/mnt"
mnt=$work/mnt

# new_image KIND SIZE: mounted at $mnt, with nothing on it.
new_image() {
  local device limit=$((SECONDS + 20))
  rm -f -- "$work/image"
  truncate --size="$2" -- "$work/image"
  case $1 in
    ext4) mkfs.ext4 -q -F -b 4096 -- "$work/image" ;;
    ntfs) mkfs.ntfs -q -F -f "$work/image" 2>/dev/null ;;
  esac
  # Its room is to be had from the disk before anything is timed.
  fallocate --posix --length "$2" -- "$work/image"
  device=$(losetup --find --show -- "$work/image")
  echo 0 >"/sys/class/block/${device##*/}/queue/discard_max_bytes"
  if [[ $1 == ntfs ]]; then ntfs-3g "$device" "$mnt"; else mount -- "$device" "$mnt"; fi
  losetup --detach "$device"
  until mountpoint -q -- "$mnt"; do ((SECONDS < limit)) || exit 1; sleep 0.02; done
  # Nobody fills this machine's disk, whatever has gone wrong before.
  [[ $(stat -c %d "$mnt") != "$(stat -c %d /)" && $(stat -c %d "$mnt") != "$(stat -c %d "$work")" ]] ||
    { say "$mnt is not an image"; exit 1; }
}
free_mib() { echo $(($(stat -f -c '%a * %S' "$mnt") >> 20)); }

# 8,192 blocks of 4 KiB with a mark in each, in 2,600 files that are removed.
delete_marks() {
  mkdir -- "$mnt/deleted"
  perl -e '
    my $number = 0;
    for ([2048, 1], [512, 4], [40, 102], [1, 16]) {
      my ($files, $blocks) = @$_;
      for my $file (1 .. $files) {
        open(my $out, ">:raw", "$ARGV[0]/$blocks-$file") or die;
        print $out pack("A4096", sprintf("DELETEDMARK%05d", $number++)) for 1 .. $blocks;
        close($out) or die;
      }
    }
    $number == 8192 or die $number;' "$mnt/deleted"
  sync -f "$mnt"
  rm -r -- "$mnt/deleted"
  sync -f "$mnt"
}
marks() { sync -f "$mnt"; { LC_ALL=C grep -aoE 'DELETEDMARK[0-9]{5}' -- "$work/image" || true; } | sort -u | wc -l; }

# timed COMMAND...: prints its seconds and the MiB of memory that it had at most.
timed() {
  python3 -c '
import resource, subprocess, sys, time
started = time.monotonic()
code = subprocess.call(sys.argv[1:], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
seconds = time.monotonic() - started
print("%.3f %.1f" % (seconds, resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024))
sys.exit(code)' "$@" || { say "failed: $*"; exit 1; }
}

# Each tool: how many passes, and its run.
declare -A passes=([zqwipe]=9 [sfill]=1 [scrub]=1 [bleachbit]=1 [fio]=9)
run_zqwipe() { timed "$program" --free-space --yes --quiet --level 3 "$mnt"; }
run_sfill() { timed sfill -ll "$mnt"; }
run_scrub() { timed scrub -p random -X "$mnt/scrub"; rm -rf -- "$mnt/scrub"; }
run_bleachbit() { HOME=$work timed bleachbit -w "$mnt"; }
# The same bytes in large writes, one flush a pass; nothing of the tail, of names, or of reading back. Its starting up is
# no part of it.
run_fio() {
  local pass size=$(($(free_mib) - 2))
  for pass in 1 2 3 4 5 6 7 8 9; do
    fio --name="$pass" --filename="$mnt/fio" --rw=write --bs=1M --size="${size}M" --direct=1 --ioengine=io_uring \
      --iodepth=4 --end_fsync=1 --overwrite=0 --fallocate=none --refill_buffers=0 --output-format=json 2>/dev/null |
      python3 -c 'import json, sys; print(json.load(sys.stdin)["jobs"][0]["write"]["runtime"] / 1000)'
  done | awk '{ sum += $1 } END { printf "%.3f 0\n", sum }'
  rm -- "$mnt/fio"
}

column() { tr ';' '\n' <<<"$1" | awk -v n="$2" 'NF { print $n }'; }
median() { sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'; }

compare() {
  local tool run own tools=()
  local -A told=()
  for tool in ${BENCH_TOOLS:-zqwipe sfill scrub bleachbit fio}; do
    [[ $tool != zqwipe ]] && ! command -v "$tool" >/dev/null || tools+=("$tool")
  done
  for ((run = 1; run <= runs; ++run)); do
    for tool in "${tools[@]}"; do
      new_image ext4 256M
      head -c $((8 << 20)) /dev/urandom >"$mnt/live"
      delete_marks
      ((run > 1)) || [[ $tool != zqwipe ]] || say "$(free_mib) MiB free, $(marks) marks"
      told[$tool]+="$("run_$tool") $(marks);"
      umount -- "$mnt"
    done
  done
  echo
  echo '| | median s | passes | s a pass | zqwipe a pass, of it | marks left | MiB |'
  echo '|---|---|---|---|---|---|---|'
  own=$(column "${told[zqwipe]:-1}" 1 | median)
  for tool in "${tools[@]}"; do
    awk -v tool="$tool" -v t="$(column "${told[$tool]}" 1 | median)" -v passes="${passes[$tool]}" -v own="$own" \
      -v least="$(column "${told[$tool]}" 3 | sort -n | head -n 1)" -v most="$(column "${told[$tool]}" 3 | sort -n | tail -n 1)" \
      -v memory="$(column "${told[$tool]}" 2 | sort -n | tail -n 1)" \
      'BEGIN { printf "| %s | %.3f | %d | %.3f | %.2f | %s | %s |\n", tool, t, passes, t / passes, (own / 9) / (t / passes),
        (least == most ? most : least " to " most), (memory > 0 ? sprintf("%.1f", memory) : "") }'
  done
  echo
  for tool in "${tools[@]}"; do echo "$tool, all runs in seconds: $(column "${told[$tool]}" 1 | tr '\n' ' ')"; done
}

memory() {
  local size free
  echo
  echo '| MiB free | MiB of memory |'
  echo '|---|---|'
  for size in 64M 256M 1024M; do
    new_image ext4 "$size"
    free=$(free_mib)
    echo "| $free | $(run_zqwipe | cut -d' ' -f2) |"
    umount -- "$mnt"
  done
}

# The moments of a stop are spread over the time that a whole run takes.
cancel() {
  local kind whole i count=${BENCH_STOPS:-40}
  echo
  for kind in ext4 ntfs; do
    new_image "$kind" 64M
    mkdir -- "$mnt/small"
    for i in {1..3000}; do echo "DELETED $i" >"$mnt/small/$i"; done
    sync -f "$mnt"
    rm -r -- "$mnt/small"
    whole=$(run_zqwipe | cut -d' ' -f1)
    python3 - "$program" "$mnt" "$whole" "$count" <<'PYTHON' | sed "s/^/$kind: /"
import signal, subprocess, sys, time
program, drive, whole, count = sys.argv[1], sys.argv[2], float(sys.argv[3]), int(sys.argv[4])
took = []
for i in range(count):
    after = whole * (i + 0.5) / count
    process = subprocess.Popen([program, "--free-space", "--yes", "--quiet", drive], stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               preexec_fn=lambda: signal.signal(signal.SIGINT, signal.default_int_handler))
    time.sleep(after)
    if process.poll() is not None:
        continue
    asked = time.monotonic()
    process.send_signal(signal.SIGINT)
    code = process.wait()
    took.append((1000 * (time.monotonic() - asked), after, code))
times = sorted(t for t, _, _ in took)
worst = max(took)
print("a run takes %.2f s; stopped %d times: median %.0f ms, most %.0f ms (after %.2f s, exit code %d), over 250 ms: %d"
      % (whole, len(took), times[len(times) // 2], worst[0], worst[1], worst[2], sum(t > 250 for t in times)))
for t, after, code in took:
    if t > 250:
        print("  after %.2f s: %.0f ms, exit code %d" % (after, t, code))
PYTHON
    image_unmount "$mnt"
  done
}

case $1 in
  compare | memory | cancel) "$1" ;;
  *) say "free_space_bench.sh: $1?"; exit 2 ;;
esac
