#!/usr/bin/env bash
# many_machines_test.sh ZQWIPE EXAMPLES FOLDER [ansible]: the examples of docs/many-machines as somebody uses them,
# by cron or, with `ansible`, by a play over three machines, all of which are this one. All that is wiped lies in a
# new folder inside FOLDER.
set -uo pipefail
export LC_ALL=C.UTF-8

(($# == 3)) || [[ $# == 4 && $4 == ansible ]] || { sed -n '2,4s/^# //p' "$0" >&2; exit 2; }
program=$(realpath -e -- "$1") && examples=$(realpath -e -- "$2") || exit 2
what=${4:-}

# shellcheck source=tests/cli/wipe_place.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/../cli/wipe_place.sh"
make_wipe_place many_machines_test "$program" "$3"
trap 'rm -rf -- "$scratch"' EXIT
export HOME=$scratch/home
mkdir -- "$HOME"
cd -- "$HOME" || exit 2

failures=0
fail() {
  echo "many_machines_test: $*" >&2
  failures=$((failures + 1))
}
# expect WHAT WANTED GOT
expect() {
  [[ $3 == "$2" ]] || fail "$1: '$3', not '$2'"
}

by_cron() {
  local done=$scratch/done records=$scratch/records status
  mkdir -- "$done" "$records"
  echo one >"$done/one.txt"
  echo two >"$done/zwei ü.txt"
  nightly() {
    status=0
    ZQWIPE=$program "$examples/nightly.sh" "$done" "$records" >"$scratch/out" 2>"$scratch/err" </dev/null || status=$?
    expect "what it prints" "" "$(cat "$scratch/out")"
  }
  nightly
  expect "the exit code of the first night" 0 "$status"
  expect "what is left" "" "$(ls -A "$done")"
  expect "what cron would mail" "" "$(cat "$scratch/err")"
  nightly
  expect "the exit code of a night without files" 0 "$status"
  expect "the number of records" 1 "$(find "$records" -type f | wc -l)"
  expect "what lies beside the records" "" "$(find "$records" -type f ! -name '*.json')"

  # Another name: two nights of one second would be one record.
  mv -- "$records"/*.json "$records/first.json"
  rmdir -- "$done"
  nightly
  expect "the exit code where something is kept" 1 "$status"
  grep -q 'No such file' "$scratch/err" || fail "cron would mail no reason: $(cat "$scratch/err")"

  echo '{"half": ' >"$records/zz-damaged.json"
  "$examples/table.py" "$records" >"$scratch/table" || fail "the table failed"
  expect "the table's lines" 4 "$(wc -l <"$scratch/table")"
  expect "the first night" ";all gone;2;0;8;True;Clear;9;" "$(grep -o ';all gone;2;0;8;True;Clear;9;' "$scratch/table")"
  grep -q ';something kept;0;1;0;.*No such file' "$scratch/table" || fail "no line of what was kept"
  grep -q '^zz-damaged.json;unreadable record;' "$scratch/table" || fail "a damaged record passes for one"
}

by_ansible() {
  export ANSIBLE_LOCAL_TEMP=$scratch/ansible ANSIBLE_REMOTE_TEMP=$scratch/ansible ANSIBLE_NOCOLOR=1 \
    ANSIBLE_RETRY_FILES_ENABLED=0 ANSIBLE_HOST_KEY_CHECKING=0 ANSIBLE_DEPRECATION_WARNINGS=0
  local machine status
  for machine in alpha beta gamma; do
    mkdir -p -- "$scratch/$machine/old papers"
    echo "of $machine" >"$scratch/$machine/old papers/letter.txt"
    echo "of $machine" >"$scratch/$machine/note.txt"
  done
  ln -s note.txt "$scratch/beta/link"
  cat >"$scratch/machines.ini" <<END
[all:vars]
ansible_connection=local
ansible_python_interpreter=$(command -v python3)
[office]
alpha wipe_paths='["$scratch/alpha/old papers", "$scratch/alpha/note.txt", "$scratch/alpha/none"]'
beta wipe_paths='["$scratch/beta/note.txt", "$scratch/beta/link"]'
gamma wipe_paths='["$scratch/gamma", "$HOME"]'
END
  # play [ARGUMENT...]
  play() {
    status=0
    ansible-playbook -i "$scratch/machines.ini" "$examples/wipe.yml" -e "zqwipe=$program table=$scratch/wiped.csv" \
      "$@" >"$scratch/out" 2>&1 </dev/null || status=$?
  }
  # recap MACHINE: "ok=.. changed=.. failed=.." of the last play
  recap() {
    sed -nE "s/^$1 +: .*(changed=[0-9]+).*(failed=[0-9]+).*/\1 \2/p" "$scratch/out"
  }
  # line MACHINE: its line of the table, without the time
  line() {
    grep "^$1;" "$scratch/wiped.csv" | sed -E 's/;[0-9]{4}-[0-9-]+T[0-9:]+Z;/;TIME;/'
  }
  play
  expect "the exit code" 2 "$status"
  expect "alpha" "changed=1 failed=0" "$(recap alpha)"
  expect "beta" "changed=1 failed=1" "$(recap beta)"
  expect "gamma" "changed=0 failed=1" "$(recap gamma)"
  expect "what is left of alpha" "" "$(ls -A "$scratch/alpha")"
  expect "what is left of beta" "link old papers" "$(ls -A "$scratch/beta" | paste -sd ' ')"
  expect "what is left of gamma" "note.txt old papers" "$(ls -A "$scratch/gamma" | paste -sd ' ')"
  expect "the table's lines" 4 "$(wc -l <"$scratch/wiped.csv")"
  expect "alpha's line" "alpha;all gone;3;0;18;True;Clear;9;TIME;" "$(line alpha)"
  expect "beta's line" \
    "beta;something kept;1;1;8;True;Clear;9;TIME;it is a link, and links are not followed" "$(line beta)"
  [[ $(line gamma) == "gamma;refused;0;0;0;False;Clear;9;;"*"nothing was destroyed" ]] || fail "gamma: $(line gamma)"

  play --limit alpha
  expect "the exit code of the second run" 0 "$status"
  expect "alpha's second run" "changed=0 failed=0" "$(recap alpha)"
  expect "alpha's second line" "alpha;nothing to do;0;0;0;;;;;" "$(line alpha)"
  ((failures == 0)) || cat -- "$scratch/out" >&2
}

if [[ $what == ansible ]]; then by_ansible; else by_cron; fi
((failures == 0)) || exit 1
echo "many_machines_test: as the examples say"
