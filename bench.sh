#!/usr/bin/env bash
# Times the engine beside the tools that people use today, in one run on this machine's disk: medians of
# five runs of each (BENCH_RUNS), ratios, and how often each asks for a flush. Installs what is missing.
#   bench.sh          three workloads: a large file, many small ones, some of middle size
#   bench.sh linear   100,000 files of 4 KiB against 10,000: time for each file, and memory
#   bench.sh each     2,000 files with a call of the engine for each, as a job of file rows, beside the least that
#                     nine flushed passes take; zqwipe * and by path
#   bench.sh windows  the Windows program's engine under Wine against shred on this system
#   bench.sh drop     a drop of 1,000 files on the QuickWipe Bin beside a job of as many rows, under Wine
#   bench.sh free     as root: the wipe of free space beside other tools, its memory, and how quickly it stops, on images
#                     in memory; takes about three minutes
#   bench.sh report   the report's window under Wine: reports of 30,000 lines opened, and scrolled
# The scratch folder is build/bench (BENCH_DIR for another disk), holds 300 MB at most and goes at the end.
# Only level 3 is timed: nine passes, as shred -n 9. Do it when the machine has nothing else to do.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
source scripts/packages.sh
need_packages build-native bench
[[ ${1:-} != windows && ${1:-} != drop && ${1:-} != report ]] || need_packages build run

if [[ ${1:-} == drop ]]; then
  cmake --preset program -Wno-dev >/dev/null
  cmake --build --preset program --parallel "$(nproc)" --target drop_bench >/dev/null
  echo "load $(cut -d' ' -f1-3 /proc/loadavg)"
  ZQ_PREFIX=bench scripts/wine-run.sh build/program/tests/bench/drop_bench.exe 1000 "${BENCH_RUNS:-5}"
  exit
fi

if [[ ${1:-} == report ]]; then
  cmake --preset program -Wno-dev >/dev/null
  cmake --build --preset program --parallel "$(nproc)" --target report_bench >/dev/null
  echo "load $(cut -d' ' -f1-3 /proc/loadavg)"
  ZQ_PREFIX=bench scripts/wine-run.sh build/program/tests/bench/report_bench.exe 30000 "${BENCH_RUNS:-5}"
  exit
fi

if [[ ${1:-} == free ]]; then
  need_packages bench-free
  cmake --preset native-release -Wno-dev >/dev/null
  cmake --build --preset native-release --parallel "$(nproc)" --target zqwipe >/dev/null
  echo "load $(cut -d' ' -f1-3 /proc/loadavg)"
  for part in compare memory cancel; do
    bash tests/bench/free_space_bench.sh "$part" "$PWD/build/native-release/src/cli/zqwipe" "$PWD/build/bench"
  done
  exit
fi

runs=${BENCH_RUNS:-5}
dir=${BENCH_DIR:-$PWD/build/bench}
engine=$PWD/build/native-release/tests/bench/engine_bench
zqwipe=$PWD/build/native-release/src/cli/zqwipe
cmake --preset native-release -Wno-dev >/dev/null
cmake --build --preset native-release --parallel "$(nproc)" --target engine_bench >/dev/null

[[ ! -e $dir/work ]] || { echo "$dir/work is there already, and would be destroyed" >&2; exit 1; }
mkdir -p -- "$dir"
trap 'rm -rf -- "$dir/work" "$dir/own-seconds"' EXIT

# --- The workloads: each makes $dir/work anew and waits until it is on the device ---

# files COUNT BYTES FOLDERS
files() {
  perl -e '
    my ($top, $count, $bytes, $folders) = @ARGV;
    open(my $random, "<:raw", "/dev/urandom") or die;
    for my $folder (0 .. $folders - 1) {
      mkdir "$top/folder$folder" or die;
      for my $file (1 .. $count / $folders) {
        read($random, my $data, $bytes) == $bytes or die;
        open(my $out, ">:raw", "$top/folder$folder/file$file") or die;
        print $out $data;
        close($out) or die;
      }
    }' "$dir/work" "$@"
}
make_large() { files 1 $((256 << 20)) 1; }
make_small() { files 2000 4096 20; }
make_flat() { files 2000 4096 1; }
make_middle() { files 100 $((1 << 20)) 1; }
make_work() {
  rm -rf -- "$dir/work"
  mkdir -- "$dir/work"
  "make_$1" "${@:2}"
  sync -f -- "$dir/work"
}

# --- The tools: each destroys $dir/work, or as much of it as it can ---

run_engine() { "$engine" folder "$dir/work" 3 --quiet; }
run_floor() { "$engine" floor "$dir/work"; }
run_each() { "$engine" each "$dir/work" 3 --quiet; }
run_by_path() { local work=$dir/work; "$zqwipe" --yes --quiet "$work/folder0/"*; }
run_within() { local work=$dir/work; (cd -- "$work/folder0" && "$zqwipe" --yes --quiet -- *); }
run_plain() { "$engine" folder "$dir/work" 3 --quiet --one-at-a-time; }
run_shred() { find "$dir/work" -type f -exec shred -n 9 -u {} +; }
# As many passes as ours, nine, for wipe and scrub. srm knows 38 passes, two, and this: a single one.
run_wipe() { wipe -rfqs -Q 9 "$dir/work" >/dev/null 2>&1; }
run_srm() { srm -rll "$dir/work" >/dev/null 2>&1; }
run_scrub() {
  local file
  find "$dir/work" -type f -print0 | while IFS= read -r -d '' file; do
    scrub -Sfr -p bsi "$file" >/dev/null 2>&1
  done
}
# The same bytes in the same blocks with one flush a pass, and nothing of names or of reading back.
run_fio() {
  local pass
  for pass in 1 2 3 4 5 6 7 8 9; do
    fio --name="$pass" --filename="$(find "$dir/work" -type f)" --rw=write --bs=1M --size=256M --direct=1 \
      --ioengine=io_uring --iodepth=4 --end_fsync=1 --overwrite=1 --allow_file_create=0 --refill_buffers=0 \
      --output-format=json 2>/dev/null | perl -MJSON::PP -0777 -ne '
        print decode_json($_)->{jobs}[0]{write}{runtime} / 1000 + 0, "\n"'
  done | awk '{ sum += $1 } END { printf "%.3f\n", sum }' >"$dir/own-seconds"
}
by_wine() {
  ZQ_PREFIX=bench scripts/wine-run.sh "build/program/tests/bench/$1" "${@:2}" |
    tr -d '\r' | sed 's/ s, .*//' >"$dir/own-seconds"
}
run_windows() { by_wine engine_bench.exe folder 'C:\bench\work' 3; }
run_calls() { by_wine engine_bench.exe each 'C:\bench\work' 3; }
run_rows() { by_wine drop_bench.exe rows 'C:\bench\work'; }

# seconds TOOL WORKLOAD: of one run.
seconds() {
  local started ended
  make_work "$2"
  started=$(date +%s%N)
  "run_$1"
  ended=$(date +%s%N)
  if [[ -e $dir/own-seconds ]]; then
    # Its starting up is no part of it, as with fio, nine times, and with Wine.
    cat -- "$dir/own-seconds"
    rm -- "$dir/own-seconds"
  else
    awk "BEGIN { printf \"%.3f\\n\", ($ended - $started) / 1e9 }"
  fi
}

# flushes TOOL WORKLOAD: how many calls for a flush.
flushes() {
  local trace
  [[ $1 != @(windows|calls|rows) ]] || { echo -; return; }  # it can't be looked into from outside the cage
  trace=$(mktemp)
  make_work "$2"
  strace -f -qq -c -e trace=fsync,fdatasync,syncfs,sync -o "$trace" "$BASH" -c \
    "$(declare -f "run_$1"); dir=$(printf %q "$dir") engine=$(printf %q "$engine") zqwipe=$(printf %q "$zqwipe"); run_$1" || true
  awk '$NF ~ /^(fsync|fdatasync|syncfs|sync)$/ { sum += $4 } END { print sum + 0 }' "$trace"
  rm -- "$trace"
}

median() { sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'; }

# compare TITLE WORKLOAD TOOL...: the tools take turns, so that a noisy moment meets all of them.
compare() {
  local title=$1 workload=$2 tool run all own
  shift 2
  local -A times=()
  for ((run = 1; run <= runs; ++run)); do
    for tool in "$@"; do times[$tool]+="$(seconds "$tool" "$workload") "; done
  done
  own=$(tr ' ' '\n' <<<"${times[$1]% }" | median)
  printf '\n%s\n  %-8s %10s %8s %9s   %s\n' "$title" "" "median s" "ratio" "flushes" "all runs"
  for tool in "$@"; do
    all=${times[$tool]% }
    awk -v tool="$tool" -v t="$(tr ' ' '\n' <<<"$all" | median)" -v own="$own" -v all="$all" \
      -v flushes="$(flushes "$tool" "$workload")" \
      'BEGIN { printf "  %-8s %10.3f %8.2f %9s   %s\n", tool, t, t / own, flushes, all }'
  done
}

linear() {
  local count
  for count in 10000 100000; do
    make_work files_of "$count"
    printf '%6d files of 4 KiB: ' "$count"
    "$engine" folder "$dir/work" 3
  done
}
make_files_of() { files "$1" 4096 $(($1 / 100)); }

# The prefix's drive C: is a folder of this disk, where shred finds the same files.
in_prefix() {
  local prefix
  cmake --preset program -Wno-dev >/dev/null
  cmake --build --preset program --parallel "$(nproc)" --target "$@" >/dev/null
  prefix=$(scripts/prefix.sh create bench)
  trap 'rm -rf -- "$dir/work" "$dir/own-seconds"; scripts/prefix.sh stop bench' EXIT
  dir=$prefix/drive_c/bench
  mkdir -p -- "$dir"
}
compare_windows() {
  in_prefix engine_bench drop_bench
  compare "One file of 256 MiB" large windows shred
  compare "2,000 files of 4 KiB in 20 folders" small windows shred
  compare "2,000 files of 4 KiB in one folder, a call for each and a job of as many rows" flat calls rows shred
  compare "100 files of 1 MiB" middle windows shred
}

echo "$(df --output=fstype,source "$dir" | tail -1), $(nproc) processors, load $(cut -d' ' -f1-3 /proc/loadavg)," \
  "medians of $runs; ratio: time against the first"
compare_each() {
  cmake --build --preset native-release --parallel "$(nproc)" --target zqwipe >/dev/null
  compare "2,000 files of 4 KiB in 20 folders, a call for each" small each floor shred
  compare "2,000 files of 4 KiB in one folder, by zqwipe" flat by_path within shred
}

case ${1:-} in
  linear) linear; exit ;;
  each) compare_each; exit ;;
  windows) compare_windows; exit ;;
esac
# wipe takes half a minute and more for each run of the large file and of the middle ones.
compare "One file of 256 MiB" large engine plain shred scrub fio
compare "2,000 files of 4 KiB in 20 folders" small engine plain shred wipe srm
compare "100 files of 1 MiB" middle engine plain shred srm scrub
echo
make_work large
echo "Memory, large file: $("$engine" folder "$dir/work" 3)"
make_work small
echo "Memory, small files: $("$engine" folder "$dir/work" 3)"
"$engine" random | sed 's/^/Random data, /'
